#pragma once

#include <AudioToolbox/AudioUnitUtilities.h>

#include "platform/gnustep/AudioUnit/RunLoopCourier.h"

#include <chrono>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

/// What stands behind an AUEventListenerRef. Kept alive by the table of listeners and, while
/// events wait, by the work that will deliver them.
struct AUListenerBase : platform::RunLoopErrand, std::enable_shared_from_this<AUListenerBase>
{
    struct Settings
    {
        AUEventListenerProc function = nullptr; ///< null: hears of no event
        void* userData = nullptr;
        CFRunLoopRef runLoop = nullptr;
        CFStringRef mode = nullptr;
        double interval = 0;    ///< seconds
        double granularity = 0; ///< seconds
    };

    struct Occurrence
    {
        AudioUnitEvent event;
        UInt64 hostTime; ///< nanoseconds
        AudioUnitParameterValue value;
    };

    /// Retains the run loop and the mode.
    explicit AUListenerBase(const Settings& settings);
    ~AUListenerBase() override;
    AUListenerBase(const AUListenerBase&) = delete;
    AUListenerBase& operator=(const AUListenerBase&) = delete;

    bool HearsEvents() const { return m_settings.function != nullptr; }
    void Add(void* object, const AudioUnitEvent& event);
    /// False if it was not added.
    bool Remove(void* object, const AudioUnitEvent& event);

    /// The objects that the event was added for.
    std::vector<void*> ObjectsFor(const AudioUnitEvent& event) const;
    /// Calls the function now or later, as the listener was made.
    void Tell(void* object, const Occurrence& occurrence);

    /// No call begins from here on.
    void Dispose();

private:
    struct Interest
    {
        void* object;
        AudioUnitEvent event;
    };

    struct Waiting
    {
        void* object;
        Occurrence occurrence;
    };

    bool IsDisposed() const;
    void Queue(void* object, const Occurrence& occurrence);
    bool Replaces(const Occurrence& newer, const Occurrence& older) const;
    void Schedule(double delay);
    /// Delivers what waits, on the listener's own thread.
    void Run() override;
    bool TakeNext(Waiting& next);

    const Settings m_settings;
    mutable std::mutex m_mutex;
    std::vector<Interest> m_interests;
    std::deque<Waiting> m_waiting;
    bool m_fScheduled = false;
    bool m_fDisposed = false;
    std::chrono::steady_clock::time_point m_lastDelivery;
};
