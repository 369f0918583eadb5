#include <AE/AppleEvents.h>

#include "platform/gnustep/AppleEvents/Observation.h"
#include "platform/gnustep/AppleEvents/Sender.h"
#include "platform/gnustep/AppleEvents/Storage.h"
#include "platform/gnustep/AppleEvents/Timeout.h"
#include "platform/gnustep/AppleEvents/Wire.h"

#include <cstring>

using namespace AppleEvents;

namespace
{

constexpr AESendMode kReplyModeMask = 0x00000003;

OSErr TargetName(const EventStorage& event, std::string& name)
{
    OSType signature = 0;
    if (event.target.type != typeApplSignature || event.target.bytes.size() != sizeof signature)
        return errAEUnknownAddressType;
    std::memcpy(&signature, event.target.bytes.data(), sizeof signature);
    name = BusNameForSignature(signature);
    return noErr;
}

OSErr SendForReply(const std::string& name, const EventStorage& event, AppleEvent* reply,
                   const Deadline& deadline)
{
    EventStorage answer;
    const OSErr status =
        Sender::ForThisThread().SendAndWait(name, event, answer.parameters, deadline);
    if (status == noErr)
        *reply = NewEventDescriptor(std::move(answer));
    return status;
}

OSErr Send(const EventStorage& event, AppleEvent* reply, AESendMode mode, SInt32 ticks)
{
    const std::optional<Deadline> deadline = DeadlineForTicks(ticks);
    if (!deadline)
        return paramErr;
    if (!FitsInMessage(event.parameters))
        return bufferIsSmall;
    std::string name;
    if (const OSErr status = TargetName(event, name))
        return status;
    switch (mode & kReplyModeMask)
    {
    case kAEWaitReply:
        return reply ? SendForReply(name, event, reply, *deadline) : OSErr(paramErr);
    case kAENoReply:
        return Sender::ForThisThread().SendOnly(name, event, *deadline);
    default:
        return errAEUnknownSendMode;
    }
}

} // namespace

OSErr AESend(const AppleEvent* theAppleEvent, AppleEvent* reply, AESendMode sendMode,
             AESendPriority, SInt32 timeOutInTicks, AEIdleUPP, AEFilterUPP)
{
    if (reply)
        *reply = kNullDescriptor;
    const EventStorage* const event = EventOf(theAppleEvent);
    if (!event)
        return errAENotAppleEvent;
    return WithoutExceptions(
        [&]
        {
            LastError().clear();
            const Observation observation(*event);
            const OSErr status = Send(*event, reply, sendMode, timeOutInTicks);
            observation.Ended(status, EventOf(reply));
            return status;
        });
}
