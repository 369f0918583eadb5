#include "apps/server/command/ScriptWorker.h"

#include "apps/server/sound/RenderFolder.h"
#include "apps/support/process/EndWithParent.h"
#include "apps/support/process/Pipe.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <initializer_list>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

// Before the system ends a worker, its own count of time should have ended the script with better
// words.
constexpr std::int64_t kGraceMilliseconds = 500;

constexpr std::size_t kReadAtOnce = 65536;

// On the socket: a header of fixed size, then the bytes that it counts, written together, so that
// the other end wakes once. Both ends are one program.
struct Request
{
    Trouble trouble;
    std::size_t nScript;
};

enum class Kind : char
{
    Answer,
    Saving, // an answer, which holds if the change that is being saved gets to the disk
    Blocked // wants to know whether to try again; one byte comes back, 0 or 1
};

struct Header
{
    Kind kind = Kind::Answer;
    bool fRefused = false;
    bool fChanged = false;
    bool fConflict = false;
    std::int64_t nUpdateCount = 0;
    FileIdentity identity;
    std::size_t nResult = 0;
    std::size_t nError = 0;
};

bool WriteAll(int nFile, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t nWritten = write(nFile, bytes.data(), bytes.size());
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
        bytes.remove_prefix(static_cast<std::size_t>(nWritten));
    }
    return true;
}

template <typename HEADER>
std::string Message(const HEADER& header, std::initializer_list<std::string_view> texts)
{
    std::string strMessage(reinterpret_cast<const char*>(&header), sizeof header);
    for (const std::string_view text : texts)
        strMessage += text;
    return strMessage;
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

bool Send(int nSocket, Kind kind, const Execution& execution, const FileIdentity& identity)
{
    const CommandReply& reply = execution.reply;
    const Header header{kind,
                        reply.fRefused,
                        reply.fChanged,
                        execution.fConflict,
                        execution.nUpdateCount,
                        identity,
                        reply.strResult.size(),
                        reply.strError.size()};
    return WriteAll(nSocket, Message(header, {reply.strResult, reply.strError}));
}

bool AskToTryAgain(int nSocket)
{
    Header blocked;
    blocked.kind = Kind::Blocked;
    char fTryAgain = 0;
    return WriteAll(nSocket, Message(blocked, {})) && ReadAll(nSocket, &fTryAgain, 1) &&
           fTryAgain != 0;
}

// What the process does for its life: one command after the other.
class CWork
{
public:
    CWork(const WorkerSettings& settings, int nSocket, pid_t nServer)
        : m_settings(settings), m_nSocket(nSocket),
          m_session(settings.sessionFile, settings.identity, nServer)
    {
        if (!settings.strEditor.empty())
            m_feed.emplace(Editor::MakeEditor(settings.strEditor));
        Connect();
    }

    bool RunOne(const std::string& strScript, const Trouble& trouble)
    {
        Look();
        if (!m_processor)
        {
            const bool fChange = NamesChange(strScript);
            const CommandReply reply{"", (fChange ? kNotSaved : "") + m_session.Refusal(), fChange};
            return Send(m_nSocket, Kind::Answer, {reply}, m_session.Identity());
        }
        LimitProcessorTime(m_settings.limits.nMilliseconds + kGraceMilliseconds);
        Execution execution = m_processor->Execute(strScript, trouble);
        LimitProcessorTime(0);
        return !execution.reply.fChanged ? Answer(execution) : Save(execution);
    }

    // While nobody waits.
    void GetReady()
    {
        if (!m_processor)
            return;
        m_processor->GetReady();
        if (m_session.Database()->HasNotedFingerprints())
            SaveFingerprints();
    }

private:
    void Connect()
    {
        m_processor.reset();
        if (m_session.Database() == nullptr)
            return;
        m_session.Database()->WhenLocked([nSocket = m_nSocket] { return AskToTryAgain(nSocket); });
        m_processor.emplace(*m_session.Database(), CRenderFolder(m_settings.renderFolder),
                            m_settings.fHasDocuments, m_settings.limits, m_settings.access);
        if (m_feed)
            m_processor->FeedInto(*m_feed);
    }

    void SaveFingerprints()
    try
    {
        if (!m_settings.access.fReadOnly && m_session.IsOurs())
            m_session.Database()->SaveFingerprints();
    }
    catch (const SQLite::Exception&)
    {
        // They are made again when they are needed.
    }

    // What is open may be another connection afterwards.
    void Look()
    {
        const FileIdentity before = m_session.Identity();
        m_session.Look();
        if (!m_processor || !(m_session.Identity() == before))
            Connect();
        if (m_processor)
            m_processor->RefuseChanges(m_session.Refusal());
    }

    bool Answer(const Execution& execution)
    {
        return Send(m_nSocket, Kind::Answer, execution, m_session.Identity());
    }

    bool Save(Execution& execution)
    {
        if (!m_session.IsOurs())
        {
            m_session.Database()->Rollback();
            execution.fConflict = true;
            execution.reply = {};
            return Answer(execution);
        }
        if (!Send(m_nSocket, Kind::Saving, execution, m_session.Identity()))
            return false;
        execution.reply.strResult.clear();
        m_processor->Conclude(execution);
        return Answer(execution);
    }

    const WorkerSettings& m_settings;
    int m_nSocket;
    CServedSession m_session;
    std::optional<CEditorFeed> m_feed;
    std::optional<CCommandProcessor> m_processor; // none when there is no session
};

} // namespace

