#pragma once

#include <cstdint>
#include <memory>

namespace AppleEvents
{

/// Whoever is called from the run loop when there may be something to do.
class RunLoopClient
{
public:
    virtual void Wake() = 0;

protected:
    ~RunLoopClient() = default;
};

/// Watches one descriptor and keeps one timer in the main thread's run loop, in its default,
/// modal-panel and event-tracking modes. Main thread.
class RunLoopWatch
{
public:
    explicit RunLoopWatch(RunLoopClient& client);
    ~RunLoopWatch();
    RunLoopWatch(const RunLoopWatch&) = delete;
    RunLoopWatch& operator=(const RunLoopWatch&) = delete;

    /// Replaces what was watched before. A descriptor must be released with Release() before it is
    /// closed: its number may be another file's a moment later.
    void Watch(int descriptor, bool fReading, bool fWriting);
    void Release();

    /// One call of Wake(), at the earliest after so many microseconds of the monotonic clock, in
    /// place of the one asked for before.
    void WakeAfter(std::uint64_t microseconds);
    void CancelWake();

private:
    struct Target;
    std::unique_ptr<Target> m_target;
};

} // namespace AppleEvents
