#include "apps/server/loop/LoopWatch.h"

#include <cerrno>
#include <cstdint>
#include <sys/timerfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

struct CLoopTimer::State
{
    explicit State(std::function<void()> due)
        : nFile(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)), call(std::move(due)),
          watch(nFile, [this] { Due(); })
    {
        if (nFile < 0)
            throw std::system_error(errno, std::generic_category(), "cannot make a timer");
    }
    ~State() { close(nFile); }

    void Set(std::chrono::milliseconds time)
    {
        itimerspec when{};
        when.it_value.tv_sec = time.count() / 1000;
        when.it_value.tv_nsec = time.count() % 1000 * 1'000'000;
        timerfd_settime(nFile, 0, &when, nullptr);
    }

    void Due()
    {
        std::uint64_t nTimes = 0;
        if (read(nFile, &nTimes, sizeof nTimes) > 0)
            call();
    }

    int nFile;
    std::function<void()> call;
    CReadWatch watch;
};

CLoopTimer::CLoopTimer(std::function<void()> due)
    : m_pState(std::make_unique<State>(std::move(due)))
{
}

CLoopTimer::~CLoopTimer() = default;

void CLoopTimer::Set(std::chrono::milliseconds time)
{
    m_pState->Set(time);
}

void CLoopTimer::Cancel()
{
    m_pState->Set(std::chrono::milliseconds(0));
}

} // namespace Tarvane::Server
