#pragma once

#include <CoreFoundation/CFRunLoop.h>

#include <memory>

namespace platform
{

struct RunLoopErrand
{
    virtual ~RunLoopErrand() = default;
    virtual void Run() = 0;
};

/// Has the errand run on the thread of `runLoop`, when that loop next runs in `mode`, and not
/// before `delay` seconds have passed. Any thread. It is dropped when the thread ends before.
void PerformOnRunLoop(CFRunLoopRef runLoop, CFStringRef mode, double delay,
                      const std::shared_ptr<RunLoopErrand>& errand);

/// Whether the thread has ended, so that nothing will be done on it any more.
bool HasEnded(CFRunLoopRef runLoop);

} // namespace platform
