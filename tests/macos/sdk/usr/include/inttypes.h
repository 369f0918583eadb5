#pragma once

#include <stdint.h>

#define PRId32 "d"
#define PRIi32 "i"
#define PRIu32 "u"
#define PRIx32 "x"
#define PRIX32 "X"
#define PRId64 "lld"
#define PRIi64 "lli"
#define PRIu64 "llu"
#define PRIx64 "llx"
#define PRIX64 "llX"

typedef struct
{
    intmax_t quot;
    intmax_t rem;
} imaxdiv_t;

extern "C"
{
    intmax_t imaxabs(intmax_t);
    imaxdiv_t imaxdiv(intmax_t, intmax_t);
    intmax_t strtoimax(const char*, char**, int);
    uintmax_t strtoumax(const char*, char**, int);
    intmax_t wcstoimax(const wchar_t*, wchar_t**, int);
    uintmax_t wcstoumax(const wchar_t*, wchar_t**, int);
}
