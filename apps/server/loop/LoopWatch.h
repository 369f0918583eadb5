// What the run loop of the main thread wakes: a file that has something to read, and a time that
// has come.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace Tarvane::Server
{

/// While an object lives, the function is called from the run loop whenever the file is readable or
/// at its end. The file stays the caller's, and becomes one that does not block. The function may
/// destroy the object.
class CReadWatch
{
public:
    CReadWatch(int nFile, std::function<void()> readable);
    ~CReadWatch();
    CReadWatch(const CReadWatch&) = delete;
    CReadWatch& operator=(const CReadWatch&) = delete;

private:
    void* m_pTarget;
};

/// Calls the function once, after the time, in place of what it was set to before; setting the time
/// of day changes nothing. One source file a system.
class CLoopTimer
{
public:
    explicit CLoopTimer(std::function<void()> due);
    ~CLoopTimer();
    CLoopTimer(const CLoopTimer&) = delete;
    CLoopTimer& operator=(const CLoopTimer&) = delete;

    void Set(std::chrono::milliseconds time);
    void Cancel();

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Tarvane::Server
