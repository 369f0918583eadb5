#include "platform/gnustep/AppleEvents/Status.h"

#include <AE/AEErrors.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace AppleEvents
{
namespace
{

struct ErrorName
{
    std::string_view name;
    OSErr status;
};

constexpr std::array kErrorNames{
    ErrorName{"org.freedesktop.DBus.Error.NameHasNoOwner", procNotFound},
    ErrorName{"org.freedesktop.DBus.Error.ServiceUnknown", procNotFound},
    // No call of this layer carries a timeout that the bus knows of, so nobody is left to reply.
    ErrorName{"org.freedesktop.DBus.Error.NoReply", connectionInvalid},
    ErrorName{"org.freedesktop.DBus.Error.Disconnected", connectionInvalid},
    ErrorName{"org.freedesktop.DBus.Error.Timeout", errAETimeout},
    ErrorName{"org.freedesktop.DBus.Error.TimedOut", errAETimeout},
    // The name's owner does not speak Apple events.
    ErrorName{"org.freedesktop.DBus.Error.UnknownMethod", errAEEventNotHandled},
    ErrorName{"org.freedesktop.DBus.Error.UnknownObject", errAEEventNotHandled},
    ErrorName{"org.freedesktop.DBus.Error.UnknownInterface", errAEEventNotHandled},
    ErrorName{"org.freedesktop.DBus.Error.AccessDenied", errAEEventNotPermitted},
    ErrorName{"org.freedesktop.DBus.Error.NoMemory", memFullErr},
    ErrorName{"org.freedesktop.DBus.Error.LimitsExceeded", memFullErr},
    ErrorName{"org.freedesktop.DBus.Error.InvalidArgs", errAECorruptData},
    ErrorName{"org.freedesktop.DBus.Error.InvalidSignature", errAECorruptData},
    ErrorName{"org.freedesktop.DBus.Error.InconsistentMessage", errAECorruptData},
};

} // namespace

OSErr StatusForErrorName(std::string_view name)
{
    const auto found = std::find_if(kErrorNames.begin(), kErrorNames.end(),
                                    [&](const ErrorName& entry) { return entry.name == name; });
    return found == kErrorNames.end() ? OSErr(errAEEventFailed) : found->status;
}

OSErr StatusForErrno(int result)
{
    if (MeansLost(result))
        return connectionInvalid;
    switch (-result)
    {
    case ENOMEM:
    case ENOBUFS:
        return memFullErr;
    case EBADMSG:
    case ENXIO:
        return errAECorruptData;
    case EACCES:
    case EPERM:
        return errAEEventNotPermitted;
    case ETIMEDOUT:
        return errAETimeout;
    default:
        return errAEEventFailed;
    }
}

bool MeansLost(int result)
{
    switch (-result)
    {
    case ENOTCONN:
    case ECONNRESET:
    case EPIPE:
    case ESHUTDOWN:
    case ECHILD:
        return true;
    default:
        return false;
    }
}

} // namespace AppleEvents
