#include "platform/gnustep/CoreFoundation/Pool.h"

// GNUstep takes the thread that uses it first for the main one. Programs that start threads
// before they come to their first object rely on it being the one that started them.
@interface PlatformMainThread : NSObject
@end

@implementation PlatformMainThread

+ (void)load
{
    platform::Pool pool;
    [NSThread mainThread];
}

@end
