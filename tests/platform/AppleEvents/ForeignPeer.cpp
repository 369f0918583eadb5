#include "tests/platform/AppleEvents/ForeignPeer.h"

#include <cstdlib>
#include <stdexcept>

using namespace AppleEvents;

namespace AppleEventTests
{

BusRef ConnectToBus()
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        throw std::runtime_error("no connection to the bus");
    return BusRef(bus);
}

int ConnectionsOnTheBus(sd_bus* bus)
{
    char** names = nullptr;
    if (sd_bus_list_names(bus, &names, nullptr) < 0)
        throw std::runtime_error("the bus does not list its names");
    int nConnections = 0;
    for (char** name = names; *name; name++)
    {
        nConnections += **name == ':';
        std::free(*name);
    }
    std::free(names);
    return nConnections;
}

ForeignReceiver::ForeignReceiver(const std::string& name, Answer answer)
    : m_bus(ConnectToBus()), m_answer(std::move(answer))
{
    if (sd_bus_request_name(m_bus.get(), name.c_str(), 0) < 0)
        throw std::runtime_error("no name for a foreign receiver");
    m_thread = std::thread([this] { Serve(); });
}

ForeignReceiver::~ForeignReceiver()
{
    m_fStop = true;
    m_thread.join();
}

void ForeignReceiver::Serve()
{
    constexpr std::uint64_t kPollMicroseconds = 20'000;
    while (!m_fStop)
    {
        sd_bus_message* received = nullptr;
        const int result = sd_bus_process(m_bus.get(), &received);
        const MessageRef message(received);
        if (result < 0)
            return;
        if (message && sd_bus_message_is_method_call(message.get(), nullptr, nullptr) > 0)
        {
            const MessageRef reply = m_answer(message.get());
            if (reply)
                sd_bus_send(m_bus.get(), reply.get(), nullptr);
        }
        else if (result == 0)
            sd_bus_wait(m_bus.get(), kPollMicroseconds);
    }
}

} // namespace AppleEventTests
