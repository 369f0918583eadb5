// A process of the server's own that works beside it.
#pragma once

#include "apps/server/loop/LoopWatch.h"

#include <functional>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace Tarvane::Server
{

/// A child, made by fork, that does one thing and ends. It ends with the server, or when its object
/// goes. Main thread, in its run loop.
class CSideProcess
{
public:
    struct Calls
    {
        /// In the child, which has the standard streams and what it may write to, and nothing else
        /// open.
        std::function<void(int nPipe)> work;
        /// In here, of what the child writes, in pieces as they come. May destroy the object.
        std::function<void(std::string_view bytes)> told;
        /// Once, when the child has ended; may destroy the object.
        std::function<void()> ended;
    };

    /// Throws std::system_error when no process can be made.
    explicit CSideProcess(Calls calls);
    ~CSideProcess();
    CSideProcess(const CSideProcess&) = delete;
    CSideProcess& operator=(const CSideProcess&) = delete;

    /// Waits until the child has written a byte, which is not told, or has ended.
    void WaitForByte() const;

private:
    void Take();
    void Reap();

    Calls m_calls;
    pid_t m_nProcess = -1;
    int m_nPipe = -1;
    std::optional<CReadWatch> m_watch;
};

} // namespace Tarvane::Server
