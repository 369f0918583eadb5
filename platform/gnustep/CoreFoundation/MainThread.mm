#include "platform/gnustep/CoreFoundation/Pool.h"

// GNUstep takes the thread that uses it first for the main one; a program may start threads
// before it comes to its first object. And -performSelectorOnMainThread:... without waiting,
// sent on the main thread, only goes through the run loop when there is one already.
@interface PlatformMainThread : NSObject
@end

@implementation PlatformMainThread

+ (void)load
{
    platform::Pool pool;
    [NSThread mainThread];
    [NSRunLoop currentRunLoop];
}

@end
