#include "signal/WakeUp.h"

#include <atomic>
#include <dispatch/dispatch.h>

namespace Tarvane
{

struct CWakeUp::Semaphore
{
    dispatch_semaphore_t semaphore = dispatch_semaphore_create(0);
    std::atomic<bool> fPending = false;
};

CWakeUp::CWakeUp() : m_pSemaphore(std::make_unique<Semaphore>()) {}

CWakeUp::~CWakeUp()
{
    dispatch_release(m_pSemaphore->semaphore);
}

void CWakeUp::Wake() noexcept
{
    if (!m_pSemaphore->fPending.exchange(true))
    {
        dispatch_semaphore_signal(m_pSemaphore->semaphore);
    }
}

void CWakeUp::Wait() noexcept
{
    dispatch_semaphore_wait(m_pSemaphore->semaphore, DISPATCH_TIME_FOREVER);
    m_pSemaphore->fPending = false;
}

void CWakeUp::WaitFor(std::chrono::milliseconds time) noexcept
{
    const auto nNanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
    if (dispatch_semaphore_wait(m_pSemaphore->semaphore,
                                dispatch_time(DISPATCH_TIME_NOW, nNanoseconds)) == 0)
    {
        m_pSemaphore->fPending = false;
    }
}

} // namespace Tarvane
