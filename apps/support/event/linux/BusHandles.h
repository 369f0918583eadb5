// What the bus library hands out, each with its owner.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace Tarvane
{

struct BusCloser
{
    void operator()(sd_bus* pBus) const { sd_bus_close_unref(pBus); }
};
struct MessageReleaser
{
    void operator()(sd_bus_message* pMessage) const { sd_bus_message_unref(pMessage); }
};
/// A connection: closed, with what has not gone out yet left unsent.
using BusRef = std::unique_ptr<sd_bus, BusCloser>;
using MessageRef = std::unique_ptr<sd_bus_message, MessageReleaser>;

} // namespace Tarvane
