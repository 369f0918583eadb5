#include "tests/support/PrivateBus.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace TarvaneTests
{
namespace
{

constexpr const char* kAddressVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr std::chrono::seconds kPatience{60};

} // namespace

PrivateBus::PrivateBus()
{
    char folder[] = "/tmp/tarvane-bus-XXXXXX";
    if (!mkdtemp(folder))
        throw std::runtime_error("no folder for a private bus");
    m_folder = folder;
    m_address = "unix:path=" + m_folder + "/bus";
    Start();
    const char* const previous = std::getenv(kAddressVariable);
    m_fHadAddress = previous != nullptr;
    m_previousAddress = previous ? previous : "";
    setenv(kAddressVariable, m_address.c_str(), 1);
}

PrivateBus::~PrivateBus()
{
    Kill();
    if (m_fHadAddress)
        setenv(kAddressVariable, m_previousAddress.c_str(), 1);
    else
        unsetenv(kAddressVariable);
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void PrivateBus::Kill()
{
    if (m_daemon)
        m_daemon->Kill();
    m_daemon.reset();
}

void PrivateBus::Start()
{
    std::filesystem::remove(m_folder + "/bus");
    m_daemon.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                              "--print-address", "--address=" + m_address});
    if (!m_daemon->WaitForLine("unix:", kPatience))
        throw std::runtime_error("dbus-daemon did not start");
}

} // namespace TarvaneTests
