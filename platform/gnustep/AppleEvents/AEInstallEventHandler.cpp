#include <AE/AppleEvents.h>
#include <TarvanePlatform/Application.h>

#include "platform/gnustep/AppleEvents/Handlers.h"
#include "platform/gnustep/AppleEvents/Receiver.h"
#include "platform/gnustep/AppleEvents/Storage.h"
#include "platform/gnustep/AppleEvents/Timeout.h"

#include <unistd.h>

using namespace AppleEvents;

namespace
{

struct Application
{
    OSType signature = 0;
    Handlers handlers;
    Receiver receiver{handlers};
};

// Never destroyed: the run loop may be at work until the process ends.
Application& ThisApplication()
{
    static Application& application = *new Application;
    return application;
}

bool IsMainThread()
{
    return gettid() == getpid();
}

} // namespace

void TarvaneSetApplicationSignature(OSType signature)
{
    ThisApplication().signature = signature;
}

OSErr AEInstallEventHandler(AEEventClass theAEEventClass, AEEventID theAEEventID,
                            AEEventHandlerUPP handler, void* handlerRefcon, Boolean)
{
    if (!handler || !IsMainThread())
        return paramErr;
    return WithoutExceptions(
        [&]
        {
            Application& application = ThisApplication();
            if (application.signature == 0)
                return OSErr(paramErr);
            if (!application.receiver.IsOpen())
            {
                const Deadline deadline = *DeadlineForTicks(kAEDefaultTimeout);
                if (const OSErr status = application.receiver.Open(application.signature, deadline))
                    return status;
            }
            application.handlers.Install(theAEEventClass, theAEEventID, handler, handlerRefcon);
            return OSErr(noErr);
        });
}

OSErr AERemoveEventHandler(AEEventClass theAEEventClass, AEEventID theAEEventID,
                           AEEventHandlerUPP handler, Boolean)
{
    if (!IsMainThread())
        return paramErr;
    Application& application = ThisApplication();
    if (!application.handlers.Remove(theAEEventClass, theAEEventID, handler))
        return errAEHandlerNotFound;
    if (application.handlers.IsEmpty())
        application.receiver.Close();
    return noErr;
}

OSErr AESuspendTheCurrentEvent(const AppleEvent* theAppleEvent)
{
    EventStorage* const event = EventOf(theAppleEvent);
    if (!event)
        return errAENotAppleEvent;
    event->fSuspended = true;
    return noErr;
}

OSErr AEResumeTheCurrentEvent(const AppleEvent* theAppleEvent, const AppleEvent*,
                              AEEventHandlerUPP dispatcher, void*)
{
    if (!theAppleEvent || dispatcher != kAENoDispatch || !IsMainThread())
        return paramErr;
    return ThisApplication().receiver.Resume(theAppleEvent) ? OSErr(noErr) : OSErr(paramErr);
}

AEEventHandlerUPP NewAEEventHandlerUPP(AEEventHandlerProcPtr userRoutine)
{
    return userRoutine;
}

void DisposeAEEventHandlerUPP(AEEventHandlerUPP) {}
