#pragma once

#include <sys/types.h>

#define ITIMER_REAL 0
#define ITIMER_VIRTUAL 1
#define ITIMER_PROF 2

struct itimerval
{
    struct timeval it_interval;
    struct timeval it_value;
};

extern "C"
{
    int gettimeofday(struct timeval*, void*);
    int setitimer(int, const struct itimerval*, struct itimerval*);
}
