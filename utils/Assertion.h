#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process with the report that the platform's own assertion prints, on the standard
/// error stream:
///
///     Assertion failed: (<condition>), function <function>, file <source>, line <line>.
///
/// Called where function, source and line are fixed texts that crash reports are matched by; where
/// they are not, use TARVANE_ASSERT. Any thread. No build option removes it.
[[noreturn]] inline void AssertionFailed(const char* szFunction, const char* szSource, int nLine,
                                         const char* szCondition)
{
    std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n", szCondition,
                 szFunction, szSource, nLine);
    std::fflush(stderr);
    std::abort();
}

/// Active in every build, unlike assert(). The condition is evaluated exactly once and reported as
/// it is written here, before the macros in it are expanded.
#define TARVANE_ASSERT(...)                                                                        \
    (static_cast<bool>(__VA_ARGS__)                                                                \
         ? static_cast<void>(0)                                                                    \
         : AssertionFailed(static_cast<const char*>(__func__), __FILE__, __LINE__, #__VA_ARGS__))
