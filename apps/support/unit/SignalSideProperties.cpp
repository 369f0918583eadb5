#include "apps/support/unit/PropertyLog.h"
#include "apps/support/unit/SignalSide.h"

#include <cstring>

namespace Tarvane
{

OSStatus CSignalSide::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                      AudioUnitElement nElement, UInt32* pnSize,
                                      Boolean* pfWritable) const
{
    bool fWritable = false;
    const OSStatus nStatus = m_core.GetPropertyInfo(nId, nScope, nElement, pnSize, &fWritable);
    if (nStatus == noErr && pfWritable != nullptr)
    {
        *pfWritable = fWritable;
    }
    return nStatus;
}

OSStatus CSignalSide::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    if (nId != kSignalSideProperty_Self)
    {
        const OSStatus nStatus = m_core.GetProperty(nId, nScope, nElement, pData, pnSize);
        if (nId == TNProperty_ElementInfo && nStatus == noErr && m_deliveryHooks.fnBegins)
        {
            TNCaptureElement record;
            std::memcpy(&record, pData, sizeof record);
            m_deliveryHooks.fnBegins(record);
        }
        return nStatus;
    }
    CSignalSide* pSelf = this;
    if (pData == nullptr || pnSize == nullptr || *pnSize < sizeof pSelf)
    {
        return kAudioUnitErr_InvalidParameter;
    }
    std::memcpy(pData, &pSelf, sizeof pSelf);
    *pnSize = sizeof pSelf;
    return noErr;
}

OSStatus CSignalSide::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    UInt32 nExpected = 0;
    Boolean fWritable = false;
    OSStatus nStatus = GetPropertyInfo(nId, nScope, nElement, &nExpected, &fWritable);
    if (nStatus == noErr && !fWritable)
    {
        nStatus = kAudioUnitErr_PropertyNotWritable;
    }
    else if (nStatus == noErr && (pData == nullptr || nSize != nExpected))
    {
        nStatus = kAudioUnitErr_InvalidPropertyValue;
    }
    const std::string strWrite = DescribeWrite(nId, pData, nSize);
    if (nStatus == noErr)
    {
        // Before it takes effect, so that the log shows a write ahead of what follows from it.
        Log(strWrite);
        nStatus = Write(nId, pData, nSize);
    }
    if (nStatus != noErr)
    {
        Log(strWrite + " - refused with " + std::to_string(nStatus));
    }
    return nStatus;
}

OSStatus CSignalSide::Write(AudioUnitPropertyID nId, const void* pData, UInt32 nSize)
{
    if (nId == TNProperty_ElementDone && m_deliveryHooks.fnEnds)
    {
        TNElementAck ack;
        std::memcpy(&ack, pData, sizeof ack);
        m_deliveryHooks.fnEnds(ack);
    }
    const bool fArms = nId == TNProperty_SetArmCapture;
    if (fArms && static_cast<const TNArmRequest*>(pData)->fArm == 0)
    {
        std::lock_guard lock(m_mutex);
        m_fReady = false;
        m_fBegin = false;
        m_fStop = true;
        m_wake.notify_all();
    }
    const OSStatus nStatus = m_core.SetProperty(nId, kAudioUnitScope_Global, 0, pData, nSize);
    if (fArms)
    {
        SetReady();
    }
    return nStatus;
}

} // namespace Tarvane
