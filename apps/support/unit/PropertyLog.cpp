#include "apps/support/unit/PropertyLog.h"

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

void AddTimes(std::vector<PropertyField>& fields, const std::string& strOf,
              const TNRegionTimes& times)
{
    fields.push_back({strOf + ".dPosition", times.dPosition});
    fields.push_back({strOf + ".dAux", times.dAux});
    fields.push_back({strOf + ".dReservedA", times.dReservedA});
    fields.push_back({strOf + ".dStart", times.dStart});
    fields.push_back({strOf + ".dEnd", times.dEnd});
    fields.push_back({strOf + ".dReservedB", times.dReservedB});
}

std::string PathIn(const char (&szPath)[kTNPathSize])
{
    return {szPath, strnlen(szPath, kTNPathSize)};
}

std::vector<PropertyField> FieldsOf(const TNCaptureElement& record)
{
    std::vector<PropertyField> fields{{"nHeader", record.nHeader},
                                      {"szGuidePath", PathIn(record.szGuidePath)}};
    AddTimes(fields, "tGuide", record.tGuide);
    fields.push_back({"szDubPath", PathIn(record.szDubPath)});
    AddTimes(fields, "tDub", record.tDub);
    AddTimes(fields, "tThird", record.tThird);
    fields.push_back({"fIdentical", record.fIdentical});
    fields.push_back({"dSampleRate", record.dSampleRate});
    return fields;
}

std::vector<PropertyField> FieldsOf(const TNArmRequest& request)
{
    return {{"fArm", request.fArm}, {"fShift", request.fShift}};
}

std::vector<PropertyField> FieldsOf(const TNElementAck& ack)
{
    return {{"nElement", ack.nElement},
            {"fHandled", ack.fHandled},
            {"fNotDelivered", ack.fNotDelivered},
            {"fFinal", ack.fFinal}};
}

// Of a record when it is one.
template <typename Record> std::vector<PropertyField> RecordAt(const void* pData, UInt32 nSize)
{
    if (pData == nullptr || nSize != sizeof(Record))
    {
        return {};
    }
    return FieldsOf(ValueAt<Record>(pData));
}

// Likewise, of a single number.
template <typename Number>
std::vector<PropertyField> NumberAt(const char* szName, const void* pData, UInt32 nSize)
{
    if (pData == nullptr || nSize != sizeof(Number))
    {
        return {};
    }
    return {{szName, ValueAt<Number>(pData)}};
}

bool IsWritten(AudioUnitPropertyID nId)
{
    return nId == TNProperty_SetArmCapture || nId == TNProperty_ElementDone ||
           nId == TNProperty_SelectedTrack;
}

std::string InWords(const std::vector<PropertyField>& fields)
{
    std::string strText;
    for (const PropertyField& field : fields)
    {
        strText += (strText.empty() ? "" : ", ") + field.strName + " " +
                   std::to_string(std::get<std::int64_t>(field.value));
    }
    return strText;
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

std::vector<PropertyField> PropertyFields(AudioUnitPropertyID nId, const void* pData, UInt32 nSize)
{
    switch (nId)
    {
    case TNProperty_ElementInfo:
        return RecordAt<TNCaptureElement>(pData, nSize);
    case TNProperty_ArmCapture:
        return NumberAt<UInt8>("fArmed", pData, nSize);
    case TNProperty_SetArmCapture:
        return RecordAt<TNArmRequest>(pData, nSize);
    case TNProperty_NextElement:
        return NumberAt<SInt32>("nElement", pData, nSize);
    case TNProperty_ElementDone:
        return RecordAt<TNElementAck>(pData, nSize);
    case TNProperty_SelectedTrack:
        return NumberAt<SInt32>("track", pData, nSize);
    case TNProperty_CurrentSampleInTimeLine:
    case kTNProperty_CurrentCaptureLength:
        return NumberAt<Float64>("seconds", pData, nSize);
    default:
        return {};
    }
}

std::string DescribeWrite(AudioUnitPropertyID nId, const void* pData, UInt32 nSize)
{
    const std::vector<PropertyField> fields =
        IsWritten(nId) ? PropertyFields(nId, pData, nSize) : std::vector<PropertyField>();
    return std::to_string(nId) + " " + PropertyName(nId) + ": " +
           (fields.empty() ? Bytes(pData, nSize) : InWords(fields));
}

} // namespace Tarvane
