#include "tests/support/ChildProcess.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace TarvaneTests
{
namespace
{

[[noreturn]] void BecomeProgram(const std::vector<std::string>& arguments,
                                const std::vector<std::string>& settings, int nOutput, int nReport)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(nOutput, STDOUT_FILENO);
    for (const std::string& setting : settings)
        putenv(const_cast<char*>(setting.c_str()));
    std::vector<char*> words;
    for (const std::string& word : arguments)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    execvp(words[0], words.data());
    const int nReason = errno;
    [[maybe_unused]] const ssize_t nWritten = write(nReport, &nReason, sizeof nReason);
    _exit(127);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& settings)
{
    int output[2], report[2];
    if (pipe2(output, O_CLOEXEC) != 0 || pipe2(report, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for a child process");
    m_nPid = fork();
    if (m_nPid == 0)
        BecomeProgram(arguments, settings, output[1], report[1]);
    close(output[1]);
    close(report[1]);
    m_nOutput = output[0];
    int nReason = 0;
    const bool fFailed = read(report[0], &nReason, sizeof nReason) > 0;
    close(report[0]);
    if (fFailed || m_nPid < 0)
    {
        Kill();
        close(m_nOutput);
        throw std::runtime_error("cannot start " + arguments[0] + ": " + std::strerror(nReason));
    }
}

ChildProcess::~ChildProcess()
{
    Kill();
    if (m_nOutput >= 0)
        close(m_nOutput);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_nPid(std::exchange(other.m_nPid, 0)), m_nOutput(std::exchange(other.m_nOutput, -1))
{
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept
{
    std::swap(m_nPid, other.m_nPid);
    std::swap(m_nOutput, other.m_nOutput);
    return *this;
}

void ChildProcess::Signal(int nSignal) const
{
    if (m_nPid > 0)
        kill(m_nPid, nSignal);
}

void ChildProcess::Kill()
{
    Signal(SIGKILL);
    Wait();
}

int ChildProcess::Wait()
{
    if (m_nPid <= 0)
        return -1;
    int nStatus = 0;
    while (waitpid(m_nPid, &nStatus, 0) < 0 && errno == EINTR)
    {
    }
    m_nPid = 0;
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : 128 + WTERMSIG(nStatus);
}

std::string ChildProcess::ReadLine()
{
    std::string line;
    char next = 0;
    for (;;)
    {
        const ssize_t nRead = read(m_nOutput, &next, 1);
        if (nRead < 0 && errno == EINTR)
            continue;
        if (nRead <= 0 || next == '\n')
            return line;
        line += next;
    }
}

} // namespace TarvaneTests
