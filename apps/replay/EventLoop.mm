#include "apps/replay/EventLoop.h"

#import <Foundation/Foundation.h>

namespace Tarvane::Replay
{

void LetEventsIn(const std::function<double()>& fnSecondsLeft)
{
    for (double dLeft = fnSecondsLeft(); dLeft > 0; dLeft = fnSecondsLeft())
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:dLeft]];
        [pool drain];
    }
}

} // namespace Tarvane::Replay
