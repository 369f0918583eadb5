#pragma once

#include <stdint.h>

extern "C" int _NSGetExecutablePath(char*, uint32_t*);
