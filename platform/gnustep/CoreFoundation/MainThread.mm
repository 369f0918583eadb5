#import <Foundation/Foundation.h>

// GNUstep takes the thread that uses it first for the main one; a program may start threads
// before it comes to its first object. And -performSelectorOnMainThread:... without waiting,
// sent on the main thread, only goes through the run loop when there is one already.
@interface PlatformMainThread : NSObject
@end

@implementation PlatformMainThread

+ (void)load
{
    // Not platform::Pool: unoptimised, its code may be the copy of another library, whose classes
    // the runtime does not know yet.
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [NSThread mainThread];
    [NSRunLoop currentRunLoop];
    [pool drain];
}

@end
