#include "platform/gnustep/AppleEvents/Sender.h"

#include "platform/gnustep/AppleEvents/Status.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <cstdint>

namespace AppleEvents
{
namespace
{

// Only our own deadline ends a call, so that a NoReply error always means that the peer is gone.
constexpr std::uint64_t kNoBusTimeout = kForever;

int KeepAnswer(sd_bus_message* message, void* answer, sd_bus_error*)
{
    static_cast<MessageRef*>(answer)->reset(sd_bus_message_ref(message));
    return 1;
}

int NewEventMessage(sd_bus* bus, const std::string& name, const EventStorage& event,
                    MessageRef& message)
{
    sd_bus_message* call = nullptr;
    int result = sd_bus_message_new_method_call(bus, &call, name.c_str(), kObjectPath, kInterface,
                                                kSendMember);
    if (result < 0)
        return result;
    message.reset(call);
    result = sd_bus_message_set_auto_start(call, 0);
    if (result >= 0)
        result = sd_bus_message_append(call, "uu", event.eventClass, event.eventID);
    return result < 0 ? result : AppendParameters(call, event.parameters);
}

int NewOwnerQuestion(sd_bus* bus, const std::string& name, MessageRef& message)
{
    sd_bus_message* call = nullptr;
    const int result =
        sd_bus_message_new_method_call(bus, &call, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetNameOwner");
    if (result < 0)
        return result;
    message.reset(call);
    return sd_bus_message_append(call, "s", name.c_str());
}

} // namespace

Sender& Sender::ForThisThread()
{
    thread_local Sender sender;
    return sender;
}

template <typename Condition> OSErr Sender::WaitFor(Condition&& done, const Deadline& deadline)
{
    switch (ProcessUntil(m_bus.get(), deadline, done))
    {
    case Wait::Done:
        return noErr;
    case Wait::TimedOut:
        DropWhenClogged();
        return errAETimeout;
    default:
        m_bus.reset();
        return connectionInvalid;
    }
}

OSErr Sender::SendAndWait(const std::string& name, const EventStorage& event, Parameters& reply,
                          const Deadline& deadline)
{
    MessageRef answer;
    OSErr status = Exchange([&](sd_bus* bus, MessageRef& message)
                            { return NewEventMessage(bus, name, event, message); },
                            answer, deadline);
    if (status == noErr)
        status = ReadReply(answer.get(), reply);
    if (status != noErr)
        reply.clear();
    return status;
}

OSErr Sender::SendOnly(const std::string& name, const EventStorage& event, const Deadline& deadline)
{
    // Nobody reports on a message that wants no reply, so the owner is asked for first.
    MessageRef answer;
    const OSErr status = Exchange([&](sd_bus* bus, MessageRef& message)
                                  { return NewOwnerQuestion(bus, name, message); },
                                  answer, deadline);
    if (status != noErr)
        return status;
    if (const sd_bus_error* const error = sd_bus_message_get_error(answer.get()))
        return StatusForErrorName(error->name ? error->name : "");

    MessageRef message;
    int result = NewEventMessage(m_bus.get(), name, event, message);
    if (result >= 0)
        result = sd_bus_message_set_expect_reply(message.get(), 0);
    if (result >= 0)
        result = sd_bus_send(m_bus.get(), message.get(), nullptr);
    if (result < 0)
        return StatusForErrno(result);
    std::uint64_t queued = 0;
    return WaitFor([&]
                   { return sd_bus_get_n_queued_write(m_bus.get(), &queued) >= 0 && queued == 0; },
                   deadline);
}

OSErr Sender::Open(const Deadline& deadline)
{
    const OSErr status = StartConnection(m_bus, deadline);
    if (status != noErr)
        return status;
    const Wait wait =
        ProcessUntil(m_bus.get(), deadline, [this] { return sd_bus_is_ready(m_bus.get()) > 0; });
    if (wait == Wait::Done)
        return noErr;
    m_bus.reset();
    return wait == Wait::TimedOut ? OSErr(errAETimeout) : OSErr(procNotFound);
}

template <typename Make>
OSErr Sender::Exchange(Make&& make, MessageRef& answer, const Deadline& deadline)
{
    bool fOpened = false;
    for (;;)
    {
        if (!m_bus)
        {
            if (fOpened)
                return procNotFound;
            fOpened = true;
            if (const OSErr status = Open(deadline))
                return status;
        }
        MessageRef message;
        sd_bus_slot* slot = nullptr;
        int result = make(m_bus.get(), message);
        if (result >= 0)
            result = sd_bus_call_async(m_bus.get(), &slot, message.get(), KeepAnswer, &answer,
                                       kNoBusTimeout);
        if (result >= 0)
        {
            // With the slot goes the library's interest in the reply: a late one is dropped.
            const SlotRef call(slot);
            return WaitFor([&] { return answer != nullptr; }, deadline);
        }
        if (!MeansLost(result))
            return StatusForErrno(result);
        m_bus.reset();
    }
}

void Sender::DropWhenClogged()
{
    // A bus that takes nothing: what waits to be written would pile up, and would be delivered long
    // after the caller was told that it failed.
    std::uint64_t queued = 0;
    if (sd_bus_get_n_queued_write(m_bus.get(), &queued) < 0 || queued > 0)
        m_bus.reset();
}

} // namespace AppleEvents
