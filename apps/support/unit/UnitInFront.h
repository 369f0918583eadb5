// A plug-in in front of another one. By itself it passes everything on, both ways: properties to
// the unit behind it, notifications to whoever listens to it.
#pragma once

#include "apps/support/PropertyListeners.h"
#include "apps/support/unit/UnitBehind.h"

#include <AudioUnit/AudioUnit.h>

namespace Tarvane
{

/// All operations: any thread, but for those that say otherwise.
class CUnitInFront
{
public:
    /// Opens the unit behind. Throws std::runtime_error when it is not to be had.
    explicit CUnitInFront(AudioComponent pBehind);
    virtual ~CUnitInFront() = default;
    CUnitInFront(const CUnitInFront&) = delete;
    CUnitInFront& operator=(const CUnitInFront&) = delete;

    /// What the component's entry points call.
    void SetUnit(AudioUnit pUnit) { m_pUnit = pUnit; }
    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable) const;
    virtual OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                 AudioUnitElement nElement, void* pData, UInt32* pnSize);
    virtual OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                 AudioUnitElement nElement, const void* pData, UInt32 nSize);
    /// Asks threads to end, and waits for nothing.
    virtual void Stop() {}
    CPropertyListeners& Listeners() { return m_listeners; }

protected:
    /// The unit behind has raised this one of the ids that a view listens to.
    virtual void PassOn(AudioUnitPropertyID nId) { Notify(nId); }

    void Notify(AudioUnitPropertyID nId);
    AudioUnit Behind() const { return m_behind.Unit(); }

    /// Disposes of the unit behind: no notification comes from it any more. A class that overrides
    /// PassOn calls it in its destructor.
    void CloseBehind() { m_behind.Close(); }

private:
    AudioUnit m_pUnit = nullptr;
    CPropertyListeners m_listeners;
    CUnitBehind m_behind; ///< the last: it notifies from its beginning to its end
};

} // namespace Tarvane
