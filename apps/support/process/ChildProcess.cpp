#include "apps/support/process/ChildProcess.h"

#include "apps/support/process/EndWithParent.h"
#include "apps/support/process/Pipe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace Tarvane
{
namespace
{

constexpr std::chrono::milliseconds kPatience{2000};
// After its end, how long a child's streams may stay open in other hands before we stop listening.
constexpr std::chrono::milliseconds kDrain{500};
constexpr std::chrono::milliseconds kReapInterval{5};

using Clock = std::chrono::steady_clock;

// Between fork and exec only what is safe in a signal handler: the parent may have threads.
[[noreturn]] void BecomeProgram(char* const* ppArguments, CPipe& input, CPipe& output, CPipe& error,
                                CPipe& failure, pid_t nParent)
{
    EndWithParent(nParent);
    ::dup2(input.ReadEnd(), STDIN_FILENO);
    ::dup2(output.WriteEnd(), STDOUT_FILENO);
    ::dup2(error.WriteEnd(), STDERR_FILENO);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::signal(SIGPIPE, SIG_DFL);
    ::execvp(ppArguments[0], ppArguments);
    const int nError = errno;
    (void)!::write(failure.WriteEnd(), &nError, sizeof nError);
    ::_exit(127);
}

} // namespace

struct CChildProcess::State
{
    pid_t nPid = -1;
    std::optional<int> nExitCode;
    CPipe input, output, error, wake;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::string strOutput, strError; // guarded by mutex
    bool fOutputEnded = false;       // guarded by mutex
    bool fDrained = false;           // guarded by mutex
    size_t nHandedOut = 0;           // bytes of strOutput; the owner's thread only
    std::thread reader;

    void Read();
    bool ReadSome(int nFile, std::string& strInto);
    std::optional<std::string> NextLineWith(std::string_view strPart);
    void Signal(int nSignal) const;
};

bool CChildProcess::State::ReadSome(int nFile, std::string& strInto)
{
    std::array<char, 4096> bytes;
    const ssize_t nRead = ::read(nFile, bytes.data(), bytes.size());
    if (nRead < 0 && errno == EINTR)
    {
        return true;
    }
    std::lock_guard lock(mutex);
    if (nRead > 0)
    {
        strInto.append(bytes.data(), static_cast<size_t>(nRead));
    }
    else if (&strInto == &strOutput)
    {
        fOutputEnded = true;
    }
    changed.notify_all();
    return nRead > 0;
}

void CChildProcess::State::Read()
{
    std::array<pollfd, 3> files{
        {{output.ReadEnd(), POLLIN, 0}, {error.ReadEnd(), POLLIN, 0}, {wake.ReadEnd(), POLLIN, 0}}};
    while ((files[0].fd >= 0 || files[1].fd >= 0) && files[2].revents == 0)
    {
        ::poll(files.data(), files.size(), -1);
        if (files[0].revents != 0 && !ReadSome(files[0].fd, strOutput))
        {
            files[0].fd = -1;
        }
        if (files[1].revents != 0 && !ReadSome(files[1].fd, strError))
        {
            files[1].fd = -1;
        }
    }
    std::lock_guard lock(mutex);
    fOutputEnded = true;
    fDrained = true;
    changed.notify_all();
}

std::optional<std::string> CChildProcess::State::NextLineWith(std::string_view strPart)
{
    size_t nStart = nHandedOut;
    for (size_t nEnd; (nEnd = strOutput.find('\n', nStart)) != std::string::npos; nStart = nEnd + 1)
    {
        const std::string_view strLine(strOutput.data() + nStart, nEnd - nStart);
        if (strLine.find(strPart) != std::string_view::npos)
        {
            nHandedOut = nEnd + 1;
            return std::string(strLine);
        }
    }
    return std::nullopt;
}

void CChildProcess::State::Signal(int nSignal) const
{
    // A reaped child's number may belong to somebody else by now.
    if (!nExitCode)
    {
        ::kill(nPid, nSignal);
    }
}

CChildProcess::CChildProcess(const std::vector<std::string>& arguments)
    : m_pState(std::make_unique<State>())
{
    std::vector<char*> pointers;
    for (const std::string& strArgument : arguments)
    {
        pointers.push_back(const_cast<char*>(strArgument.c_str()));
    }
    pointers.push_back(nullptr);
    State& state = *m_pState;
    CPipe failure;
    const pid_t nParent = ::getpid();
    state.nPid = ::fork();
    if (state.nPid < 0)
    {
        throw std::system_error(errno, std::generic_category(), "cannot start " + arguments[0]);
    }
    if (state.nPid == 0)
    {
        BecomeProgram(pointers.data(), state.input, state.output, state.error, failure, nParent);
    }
    state.input.CloseRead();
    state.output.CloseWrite();
    state.error.CloseWrite();
    failure.CloseWrite();
    int nError = 0;
    // The other end closes at exec: nothing to read means that the program runs.
    if (::read(failure.ReadEnd(), &nError, sizeof nError) == sizeof nError)
    {
        ::waitpid(state.nPid, nullptr, 0);
        throw std::system_error(nError, std::generic_category(), "cannot start " + arguments[0]);
    }
    state.reader = std::thread([&state] { state.Read(); });
}

CChildProcess::~CChildProcess()
{
    End(kPatience);
    (void)!::write(m_pState->wake.WriteEnd(), "", 1);
    m_pState->reader.join();
}

pid_t CChildProcess::Pid() const
{
    return m_pState->nPid;
}

std::optional<std::string> CChildProcess::WaitForLine(std::string_view strPart,
                                                      std::chrono::milliseconds timeout)
{
    std::optional<std::string> strLine;
    std::unique_lock lock(m_pState->mutex);
    m_pState->changed.wait_for(lock, timeout,
                               [&]
                               {
                                   strLine = m_pState->NextLineWith(strPart);
                                   return strLine || m_pState->fOutputEnded;
                               });
    return strLine;
}

bool CChildProcess::WriteLine(std::string_view strLine)
{
    return m_pState->input.Write(std::string(strLine) + "\n");
}

void CChildProcess::CloseInput()
{
    m_pState->input.CloseWrite();
}

std::optional<int> CChildProcess::WaitForEnd(std::chrono::milliseconds timeout)
{
    State& state = *m_pState;
    const auto deadline = Clock::now() + timeout;
    while (!state.nExitCode)
    {
        int nStatus = 0;
        const pid_t nEnded = ::waitpid(state.nPid, &nStatus, WNOHANG);
        if (nEnded == state.nPid)
        {
            state.nExitCode = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : 128 + WTERMSIG(nStatus);
            std::unique_lock lock(state.mutex);
            state.changed.wait_for(lock, kDrain, [&] { return state.fDrained; });
        }
        else if (nEnded < 0 && errno != EINTR)
        {
            // Somebody else in this process has reaped it.
            state.nExitCode = 128;
        }
        else if (Clock::now() >= deadline)
        {
            break;
        }
        else
        {
            std::this_thread::sleep_for(kReapInterval);
        }
    }
    return state.nExitCode;
}

void CChildProcess::Terminate()
{
    m_pState->Signal(SIGTERM);
}
void CChildProcess::Kill()
{
    m_pState->Signal(SIGKILL);
}
void CChildProcess::Stop()
{
    m_pState->Signal(SIGSTOP);
}
void CChildProcess::Continue()
{
    m_pState->Signal(SIGCONT);
}

int CChildProcess::End(std::chrono::milliseconds patience)
{
    CloseInput();
    Terminate();
    // A stopped child takes the signal only when it runs again.
    Continue();
    if (!WaitForEnd(patience))
    {
        Kill();
    }
    while (!WaitForEnd(patience))
    {
    }
    return *m_pState->nExitCode;
}

std::string CChildProcess::Output() const
{
    std::lock_guard lock(m_pState->mutex);
    return m_pState->strOutput;
}

std::string CChildProcess::ErrorOutput() const
{
    std::lock_guard lock(m_pState->mutex);
    return m_pState->strError;
}

} // namespace Tarvane
