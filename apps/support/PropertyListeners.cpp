#include "apps/support/PropertyListeners.h"

#include <algorithm>

namespace Tarvane
{

void CPropertyListeners::Add(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc,
                             void* pUserData)
{
    std::lock_guard lock(m_mutex);
    m_listeners.push_back({nId, pProc, pUserData, ++m_nLastSerial});
}

template <typename Match> bool CPropertyListeners::RemoveIf(Match match)
{
    std::unique_lock lock(m_mutex);
    std::vector<uint64_t> removed;
    std::erase_if(m_listeners,
                  [&](const Listener& listener)
                  {
                      if (!match(listener))
                      {
                          return false;
                      }
                      removed.push_back(listener.nSerial);
                      return true;
                  });
    if (!IsInsideCall())
    {
        m_callEnded.wait(lock, [&] { return !IsUnderWay(removed); });
    }
    return !removed.empty();
}

bool CPropertyListeners::Remove(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc,
                                void* pUserData)
{
    return RemoveIf(
        [=](const Listener& listener) {
            return listener.nId == nId && listener.pProc == pProc &&
                   listener.pUserData == pUserData;
        });
}

bool CPropertyListeners::Remove(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc)
{
    return RemoveIf([=](const Listener& listener)
                    { return listener.nId == nId && listener.pProc == pProc; });
}

void CPropertyListeners::Notify(AudioUnit pUnit, AudioUnitPropertyID nId, AudioUnitScope nScope,
                                AudioUnitElement nElement)
{
    std::unique_lock lock(m_mutex);
    Listener listener{};
    while (NextAfter(listener.nSerial, nId, listener))
    {
        Call call{listener.nSerial, std::this_thread::get_id(), nullptr};
        Begin(call);
        lock.unlock();
        listener.pProc(listener.pUserData, pUnit, nId, nScope, nElement);
        lock.lock();
        End(call);
    }
}

size_t CPropertyListeners::Count() const
{
    std::lock_guard lock(m_mutex);
    return m_listeners.size();
}

bool CPropertyListeners::IsNotifyingOnThisThread() const
{
    std::lock_guard lock(m_mutex);
    return IsInsideCall();
}

bool CPropertyListeners::NextAfter(uint64_t nSerial, AudioUnitPropertyID nId, Listener& next) const
{
    const auto found = std::find_if(m_listeners.begin(), m_listeners.end(),
                                    [=](const Listener& listener)
                                    { return listener.nSerial > nSerial && listener.nId == nId; });
    if (found == m_listeners.end())
    {
        return false;
    }
    next = *found;
    return true;
}

bool CPropertyListeners::IsUnderWay(const std::vector<uint64_t>& serials) const
{
    for (const Call* pCall = m_pCalls; pCall != nullptr; pCall = pCall->pNext)
    {
        if (std::find(serials.begin(), serials.end(), pCall->nSerial) != serials.end())
        {
            return true;
        }
    }
    return false;
}

bool CPropertyListeners::IsInsideCall() const
{
    for (const Call* pCall = m_pCalls; pCall != nullptr; pCall = pCall->pNext)
    {
        if (pCall->thread == std::this_thread::get_id())
        {
            return true;
        }
    }
    return false;
}

void CPropertyListeners::Begin(Call& call)
{
    call.pNext = m_pCalls;
    m_pCalls = &call;
}

void CPropertyListeners::End(Call& call)
{
    Call** ppCall = &m_pCalls;
    while (*ppCall != &call)
    {
        ppCall = &(*ppCall)->pNext;
    }
    *ppCall = call.pNext;
    m_callEnded.notify_all();
}

} // namespace Tarvane
