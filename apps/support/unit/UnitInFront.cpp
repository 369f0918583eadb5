#include "apps/support/unit/UnitInFront.h"

namespace Tarvane
{

CUnitInFront::CUnitInFront(AudioComponent pBehind)
    : m_behind(pBehind, [this](AudioUnitPropertyID nId) { PassOn(nId); })
{
}

void CUnitInFront::Notify(AudioUnitPropertyID nId)
{
    m_listeners.Notify(m_pUnit, nId, kAudioUnitScope_Global, 0);
}

OSStatus CUnitInFront::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                       AudioUnitElement nElement, UInt32* pnSize,
                                       Boolean* pfWritable) const
{
    return AudioUnitGetPropertyInfo(Behind(), nId, nScope, nElement, pnSize, pfWritable);
}

OSStatus CUnitInFront::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                   AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    return AudioUnitGetProperty(Behind(), nId, nScope, nElement, pData, pnSize);
}

OSStatus CUnitInFront::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                   AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    return AudioUnitSetProperty(Behind(), nId, nScope, nElement, pData, nSize);
}

} // namespace Tarvane
