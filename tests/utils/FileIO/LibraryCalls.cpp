#include "tests/utils/FileIO/LibraryCalls.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <new>

LibraryCalls gLibraryCalls;

namespace
{

template <typename Function> Function* Next(const char* pszName)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, pszName));
}

// The allocator that the program has without us: a sanitizer's, if it is built with one.
void* MakeArray(std::size_t nSize)
{
    ++gLibraryCalls.nArraysMade;
    gLibraryCalls.nLastArraySize = nSize;
    static auto* const pNext = Next<void*(std::size_t)>("_Znam");
    return gLibraryCalls.fFailArrays ? nullptr : pNext(nSize);
}

} // namespace

void* operator new[](std::size_t nSize)
{
    void* p = MakeArray(nSize);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}

void* operator new[](std::size_t nSize, const std::nothrow_t&) noexcept
{
    return MakeArray(nSize);
}

void operator delete[](void* p) noexcept
{
    if (p != nullptr)
        ++gLibraryCalls.nArraysFreed;
    static auto* const pNext = Next<void(void*)>("_ZdaPv");
    pNext(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    operator delete[](p);
}

extern "C" int remove(const char* pszPath) noexcept
{
    ++gLibraryCalls.nRemoves;
    static auto* const pNext = Next<int(const char*)>("remove");
    return pNext(pszPath);
}

extern "C" char* mkdtemp(char* pszTemplate) noexcept
{
    gLibraryCalls.strTemplate = pszTemplate;
    static auto* const pNext = Next<char*(char*)>("mkdtemp");
    return gLibraryCalls.fFailTemporary ? nullptr : pNext(pszTemplate);
}

extern "C" int mkstemp(char* pszTemplate)
{
    gLibraryCalls.strTemplate = pszTemplate;
    static auto* const pNext = Next<int(char*)>("mkstemp");
    gLibraryCalls.nDescriptor = gLibraryCalls.fFailTemporary ? -1 : pNext(pszTemplate);
    return gLibraryCalls.nDescriptor;
}

// In the place of what the linked sources call; the sanitizers go on with their own.
extern "C"
{
    int __real_strcmp(const char* pszFirst, const char* pszSecond);
    int __wrap_strcmp(const char* pszFirst, const char* pszSecond)
    {
        return gLibraryCalls.nComparison ? *gLibraryCalls.nComparison
                                         : __real_strcmp(pszFirst, pszSecond);
    }

    void* __real_memmove(void* pTarget, const void* pSource, std::size_t nSize);
    void* __wrap_memmove(void* pTarget, const void* pSource, std::size_t nSize)
    {
        ++gLibraryCalls.nMoves;
        return __real_memmove(pTarget, pSource, nSize);
    }
#ifdef __has_feature
#if __has_feature(address_sanitizer)
    // What sources call for it that clang checks.
    void* __wrap___asan_memmove(void* pTarget, const void* pSource, std::size_t nSize)
    {
        return __wrap_memmove(pTarget, pSource, nSize);
    }
#endif
#endif
}
