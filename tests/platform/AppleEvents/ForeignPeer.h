// Peers that use the bus without this layer, well or badly.
#pragma once

#include "platform/gnustep/AppleEvents/Bus.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace AppleEventTests
{

/// A connection to the session bus, ready for use. Throws std::runtime_error.
AppleEvents::BusRef ConnectToBus();

/// How many connections the bus has.
int ConnectionsOnTheBus(sd_bus* bus);

/// Owns the bus name of a signature and answers each call, whatever it is, with what `answer`
/// returns: a reply to send, or null for none.
class ForeignReceiver
{
public:
    using Answer = std::function<AppleEvents::MessageRef(sd_bus_message* call)>;

    ForeignReceiver(const std::string& name, Answer answer);
    ~ForeignReceiver();
    ForeignReceiver(const ForeignReceiver&) = delete;
    ForeignReceiver& operator=(const ForeignReceiver&) = delete;

private:
    void Serve();

    AppleEvents::BusRef m_bus;
    Answer m_answer;
    std::atomic<bool> m_fStop = false;
    std::thread m_thread;
};

} // namespace AppleEventTests
