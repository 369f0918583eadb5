#include <CoreFoundation/CFRunLoop.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

const CFRunLoopMode kCFRunLoopDefaultMode = (CFRunLoopMode)NSDefaultRunLoopMode;

CFRunLoopRef CFRunLoopGetCurrent(void)
{
    platform::Pool pool;
    return (CFRunLoopRef)[NSThread currentThread];
}

CFRunLoopRef CFRunLoopGetMain(void)
{
    platform::Pool pool;
    return (CFRunLoopRef)[NSThread mainThread];
}
