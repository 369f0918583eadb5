#include "apps/support/event/EventStatus.h"

#include <Carbon/Carbon.h>

namespace Tarvane
{

std::string LikelyCause(int nStatus)
{
    switch (nStatus)
    {
    case procNotFound:
        return "Nobody receives events under the server's name: it is not running, is on another "
               "bus, or has asked for another name.";
    case connectionInvalid:
        return "The server ended, or left the bus, while the command waited.";
    case errAETimeout:
        return "The server got the event and did not answer in time.";
    case errAEEventFailed:
        return "The server's handler failed: an exception that it did not catch, or an error of "
               "its own in place of a reply.";
    case errAEEventNotHandled:
        return "The server's name is there, and nobody takes the event: another object path, "
               "interface or method than the event's, or no handler for its class and id.";
    case errAECorruptData:
        return "The reply, or what the server reads, has another signature than the event's.";
    case errAEDescNotFound:
        return "The reply has no 'Rslt'.";
    case errAEEventNotPermitted:
        return "The system or the bus does not let the event through.";
    case bufferIsSmall:
        return "The script or the reply has more than 16 MiB.";
    default:
        return "";
    }
}

} // namespace Tarvane
