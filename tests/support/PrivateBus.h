#pragma once

#include "tests/support/ChildProcess.h"

#include <string>

namespace TarvaneTests
{

// A session bus of a test's own, on a fixed path in a fresh folder, so that it can be killed and
// come back at the same address. While the object lives, DBUS_SESSION_BUS_ADDRESS of this process,
// and so of the children that it starts, names this bus. One at a time.
class PrivateBus
{
public:
    // Starts the daemon and returns when it takes connections.
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& Address() const { return m_address; }
    const std::string& Folder() const { return m_folder; }

    void Kill();
    void Start();

    pid_t DaemonPid() const { return m_daemon.Pid(); }

    // A bus that takes connections and bytes but answers nothing.
    void Freeze() const { m_daemon.Signal(SIGSTOP); }
    void Thaw() const { m_daemon.Signal(SIGCONT); }

private:
    std::string m_folder;
    std::string m_address;
    std::string m_previousAddress;
    bool m_fHadAddress = false;
    ChildProcess m_daemon;
};

} // namespace TarvaneTests
