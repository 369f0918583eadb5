#pragma once

#include "platform/gnustep/AppleEvents/Bus.h"
#include "platform/gnustep/AppleEvents/Storage.h"

#include <cstdint>
#include <optional>
#include <string>

namespace AppleEvents
{

/// One thread's connection for sending. An answer counts when it comes from whoever owned the name
/// that was asked, or from the bus: any process can send what looks like a reply. The connection is
/// opened by the first event and kept; a connection that turns out to be lost, or to be another
/// process's from before a fork, is opened anew, once an event. No event is ever sent twice.
class Sender
{
public:
    /// The calling thread's own, closed when the thread ends.
    static Sender& ForThisThread();

    /// Sends and waits for the reply. The parameters are the reply's on noErr, and empty otherwise.
    OSErr SendAndWait(const std::string& name, const EventStorage& event, Parameters& reply,
                      const Deadline& deadline);

    /// Sends and waits until the event has left this process.
    OSErr SendOnly(const std::string& name, const EventStorage& event, const Deadline& deadline);

private:
    /// What is under way: a question for the name's owner, and the event's call.
    struct Call
    {
        std::string name;
        std::uint64_t nOwnerCookie = 0;
        std::uint64_t nEventCookie = 0;
        std::string owner;
        MessageRef answer;  ///< the owner's or the bus's own
        MessageRef foreign; ///< another's: to be believed if it has become the owner meanwhile
    };

    OSErr Open(const Deadline& deadline);

    /// Asks who owns the call's name, on a connection that is opened if need be.
    OSErr AskForOwner(const Deadline& deadline);
    int SendOwnerQuestion();

    static int TakeReply(sd_bus_message* message, void* sender, sd_bus_error* error);
    void TakeOwner(sd_bus_message* reply);
    void TakeAnswer(sd_bus_message* reply);

    template <typename Condition> OSErr WaitFor(Condition&& done, const Deadline& deadline);
    void DropWhenClogged();

    BusRef m_bus;
    std::optional<Call> m_call;
};

} // namespace AppleEvents
