// The types behind the C and POSIX calls, as macOS has them on its 64-bit processors.
#pragma once

#include <stddef.h>
#include <stdint.h>

typedef unsigned int __uint32_t;
typedef long ssize_t;
typedef long long off_t;
typedef long time_t;
typedef unsigned long clock_t;
typedef unsigned int clockid_t;
typedef int pid_t;
typedef unsigned int uid_t;
typedef unsigned int gid_t;
typedef unsigned int id_t;
typedef int dev_t;
typedef unsigned long long ino_t;
typedef unsigned short mode_t;
typedef unsigned short nlink_t;
typedef long long blkcnt_t;
typedef int blksize_t;
typedef int suseconds_t;
typedef unsigned int useconds_t;
typedef struct _opaque_pthread_t* pthread_t;
typedef unsigned long pthread_key_t;

struct timespec
{
    time_t tv_sec;
    long tv_nsec;
};

struct timeval
{
    time_t tv_sec;
    suseconds_t tv_usec;
};
