// A plug-in instance whose signal side lives in another process: an ordinary unit to the view.
#pragma once

#include "apps/support/PropertyListeners.h"

#include <AudioUnit/AudioUnit.h>

#include <atomic>

namespace Tarvane
{

class CDeliveryWatch;
class CPlugInConnection;

/// One at a time: there is one plug-in behind a process. All operations: any thread. A property
/// that cannot be asked for, as the connection has ended, answers kAudioUnitErr_Uninitialized; one
/// that is asked for inside a notification kAudioUnitErr_CannotDoInCurrentContext.
class CSocketUnit
{
public:
    /// Makes the component known to the process, once. The connection, and the watch that knows
    /// what becomes of takes, must outlive the unit.
    static AudioComponent Register(CPlugInConnection& connection, CDeliveryWatch& deliveries);
    /// Raises a property on the unit's listeners, if there is a unit.
    static void Raise(AudioUnitPropertyID nId);

    CSocketUnit();
    ~CSocketUnit();
    CSocketUnit(const CSocketUnit&) = delete;
    CSocketUnit& operator=(const CSocketUnit&) = delete;

    /// What the component's entry points call.
    void SetUnit(AudioUnit pUnit) { m_pUnit = pUnit; }
    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable);
    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize);
    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize);
    void Stop() {}
    CPropertyListeners& Listeners() { return m_listeners; }

private:
    OSStatus StatusWithoutReply() const;

    std::atomic<AudioUnit> m_pUnit{nullptr};
    CPropertyListeners m_listeners;
};

} // namespace Tarvane
