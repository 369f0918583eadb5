#include "apps/support/PropertyLog.h"
#include "apps/support/SignalSide.h"

#include <algorithm>
#include <cstring>

namespace Tarvane
{
namespace
{

struct Property
{
    AudioUnitPropertyID nId;
    UInt32 nSize;
    bool fReadable;
    bool fWritable;
    bool fAnyElement;
};

constexpr Property kProperties[] = {
    {TNProperty_ElementInfo, sizeof(TNCaptureElement), true, false, true},
    {TNProperty_ArmCapture, sizeof(UInt8), true, false, false},
    {TNProperty_SetArmCapture, sizeof(TNArmRequest), false, true, false},
    {TNProperty_CurrentSampleInTimeLine, sizeof(Float64), true, false, false},
    {TNProperty_NextElement, sizeof(SInt32), true, false, false},
    {TNProperty_ElementDone, sizeof(TNElementAck), false, true, false},
    {TNProperty_SelectedTrack, sizeof(SInt32), true, true, false},
    {kTNProperty_CurrentCaptureLength, sizeof(Float64), true, false, false},
    {kSignalSideProperty_Self, sizeof(CSignalSide*), true, false, false},
};

OSStatus Find(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
              const Property** ppProperty)
{
    const auto* pFound =
        std::find_if(std::begin(kProperties), std::end(kProperties),
                     [nId](const Property& property) { return property.nId == nId; });
    if (pFound == std::end(kProperties))
    {
        return kAudioUnitErr_InvalidProperty;
    }
    if (nScope != kAudioUnitScope_Global)
    {
        return kAudioUnitErr_InvalidScope;
    }
    if (nElement != 0 && !pFound->fAnyElement)
    {
        return kAudioUnitErr_InvalidElement;
    }
    *ppProperty = pFound;
    return noErr;
}

template <typename Value> void Put(void* pData, const Value& value)
{
    std::memcpy(pData, &value, sizeof value);
}

// The caller has compared the size; the data may lie on any boundary.
template <typename Value> Value Take(const void* pData)
{
    Value value;
    std::memcpy(&value, pData, sizeof value);
    return value;
}

} // namespace

OSStatus CSignalSide::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                      AudioUnitElement nElement, UInt32* pnSize,
                                      Boolean* pfWritable) const
{
    const Property* pProperty = nullptr;
    const OSStatus nStatus = Find(nId, nScope, nElement, &pProperty);
    if (nStatus != noErr)
    {
        return nStatus;
    }
    if (pnSize != nullptr)
    {
        *pnSize = pProperty->nSize;
    }
    if (pfWritable != nullptr)
    {
        *pfWritable = pProperty->fWritable;
    }
    return noErr;
}

OSStatus CSignalSide::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    const Property* pProperty = nullptr;
    const OSStatus nStatus = Find(nId, nScope, nElement, &pProperty);
    if (nStatus != noErr)
    {
        return nStatus;
    }
    if (!pProperty->fReadable)
    {
        return kAudioUnitErr_InvalidProperty;
    }
    if (pData == nullptr || pnSize == nullptr || *pnSize < pProperty->nSize)
    {
        return kAudioUnitErr_InvalidParameter;
    }
    *pnSize = pProperty->nSize;
    return Read(nId, nElement, pData);
}

OSStatus CSignalSide::Read(AudioUnitPropertyID nId, AudioUnitElement nElement, void* pData)
{
    std::lock_guard lock(m_mutex);
    switch (nId)
    {
    case TNProperty_ElementInfo:
    {
        const auto found = std::find_if(
            m_waiting.begin(), m_waiting.end(),
            [nElement](const Element& element)
            { return static_cast<AudioUnitElement>(element.report.nElement) == nElement; });
        if (found == m_waiting.end())
        {
            return kAudioUnitErr_InvalidElement;
        }
        Put(pData, found->record);
        break;
    }
    case TNProperty_ArmCapture:
        Put(pData, static_cast<UInt8>(m_fArmed ? 1 : 0));
        break;
    case TNProperty_CurrentSampleInTimeLine:
        Put(pData, Float64(m_dPosition + m_dSamplesPlayed));
        break;
    case TNProperty_NextElement:
        Put(pData, m_waiting.empty() ? SInt32(-1) : SInt32(m_waiting.front().report.nElement));
        break;
    case TNProperty_SelectedTrack:
        Put(pData, m_nTrack);
        break;
    case kTNProperty_CurrentCaptureLength:
        Put(pData, Float64(m_dCaptureLength));
        break;
    case kSignalSideProperty_Self:
        Put(pData, this);
        break;
    default:
        return kAudioUnitErr_InvalidProperty;
    }
    return noErr;
}

OSStatus CSignalSide::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    const Property* pProperty = nullptr;
    OSStatus nStatus = Find(nId, nScope, nElement, &pProperty);
    if (nStatus == noErr && !pProperty->fWritable)
    {
        nStatus = kAudioUnitErr_PropertyNotWritable;
    }
    else if (nStatus == noErr && (pData == nullptr || nSize != pProperty->nSize))
    {
        nStatus = kAudioUnitErr_InvalidPropertyValue;
    }
    const std::string strWrite = DescribeWrite(nId, pData, nSize);
    if (nStatus == noErr)
    {
        // Before it takes effect, so that the log shows a write ahead of what follows from it.
        Log(strWrite);
        nStatus = Write(nId, pData);
    }
    if (nStatus != noErr)
    {
        Log(strWrite + " - refused with " + std::to_string(nStatus));
    }
    return nStatus;
}

OSStatus CSignalSide::Write(AudioUnitPropertyID nId, const void* pData)
{
    switch (nId)
    {
    case TNProperty_SetArmCapture:
        // fShift is for the log only: there is one way to arm a sound file.
        SetArmed(Take<TNArmRequest>(pData).fArm != 0);
        return noErr;
    case TNProperty_ElementDone:
        return TakeAck(Take<TNElementAck>(pData));
    case TNProperty_SelectedTrack:
    {
        std::lock_guard lock(m_mutex);
        m_nTrack = Take<SInt32>(pData);
        return noErr;
    }
    default:
        return kAudioUnitErr_PropertyNotWritable;
    }
}

} // namespace Tarvane
