#pragma once

#include "platform/gnustep/AppleEvents/Bus.h"
#include "platform/gnustep/AppleEvents/Handlers.h"
#include "platform/gnustep/AppleEvents/RunLoopWatch.h"

#include <map>
#include <string>
#include <vector>

namespace AppleEvents
{

/// Owns the bus name of one signature and hands what is sent to it to the handlers, from the run
/// loop of the main thread. When the bus goes, it comes back with the bus.
class Receiver : private RunLoopClient
{
public:
    explicit Receiver(const Handlers& handlers) : m_handlers(handlers), m_watch(*this) {}

    bool IsOpen() const { return !m_name.empty() && !m_fCloseWhenServed; }

    /// Connects and waits until the name is the process's own, or for the reason why it is not.
    OSErr Open(OSType signature, const Deadline& deadline);

    /// From within a handler it takes effect once that handler's reply has gone out, unless Open
    /// comes first.
    void Close();

    /// Sends the reply of a suspended event and disposes of both. False: there is no such event.
    bool Resume(const AppleEvent* event);

private:
    enum class Ownership
    {
        Asked,
        Owner,
        Taken,
        Refused
    };

    /// Starts a connection, with everything queued that makes it a receiver's.
    OSErr Connect(const Deadline& deadline);
    void Disconnect();
    OSErr StatusOfOpening(Wait wait) const;

    void Wake() override;
    void Process();
    void ReconnectLater();
    void WatchConnection();
    void ServeRequest();
    void Answer(sd_bus_message* request);
    SInt32 ProcessOf(sd_bus_message* request);
    void CloseAfterServing();

    static int KeepRequest(sd_bus_message* message, void* receiver, sd_bus_error* error);
    static int NoteOwnership(sd_bus_message* message, void* receiver, sd_bus_error* error);
    static const sd_bus_vtable kMethods[];

    const Handlers& m_handlers;
    RunLoopWatch m_watch;
    std::string m_name;
    BusRef m_bus;
    SlotRef m_object;
    SlotRef m_question;
    MessageRef m_request;
    Ownership m_ownership = Ownership::Asked;
    struct Suspended
    {
        MessageRef request; ///< null when no reply is wanted
        AEDesc event;
        AEDesc reply;
    };

    std::vector<Suspended> m_suspended;
    std::map<std::string, SInt32> m_processes; ///< of senders, by their names on this bus
    int m_nServing = 0;
    bool m_fCloseWhenServed = false;
    std::uint64_t m_nReconnectDelay = 0;
};

} // namespace AppleEvents
