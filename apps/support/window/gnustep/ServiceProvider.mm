#include "apps/support/window/ServiceProvider.h"

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

namespace Tarvane
{

namespace
{

void RegisterNothing(id, SEL) {}

} // namespace

// Every GNUstep application registers a port under its own name for services, which each further
// one of that name calls to see whether it is alive. Such a call can leave the main thread waiting
// in accept() for ever when several programs start at a time, and ours have no services to offer.
void OfferNoServices()
{
    const Method method = class_getInstanceMethod(NSClassFromString(@"GSServicesManager"),
                                                  @selector(registerAsServiceProvider));
    if (method != nullptr)
    {
        // From one function type to another the way is over the plainest one.
        method_setImplementation(method, (IMP)(void (*)()) & RegisterNothing);
    }
}

} // namespace Tarvane
