// The listeners of a plug-in's properties, as its signal side keeps them.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace Tarvane
{

/// Unit is what a listener is told to be the plug-in: the handle of an audio unit, for one. It is
/// only passed on.
///
/// All operations: any thread, also from inside a listener. No lock is held while a listener runs,
/// so a listener may call the plug-in, and may add and remove listeners, itself included.
///
/// What removal guarantees: when Remove returns, no call of the listener is running on another
/// thread, and none will begin. To keep that promise Remove waits for calls that are under way, so
/// a listener must never wait for a thread that may be removing it. Inside a listener of the same
/// plug-in Remove does not wait, since two listeners that remove each other would wait for ever:
/// the removed one begins no further call, but one that is under way may still have to return.
template <typename Unit> class CPropertyListenersOf
{
public:
    using Proc = void (*)(void* pUserData, Unit unit, std::uint32_t nId, std::uint32_t nScope,
                          std::uint32_t nElement);

    /// The same procedure and user data may be added for any number of ids, and more than once for
    /// one id: it is then called as often.
    void Add(std::uint32_t nId, Proc pProc, void* pUserData)
    {
        std::lock_guard lock(m_mutex);
        m_listeners.push_back({nId, pProc, pUserData, ++m_nLastSerial});
    }

    /// Removes every entry of this procedure and user data for the id. False when there was none.
    bool Remove(std::uint32_t nId, Proc pProc, void* pUserData)
    {
        return RemoveIf(
            [=](const Listener& listener) {
                return listener.nId == nId && listener.pProc == pProc &&
                       listener.pUserData == pUserData;
            });
    }
    /// The same whatever the user data.
    bool Remove(std::uint32_t nId, Proc pProc)
    {
        return RemoveIf([=](const Listener& listener)
                        { return listener.nId == nId && listener.pProc == pProc; });
    }

    /// Calls the id's listeners on this thread, in the order in which they were added. One that is
    /// added meanwhile is called too; one that is removed meanwhile is not. Allocates nothing.
    void Notify(Unit unit, std::uint32_t nId, std::uint32_t nScope, std::uint32_t nElement)
    {
        std::unique_lock lock(m_mutex);
        Listener listener{};
        while (NextAfter(listener.nSerial, nId, listener))
        {
            Call call{listener.nSerial, std::this_thread::get_id(), nullptr};
            Begin(call);
            lock.unlock();
            listener.pProc(listener.pUserData, unit, nId, nScope, nElement);
            lock.lock();
            End(call);
        }
    }

    /// How many entries there are, over all ids.
    std::size_t Count() const
    {
        std::lock_guard lock(m_mutex);
        return m_listeners.size();
    }

    /// True on a thread that is inside one of these listeners.
    bool IsNotifyingOnThisThread() const
    {
        std::lock_guard lock(m_mutex);
        return IsInsideCall();
    }

private:
    struct Listener
    {
        std::uint32_t nId;
        Proc pProc;
        void* pUserData;
        std::uint64_t nSerial; ///< rising; never given twice
    };
    /// A call under way. It lives on the stack of the thread that makes it.
    struct Call
    {
        std::uint64_t nSerial;
        std::thread::id thread;
        Call* pNext;
    };

    template <typename Match> bool RemoveIf(Match match)
    {
        std::unique_lock lock(m_mutex);
        std::vector<std::uint64_t> removed;
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

    bool NextAfter(std::uint64_t nSerial, std::uint32_t nId, Listener& next) const
    {
        const auto found =
            std::find_if(m_listeners.begin(), m_listeners.end(),
                         [=](const Listener& listener)
                         { return listener.nSerial > nSerial && listener.nId == nId; });
        if (found == m_listeners.end())
        {
            return false;
        }
        next = *found;
        return true;
    }

    bool IsUnderWay(const std::vector<std::uint64_t>& serials) const
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

    bool IsInsideCall() const
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

    void Begin(Call& call)
    {
        call.pNext = m_pCalls;
        m_pCalls = &call;
    }

    void End(Call& call)
    {
        Call** ppCall = &m_pCalls;
        while (*ppCall != &call)
        {
            ppCall = &(*ppCall)->pNext;
        }
        *ppCall = call.pNext;
        m_callEnded.notify_all();
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_callEnded;
    std::vector<Listener> m_listeners;
    Call* m_pCalls = nullptr;
    std::uint64_t m_nLastSerial = 0;
};

} // namespace Tarvane
