// Whoever looks on while this process sends events: the text trace, and the observer that a program
// has set.
#pragma once

#include "platform/gnustep/AppleEvents/Storage.h"

#include <TarvanePlatform/EventObserver.h>

#include <cstdint>

namespace AppleEvents
{

/// One event under way, shown as it begins and as it ends to those who looked on when it began.
/// Any thread.
class Observation
{
public:
    /// The event must outlive this object.
    explicit Observation(const EventStorage& event);

    /// What became of the event. The reply is null when there is none.
    void Ended(OSErr status, const EventStorage* reply) const;

    struct Observer
    {
        TarvaneEventObserverProc proc = nullptr;
        void* refcon = nullptr;

        bool operator==(const Observer&) const = default;
    };

private:
    void Show(TarvaneSeenEvent seen, const Parameters& parameters) const;

    const EventStorage& m_event;
    bool m_fTraced;
    Observer m_observer;
    UInt32 m_nEvent = 0;
    std::uint64_t m_nStart = 0; ///< microseconds
};

} // namespace AppleEvents
