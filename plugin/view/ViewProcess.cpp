#include "plugin/view/ViewProcess.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <spawn.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Tarvane
{
namespace
{

constexpr int kSocketOfView = 3;
constexpr auto kPatience = std::chrono::milliseconds(500);
constexpr auto kPatienceStep = std::chrono::milliseconds(5);

// What hosts set for themselves and their plug-ins' libraries, and what would lead ours astray.
constexpr std::string_view kNotInherited[] = {
    "LD_LIBRARY_PATH=", "LD_PRELOAD=", "GTK_PATH=", "GTK_MODULES="};

void Check(int nError, const char* szWhat)
{
    if (nError != 0)
        throw std::system_error(nError, std::generic_category(), szWhat);
}

// [0] is ours, [1] the view's.
std::array<int, 2> MakeSockets()
{
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0)
        Check(errno, "no connection for the view");
    return sockets;
}

std::vector<char*> Environment()
{
    std::vector<char*> variables;
    for (char** pszVariable = environ; *pszVariable != nullptr; ++pszVariable)
    {
        const std::string_view variable = *pszVariable;
        bool fInherited = true;
        for (const std::string_view name : kNotInherited)
            fInherited = fInherited && !variable.starts_with(name);
        if (fInherited)
            variables.push_back(*pszVariable);
    }
    variables.push_back(nullptr);
    return variables;
}

// posix_spawn, for hosts lock their memory: a fork would have to copy it.
int Spawn(const std::filesystem::path& program, int nSocket, pid_t& nPid)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawn_file_actions_adddup2(&actions, nSocket, kSocketOfView);
    ::posix_spawn_file_actions_addclosefrom_np(&actions, kSocketOfView + 1);
    sigset_t signals;
    sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    // A group of its own: the keys that end a host in a terminal are not for the view.
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                POSIX_SPAWN_SETPGROUP);
    std::string strProgram = program;
    char* arguments[] = {strProgram.data(), nullptr};
    const int nError = ::posix_spawn(&nPid, program.c_str(), &actions, &attributes, arguments,
                                     Environment().data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return nError;
}

} // namespace

CViewProcess::CViewProcess(const std::filesystem::path& program)
    : CViewProcess(program, MakeSockets())
{
}

CViewProcess::CViewProcess(const std::filesystem::path& program, std::array<int, 2> sockets)
    : m_socket(sockets[0], FrameSender::View)
{
    const int nError = Spawn(program, sockets[1], m_nPid);
    ::close(sockets[1]);
    Check(nError, program.c_str());
}

CViewProcess::~CViewProcess()
{
    Reap(true);
}

bool CViewProcess::Send(CFrame frame)
{
    m_unsent.push_back(std::move(frame));
    return Flush();
}

bool CViewProcess::Flush()
{
    while (!m_unsent.empty())
    {
        const auto result = m_socket.Send(m_unsent.front(), false);
        if (result != CPacketSocket::Result::Done)
            return result == CPacketSocket::Result::WouldBlock;
        m_unsent.pop_front();
    }
    return true;
}

std::string CViewProcess::WaitForEnd()
{
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    Reap(false);
    while (m_nPid > 0 && std::chrono::steady_clock::now() < deadline)
    {
        std::this_thread::sleep_for(kPatienceStep);
        Reap(false);
    }
    Reap(true);
    return WIFSIGNALED(m_nWaitStatus) ? "signal " + std::to_string(WTERMSIG(m_nWaitStatus))
                                      : "exit code " + std::to_string(WEXITSTATUS(m_nWaitStatus));
}

// A host that collects every child of the process may have been faster: then there is none to wait
// for.
void CViewProcess::Reap(bool fKill)
{
    if (m_nPid < 0)
        return;
    if (fKill)
        ::kill(m_nPid, SIGKILL);
    pid_t nEnded = 0;
    do
        nEnded = ::waitpid(m_nPid, &m_nWaitStatus, fKill ? 0 : WNOHANG);
    while (nEnded < 0 && errno == EINTR);
    if (nEnded != 0)
        m_nPid = -1;
}

} // namespace Tarvane
