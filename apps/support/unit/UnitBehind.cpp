#include "apps/support/unit/UnitBehind.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <stdexcept>

namespace Tarvane
{
namespace
{

constexpr AudioUnitPropertyID kHeardByViews[] = {TNProperty_Elements, TNProperty_ArmCapture,
                                                 TNProperty_CurrentSampleInTimeLine,
                                                 kTNProperty_CurrentCaptureLength};

} // namespace

CUnitBehind::CUnitBehind(AudioComponent pComponent,
                         std::function<void(AudioUnitPropertyID)> fnHeard)
    : m_fnHeard(std::move(fnHeard))
{
    if (AudioComponentInstanceNew(pComponent, &m_pUnit) != noErr)
    {
        throw std::runtime_error("the signal side cannot be opened.");
    }
    for (const AudioUnitPropertyID nId : kHeardByViews)
    {
        AudioUnitAddPropertyListener(m_pUnit, nId, &Hear, this);
    }
}

void CUnitBehind::Close()
{
    if (m_pUnit != nullptr)
    {
        AudioComponentInstanceDispose(m_pUnit);
        m_pUnit = nullptr;
    }
}

void CUnitBehind::Hear(void* pUserData, AudioUnit, AudioUnitPropertyID nId, AudioUnitScope,
                       AudioUnitElement)
{
    static_cast<CUnitBehind*>(pUserData)->m_fnHeard(nId);
}

} // namespace Tarvane
