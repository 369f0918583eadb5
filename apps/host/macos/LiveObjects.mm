#include "apps/host/LiveObjects.h"

#include <malloc/malloc.h>

namespace Tarvane
{

void CountObjects()
{
    // The blocks of memory, of which each object is one, are always counted.
}

long LiveObjects()
{
    malloc_statistics_t statistics{};
    malloc_zone_statistics(malloc_default_zone(), &statistics);
    return static_cast<long>(statistics.blocks_in_use);
}

} // namespace Tarvane
