#include "apps/server/ScriptWorker.h"

#include "apps/server/SessionBlocks.h"
#include "apps/support/EndWithParent.h"
#include "apps/support/Pipe.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

// Before the system ends a worker, its own count of time should have ended the script with better
// words.
constexpr std::int64_t kGraceMilliseconds = 500;

constexpr std::size_t kReadAtOnce = 65536;

// On the socket: a header of fixed size, then the bytes that it counts. Both ends are one program.
struct Request
{
    Trouble trouble;
    std::size_t nScript;
};

struct Answer
{
    bool fRefused;
    bool fChanged;
    std::size_t nResult;
    std::size_t nError;
    std::size_t nSession;
};

bool WriteAll(int nFile, const void* pBytes, std::size_t nBytes)
{
    const char* pNext = static_cast<const char*>(pBytes);
    while (nBytes > 0)
    {
        const ssize_t nWritten = write(nFile, pNext, nBytes);
        if (nWritten < 0 && errno == EINTR)
            continue;
        if (nWritten < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
        {
            pollfd room{nFile, POLLOUT, 0};
            poll(&room, 1, -1);
            continue;
        }
        if (nWritten <= 0)
            return false;
        pNext += nWritten;
        nBytes -= static_cast<std::size_t>(nWritten);
    }
    return true;
}

bool ReadAll(int nFile, void* pBytes, std::size_t nBytes)
{
    char* pNext = static_cast<char*>(pBytes);
    while (nBytes > 0)
    {
        const ssize_t nRead = read(nFile, pNext, nBytes);
        if (nRead < 0 && errno == EINTR)
            continue;
        if (nRead <= 0)
            return false;
        pNext += nRead;
        nBytes -= static_cast<std::size_t>(nRead);
    }
    return true;
}

// SIGPROF ends the process when it has used up so much processor time. 0: never.
void LimitProcessorTime(std::int64_t nMilliseconds)
{
    itimerval limit{};
    limit.it_value.tv_sec = nMilliseconds / 1000;
    limit.it_value.tv_usec = nMilliseconds % 1000 * 1000;
    setitimer(ITIMER_PROF, &limit, nullptr);
}

bool SendAnswer(int nSocket, const Execution& execution)
{
    const std::string strSession =
        execution.changed ? EncodeSession(*execution.changed) : std::string();
    const CommandReply& reply = execution.reply;
    const Answer answer{reply.fRefused, execution.changed.has_value(), reply.strResult.size(),
                        reply.strError.size(), strSession.size()};
    return WriteAll(nSocket, &answer, sizeof answer) &&
           WriteAll(nSocket, reply.strResult.data(), reply.strResult.size()) &&
           WriteAll(nSocket, reply.strError.data(), reply.strError.size()) &&
           WriteAll(nSocket, strSession.data(), strSession.size());
}

void TakeSession(Execution& execution, const std::string& strSession)
{
    try
    {
        execution.changed = DecodeSession(strSession);
    }
    catch (const CSessionFlaw& flaw)
    {
        execution.reply = {"",
                           "nothing was changed, for the session could not be loaded again: " +
                               std::string(flaw.what()),
                           true};
    }
}

} // namespace

CScriptWorker::CScriptWorker(const CCommandProcessor& processor)
    : m_nUpdateCount(processor.Session().UpdateCount()),
      m_nMilliseconds(processor.Limits().nMilliseconds)
{
    IgnoreBrokenPipes();
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
        throw std::system_error(errno, std::generic_category(),
                                "cannot reach a process for scripts");
    const pid_t nParent = getpid();
    m_nProcess = fork();
    if (m_nProcess == 0)
    {
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGINT, SIG_DFL);
        EndWithParent(nParent);
        Serve(processor, ends[1]);
    }
    const int nError = errno;
    close(ends[1]);
    m_nSocket = ends[0];
    if (m_nProcess > 0)
        return;
    close(m_nSocket);
    throw std::system_error(nError, std::generic_category(), "cannot make a process for scripts");
}

CScriptWorker::~CScriptWorker()
{
    close(m_nSocket);
    if (m_nProcess <= 0)
        return;
    kill(m_nProcess, SIGKILL);
    while (waitpid(m_nProcess, nullptr, 0) < 0 && errno == EINTR)
    {
    }
}

// Nothing of the server's must outlive it in here: the bus would take it for alive, and its session
// for in use. What is left is the standard streams and the socket.
void CScriptWorker::Serve(const CCommandProcessor& processor, int nSocket)
{
    CloseAllBut(nSocket);
    Request request;
    while (ReadAll(nSocket, &request, sizeof request))
    {
        std::string strScript(request.nScript, '\0');
        if (!ReadAll(nSocket, strScript.data(), strScript.size()))
            break;
        LimitProcessorTime(m_nMilliseconds + kGraceMilliseconds);
        const Execution execution = processor.Execute(strScript, request.trouble);
        LimitProcessorTime(0);
        if (!SendAnswer(nSocket, execution))
            break;
    }
    _exit(0);
}

void CScriptWorker::Begin(std::string_view strScript, const Trouble& trouble)
{
    const Request request{trouble, strScript.size()};
    // A worker that has ended is told of by Receive.
    if (WriteAll(m_nSocket, &request, sizeof request))
        WriteAll(m_nSocket, strScript.data(), strScript.size());
}

std::optional<Execution> CScriptWorker::Receive()
{
    std::array<char, kReadAtOnce> bytes;
    for (;;)
    {
        const ssize_t nRead = recv(m_nSocket, bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (nRead < 0 && errno == EINTR)
            continue;
        if (nRead < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            break;
        if (nRead <= 0)
            return WhyItEnded();
        m_strReceived.append(bytes.data(), static_cast<std::size_t>(nRead));
    }
    Answer answer;
    if (m_strReceived.size() < sizeof answer)
        return std::nullopt;
    std::memcpy(&answer, m_strReceived.data(), sizeof answer);
    const std::size_t nResult = sizeof answer, nError = nResult + answer.nResult,
                      nSession = nError + answer.nError, nEnd = nSession + answer.nSession;
    if (m_strReceived.size() < nEnd)
        return std::nullopt;
    Execution execution{{m_strReceived.substr(nResult, answer.nResult),
                         m_strReceived.substr(nError, answer.nError), answer.fRefused},
                        std::nullopt};
    const std::string strSession = m_strReceived.substr(nSession, answer.nSession);
    m_strReceived.clear();
    if (answer.fChanged)
        TakeSession(execution, strSession);
    return execution;
}

Execution CScriptWorker::WhyItEnded()
{
    int nStatus = 0;
    while (waitpid(m_nProcess, &nStatus, 0) < 0 && errno == EINTR)
    {
    }
    m_nProcess = -1;
    const std::string strError =
        WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == SIGPROF
            ? ProcessorTimeText(m_nMilliseconds)
            : "the script has brought down the process that ran it" +
                  (WIFSIGNALED(nStatus) ? ", by signal " + std::to_string(WTERMSIG(nStatus))
                                        : std::string());
    return {{"", strError, false}, std::nullopt};
}

void CScriptWorker::Stop()
{
    if (m_nProcess > 0)
        kill(m_nProcess, SIGSTOP);
}

void CScriptWorker::Continue()
{
    if (m_nProcess > 0)
        kill(m_nProcess, SIGCONT);
}

} // namespace Tarvane::Server
