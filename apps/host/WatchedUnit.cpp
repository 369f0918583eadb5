#include "apps/host/WatchedUnit.h"

#include "apps/support/UnitComponent.h"

#include <cstring>

namespace Tarvane
{
namespace
{

// Hands out the object behind a unit. Read only; the view knows nothing of it.
constexpr AudioUnitPropertyID kSelf = 65003;

AudioComponent& Watched()
{
    static AudioComponent pWatched = nullptr;
    return pWatched;
}

} // namespace

AudioComponent CWatchedUnit::Register(AudioComponent pBehind)
{
    Watched() = pBehind;
    return UnitComponent<CWatchedUnit>::Register('TnLw', "Tarvane: Watched Link");
}

CWatchedUnit* CWatchedUnit::Of(AudioUnit pUnit)
{
    CWatchedUnit* pSelf = nullptr;
    UInt32 nSize = sizeof pSelf;
    AudioUnitGetProperty(pUnit, kSelf, kAudioUnitScope_Global, 0, &pSelf, &nSize);
    return pSelf;
}

CWatchedUnit::CWatchedUnit() : CUnitInFront(Watched()) {}

OSStatus CWatchedUnit::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                   AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    if (nId == kSelf && pnSize != nullptr && *pnSize >= sizeof(CWatchedUnit*))
    {
        CWatchedUnit* pSelf = this;
        std::memcpy(pData, &pSelf, sizeof pSelf);
        return noErr;
    }
    const OSStatus nStatus = CUnitInFront::GetProperty(nId, nScope, nElement, pData, pnSize);
    if (nId == TNProperty_ElementInfo && nStatus == noErr && m_hooks.fnRead)
    {
        TNCaptureElement record;
        std::memcpy(&record, pData, sizeof record);
        record.szDubPath[sizeof record.szDubPath - 1] = '\0';
        m_hooks.fnRead(record);
    }
    return nStatus;
}

OSStatus CWatchedUnit::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                   AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    const OSStatus nStatus = CUnitInFront::SetProperty(nId, nScope, nElement, pData, nSize);
    if (nId == TNProperty_ElementDone && nSize == sizeof(TNElementAck) && m_hooks.fnAcknowledged)
    {
        TNElementAck ack;
        std::memcpy(&ack, pData, sizeof ack);
        m_hooks.fnAcknowledged(ack, nStatus);
    }
    return nStatus;
}

void CWatchedUnit::PassOn(AudioUnitPropertyID nId)
{
    Notify(nId);
    if (nId == TNProperty_ArmCapture && m_hooks.fnArmChanged)
    {
        m_hooks.fnArmChanged();
    }
}

} // namespace Tarvane
