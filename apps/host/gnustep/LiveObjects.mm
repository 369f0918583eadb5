#include "apps/host/LiveObjects.h"

// The library counts in every build; its header declares so in those with assertions alone.
#undef NDEBUG
#import <Foundation/Foundation.h>
#import <Foundation/NSDebug.h>

namespace Tarvane
{

void CountObjects() { GSDebugAllocationActive(YES); }

long LiveObjects()
{
    long nObjects = 0;
    Class* const classes = GSDebugAllocationClassList();
    for (const Class* pClass = classes; *pClass != Nil; ++pClass)
        nObjects += GSDebugAllocationCount(*pClass);
    NSZoneFree(NSDefaultMallocZone(), classes);
    return nObjects;
}

} // namespace Tarvane
