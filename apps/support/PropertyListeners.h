// The listeners of a plug-in's properties, as its signal side keeps them.
#pragma once

#include <AudioUnit/AudioUnit.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace Tarvane
{

// All operations: any thread, also from inside a listener. No lock is held while a listener runs,
// so a listener may call the plug-in, and may add and remove listeners, itself included.
//
// What removal guarantees: when Remove returns, no call of the listener is running on another
// thread, and none will begin. To keep that promise Remove waits for calls that are under way, so a
// listener must never wait for a thread that may be removing it. Inside a listener of the same
// plug-in Remove does not wait, since two listeners that remove each other would wait for ever: the
// removed one begins no further call, but one that is under way may still have to return.
class CPropertyListeners
{
public:
    // The same procedure and user data may be added for any number of ids, and more than once for
    // one id: it is then called as often.
    void Add(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc, void* pUserData);

    // Removes every entry of this procedure and user data for the id. False when there was none.
    bool Remove(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc, void* pUserData);
    // The same whatever the user data.
    bool Remove(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc);

    // Calls the id's listeners on this thread, in the order in which they were added. One that is
    // added meanwhile is called too; one that is removed meanwhile is not. Allocates nothing.
    void Notify(AudioUnit pUnit, AudioUnitPropertyID nId, AudioUnitScope nScope,
                AudioUnitElement nElement);

    // How many entries there are, over all ids.
    size_t Count() const;

    // True on a thread that is inside one of these listeners.
    bool IsNotifyingOnThisThread() const;

private:
    struct Listener
    {
        AudioUnitPropertyID nId;
        AudioUnitPropertyListenerProc pProc;
        void* pUserData;
        uint64_t nSerial; // rising; never given twice
    };
    // A call under way. It lives on the stack of the thread that makes it.
    struct Call
    {
        uint64_t nSerial;
        std::thread::id thread;
        Call* pNext;
    };

    template <typename Match> bool RemoveIf(Match match);
    bool NextAfter(uint64_t nSerial, AudioUnitPropertyID nId, Listener& next) const;
    bool IsUnderWay(const std::vector<uint64_t>& serials) const;
    bool IsInsideCall() const;
    void Begin(Call& call);
    void End(Call& call);

    mutable std::mutex m_mutex;
    std::condition_variable m_callEnded;
    std::vector<Listener> m_listeners;
    Call* m_pCalls = nullptr;
    uint64_t m_nLastSerial = 0;
};

} // namespace Tarvane
