// A process of the server's own in which scripts run, so that one can be ended whatever it is
// doing.
#pragma once

#include "apps/server/command/CommandProcessor.h"
#include "apps/server/command/ServedSession.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace Tarvane::Server
{

/// What a worker works on, and by which rules.
struct WorkerSettings
{
    std::filesystem::path sessionFile;
    FileIdentity identity; ///< of that file
    std::filesystem::path renderFolder;
    bool fHasDocuments = true;
    SandboxLimits limits;
    Access access;
    std::string strEditor{}; ///< as Options says
};

struct WorkerReport
{
    /// It waits to be told whether to try again to change the session, which another process is
    /// changing (TryAgain). Nothing else in here then.
    bool fBlocked = false;
    bool fEnded = false; ///< it has ended without an answer; the reply's error says why
    Execution execution; ///< the reply is final
    FileIdentity identity;
};

/// A child of the server, made by fork, with a connection of its own to the session's database; no
/// connection may be open in this process meanwhile. It runs one script at a time, each in one
/// transaction: ended within it, it has changed nothing. It ends with the server, or when its
/// object goes. Main thread.
class CScriptWorker
{
public:
    /// Throws std::system_error when no process can be made.
    explicit CScriptWorker(const WorkerSettings& settings);
    /// One that has nothing to do closes its connection first.
    ~CScriptWorker();
    CScriptWorker(const CScriptWorker&) = delete;
    CScriptWorker& operator=(const CScriptWorker&) = delete;

    /// Has it run a script. Its processor time counts from here.
    void Begin(std::string_view strScript, const Trouble& trouble);

    /// Readable when there is something to Receive.
    int Descriptor() const { return m_nSocket; }
    /// Takes in what has come, without waiting: a report once it is there whole. A worker that has
    /// ended instead, for a bound or a fault, gives one with an error that says so, unless what it
    /// changed is on disk: then the report is what it would have been.
    std::optional<WorkerReport> Receive();
    /// Answers a report of fBlocked. Without another try the command ends in conflict.
    void TryAgain(bool fTryAgain);

    /// Whether it has begun to save what a script has changed. Let it go on: an editor may have the
    /// half of it.
    bool IsSaving() const;

    /// Whether it can run another script.
    bool IsAlive() const { return m_nProcess > 0; }

    /// Lets it stand still and go on.
    void Stop();
    void Continue();
    /// Ends it. What it was about to say is there to Receive, which otherwise gives this error.
    void Kill(const std::string& strWhy);

private:
    [[noreturn]] void Serve(int nSocket);
    bool TakeBytes();
    std::optional<WorkerReport> TakeReport();
    WorkerReport Last();
    WorkerReport WhyItEnded();
    bool HasSaved(const Execution& execution) const;
    void Reap();
    void RemoveUnfinishedAudio() const;

    WorkerSettings m_settings;
    pid_t m_nProcess = -1;
    pid_t m_nLastProcess = -1;
    int m_nStatus = 0; ///< of the ended process
    int m_nSocket = -1;
    bool m_fBusy = false;
    std::string m_strReceived;
    std::optional<Execution> m_saving;  ///< that it was about to save
    std::optional<WorkerReport> m_last; ///< of a killed worker
    std::string m_strKilledFor;
};

} // namespace Tarvane::Server
