#pragma once

#include <sys/types.h>

extern "C" int gettimeofday(struct timeval*, void*);
