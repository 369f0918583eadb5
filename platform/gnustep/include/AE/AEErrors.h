// Status numbers of the Apple Event Manager, beside the general ones in MacTypes.h.
#pragma once

#include <MacTypes.h>

enum : OSErr
{
    procNotFound = -600,
    bufferIsSmall = -607,
    connectionInvalid = -609
};

enum : OSErr
{
    errAECoercionFail = -1700,
    errAEDescNotFound = -1701,
    errAECorruptData = -1702,
    errAEWrongDataType = -1703,
    errAENotAEDesc = -1704,
    errAENotAppleEvent = -1707,
    errAEEventNotHandled = -1708,
    errAEUnknownSendMode = -1710,
    errAETimeout = -1712,
    errAEUnknownAddressType = -1716,
    errAEHandlerNotFound = -1717,
    errAEDuplicateHandler = -1736,
    errAEEventNotPermitted = -1743,
    errAEEventFailed = -10000
};
