// What the calling thread does that an audio thread must not.
#pragma once

#include <cstdint>

namespace BenchSignal
{

struct Forbidden
{
    std::uint64_t nLocks = 0;
    std::uint64_t nAllocations = 0;
};

/// Of this thread, since its start.
Forbidden& OfThisThread();

} // namespace BenchSignal
