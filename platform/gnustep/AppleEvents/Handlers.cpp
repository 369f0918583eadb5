#include "platform/gnustep/AppleEvents/Handlers.h"

#include <cstdio>
#include <exception>
#include <utility>

namespace AppleEvents
{
namespace
{

// Disposes of a descriptor that lives for one call.
class ScopedDesc
{
public:
    explicit ScopedDesc(const AEDesc& desc) : m_desc(desc) {}
    ~ScopedDesc() { AEDisposeDesc(&m_desc); }
    ScopedDesc(const ScopedDesc&) = delete;
    ScopedDesc& operator=(const ScopedDesc&) = delete;

    AEDesc* Get() { return &m_desc; }
    AEDesc Release() { return std::exchange(m_desc, kNullDescriptor); }

private:
    AEDesc m_desc;
};

// No exception of a handler may reach the run loop: there it would end the receiver. The last
// clause takes Objective-C exceptions too.
OSErr Call(AEEventHandlerUPP routine, const AppleEvent* event, AppleEvent* reply, void* refcon)
{
    try
    {
        return routine(event, reply, refcon);
    }
    catch (const std::bad_alloc&)
    {
        return memFullErr;
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "Apple events: a handler failed: %s\n", failure.what());
    }
    catch (...)
    {
        std::fprintf(stderr, "Apple events: a handler failed\n");
    }
    return errAEEventFailed;
}

} // namespace

void Handlers::Install(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                       void* refcon)
{
    m_handlers.insert_or_assign({eventClass, eventID}, Handler{handler, refcon});
}

bool Handlers::Remove(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler)
{
    const auto found = m_handlers.find({eventClass, eventID});
    if (found == m_handlers.end() || (handler && found->second.routine != handler))
        return false;
    m_handlers.erase(found);
    return true;
}

Handlers::Outcome Handlers::Run(EventStorage event, Parameters* answer) const
{
    const auto found = m_handlers.find({event.eventClass, event.eventID});
    if (found == m_handlers.end())
        return {errAEEventNotHandled};
    // A copy: the handler may remove itself.
    const Handler handler = found->second;
    ScopedDesc request(NewEventDescriptor(std::move(event)));
    ScopedDesc reply(answer ? NewEventDescriptor(EventStorage()) : kNullDescriptor);
    const OSErr status = Call(handler.routine, request.Get(), reply.Get(), handler.refcon);
    if (EventOf(request.Get())->fSuspended)
        return {noErr, true, request.Release(), reply.Release()};
    EventStorage* const filled = EventOf(reply.Get());
    if (status == noErr && answer && filled)
        *answer = std::move(filled->parameters);
    return {status};
}

} // namespace AppleEvents
