#pragma once

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace AppleEventTests
{

/// A session bus that takes connections and bytes and says nothing, named by
/// DBUS_SESSION_BUS_ADDRESS while it lives. Beyond the backlog it takes no connections either.
class MuteBus
{
public:
    explicit MuteBus(int nBacklog = 100) : m_nSocket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        char folder[] = "/tmp/tarvane-mute-XXXXXX";
        m_folder = mkdtemp(folder);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, (m_folder + "/bus").c_str());
        if (bind(m_nSocket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            listen(m_nSocket, nBacklog) != 0)
            throw std::runtime_error("no socket for a mute bus");
        setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + m_folder + "/bus").c_str(), 1);
    }
    ~MuteBus()
    {
        close(m_nSocket);
        std::filesystem::remove_all(m_folder);
    }
    MuteBus(const MuteBus&) = delete;
    MuteBus& operator=(const MuteBus&) = delete;

private:
    int m_nSocket;
    std::string m_folder;
};

} // namespace AppleEventTests
