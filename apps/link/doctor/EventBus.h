// What events travel over; one source file a system.
#pragma once

#include <MacTypes.h>

#include <string>

namespace Tarvane::Link
{

struct BusState
{
    enum
    {
        Works,
        Absent,
        Mute ///< somebody is there and does not answer
    } kind;
    const char* szText;   ///< the finding, in a sentence
    const char* szAdvice; ///< what to do; empty when there is nothing
};

/// Looks at the bus without sending an event. Blocks for the timeout at most, in ticks of 1/60
/// second; -1 is the platform's default.
BusState LookAtEventBus(SInt32 nTimeoutTicks);

/// The error that the last event of this thread was answered with, in the words of what carries
/// events; empty for none.
std::string CarriersError();

} // namespace Tarvane::Link
