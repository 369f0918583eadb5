// GNUstep always counts, but declares how only when assertions are on.
#undef NDEBUG
#import <Foundation/Foundation.h>

#include "tests/support/LiveObjects.h"

long LiveObjects()
{
    GSDebugAllocationActive(YES);
    long count = 0;
    Class* classes = GSDebugAllocationClassList();
    for (Class* each = classes; each != nullptr && *each != Nil; ++each)
        count += GSDebugAllocationCount(*each);
    NSZoneFree(NSDefaultMallocZone(), classes);
    return count;
}
