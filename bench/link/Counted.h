// Counts what this program allocates and locks, in every library.
#pragma once

#include <cstddef>

namespace Bench
{

struct Counted
{
    std::size_t nAllocations = 0;
    std::size_t nLocks = 0;
};

/// Since the program's start, on any thread.
Counted CountedSoFar();

} // namespace Bench
