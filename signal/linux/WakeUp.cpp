#include "signal/WakeUp.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <semaphore.h>

namespace Tarvane
{

struct CWakeUp::Semaphore
{
    sem_t semaphore;
    std::atomic<bool> fPending = false;
};

CWakeUp::CWakeUp() : m_pSemaphore(std::make_unique<Semaphore>())
{
    ::sem_init(&m_pSemaphore->semaphore, 0, 0);
}

CWakeUp::~CWakeUp()
{
    ::sem_destroy(&m_pSemaphore->semaphore);
}

void CWakeUp::Wake() noexcept
{
    if (!m_pSemaphore->fPending.exchange(true))
    {
        ::sem_post(&m_pSemaphore->semaphore);
    }
}

void CWakeUp::Wait() noexcept
{
    while (::sem_wait(&m_pSemaphore->semaphore) != 0 && errno == EINTR)
    {
    }
    m_pSemaphore->fPending = false;
}

void CWakeUp::WaitFor(std::chrono::milliseconds time) noexcept
{
    constexpr long kNanosecondsAMillisecond = 1'000'000;
    constexpr long kNanosecondsASecond = 1'000'000'000;
    timespec until{};
    ::clock_gettime(CLOCK_MONOTONIC, &until);
    const long nNanoseconds =
        until.tv_nsec + static_cast<long>(time.count() % 1000) * kNanosecondsAMillisecond;
    until.tv_sec += static_cast<time_t>(time.count() / 1000) + nNanoseconds / kNanosecondsASecond;
    until.tv_nsec = nNanoseconds % kNanosecondsASecond;
    while (::sem_clockwait(&m_pSemaphore->semaphore, CLOCK_MONOTONIC, &until) != 0)
    {
        if (errno != EINTR)
        {
            return;
        }
    }
    m_pSemaphore->fPending = false;
}

} // namespace Tarvane