CScriptWorker::CScriptWorker(const WorkerSettings& settings) : m_settings(settings)
{
    IgnoreBrokenPipes();
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
        throw std::system_error(errno, std::generic_category(),
                                "cannot reach a process for scripts");
    const pid_t nParent = getpid();
    m_nProcess = m_nLastProcess = fork();
    if (m_nProcess == 0)
    {
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGINT, SIG_DFL);
        EndWithParent(nParent);
        Serve(ends[1]);
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
    if (m_nProcess > 0 && m_fBusy)
        Kill("");
    // A watch may have the socket open as well.
    shutdown(m_nSocket, SHUT_RDWR);
    Reap();
    close(m_nSocket);
}

// Nothing of the server's must outlive it in here: the bus would take it for alive, and its session
// for in use. What is left is the standard streams and the socket.
void CScriptWorker::Serve(int nSocket)
{
    CloseAllBut(nSocket);
    {
        CWork work(m_settings, nSocket, getppid());
        Request request;
        while (ReadAll(nSocket, &request, sizeof request))
        {
            std::string strScript(request.nScript, '\0');
            if (!ReadAll(nSocket, strScript.data(), strScript.size()) ||
                !work.RunOne(strScript, request.trouble))
                break;
            work.GetReady();
        }
    }
    _exit(0);
}

void CScriptWorker::Begin(std::string_view strScript, const Trouble& trouble)
{
    m_fBusy = true;
    const Request request{trouble, strScript.size()};
    // A worker that has ended is told of by Receive.
    WriteAll(m_nSocket, Message(request, {strScript}));
}

void CScriptWorker::TryAgain(bool fTryAgain)
{
    const char cAnswer = fTryAgain ? 1 : 0;
    WriteAll(m_nSocket, {&cAnswer, 1});
}

std::optional<WorkerReport> CScriptWorker::Receive()
{
    if (m_last)
        return std::exchange(m_last, std::nullopt);
    if (TakeBytes())
        return TakeReport();
    Reap();
    return Last();
}

