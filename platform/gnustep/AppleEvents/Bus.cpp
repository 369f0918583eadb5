#include "platform/gnustep/AppleEvents/Bus.h"

#include <AE/AEErrors.h>

namespace AppleEvents
{

OSErr StartConnection(BusRef& bus)
{
    sd_bus* connection = nullptr;
    const int started = sd_bus_open_user_with_description(&connection, "apple-events");
    if (started < 0)
        return started == -ENOMEM ? OSErr(memFullErr) : OSErr(procNotFound);
    bus.reset(connection);
    return noErr;
}

} // namespace AppleEvents
