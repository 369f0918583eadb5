#include "apps/server/ServerLoop.h"

#include "apps/server/EndSignals.h"

#import <Foundation/Foundation.h>

namespace Tarvane::Server
{

CServerLoop::CServerLoop() : m_pPool([[NSAutoreleasePool alloc] init])
{
}

CServerLoop::~CServerLoop()
{
    [static_cast<NSAutoreleasePool*>(m_pPool) drain];
}

void CServerLoop::RunUntilEnd(const CEndSignals& signals)
{
    // Its only purpose is to end a pass of the loop when a signal has come.
    NSFileHandle* handle = [[NSFileHandle alloc] initWithFileDescriptor:signals.Descriptor()
                                                         closeOnDealloc:NO];
    [handle waitForDataInBackgroundAndNotify];
    while (!signals.HasCome())
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate distantFuture]];
        [pool drain];
    }
    [handle release];
}

} // namespace Tarvane::Server
