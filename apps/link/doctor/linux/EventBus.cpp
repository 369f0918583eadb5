#include "apps/link/doctor/EventBus.h"

#include <AE/AEErrors.h>
#include <TarvanePlatform/EventBus.h>

namespace Tarvane::Link
{

BusState LookAtEventBus(SInt32 nTimeoutTicks)
{
    switch (TarvaneCheckEventBus(nTimeoutTicks))
    {
    case noErr:
        return {BusState::Works, "the session bus takes connections", ""};
    case errAETimeout:
        return {BusState::Mute, "the session bus does not answer",
                "End the session and log in again; what hangs is the bus, not the server."};
    default:
        return {BusState::Absent, "there is no session bus to connect to",
                "Run this program, the host and the server in one session, with one "
                "DBUS_SESSION_BUS_ADDRESS; dbus-run-session starts a bus."};
    }
}

std::string CarriersError()
{
    return TarvaneLastEventError();
}

} // namespace Tarvane::Link
