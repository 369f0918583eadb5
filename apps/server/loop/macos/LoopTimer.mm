#include "apps/server/loop/LoopWatch.h"

#include <CoreFoundation/CoreFoundation.h>
#include <utility>

namespace Tarvane::Server
{

// A timer of the run loop goes by the monotonic clock there.
struct CLoopTimer::State
{
    std::function<void()> call;
    CFRunLoopTimerRef timer = nullptr;

    void Cancel()
    {
        if (timer == nullptr)
            return;
        CFRunLoopTimerInvalidate(timer);
        CFRelease(timer);
        timer = nullptr;
    }
};

namespace
{

void Due(CFRunLoopTimerRef, void* pCall) { (*static_cast<std::function<void()>*>(pCall))(); }

} // namespace

CLoopTimer::CLoopTimer(std::function<void()> due)
    : m_pState(std::make_unique<State>(State{std::move(due)}))
{
}

CLoopTimer::~CLoopTimer() { m_pState->Cancel(); }

void CLoopTimer::Set(std::chrono::milliseconds time)
{
    m_pState->Cancel();
    CFRunLoopTimerContext context{0, &m_pState->call, nullptr, nullptr, nullptr};
    m_pState->timer = CFRunLoopTimerCreate(
        kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + static_cast<double>(time.count()) / 1000,
        0, 0, 0, Due, &context);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), m_pState->timer, kCFRunLoopDefaultMode);
}

void CLoopTimer::Cancel() { m_pState->Cancel(); }

} // namespace Tarvane::Server
