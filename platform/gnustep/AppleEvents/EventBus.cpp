#include <TarvanePlatform/EventBus.h>

#include "platform/gnustep/AppleEvents/Bus.h"
#include "platform/gnustep/AppleEvents/Timeout.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <AE/AEErrors.h>

using namespace AppleEvents;

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
