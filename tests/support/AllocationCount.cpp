#include "tests/support/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
std::atomic<size_t> nAllocations{0};
}

size_t TarvaneTests::AllocationCount()
{
    return nAllocations.load();
}

void* operator new(size_t nSize)
{
    ++nAllocations;
    if (void* p = std::malloc(nSize ? nSize : 1))
        return p;
    throw std::bad_alloc();
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, size_t) noexcept
{
    std::free(p);
}
