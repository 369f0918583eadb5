#pragma once

#include "apps/support/process/ChildProcess.h"

#include <optional>
#include <string>

namespace TarvaneTests
{

/// A session bus of a test's own, on a fixed path in a fresh folder, so that it can be killed and
/// come back at the same address. While the object lives, DBUS_SESSION_BUS_ADDRESS of this process,
/// and so of the children that it starts, names this bus. One at a time.
class PrivateBus
{
public:
    /// Starts the daemon and returns when it takes connections.
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& Address() const { return m_address; }
    const std::string& Folder() const { return m_folder; }

    void Kill();
    void Start();

    pid_t DaemonPid() const { return m_daemon->Pid(); }

    /// A bus that takes connections and bytes but answers nothing.
    void Freeze() { m_daemon->Stop(); }
    void Thaw() { m_daemon->Continue(); }

private:
    std::string m_folder;
    std::string m_address;
    std::string m_previousAddress;
    bool m_fHadAddress = false;
    std::optional<Tarvane::CChildProcess> m_daemon; ///< empty while the bus is away
};

} // namespace TarvaneTests
