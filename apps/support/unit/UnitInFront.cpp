#include "apps/support/unit/UnitInFront.h"

#include "apps/support/unit/HeardByViews.h"

#include <stdexcept>

namespace Tarvane
{

CUnitInFront::CUnitInFront(AudioComponent pBehind)
{
    if (AudioComponentInstanceNew(pBehind, &m_pBehind) != noErr)
    {
        throw std::runtime_error("the signal side cannot be opened.");
    }
    for (const AudioUnitPropertyID nId : kHeardByViews)
    {
        AudioUnitAddPropertyListener(m_pBehind, nId, &Hear, this);
    }
}

CUnitInFront::~CUnitInFront()
{
    CloseBehind();
}

void CUnitInFront::CloseBehind()
{
    if (m_pBehind != nullptr)
    {
        AudioComponentInstanceDispose(m_pBehind);
        m_pBehind = nullptr;
    }
}

void CUnitInFront::Hear(void* pUserData, AudioUnit, AudioUnitPropertyID nId, AudioUnitScope,
                        AudioUnitElement)
{
    static_cast<CUnitInFront*>(pUserData)->PassOn(nId);
}

void CUnitInFront::Notify(AudioUnitPropertyID nId)
{
    m_listeners.Notify(m_pUnit, nId, kAudioUnitScope_Global, 0);
}

OSStatus CUnitInFront::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                       AudioUnitElement nElement, UInt32* pnSize,
                                       Boolean* pfWritable) const
{
    return AudioUnitGetPropertyInfo(m_pBehind, nId, nScope, nElement, pnSize, pfWritable);
}

OSStatus CUnitInFront::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                   AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    return AudioUnitGetProperty(m_pBehind, nId, nScope, nElement, pData, pnSize);
}

OSStatus CUnitInFront::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                   AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    return AudioUnitSetProperty(m_pBehind, nId, nScope, nElement, pData, nSize);
}

} // namespace Tarvane
