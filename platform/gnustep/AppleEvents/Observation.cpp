#include "platform/gnustep/AppleEvents/Observation.h"

#include "platform/gnustep/AppleEvents/Deadline.h"
#include "platform/gnustep/AppleEvents/Trace.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <shared_mutex>
#include <vector>

using namespace AppleEvents;

namespace
{

// Held while an observer looks, so that one that is taken away is no longer in use.
std::shared_mutex& ObserverMutex()
{
    static std::shared_mutex mutex;
    return mutex;
}

Observation::Observer& SetObserver()
{
    static Observation::Observer observer;
    return observer;
}

Observation::Observer CurrentObserver()
{
    const std::shared_lock lock(ObserverMutex());
    return SetObserver();
}

OSType SignatureOf(const Parameter& target)
{
    OSType signature = 0;
    if (target.type == typeApplSignature && target.bytes.size() == sizeof signature)
        std::memcpy(&signature, target.bytes.data(), sizeof signature);
    return signature;
}

std::vector<TarvaneSeenParameter> Seen(const Parameters& parameters)
{
    std::vector<TarvaneSeenParameter> seen;
    for (const auto& [keyword, parameter] : parameters)
        seen.push_back(
            {keyword, parameter.type, parameter.bytes.data(), Size(parameter.bytes.size())});
    return seen;
}

} // namespace

namespace AppleEvents
{

Observation::Observation(const EventStorage& event)
    : m_event(event), m_fTraced(IsTraceOn()), m_observer(CurrentObserver())
{
    static std::atomic<UInt32> nEvents{0};
    if (!m_fTraced && !m_observer.proc)
        return;
    m_nEvent = ++nEvents;
    Show({}, event.parameters);
    m_nStart = MonotonicMicroseconds();
}

void Observation::Ended(OSErr status, const EventStorage* reply) const
{
    if (m_nEvent == 0)
        return;
    TarvaneSeenEvent seen{};
    seen.ended = true;
    seen.status = status;
    seen.microseconds = MonotonicMicroseconds() - m_nStart;
    Show(seen, reply ? reply->parameters : Parameters());
}

void Observation::Show(TarvaneSeenEvent seen, const Parameters& parameters) const
{
    const std::vector<TarvaneSeenParameter> shown = Seen(parameters);
    seen.number = m_nEvent;
    seen.target = SignatureOf(m_event.target);
    seen.eventClass = m_event.eventClass;
    seen.eventID = m_event.eventID;
    seen.parameters = shown.data();
    seen.parameterCount = UInt32(shown.size());
    if (m_fTraced)
        TraceEvent(&seen, nullptr);
    const std::shared_lock lock(ObserverMutex());
    if (m_observer.proc && m_observer == SetObserver())
        m_observer.proc(&seen, m_observer.refcon);
}

} // namespace AppleEvents

void TarvaneSetEventObserver(TarvaneEventObserverProc observer, void* refcon)
{
    const std::unique_lock lock(ObserverMutex());
    SetObserver() = {observer, refcon};
}