// False when nothing will come any more.
bool CScriptWorker::TakeBytes()
{
    std::array<char, kReadAtOnce> bytes;
    for (;;)
    {
        const ssize_t nRead = recv(m_nSocket, bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (nRead < 0 && errno == EINTR)
            continue;
        if (nRead < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return true;
        if (nRead <= 0)
            return false;
        m_strReceived.append(bytes.data(), static_cast<std::size_t>(nRead));
    }
}

bool CScriptWorker::IsSaving() const
{
    Header header;
    if (m_strReceived.size() >= sizeof header)
        std::memcpy(&header, m_strReceived.data(), sizeof header);
    // What is taken in nobody is told of any more.
    else if (m_strReceived.empty() && recv(m_nSocket, &header, sizeof header,
                                           MSG_PEEK | MSG_DONTWAIT) < ssize_t(sizeof header))
        header = {};
    return m_saving || header.kind == Kind::Saving;
}

// Of a worker that has ended.
WorkerReport CScriptWorker::Last()
{
    std::optional<WorkerReport> report = TakeReport();
    while (report && report->fBlocked)
        report = TakeReport();
    return report ? *std::move(report) : WhyItEnded();
}

// The first whole report of what has come in.
std::optional<WorkerReport> CScriptWorker::TakeReport()
{
    Header header;
    if (m_strReceived.size() < sizeof header)
        return std::nullopt;
    std::memcpy(&header, m_strReceived.data(), sizeof header);
    const std::size_t nError = sizeof header + header.nResult, nEnd = nError + header.nError;
    if (m_strReceived.size() < nEnd)
        return std::nullopt;
    WorkerReport report;
    report.fBlocked = header.kind == Kind::Blocked;
    report.execution = {{m_strReceived.substr(sizeof header, header.nResult),
                         m_strReceived.substr(nError, header.nError), header.fRefused,
                         header.fChanged},
                        header.nUpdateCount,
                        header.fConflict};
    report.identity = m_settings.identity = header.identity;
    m_strReceived.erase(0, nEnd);
    if (header.kind == Kind::Saving)
    {
        m_saving = std::move(report.execution);
        return TakeReport();
    }
    if (header.kind == Kind::Answer)
    {
        if (m_saving && header.fChanged)
            report.execution.reply = std::move(m_saving->reply);
        m_saving.reset();
        m_fBusy = false;
    }
    return report;
}

WorkerReport CScriptWorker::WhyItEnded()
{
    RemoveUnfinishedAudio();
    if (m_saving && HasSaved(*m_saving))
        return {false, false, *std::move(m_saving), m_settings.identity};
    WorkerReport report;
    report.fEnded = true;
    report.identity = m_settings.identity;
    report.execution.reply.strError =
        !m_strKilledFor.empty() ? m_strKilledFor
        : WIFSIGNALED(m_nStatus) && WTERMSIG(m_nStatus) == SIGPROF
            ? ProcessorTimeText(m_settings.limits.nMilliseconds)
            : "the script has brought down the process that ran it" +
                  (WIFSIGNALED(m_nStatus) ? ", by signal " + std::to_string(WTERMSIG(m_nStatus))
                                          : std::string());
    return report;
}

bool CScriptWorker::HasSaved(const Execution& execution) const
try
{
    return CSessionDatabase(m_settings.sessionFile).UpdateCount() == execution.nUpdateCount;
}
catch (const std::exception&)
{
    // What cannot be read is not to be told as done.
    return false;
}

void CScriptWorker::RemoveUnfinishedAudio() const
{
    CRenderFolder(m_settings.renderFolder).RemoveUnfinished(m_nLastProcess);
}

void CScriptWorker::Reap()
{
    if (m_nProcess <= 0)
        return;
    while (waitpid(m_nProcess, &m_nStatus, 0) < 0 && errno == EINTR)
    {
    }
    m_nProcess = -1;
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

void CScriptWorker::Kill(const std::string& strWhy)
{
    if (m_nProcess <= 0)
        return;
    m_strKilledFor = strWhy;
    kill(m_nProcess, SIGKILL);
    Reap();
    // Before anybody else changes the session, which would hide whether this one has.
    TakeBytes();
    m_last = Last();
}

} // namespace Tarvane::Server
