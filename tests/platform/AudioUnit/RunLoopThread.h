#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <thread>

/// A thread that runs its run loop, in the default mode or another, until the object
/// goes. The mode must live as long.
class RunLoopThread
{
public:
    explicit RunLoopThread(CFStringRef mode = kCFRunLoopDefaultMode);
    ~RunLoopThread();

    CFRunLoopRef RunLoop() const { return m_runLoop; }
    std::thread::id Id() const { return m_thread.get_id(); }

private:
    struct Control;

    CFStringRef m_mode;
    CFRunLoopRef m_runLoop = nullptr;
    Control* m_control;
    std::thread m_thread;
};

/// Runs the calling thread's run loop in `mode` until `done` or ten seconds have passed; says
/// which.
bool RunUntil(const std::function<bool()>& done, CFStringRef mode = kCFRunLoopDefaultMode);
