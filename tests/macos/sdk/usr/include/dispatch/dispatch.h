#pragma once

#include <stdint.h>

typedef struct dispatch_semaphore_s* dispatch_semaphore_t;
typedef uint64_t dispatch_time_t;

#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)
#define NSEC_PER_SEC 1000000000ull
#define NSEC_PER_MSEC 1000000ull

extern "C"
{
    dispatch_semaphore_t dispatch_semaphore_create(intptr_t value);
    intptr_t dispatch_semaphore_signal(dispatch_semaphore_t);
    intptr_t dispatch_semaphore_wait(dispatch_semaphore_t, dispatch_time_t);
    dispatch_time_t dispatch_time(dispatch_time_t when, int64_t nanoseconds);
    /// Takes any of dispatch's objects.
    void dispatch_release(dispatch_semaphore_t);
}
