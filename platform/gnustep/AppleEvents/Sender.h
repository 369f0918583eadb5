#pragma once

#include "platform/gnustep/AppleEvents/Bus.h"
#include "platform/gnustep/AppleEvents/Storage.h"

#include <string>

namespace AppleEvents
{

// One thread's connection for sending. It is opened by the first event and kept; a connection that
// turns out to be lost, or to be another process's from before a fork, is opened anew, once an
// event. No event is ever sent twice.
class Sender
{
public:
    // The calling thread's own, closed when the thread ends.
    static Sender& ForThisThread();

    // Sends and waits for the reply. The parameters are the reply's on noErr, and empty otherwise.
    OSErr SendAndWait(const std::string& name, const EventStorage& event, Parameters& reply,
                      const Deadline& deadline);

    // Sends and waits until the event has left this process.
    OSErr SendOnly(const std::string& name, const EventStorage& event, const Deadline& deadline);

private:
    OSErr Open(const Deadline& deadline);

    // Sends the message that `make` builds for the connection at hand, and waits for its answer.
    template <typename Make>
    OSErr Exchange(Make&& make, MessageRef& answer, const Deadline& deadline);

    template <typename Condition> OSErr WaitFor(Condition&& done, const Deadline& deadline);
    void DropWhenClogged();

    BusRef m_bus;
};

} // namespace AppleEvents
