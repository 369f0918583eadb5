// Owners for what sd-bus hands out, and the one way in which this layer waits for a bus.
#pragma once

#include "platform/gnustep/AppleEvents/Deadline.h"

#include <MacTypes.h>

#include <systemd/sd-bus.h>

#include <cerrno>
#include <memory>

namespace AppleEvents
{

/// Closes without flushing: flushing would wait for a bus that may never read again.
struct BusCloser
{
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct SlotReleaser
{
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
struct MessageReleaser
{
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

using BusRef = std::unique_ptr<sd_bus, BusCloser>;
using SlotRef = std::unique_ptr<sd_bus_slot, SlotReleaser>;
using MessageRef = std::unique_ptr<sd_bus_message, MessageReleaser>;

/// Starts a connection of one's own to the session bus. It is not ready yet, but calls may be
/// queued on it. A bus with too many others at its door is tried again until the deadline, and then
/// errAETimeout. procNotFound: there is nobody to connect to.
OSErr StartConnection(BusRef& bus, const Deadline& deadline);

enum class Wait
{
    Done,
    TimedOut,
    Lost
};

/// Processes and waits until `done` answers true. A signal does no harm, and neither a mute bus nor
/// a flood of other messages holds it past the deadline.
template <typename Condition>
Wait ProcessUntil(sd_bus* bus, const Deadline& deadline, Condition&& done)
{
    while (!done())
    {
        const int processed = sd_bus_process(bus, nullptr);
        // sd_bus_process may answer 0 although a callback has just run.
        if (done())
            break;
        if (processed < 0)
            return Wait::Lost;
        if (deadline.Passed())
            return Wait::TimedOut;
        if (processed > 0)
            continue;
        const int waited = sd_bus_wait(bus, deadline.Remaining());
        if (waited < 0 && waited != -EINTR)
            return Wait::Lost;
    }
    return Wait::Done;
}

} // namespace AppleEvents
