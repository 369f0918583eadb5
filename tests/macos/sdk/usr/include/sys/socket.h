#pragma once

#include <sys/types.h>

#define AF_UNIX 1
#define SOCK_STREAM 1

extern "C" int socketpair(int, int, int, int*);
