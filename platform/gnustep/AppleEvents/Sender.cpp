#include "platform/gnustep/AppleEvents/Sender.h"

#include "platform/gnustep/AppleEvents/Status.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace AppleEvents
{
namespace
{

constexpr std::string_view kBusItself = "org.freedesktop.DBus";

std::string_view SenderOf(sd_bus_message* message)
{
    const char* const sender = sd_bus_message_get_sender(message);
    return sender ? sender : std::string_view();
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
    reply.clear();
    m_call = Call{name, 0, 0, {}, {}, {}};
    OSErr status = AskForOwner(deadline);
    MessageRef message;
    int result = 0;
    if (status == noErr)
        result = NewEventMessage(m_bus.get(), name, event, message);
    if (status == noErr && result >= 0)
        result = sd_bus_send(m_bus.get(), message.get(), &m_call->nEventCookie);
    if (status == noErr && result < 0)
        status = StatusForErrno(result);
    if (status == noErr)
        status = WaitFor([this] { return m_call->answer != nullptr; }, deadline);
    if (status == noErr)
        status = ReadReply(m_call->answer.get(), reply);
    if (status != noErr)
        reply.clear();
    // A late reply finds no call.
    m_call.reset();
    return status;
}

OSErr Sender::SendOnly(const std::string& name, const EventStorage& event, const Deadline& deadline)
{
    // Nobody reports on a message that wants no reply, so the owner is waited for.
    m_call = Call{name, 0, 0, {}, {}, {}};
    OSErr status = AskForOwner(deadline);
    if (status == noErr)
        status = WaitFor([this] { return m_call->answer || !m_call->owner.empty(); }, deadline);
    const MessageRef refusal = m_call ? std::move(m_call->answer) : nullptr;
    m_call.reset();
    if (status != noErr)
        return status;
    if (refusal)
    {
        Parameters none;
        return ReadReply(refusal.get(), none);
    }

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
    // The bus object keeps the filter for as long as it lives.
    if (wait == Wait::Done && sd_bus_add_filter(m_bus.get(), nullptr, TakeReply, this) >= 0)
        return noErr;
    m_bus.reset();
    return wait == Wait::TimedOut ? OSErr(errAETimeout) : OSErr(procNotFound);
}

OSErr Sender::AskForOwner(const Deadline& deadline)
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
        const int result = SendOwnerQuestion();
        if (result >= 0)
            return noErr;
        if (!MeansLost(result))
            return StatusForErrno(result);
        m_bus.reset();
    }
}

int Sender::SendOwnerQuestion()
{
    MessageRef question;
    const int result = NewOwnerQuestion(m_bus.get(), m_call->name, question);
    return result < 0 ? result : sd_bus_send(m_bus.get(), question.get(), &m_call->nOwnerCookie);
}

int Sender::TakeReply(sd_bus_message* message, void* sender, sd_bus_error*)
{
    auto& self = *static_cast<Sender*>(sender);
    std::uint64_t cookie = 0;
    if (!self.m_call || sd_bus_message_get_reply_cookie(message, &cookie) < 0)
        return 0;
    if (cookie == self.m_call->nOwnerCookie && SenderOf(message) == kBusItself)
        self.TakeOwner(message);
    else if (cookie == self.m_call->nEventCookie)
        self.TakeAnswer(message);
    return 1;
}

void Sender::TakeOwner(sd_bus_message* reply)
{
    const char* owner = nullptr;
    if (sd_bus_message_is_method_error(reply, nullptr) > 0 ||
        sd_bus_message_read(reply, "s", &owner) < 0)
    {
        m_call->answer.reset(sd_bus_message_ref(reply));
        return;
    }
    m_call->owner = owner;
    if (m_call->foreign && SenderOf(m_call->foreign.get()) == m_call->owner)
        m_call->answer = std::move(m_call->foreign);
    m_call->foreign.reset();
}

void Sender::TakeAnswer(sd_bus_message* reply)
{
    const std::string_view sender = SenderOf(reply);
    if (sender == kBusItself || sender == m_call->owner)
    {
        m_call->answer.reset(sd_bus_message_ref(reply));
        return;
    }
    // Between the question and the call the name may have passed to another.
    m_call->foreign.reset(sd_bus_message_ref(reply));
    SendOwnerQuestion();
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
