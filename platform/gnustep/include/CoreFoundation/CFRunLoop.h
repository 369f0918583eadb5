#pragma once

#include <CoreFoundation/CFBase.h>

// Stands for the NSRunLoop of one thread, by that thread (an NSThread).
using CFRunLoopRef = struct __CFRunLoop*;
using CFRunLoopMode = CFStringRef;

extern "C"
{
    // Equal to NSDefaultRunLoopMode.
    extern const CFRunLoopMode kCFRunLoopDefaultMode;

    // Of the calling thread and of the main thread. Lives as long as its thread; retain it to
    // keep it longer.
    CFRunLoopRef CFRunLoopGetCurrent(void);
    CFRunLoopRef CFRunLoopGetMain(void);
}
