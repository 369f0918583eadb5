// A plug-in between a view and a signal side: it passes everything on, both ways, and breaks on the
// way what it has been asked to break. The signal side behind it stays whole and knows nothing.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/unit/FaultyListeners.h"
#include "apps/support/unit/SignalFaults.h"
#include "apps/support/unit/UnitBehind.h"

#include <AudioUnit/AudioUnit.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Tarvane
{

/// Write only, global scope, element 0; the data is a const SignalFaults*, read during the call. To
/// be written once, before anybody listens. CSignalSide::Of gives the signal side behind the unit.
constexpr AudioUnitPropertyID kFaultyUnitProperty_Faults = 65001;

/// The file of this path as PathUncarried names it.
std::string UncarriedPath(const char* szPath);

/// All operations: any thread, but for those that say otherwise.
class CFaultyUnit
{
public:
    /// Makes the component known to the process, once. Open it with AudioComponentInstanceNew.
    static AudioComponent Register();

    /// Throws std::runtime_error when there is no signal side to be had.
    CFaultyUnit();
    /// Waits for notifications that are under way.
    ~CFaultyUnit();
    CFaultyUnit(const CFaultyUnit&) = delete;
    CFaultyUnit& operator=(const CFaultyUnit&) = delete;

    /// What the component's entry points call.
    void SetUnit(AudioUnit pUnit) { m_pUnit = pUnit; }
    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable) const;
    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize);
    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize);
    /// Asks the threads of its own to end, and waits for nothing.
    void Stop() { m_fEnding = true; }
    CFaultyListeners& Listeners() { return *m_pListeners; }

private:
    using Clock = std::chrono::steady_clock;

    bool Has(SignalFault fault) const { return m_faults.count(fault) != 0; }
    void Begin(const SignalFaults& faults);
    void Storm(int nTimesAMillisecond);
    void NotifyFromBeyond() const;

    bool IsDropped(AudioUnitPropertyID nId);
    bool IsFirstDisarming();
    void PassOn(AudioUnitPropertyID nId);
    void PassOnElement();
    void Notify(AudioUnitPropertyID nId);

    bool IsRefused(AudioUnitPropertyID nId) const;
    bool IsIgnored(AudioUnitPropertyID nId, const void* pData) const;
    bool IsHidden() const { return Clock::now() < m_hiddenUntil.load(); }
    OSStatus GetWhole(AudioUnitPropertyID nId, AudioUnitElement nElement, void* pData,
                      UInt32* pnSize);
    OSStatus GetShortLength(void* pData, UInt32* pnSize) const;
    OSStatus GetRecord(AudioUnitElement nElement, void* pData, UInt32* pnSize) const;
    OSStatus TakeAck(TNElementAck ack);
    SInt32 SpoilIndex(SInt32 nIndex);

    SInt32 NextOfInner() const;
    OSStatus RecordOfInner(SInt32 nElement, TNCaptureElement& record) const;
    void ForgetEarlier(SInt32 nElement);
    void PutFirst(SInt32 nElement);

    AudioUnit m_pUnit = nullptr;
    /// Outlives the unit where that is the fault.
    const std::shared_ptr<CFaultyListeners> m_pListeners = std::make_shared<CFaultyListeners>();
    SignalFaults m_faults; ///< does not change any more once somebody listens
    std::atomic<SInt32> m_nAnnounced = 0;
    std::atomic<SInt32> m_nLastElement = 0;
    std::atomic<Clock::time_point> m_hiddenUntil{};
    std::atomic<bool> m_fEnding = false;
    std::atomic<bool> m_fArmReported = false; ///< since it was last asked to disarm, or did so
    mutable std::mutex m_mutex;
    std::vector<TNCaptureElement> m_records; ///< in the order of delivery; guarded by the mutex
    std::vector<std::thread> m_threads;
    CUnitBehind m_inner; ///< the last: it notifies from its beginning to its end
};

} // namespace Tarvane
