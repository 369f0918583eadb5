#include "tests/TarvaneLinkAU/FailingNew.h"

#include <cstdlib>
#include <new>
#include <utility>

thread_local bool TarvaneTests::g_fNextNewFails = false;

void* operator new(std::size_t nSize)
{
    const bool fFails = std::exchange(TarvaneTests::g_fNextNewFails, false);
    void* p = fFails ? nullptr : std::malloc(nSize != 0 ? nSize : 1);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
