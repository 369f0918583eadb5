#include <TarvanePlatform/EventBus.h>

#include "platform/gnustep/AppleEvents/Bus.h"
#include "platform/gnustep/AppleEvents/Timeout.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <AE/AEErrors.h>

using namespace AppleEvents;

namespace
{

struct ProcessAnswer
{
    bool fCame = false;
    std::uint32_t nProcess = 0;
};

int TakeProcess(sd_bus_message* message, void* answer, sd_bus_error*)
{
    auto& taken = *static_cast<ProcessAnswer*>(answer);
    taken.fCame = true;
    if (sd_bus_message_read(message, "u", &taken.nProcess) < 0)
        taken.nProcess = 0;
    return 1;
}

} // namespace

OSErr TarvaneCheckEventBus(SInt32 timeOutInTicks)
{
    const std::optional<Deadline> deadline = DeadlineForTicks(timeOutInTicks);
    if (!deadline)
        return paramErr;
    BusRef bus;
    if (const OSErr status = StartConnection(bus, *deadline))
        return status;
    switch (ProcessUntil(bus.get(), *deadline, [&] { return sd_bus_is_ready(bus.get()) > 0; }))
    {
    case Wait::Done:
        return noErr;
    case Wait::TimedOut:
        return errAETimeout;
    default:
        return procNotFound;
    }
}

const char* TarvaneLastEventError(void)
{
    return LastError().c_str();
}

pid_t TarvaneEventReceiverProcess(OSType signature, SInt32 timeOutInTicks)
{
    const std::optional<Deadline> deadline = DeadlineForTicks(timeOutInTicks);
    BusRef bus;
    if (!deadline || StartConnection(bus, *deadline) != noErr)
        return 0;
    ProcessAnswer answer;
    const std::string name = BusNameForSignature(signature);
    if (sd_bus_call_method_async(bus.get(), nullptr, "org.freedesktop.DBus",
                                 "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "GetConnectionUnixProcessID", TakeProcess, &answer, "s",
                                 name.c_str()) < 0)
        return 0;
    ProcessUntil(bus.get(), *deadline, [&] { return answer.fCame; });
    return static_cast<pid_t>(answer.nProcess);
}
