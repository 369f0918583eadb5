#include "apps/conform/server/ServerProcess.h"

#include "apps/conform/shared/Rule.h"
#include "apps/support/event/linux/BusHandles.h"

#include <TarvanePlatform/EventBus.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include <unistd.h>

namespace Tarvane::Conform
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr char szServerName[] = "org.tarvane.AppleEvent._546b4e65"; // 'TkNe'
constexpr char szEventsToServer[] =
    "type='method_call',destination='org.tarvane.AppleEvent._546b4e65'";

void MustWork(int result)
{
    if (result < 0)
        throw CNotExaminable("the session bus does not let itself be asked or watched");
}

BusRef OpenBus()
{
    sd_bus* bus = nullptr;
    MustWork(sd_bus_open_user(&bus));
    return BusRef(bus);
}

// Nothing where the name has gone meanwhile.
std::optional<pid_t> ProcessOf(sd_bus* bus, const char* szName)
{
    sd_bus_creds* creds = nullptr;
    pid_t process = 0;
    int result = sd_bus_get_name_creds(bus, szName, SD_BUS_CREDS_PID, &creds);
    if (result >= 0)
        result = sd_bus_creds_get_pid(creds, &process);
    sd_bus_creds_unref(creds);
    return result < 0 ? std::nullopt : std::optional(process);
}

// A connection to which the bus shows what the rule says, and on which nothing can be asked.
BusRef OpenMonitor(const char* szRule)
{
    BusRef bus = OpenBus();
    sd_bus_message* made = nullptr;
    MustWork(sd_bus_message_new_method_call(bus.get(), &made, "org.freedesktop.DBus",
                                            "/org/freedesktop/DBus",
                                            "org.freedesktop.DBus.Monitoring", "BecomeMonitor"));
    const MessageRef message(made);
    MustWork(sd_bus_message_append(made, "asu", 1, szRule, 0U));
    MustWork(sd_bus_call(bus.get(), made, 0, nullptr, nullptr));
    return bus;
}

// Null once the time is over.
MessageRef NextMessage(sd_bus* monitor, Clock::time_point end)
{
    for (;;)
    {
        sd_bus_message* seen = nullptr;
        const int processed = sd_bus_process(monitor, &seen);
        MustWork(processed);
        if (seen)
            return MessageRef(seen);
        const auto left =
            std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now()).count();
        if (left <= 0)
            return nullptr;
        if (processed == 0)
            MustWork(sd_bus_wait(monitor, static_cast<std::uint64_t>(left)));
    }
}

double SecondsSinceBoot()
{
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace

std::string ServerAddress()
{
    return std::string(szServerName) + " on the session bus";
}

std::string CarriersError()
{
    return TarvaneLastEventError();
}

pid_t ServerProcess()
{
    const std::optional<pid_t> process = ProcessOf(OpenBus().get(), szServerName);
    if (!process)
        throw CNotExaminable("the bus does not say which process the server is");
    return *process;
}

double SecondsSinceStart(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string strStat;
    std::getline(file, strStat);
    // The name in parentheses may hold anything; the start is the 20th field behind it.
    std::istringstream fields(strStat.substr(strStat.rfind(')') + 1));
    std::string strField;
    for (int nField = 0; nField < 20; ++nField)
        fields >> strField;
    if (!file || !fields)
        throw CNotExaminable("the server's process cannot be looked at");
    const double dTicks = std::strtod(strField.c_str(), nullptr);
    return SecondsSinceBoot() - dTicks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

int EventsToItself(pid_t process, std::chrono::milliseconds watched)
{
    const BusRef bus = OpenBus();
    const BusRef monitor = OpenMonitor(szEventsToServer);
    const auto end = Clock::now() + watched;
    int nEvents = 0;
    while (const MessageRef message = NextMessage(monitor.get(), end))
    {
        const char* szSender = sd_bus_message_get_sender(message.get());
        const bool fEvent = sd_bus_message_is_method_call(message.get(), nullptr, "Send") > 0;
        if (fEvent && szSender && ProcessOf(bus.get(), szSender) == process)
            ++nEvents;
    }
    return nEvents;
}

} // namespace Tarvane::Conform
