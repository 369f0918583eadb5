// The server of a soak, on a bus that can go away.
#pragma once

#include "apps/support/process/ChildProcess.h"
#include "soak/Evidence.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Tarvane::Soak
{

/// By how much the server's timeline is ahead: a whole number of samples at 48 and 96 kHz, and none
/// by which two places of captures are apart.
constexpr double kLinkOffset = 2.0078125; ///< seconds
constexpr const char* kLinkOffsetText = "2.0078125";

/// One thread, which lives as long as the object. Throws std::runtime_error when the server does
/// not come back.
class CServerProcess
{
public:
    /// Starts a server on the session, and returns once it answers.
    explicit CServerProcess(std::filesystem::path session);

    /// As when its process is lost.
    void Kill();
    /// After Kill.
    void Restart();
    /// Returns once the server that is there answers.
    void AwaitAnswer() const;

    /// As when it is closed. The exit code, or -1 when it does not end.
    int Close();

    pid_t Pid() const { return m_process->Pid(); }
    const ProcessSample& FirstSample() const { return m_first; }

    /// All that the servers of this session have logged, those that have ended at least.
    const std::string& Log() const { return m_strLog; }
    const std::string& ErrorLog() const { return m_strErrorLog; }

private:
    void KeepLogs();

    const std::filesystem::path m_session;
    std::optional<CChildProcess> m_process;
    ProcessSample m_first;
    std::string m_strLog;
    std::string m_strErrorLog;
};

} // namespace Tarvane::Soak
