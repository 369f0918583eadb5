#include "apps/conform/plugin/Listener.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/conform/shared/Rule.h"

#include <deque>

namespace Tarvane::Conform
{
namespace
{

constexpr AudioUnitPropertyID kHeard[] = {TNProperty_Elements, TNProperty_ArmCapture,
                                          TNProperty_CurrentSampleInTimeLine,
                                          kTNProperty_CurrentCaptureLength};

} // namespace

CListener& CListener::Add(AudioUnit pUnit)
{
    static std::deque<CListener>& listeners = *new std::deque<CListener>;
    CListener& listener = listeners.emplace_back(pUnit);
    for (const AudioUnitPropertyID nId : kHeard)
        if (AudioUnitAddPropertyListener(pUnit, nId, &Hear, &listener) != noErr)
            throw CBroken("no listener can be added for " + std::to_string(nId));
    return listener;
}

void CListener::Remove()
{
    for (const AudioUnitPropertyID nId : kHeard)
        if (AudioUnitRemovePropertyListenerWithUserData(m_pUnit, nId, &Hear, this) != noErr)
            throw CBroken("no listener can be removed for " + std::to_string(nId));
}

std::size_t CListener::Count(AudioUnitPropertyID nId) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_counts.find(nId);
    return found == m_counts.end() ? 0 : found->second;
}

std::size_t CListener::Count() const
{
    std::lock_guard lock(m_mutex);
    std::size_t nCount = 0;
    for (const auto& [nId, nTimes] : m_counts)
        nCount += nTimes;
    return nCount;
}

std::size_t CListener::Threads(AudioUnitPropertyID nId) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_threads.find(nId);
    return found == m_threads.end() ? 0 : found->second.size();
}

void CListener::Hear(void* pUserData, AudioUnit, AudioUnitPropertyID nId, AudioUnitScope,
                     AudioUnitElement)
{
    CListener& listener = *static_cast<CListener*>(pUserData);
    std::lock_guard lock(listener.m_mutex);
    ++listener.m_counts[nId];
    listener.m_threads[nId].insert(std::this_thread::get_id());
}

} // namespace Tarvane::Conform
