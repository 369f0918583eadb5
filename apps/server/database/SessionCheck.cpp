#include "apps/server/database/SessionCheck.h"

#include "apps/server/database/SessionDatabase.h"
#include "apps/support/process/EndWithParent.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

// Through the pipe: a point when nobody else can change the session, then the flaw, if there is
// one.
void Write(int nPipe, const std::string& strText)
{
    [[maybe_unused]] const ssize_t nWritten = write(nPipe, strText.data(), strText.size());
}

void Check(const std::filesystem::path& file, int nPipe)
try
{
    CSessionDatabase database(file);
    Write(nPipe, database.Flaw([nPipe] { Write(nPipe, "."); }).value_or(""));
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "tarvane-server: the session %s could not be checked: %s\n", file.c_str(),
                 error.what());
}

} // namespace

CSessionCheck::CSessionCheck(const std::filesystem::path& file,
                             std::function<void(const std::optional<std::string>&)> done)
    : m_done(std::move(done))
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
        Check(file, ends[1]);
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
    char cLocked = 0;
    while (read(m_nPipe, &cLocked, 1) < 0 && errno == EINTR)
    {
    }
    m_watch.emplace(m_nPipe, [this] { Take(); });
}

CSessionCheck::~CSessionCheck()
{
    m_watch.reset();
    close(m_nPipe);
    if (m_nProcess <= 0)
        return;
    kill(m_nProcess, SIGKILL);
    while (waitpid(m_nProcess, nullptr, 0) < 0 && errno == EINTR)
    {
    }
}

void CSessionCheck::Take()
{
    std::array<char, 1024> bytes;
    const ssize_t nRead = read(m_nPipe, bytes.data(), bytes.size());
    if (nRead > 0)
        m_strFlaw.append(bytes.data(), static_cast<std::size_t>(nRead));
    // The watch comes again.
    if (nRead != 0)
        return;
    while (waitpid(m_nProcess, nullptr, 0) < 0 && errno == EINTR)
    {
    }
    m_nProcess = -1;
    m_watch.reset();
    const auto done = std::exchange(m_done, nullptr);
    done(m_strFlaw.empty() ? std::nullopt : std::optional(m_strFlaw));
}

} // namespace Tarvane::Server
