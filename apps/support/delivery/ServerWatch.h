// Hears when a server appears; one source file a system.
#pragma once

#include <functional>
#include <memory>

namespace Tarvane
{

/// Main thread, but for the call.
class CServerWatch
{
public:
    /// Calls, on a thread of its own, each time that a server begins to receive events, and for one
    /// that is there when the watch begins to listen, at first or once a bus that was gone is back:
    /// so none comes up unheard. Waits for no bus. The call must not destroy the watch.
    explicit CServerWatch(std::function<void()> appeared);
    /// Returns when no call is under way.
    ~CServerWatch();
    CServerWatch(const CServerWatch&) = delete;
    CServerWatch& operator=(const CServerWatch&) = delete;

private:
    class CThread;
    std::unique_ptr<CThread> m_pThread;
};

} // namespace Tarvane
