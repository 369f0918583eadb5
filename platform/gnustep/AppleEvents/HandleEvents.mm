#include <TarvanePlatform/Application.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

#import <Foundation/Foundation.h>

void TarvaneHandleEvents(double seconds)
{
    platform::Pool pool;
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:seconds]];
}
