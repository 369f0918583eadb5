// A plug-in of another maker, behind a unit that shows its host what the view does with it.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/unit/UnitInFront.h"

#include <functional>

namespace Tarvane
{

class CWatchedUnit : public CUnitInFront
{
public:
    struct Hooks
    {
        /// The view has read a record. The view's thread.
        std::function<void(const TNCaptureElement&)> fnRead;
        /// The view has written an acknowledge, and the plug-in has answered. The view's thread.
        std::function<void(const TNElementAck&, OSStatus)> fnAcknowledged;
        /// 64004 was raised, and told to the view. Any thread.
        std::function<void()> fnArmChanged;
    };

    /// Makes a component known to the process whose units stand in front of this one's. One a
    /// process.
    static AudioComponent Register(AudioComponent pBehind);
    /// Null when the unit is not one of ours.
    static CWatchedUnit* Of(AudioUnit pUnit);

    /// Throws std::runtime_error when the plug-in makes no instance.
    CWatchedUnit();
    ~CWatchedUnit() override { CloseBehind(); }

    /// Before anybody listens.
    void SetHooks(Hooks hooks) { m_hooks = std::move(hooks); }
    /// The plug-in's own unit.
    AudioUnit PlugIn() const { return Behind(); }

    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize) override;
    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize) override;

private:
    void PassOn(AudioUnitPropertyID nId) override;

    Hooks m_hooks;
};

} // namespace Tarvane
