#pragma once

#include <CoreFoundation/CFBase.h>

/// Stands for the NSRunLoop of one thread, by that thread (an NSThread).
using CFRunLoopRef = struct __CFRunLoop*;
using CFRunLoopMode = CFStringRef;

enum CFRunLoopRunResult : SInt32
{
    kCFRunLoopRunFinished = 1,      ///< there is nothing to wait for
    kCFRunLoopRunStopped = 2,       ///< never answered here
    kCFRunLoopRunTimedOut = 3,      ///< the time is over
    kCFRunLoopRunHandledSource = 4, ///< something was handled, and that was asked for
};

extern "C"
{
    /// Equal to NSDefaultRunLoopMode.
    extern const CFRunLoopMode kCFRunLoopDefaultMode;

    /// Of the calling thread and of the main thread. Lives as long as its thread; retain it to
    /// keep it longer.
    CFRunLoopRef CFRunLoopGetCurrent(void);
    CFRunLoopRef CFRunLoopGetMain(void);

    /// Runs the calling thread's loop for so many seconds; with returnAfterSourceHandled until the
    /// first source has been handled, if that is earlier. Returns at once when the mode has neither
    /// sources nor timers.
    CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                          Boolean returnAfterSourceHandled);
}
