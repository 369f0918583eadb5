#include "bench/link/BenchUnit.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/PropertyListeners.h"
#include "apps/support/UnitComponent.h"

#include <cstring>

namespace Bench
{
namespace
{

TNCaptureElement element;
Acknowledged acknowledged;

template <typename T> OSStatus Answer(const T& value, void* pData, UInt32* pnSize)
{
    if (*pnSize < sizeof value)
        return kAudioUnitErr_InvalidParameter;
    std::memcpy(pData, &value, sizeof value);
    *pnSize = sizeof value;
    return noErr;
}

class CBenchUnit
{
public:
    void SetUnit(AudioUnit) {}
    void Stop() {}
    Tarvane::CPropertyListeners& Listeners() { return m_listeners; }

    OSStatus GetPropertyInfo(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, UInt32*,
                             Boolean*) const
    {
        return kAudioUnitErr_InvalidProperty;
    }

    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope, AudioUnitElement, void* pData,
                         UInt32* pnSize)
    {
        switch (nId)
        {
        case TNProperty_ElementInfo:
            return Answer(element, pData, pnSize);
        case TNProperty_ArmCapture:
            return Answer(std::uint8_t{1}, pData, pnSize);
        case TNProperty_NextElement:
        case TNProperty_SelectedTrack:
            return Answer(std::int32_t{0}, pData, pnSize);
        case kTNProperty_CurrentCaptureLength:
            return Answer(1.5, pData, pnSize);
        default:
            return kAudioUnitErr_InvalidProperty;
        }
    }

    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope, AudioUnitElement,
                         const void* pData, UInt32 nSize)
    {
        TNElementAck tAck;
        if (nId == TNProperty_ElementDone && nSize == sizeof tAck)
        {
            std::memcpy(&tAck, pData, sizeof tAck);
            ++(tAck.fNotDelivered ? acknowledged.nNotDelivered : acknowledged.nDelivered);
        }
        return noErr;
    }

private:
    Tarvane::CPropertyListeners m_listeners;
};

} // namespace

AudioUnit Unit()
{
    static const AudioUnit pUnit = []
    {
        AudioUnit pNew = nullptr;
        AudioComponentInstanceNew(
            Tarvane::UnitComponent<CBenchUnit>::Register('Bnch', "Tarvane: Bench"), &pNew);
        return pNew;
    }();
    return pUnit;
}

void SetCaptureFile(const std::string& strPath)
{
    strPath.copy(element.szDubPath, kTNPathSize - 1);
    element.tDub.dPosition = 100;
    element.tDub.dStart = 0;
    element.tDub.dEnd = 480;
    element.dSampleRate = 48000;
}

Acknowledged AcknowledgedSoFar()
{
    return acknowledged;
}

} // namespace Bench
