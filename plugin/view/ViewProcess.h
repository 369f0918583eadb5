// A running tarvane-link-view, and this side's end of the connection to it.
#pragma once

#include "plugin/view/PacketSocket.h"

#include <array>
#include <deque>
#include <filesystem>
#include <string>
#include <sys/types.h>

namespace Tarvane
{

/// One thread at a time. Nothing of it waits for the process, but its end.
class CViewProcess
{
public:
    /// Starts the program with the socket as descriptor 3, every signal at its default, and nothing
    /// else of this process. Throws std::system_error.
    explicit CViewProcess(const std::filesystem::path& program);
    /// Kills the process if it still runs, and reaps it.
    ~CViewProcess();
    CViewProcess(const CViewProcess&) = delete;
    CViewProcess& operator=(const CViewProcess&) = delete;

    CPacketSocket& Socket() { return m_socket; }
    pid_t Pid() const { return m_nPid; }

    /// Sends as soon as there is room. False when the connection has ended.
    bool Send(CFrame frame);
    /// Sends what there is room for now. False when the connection has ended.
    bool Flush();
    bool HasUnsent() const { return !m_unsent.empty(); }
    /// So much has not been read that the process is not to be asked for more.
    bool IsClogged() const { return m_unsent.size() >= kMaxUnsent; }

    /// After the connection has ended: waits a moment for the process to end, then ends it. How it
    /// ended: "exit code 1", "signal 11".
    std::string WaitForEnd();

private:
    static constexpr std::size_t kMaxUnsent = 64;

    CViewProcess(const std::filesystem::path& program, std::array<int, 2> sockets);
    void Reap(bool fKill);

    CPacketSocket m_socket;
    std::deque<CFrame> m_unsent;
    pid_t m_nPid = -1; ///< -1 once reaped
    int m_nWaitStatus = 0;
};

} // namespace Tarvane
