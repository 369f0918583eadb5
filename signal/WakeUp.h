// Wakes a thread that waits; one source file a system.
#pragma once

#include <chrono>
#include <memory>

namespace Tarvane
{

class CWakeUp
{
public:
    CWakeUp();
    ~CWakeUp();
    CWakeUp(const CWakeUp&) = delete;
    CWakeUp& operator=(const CWakeUp&) = delete;

    /// Any thread, real-time safe: at most one bounded system call, and none while an earlier call
    /// has not been heard yet.
    void Wake() noexcept;

    /// One thread. Return when Wake has been called since they returned last; the second at the end
    /// of the time as well, by a clock that nobody sets.
    void Wait() noexcept;
    void WaitFor(std::chrono::milliseconds time) noexcept;

private:
    struct Semaphore;
    std::unique_ptr<Semaphore> m_pSemaphore;
};

} // namespace Tarvane
