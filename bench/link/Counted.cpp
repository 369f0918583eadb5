// Stands before the C library's own functions, for all libraries of the process.
#include "bench/link/Counted.h"

#include <atomic>
#include <dlfcn.h>
#include <pthread.h>

namespace
{
std::atomic<std::size_t> nAllocations{0};
std::atomic<std::size_t> nLocks{0};
} // namespace

extern "C"
{
    void* __libc_malloc(std::size_t);
    void* __libc_calloc(std::size_t, std::size_t);
    void* __libc_realloc(void*, std::size_t);

    void* malloc(std::size_t nSize)
    {
        nAllocations.fetch_add(1, std::memory_order_relaxed);
        return __libc_malloc(nSize);
    }

    void* calloc(std::size_t nCount, std::size_t nSize)
    {
        nAllocations.fetch_add(1, std::memory_order_relaxed);
        return __libc_calloc(nCount, nSize);
    }

    void* realloc(void* p, std::size_t nSize)
    {
        nAllocations.fetch_add(1, std::memory_order_relaxed);
        return __libc_realloc(p, nSize);
    }

    int pthread_mutex_lock(pthread_mutex_t* pMutex) noexcept
    {
        static const auto pLock =
            reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
        nLocks.fetch_add(1, std::memory_order_relaxed);
        return pLock(pMutex);
    }
}

Bench::Counted Bench::CountedSoFar()
{
    return {nAllocations.load(), nLocks.load()};
}
