#include "apps/server/ServerLoop.h"

#include "apps/server/EndSignals.h"

#import <Foundation/Foundation.h>

namespace Tarvane::Server
{

void RunUntilEnd(const CEndSignals& signals)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    // Its only purpose is to end a pass of the loop when a signal has come.
    NSFileHandle* handle = [[NSFileHandle alloc] initWithFileDescriptor:signals.Descriptor()
                                                         closeOnDealloc:NO];
    [handle waitForDataInBackgroundAndNotify];
    while (!signals.HasCome())
    {
        NSAutoreleasePool* passPool = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantFuture]];
        [passPool drain];
    }
    [handle release];
    [pool drain];
}

} // namespace Tarvane::Server
