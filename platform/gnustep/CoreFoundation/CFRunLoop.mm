#include <CoreFoundation/CFRunLoop.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

const CFRunLoopMode kCFRunLoopDefaultMode = (CFRunLoopMode)NSDefaultRunLoopMode;

CFRunLoopRef CFRunLoopGetCurrent(void)
{
    platform::Pool pool;
    // GNUstep is not safe against a thread that makes its run loop while another one asks for
    // something to be done on it, so the loop is made before anybody else can know of it.
    [NSRunLoop currentRunLoop];
    return (CFRunLoopRef)[NSThread currentThread];
}

CFRunLoopRef CFRunLoopGetMain(void)
{
    platform::Pool pool;
    return (CFRunLoopRef)[NSThread mainThread];
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled)
{
    platform::Pool pool;
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:seconds];
    do
    {
        platform::Pool passPool;
        if (![[NSRunLoop currentRunLoop] runMode:(NSString*)mode beforeDate:end])
            return kCFRunLoopRunFinished;
        if ([end timeIntervalSinceNow] <= 0)
            return kCFRunLoopRunTimedOut;
    } while (!returnAfterSourceHandled);
    return kCFRunLoopRunHandledSource;
}
