#include "apps/server/loop/EndSignals.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

// What a signal handler can reach.
volatile std::sig_atomic_t nWriteEnd = -1;

void NoteSignal(int)
{
    const int nError = errno;
    const char cMark = 0;
    [[maybe_unused]] const ssize_t nWritten = write(nWriteEnd, &cMark, 1);
    errno = nError;
}

void SetHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

bool Poll(int nFile, int nMilliseconds)
{
    pollfd wanted{nFile, POLLIN, 0};
    return poll(&wanted, 1, nMilliseconds) > 0;
}

} // namespace

CEndSignals::CEndSignals()
{
    nWriteEnd = m_pipe.WriteEnd();
    SetHandler(NoteSignal);
}

CEndSignals::~CEndSignals()
{
    SetHandler(SIG_DFL);
}

bool CEndSignals::HasCome() const
{
    return Poll(m_pipe.ReadEnd(), 0);
}

void CEndSignals::Wait() const
{
    while (!Poll(m_pipe.ReadEnd(), -1))
    {
    }
}

void CEndSignals::WaitFor(std::chrono::milliseconds time) const
{
    const auto end = std::chrono::steady_clock::now() + time;
    auto left = time;
    // A signal that does not ask for the end may cut a wait short.
    while (left.count() > 0 && !Poll(m_pipe.ReadEnd(), static_cast<int>(left.count())))
        left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
}

} // namespace Tarvane::Server
