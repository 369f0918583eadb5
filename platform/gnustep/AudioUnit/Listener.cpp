#include "platform/gnustep/AudioUnit/Listener.h"

#include <algorithm>

namespace
{

bool IsSame(const AudioUnitEvent& a, const AudioUnitEvent& b)
{
    const AudioUnitParameter& left = a.mArgument.mParameter;
    const AudioUnitParameter& right = b.mArgument.mParameter;
    return a.mEventType == b.mEventType && left.mAudioUnit == right.mAudioUnit &&
           left.mParameterID == right.mParameterID && left.mScope == right.mScope &&
           left.mElement == right.mElement;
}

} // namespace

AUListenerBase::AUListenerBase(const Settings& settings) : m_settings(settings)
{
    CFRetain(m_settings.runLoop);
    CFRetain(m_settings.mode);
}

AUListenerBase::~AUListenerBase()
{
    CFRelease(m_settings.mode);
    CFRelease(m_settings.runLoop);
}

void AUListenerBase::Add(void* object, const AudioUnitEvent& event)
{
    const std::vector<void*> objects = ObjectsFor(event);
    if (std::find(objects.begin(), objects.end(), object) != objects.end())
        return;
    std::lock_guard lock(m_mutex);
    m_interests.push_back({object, event});
}

bool AUListenerBase::Remove(void* object, const AudioUnitEvent& event)
{
    std::lock_guard lock(m_mutex);
    std::erase_if(m_waiting, [&](const Waiting& waiting)
                  { return waiting.object == object && IsSame(waiting.occurrence.event, event); });
    return std::erase_if(m_interests, [&](const Interest& interest)
                         { return interest.object == object && IsSame(interest.event, event); }) >
           0;
}

std::vector<void*> AUListenerBase::ObjectsFor(const AudioUnitEvent& event) const
{
    std::lock_guard lock(m_mutex);
    std::vector<void*> objects;
    for (const Interest& interest : m_interests)
    {
        if (IsSame(interest.event, event))
            objects.push_back(interest.object);
    }
    return objects;
}

void AUListenerBase::Tell(void* object, const Occurrence& occurrence)
{
    if (m_settings.interval > 0)
        Queue(object, occurrence);
    else if (!IsDisposed())
        m_settings.function(m_settings.userData, object, &occurrence.event, occurrence.hostTime,
                            occurrence.value);
}

void AUListenerBase::Dispose()
{
    std::lock_guard lock(m_mutex);
    m_fDisposed = true;
    m_waiting.clear();
}

bool AUListenerBase::IsDisposed() const
{
    std::lock_guard lock(m_mutex);
    return m_fDisposed;
}

void AUListenerBase::Queue(void* object, const Occurrence& occurrence)
{
    std::lock_guard lock(m_mutex);
    if (m_fDisposed)
        return;
    if (platform::HasEnded(m_settings.runLoop))
    {
        m_waiting.clear();
        return;
    }
    const auto last =
        std::find_if(m_waiting.rbegin(), m_waiting.rend(),
                     [object](const Waiting& waiting) { return waiting.object == object; });
    if (last != m_waiting.rend() && Replaces(occurrence, last->occurrence))
        last->occurrence = occurrence;
    else
        m_waiting.push_back({object, occurrence});
    if (!m_fScheduled)
        Schedule(0);
}

bool AUListenerBase::Replaces(const Occurrence& newer, const Occurrence& older) const
{
    return newer.event.mEventType == kAudioUnitEvent_ParameterValueChange &&
           IsSame(newer.event, older.event) &&
           double(newer.hostTime - older.hostTime) * 1e-9 < m_settings.granularity;
}

void AUListenerBase::Schedule(double delay)
{
    m_fScheduled = true;
    platform::PerformOnRunLoop(m_settings.runLoop, m_settings.mode, delay, shared_from_this());
}

void AUListenerBase::Run()
{
    size_t count = 0;
    {
        std::lock_guard lock(m_mutex);
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double> passed = now - m_lastDelivery;
        if (passed.count() < m_settings.interval)
        {
            Schedule(m_settings.interval - passed.count());
            return;
        }
        m_fScheduled = false;
        m_lastDelivery = now;
        count = m_waiting.size();
    }

    // One at a time: the function may run the loop, notify or dispose of the listener. What is
    // notified meanwhile waits for the next delivery.
    Waiting next;
    while (count-- > 0 && TakeNext(next))
        m_settings.function(m_settings.userData, next.object, &next.occurrence.event,
                            next.occurrence.hostTime, next.occurrence.value);
}

bool AUListenerBase::TakeNext(Waiting& next)
{
    std::lock_guard lock(m_mutex);
    if (m_waiting.empty())
        return false;
    next = m_waiting.front();
    m_waiting.pop_front();
    return true;
}
