#include "platform/gnustep/AppleEvents/Receiver.h"

#include "platform/gnustep/AppleEvents/Status.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include <poll.h>

namespace AppleEvents
{
namespace
{

constexpr std::uint64_t kLastReplyMicroseconds = 1'000'000;
constexpr std::uint64_t kFirstReconnectMicroseconds = 50'000;
constexpr std::uint64_t kLastReconnectMicroseconds = 1'000'000;

// So that a flood of events leaves room for the rest of the application.
constexpr int kMessagesAPass = 16;

// Senders come and go; whoever is still there is asked about again.
constexpr std::size_t kMostProcessesKept = 256;

// What RequestName answers.
constexpr std::uint32_t kPrimaryOwner = 1;
constexpr std::uint32_t kAlreadyOwner = 4;

void Reply(sd_bus_message* request, OSErr status, const Parameters& answer)
{
    sd_bus_message* created = nullptr;
    int result = sd_bus_message_new_method_return(request, &created);
    const MessageRef reply(created);
    if (result >= 0)
        result = sd_bus_message_append(created, "n", int(status));
    if (result >= 0)
        result = AppendParameters(created, answer);
    if (result >= 0)
        result = sd_bus_send(sd_bus_message_get_bus(request), created, nullptr);
    // A sender or a bus that has gone is no news to anybody.
    if (result < 0 && !MeansLost(result))
        std::fprintf(stderr, "Apple events: a reply could not be sent (%d)\n", result);
}

void ReplyThatFits(sd_bus_message* request, OSErr status, const Parameters& answer)
{
    if (FitsInMessage(answer))
        Reply(request, status, answer);
    else
        Reply(request, bufferIsSmall, Parameters());
}

} // namespace

const sd_bus_vtable Receiver::kMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD(kSendMember, kRequestTypes, kReplyTypes, Receiver::KeepRequest,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

OSErr Receiver::Open(OSType signature, const Deadline& deadline)
{
    if (m_fCloseWhenServed)
    {
        m_fCloseWhenServed = false;
        return noErr;
    }
    m_name = BusNameForSignature(signature);
    OSErr status = Connect(deadline);
    if (status == noErr)
    {
        const Wait wait = ProcessUntil(m_bus.get(), deadline,
                                       [this]
                                       {
                                           ServeRequest();
                                           return m_ownership != Ownership::Asked;
                                       });
        status = StatusOfOpening(wait);
    }
    if (status == noErr)
        WatchConnection();
    else
        Close();
    return status;
}

void Receiver::Close()
{
    m_fCloseWhenServed = m_nServing > 0;
    if (m_fCloseWhenServed)
        return;
    Disconnect();
    m_watch.CancelWake();
    m_name.clear();
}

OSErr Receiver::Connect(const Deadline& deadline)
{
    m_ownership = Ownership::Asked;
    if (const OSErr status = StartConnection(m_bus, deadline))
        return status;
    sd_bus_slot* slot = nullptr;
    int result =
        sd_bus_add_object_vtable(m_bus.get(), &slot, kObjectPath, kInterface, kMethods, this);
    m_object.reset(slot);
    if (result >= 0)
    {
        slot = nullptr;
        result =
            sd_bus_request_name_async(m_bus.get(), &slot, m_name.c_str(), 0, NoteOwnership, this);
        m_question.reset(slot);
    }
    if (result >= 0)
        return noErr;
    Disconnect();
    return StatusForErrno(result);
}

void Receiver::Disconnect()
{
    m_watch.Release();
    m_processes.clear();
    m_request.reset();
    m_question.reset();
    m_object.reset();
    m_bus.reset();
}

OSErr Receiver::StatusOfOpening(Wait wait) const
{
    if (wait == Wait::TimedOut)
        return errAETimeout;
    if (wait == Wait::Lost)
        return procNotFound;
    switch (m_ownership)
    {
    case Ownership::Owner:
        return noErr;
    case Ownership::Taken:
        return errAEDuplicateHandler;
    default:
        return errAEEventNotPermitted;
    }
}

void Receiver::Wake()
{
    if (m_name.empty())
        return;
    if (!m_bus && Connect(Deadline::After(0)) != noErr)
        ReconnectLater();
    else
        Process();
}

void Receiver::Process()
{
    // A handler may close the receiver, and may run the run loop and so come back in here: what is
    // at hand is looked at anew after each.
    for (int i = 0; i < kMessagesAPass && m_bus; i++)
    {
        const int processed = sd_bus_process(m_bus.get(), nullptr);
        if (processed < 0 || m_ownership == Ownership::Taken || m_ownership == Ownership::Refused)
        {
            ReconnectLater();
            return;
        }
        // Before the handler, so that a run loop within it serves the next event.
        WatchConnection();
        if (processed == 0)
            return;
        ServeRequest();
    }
    WatchConnection();
}

void Receiver::ReconnectLater()
{
    Disconnect();
    m_nReconnectDelay =
        std::clamp(2 * m_nReconnectDelay, kFirstReconnectMicroseconds, kLastReconnectMicroseconds);
    m_watch.WakeAfter(m_nReconnectDelay);
}

void Receiver::WatchConnection()
{
    if (!m_bus)
        return;
    const int events = sd_bus_get_events(m_bus.get());
    std::uint64_t instant = kForever;
    if (events < 0 || sd_bus_get_timeout(m_bus.get(), &instant) < 0)
    {
        ReconnectLater();
        return;
    }
    m_watch.Watch(sd_bus_get_fd(m_bus.get()), events & POLLIN, events & POLLOUT);
    const std::uint64_t now = MonotonicMicroseconds();
    if (instant == kForever)
        m_watch.CancelWake();
    else
        m_watch.WakeAfter(instant > now ? instant - now : 0);
}

void Receiver::ServeRequest()
{
    if (!m_request)
        return;
    const MessageRef request = std::move(m_request);
    m_nServing++;
    Answer(request.get());
    m_nServing--;
    if (m_fCloseWhenServed && m_nServing == 0)
        CloseAfterServing();
}

void Receiver::Answer(sd_bus_message* request)
{
    const bool fWantsReply = sd_bus_message_get_expect_reply(request) > 0;
    Parameters answer;
    bool fSuspended = false;
    const OSErr status = WithoutExceptions(
        [&]
        {
            EventStorage event;
            if (const OSErr unreadable = ReadRequest(request, event))
                return unreadable;
            event.senderProcess = ProcessOf(request);
            const Handlers::Outcome outcome =
                m_handlers.Run(std::move(event), fWantsReply ? &answer : nullptr);
            fSuspended = outcome.fSuspended;
            if (fSuspended)
                m_suspended.push_back(
                    {MessageRef(fWantsReply ? sd_bus_message_ref(request) : nullptr), outcome.event,
                     outcome.reply});
            return outcome.status;
        });
    if (fWantsReply && !fSuspended)
        ReplyThatFits(request, status, answer);
}

SInt32 Receiver::ProcessOf(sd_bus_message* request)
{
    const char* const sender = sd_bus_message_get_sender(request);
    if (!sender)
        return 0;
    if (const auto found = m_processes.find(sender); found != m_processes.end())
        return found->second;
    sd_bus_creds* creds = nullptr;
    pid_t process = 0;
    if (sd_bus_get_name_creds(m_bus.get(), sender, SD_BUS_CREDS_PID, &creds) >= 0)
        sd_bus_creds_get_pid(creds, &process);
    sd_bus_creds_unref(creds);
    if (m_processes.size() >= kMostProcessesKept)
        m_processes.clear();
    m_processes.emplace(sender, process);
    // What came in while the bus was asked waits for no descriptor any more.
    WatchConnection();
    return process;
}

bool Receiver::Resume(const AppleEvent* event)
{
    const auto found = std::find_if(m_suspended.begin(), m_suspended.end(),
                                    [=](const Suspended& suspended)
                                    { return suspended.event.dataHandle == event->dataHandle; });
    if (found == m_suspended.end())
    {
        // Still within its handler: the reply goes out when that returns.
        EventStorage* const underWay = EventOf(event);
        const bool fUnderWay = underWay && underWay->fSuspended;
        if (fUnderWay)
            underWay->fSuspended = false;
        return fUnderWay;
    }
    Suspended suspended = std::move(*found);
    m_suspended.erase(found);
    if (const EventStorage* const reply = EventOf(&suspended.reply); reply && suspended.request)
        ReplyThatFits(suspended.request.get(), noErr, reply->parameters);
    AEDisposeDesc(&suspended.event);
    AEDisposeDesc(&suspended.reply);
    WatchConnection();
    return true;
}

void Receiver::CloseAfterServing()
{
    std::uint64_t queued = 0;
    if (m_bus)
        ProcessUntil(
            m_bus.get(), Deadline::After(kLastReplyMicroseconds),
            [&] { return sd_bus_get_n_queued_write(m_bus.get(), &queued) < 0 || queued == 0; });
    Close();
}

int Receiver::KeepRequest(sd_bus_message* message, void* receiver, sd_bus_error*)
{
    // The handler runs outside sd_bus_process, which does not let itself be called from within.
    static_cast<Receiver*>(receiver)->m_request.reset(sd_bus_message_ref(message));
    return 1;
}

int Receiver::NoteOwnership(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    auto* const receiver = static_cast<Receiver*>(userdata);
    std::uint32_t answer = 0;
    if (sd_bus_message_is_method_error(message, nullptr) > 0 ||
        sd_bus_message_read(message, "u", &answer) < 0)
        receiver->m_ownership = Ownership::Refused;
    else if (answer == kPrimaryOwner || answer == kAlreadyOwner)
        receiver->m_ownership = Ownership::Owner;
    else
        receiver->m_ownership = Ownership::Taken;
    if (receiver->m_ownership == Ownership::Owner)
        receiver->m_nReconnectDelay = 0;
    return 1;
}

} // namespace AppleEvents
