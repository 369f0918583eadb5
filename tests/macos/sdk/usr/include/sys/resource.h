#pragma once

#include <sys/types.h>

typedef unsigned long long rlim_t;
struct rlimit
{
    rlim_t rlim_cur;
    rlim_t rlim_max;
};
struct rusage
{
    struct timeval ru_utime;
    struct timeval ru_stime;
    long ru_maxrss;
    long ru_opaque[13];
};
#define RLIM_INFINITY ((rlim_t)0x7fffffffffffffff)
#define RLIMIT_CPU 0
#define RLIMIT_FSIZE 1
#define RLIMIT_CORE 4
#define RLIMIT_AS 5
#define RLIMIT_NOFILE 8
#define RUSAGE_SELF 0

extern "C"
{
    int getrlimit(int, struct rlimit*);
    int setrlimit(int, const struct rlimit*);
    int getrusage(int, struct rusage*);
}
