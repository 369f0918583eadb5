#include "apps/support/PropertyLog.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Tarvane
{
namespace
{

constexpr UInt32 kMaxBytesShown = 64;

// The caller has compared the size.
template <typename Value> Value ValueAt(const void* pData)
{
    Value value;
    std::memcpy(&value, pData, sizeof value);
    return value;
}

std::string Bytes(const void* pData, UInt32 nSize)
{
    std::string strText = std::to_string(nSize) + " bytes";
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    for (UInt32 n = 0; pBytes != nullptr && n < std::min(nSize, kMaxBytesShown); ++n)
    {
        char sz[4];
        std::snprintf(sz, sizeof sz, " %02X", pBytes[n]);
        strText += sz;
    }
    return strText + (nSize > kMaxBytesShown ? " ..." : "");
}

std::string Fields(AudioUnitPropertyID nId, const void* pData, UInt32 nSize)
{
    char sz[160];
    if (pData != nullptr && nId == TNProperty_SetArmCapture && nSize == sizeof(TNArmRequest))
    {
        const auto request = ValueAt<TNArmRequest>(pData);
        std::snprintf(sz, sizeof sz, "fArm %d, fShift %d", request.fArm, request.fShift);
        return sz;
    }
    if (pData != nullptr && nId == TNProperty_ElementDone && nSize == sizeof(TNElementAck))
    {
        const auto ack = ValueAt<TNElementAck>(pData);
        std::snprintf(sz, sizeof sz, "nElement %d, fHandled %d, fNotDelivered %d, fFinal %d",
                      static_cast<int>(ack.nElement), ack.fHandled, ack.fNotDelivered, ack.fFinal);
        return sz;
    }
    if (pData != nullptr && nId == TNProperty_SelectedTrack && nSize == sizeof(SInt32))
    {
        return "track " + std::to_string(ValueAt<SInt32>(pData));
    }
    return Bytes(pData, nSize);
}

} // namespace

const char* PropertyName(AudioUnitPropertyID nId)
{
    switch (nId)
    {
    case TNProperty_Elements:
        return "TNProperty_Elements";
    case TNProperty_ElementInfo:
        return "TNProperty_ElementInfo";
    case TNProperty_ArmCapture:
        return "TNProperty_ArmCapture";
    case TNProperty_SetArmCapture:
        return "TNProperty_SetArmCapture";
    case TNProperty_CurrentSampleInTimeLine:
        return "TNProperty_CurrentSampleInTimeLine";
    case TNProperty_NextElement:
        return "TNProperty_NextElement";
    case TNProperty_ElementDone:
        return "TNProperty_ElementDone";
    case TNProperty_SelectedTrack:
        return "TNProperty_SelectedTrack";
    case kTNProperty_CurrentCaptureLength:
        return "kTNProperty_CurrentCaptureLength";
    default:
        return "unknown";
    }
}

std::string DescribeWrite(AudioUnitPropertyID nId, const void* pData, UInt32 nSize)
{
    return std::to_string(nId) + " " + PropertyName(nId) + ": " + Fields(nId, pData, nSize);
}

} // namespace Tarvane
