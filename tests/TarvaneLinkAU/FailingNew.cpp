#include "tests/TarvaneLinkAU/FailingNew.h"

#include <cstdlib>
#include <new>

thread_local bool TarvaneTests::g_fNewFails = false;

void* operator new(std::size_t nSize)
{
    void* p = TarvaneTests::g_fNewFails ? nullptr : std::malloc(nSize != 0 ? nSize : 1);
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
