#pragma once

#include <stddef.h>

typedef struct _malloc_zone_t malloc_zone_t;
typedef struct malloc_statistics_t
{
    unsigned blocks_in_use;
    size_t size_in_use;
    size_t max_size_in_use;
    size_t size_allocated;
} malloc_statistics_t;

extern "C"
{
    malloc_zone_t* malloc_default_zone(void);
    void malloc_zone_statistics(malloc_zone_t*, malloc_statistics_t*);
    size_t malloc_size(const void*);
}
