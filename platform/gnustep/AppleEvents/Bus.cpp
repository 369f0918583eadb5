#include "platform/gnustep/AppleEvents/Bus.h"

#include <AE/AEErrors.h>

#include <algorithm>

#include <unistd.h>

namespace AppleEvents
{

namespace
{

constexpr std::uint64_t kRetryMicroseconds = 10'000;

int TryConnection(BusRef& bus)
{
    sd_bus* connection = nullptr;
    const int started = sd_bus_open_user_with_description(&connection, "apple-events");
    if (started >= 0)
        bus.reset(connection);
    return started;
}

} // namespace

OSErr StartConnection(BusRef& bus, const Deadline& deadline)
{
    int started = TryConnection(bus);
    while (started == -EAGAIN && !deadline.Passed())
    {
        usleep(useconds_t(std::min(kRetryMicroseconds, deadline.Remaining())));
        started = TryConnection(bus);
    }
    switch (started)
    {
    case -EAGAIN:
        return errAETimeout;
    case -ENOMEM:
        return memFullErr;
    default:
        return started < 0 ? OSErr(procNotFound) : OSErr(noErr);
    }
}

} // namespace AppleEvents
