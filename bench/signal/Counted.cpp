#include "bench/signal/Counted.h"

#include <cstdlib>
#include <new>
#include <pthread.h>

namespace BenchSignal
{

Forbidden& OfThisThread()
{
    static thread_local Forbidden forbidden;
    return forbidden;
}

} // namespace BenchSignal

extern "C"
{
    int __real_pthread_mutex_lock(pthread_mutex_t* pMutex);
    void* __real_malloc(size_t nBytes);
    void* __real_calloc(size_t nCount, size_t nBytes);
    void* __real_realloc(void* pMemory, size_t nBytes);

    int __wrap_pthread_mutex_lock(pthread_mutex_t* pMutex)
    {
        ++BenchSignal::OfThisThread().nLocks;
        return __real_pthread_mutex_lock(pMutex);
    }
    void* __wrap_malloc(size_t nBytes)
    {
        ++BenchSignal::OfThisThread().nAllocations;
        return __real_malloc(nBytes);
    }
    void* __wrap_calloc(size_t nCount, size_t nBytes)
    {
        ++BenchSignal::OfThisThread().nAllocations;
        return __real_calloc(nCount, nBytes);
    }
    void* __wrap_realloc(void* pMemory, size_t nBytes)
    {
        ++BenchSignal::OfThisThread().nAllocations;
        return __real_realloc(pMemory, nBytes);
    }
}

// The standard library's own calls of malloc are in another library and pass the linker by.
void* operator new(std::size_t nBytes)
{
    if (void* pMemory = malloc(nBytes))
    {
        return pMemory;
    }
    throw std::bad_alloc();
}
void operator delete(void* pMemory) noexcept
{
    std::free(pMemory);
}
void operator delete(void* pMemory, std::size_t) noexcept
{
    std::free(pMemory);
}
