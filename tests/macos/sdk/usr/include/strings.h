#pragma once

#include <stddef.h>

extern "C"
{
    int strcasecmp(const char*, const char*);
    int strncasecmp(const char*, const char*, size_t);
}
