#include "apps/server/loop/SideProcess.h"

#include "apps/support/process/EndWithParent.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

CSideProcess::CSideProcess(Calls calls) : m_calls(std::move(calls))
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    const pid_t nParent = getpid();
    m_nProcess = fork();
    if (m_nProcess == 0)
    {
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGINT, SIG_DFL);
        EndWithParent(nParent);
        CloseAllBut(ends[1]);
        m_calls.work(ends[1]);
        _exit(0);
    }
    const int nError = errno;
    close(ends[1]);
    m_nPipe = ends[0];
    if (m_nProcess < 0)
    {
        close(m_nPipe);
        throw std::system_error(nError, std::generic_category(), "cannot make a process");
    }
    m_watch.emplace(m_nPipe, [this] { Take(); });
}

CSideProcess::~CSideProcess()
{
    m_watch.reset();
    close(m_nPipe);
    if (m_nProcess > 0)
        kill(m_nProcess, SIGKILL);
    Reap();
}

void CSideProcess::WaitForByte() const
{
    pollfd readable{m_nPipe, POLLIN, 0};
    while (poll(&readable, 1, -1) < 0 && errno == EINTR)
    {
    }
    char cByte = 0;
    [[maybe_unused]] const ssize_t nRead = read(m_nPipe, &cByte, 1);
}

void CSideProcess::Take()
{
    std::array<char, 1024> bytes;
    const ssize_t nRead = read(m_nPipe, bytes.data(), bytes.size());
    if (nRead > 0)
    {
        const auto told = m_calls.told;
        told({bytes.data(), static_cast<std::size_t>(nRead)});
    }
    // The watch comes again.
    if (nRead != 0)
        return;
    Reap();
    m_watch.reset();
    const auto ended = std::exchange(m_calls.ended, nullptr);
    ended();
}

void CSideProcess::Reap()
{
    if (m_nProcess <= 0)
        return;
    while (waitpid(m_nProcess, nullptr, 0) < 0 && errno == EINTR)
    {
    }
    m_nProcess = -1;
}

} // namespace Tarvane::Server
