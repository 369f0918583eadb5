#pragma once

#include <sys/types.h>

#define CLOCKS_PER_SEC ((clock_t)1000000)
#define CLOCK_REALTIME ((clockid_t)0)
#define CLOCK_MONOTONIC ((clockid_t)6)
#define CLOCK_PROCESS_CPUTIME_ID ((clockid_t)12)
#define CLOCK_THREAD_CPUTIME_ID ((clockid_t)16)
#define TIME_UTC 1

struct tm
{
    int tm_sec;
    int tm_min;
    int tm_hour;
    int tm_mday;
    int tm_mon;
    int tm_year;
    int tm_wday;
    int tm_yday;
    int tm_isdst;
    long tm_gmtoff;
    char* tm_zone;
};

extern "C"
{
    clock_t clock(void);
    double difftime(time_t, time_t);
    time_t mktime(struct tm*);
    time_t time(time_t*);
    char* asctime(const struct tm*);
    char* ctime(const time_t*);
    struct tm* gmtime(const time_t*);
    struct tm* localtime(const time_t*);
    struct tm* gmtime_r(const time_t*, struct tm*);
    struct tm* localtime_r(const time_t*, struct tm*);
    time_t timegm(struct tm*);
    size_t strftime(char*, size_t, const char*, const struct tm*);
    int clock_gettime(clockid_t, struct timespec*);
    int nanosleep(const struct timespec*, struct timespec*);
    int timespec_get(struct timespec*, int);
}
