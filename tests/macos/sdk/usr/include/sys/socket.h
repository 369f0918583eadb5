#pragma once

#include <sys/types.h>

#define AF_UNIX 1
#define SOCK_STREAM 1
#define MSG_PEEK 0x2
#define MSG_DONTWAIT 0x80
#define SHUT_RDWR 2

extern "C"
{
    int socketpair(int, int, int, int*);
    ssize_t recv(int, void*, size_t, int);
    int shutdown(int, int);
}
