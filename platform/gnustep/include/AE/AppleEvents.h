// Sending Apple events, and receiving them.
#pragma once

#include <AE/AEDataModel.h>
#include <AE/AEErrors.h>

using AESendMode = SInt32;
using AESendPriority = SInt16;

enum : AESendMode
{
    kAENoReply = 0x00000001,
    kAEQueueReply = 0x00000002,
    kAEWaitReply = 0x00000003,
    kAENeverInteract = 0x00000010,
    kAECanInteract = 0x00000020,
    kAEAlwaysInteract = 0x00000030,
    kAECanSwitchLayer = 0x00000040
};

enum : AESendPriority
{
    kAENormalPriority = 0x00000000,
    kAEHighPriority = 0x00000001
};

/// Timeouts, in ticks of 1/60 second.
enum : SInt32
{
    kAEDefaultTimeout = -1, ///< one minute
    kNoTimeOut = -2
};

using AEIdleProcPtr = Boolean (*)(void* theEvent, SInt32* sleepTime, void* mouseRgn);
using AEIdleUPP = AEIdleProcPtr;
using AEFilterProcPtr = Boolean (*)(void* theEvent, SInt32 returnID, SInt32 transactionID,
                                    const void* sender);
using AEFilterUPP = AEFilterProcPtr;

/// A handler reads theAppleEvent and puts its answer into reply; both stay the manager's. When the
/// sender wants no reply, reply is a null descriptor. What the handler returns is the status of the
/// sender's AESend; the sender is given reply's parameters only when that is noErr.
using AEEventHandlerProcPtr = OSErr (*)(const AppleEvent* theAppleEvent, AppleEvent* reply,
                                        void* handlerRefcon);
using AEEventHandlerUPP = AEEventHandlerProcPtr;

/// A dispatcher for AEResumeTheCurrentEvent.
constexpr AEEventHandlerUPP kAENoDispatch = nullptr;

extern "C"
{

    /// Sends an event to the application whose signature is the event's target, and with
    /// kAEWaitReply waits for its reply, without running the run loop. Any thread; each thread that
    /// sends has a connection of its own for as long as it lives. The event stays the caller's and
    /// may be sent again. *reply is overwritten without being disposed of: a new event that the
    /// caller disposes of on noErr, a null descriptor otherwise.
    ///
    /// sendMode is kAEWaitReply or kAENoReply (reply may then be null, and only the sending is
    /// waited for), with any of the interaction flags, which change nothing. sendPriority, idleProc
    /// and filterProc are not used. timeOutInTicks bounds the whole call, connecting included.
    ///
    /// noErr               the handler answered noErr
    /// procNotFound        no session bus, or no application has this signature (none is started)
    /// errAETimeout        no reply within timeOutInTicks. The receiver may still be at work or get
    ///                     to the event later; nothing is sent twice, and its reply is dropped.
    /// connectionInvalid   the application or the bus went away while the call waited
    /// errAEEventNotHandled  the application has no handler for the event's class and id
    /// bufferIsSmall       the event's parameters, or the reply's, are over 16 MiB
    /// errAEUnknownAddressType  the target is no typeApplSignature of four bytes
    /// errAENotAppleEvent  theAppleEvent is not an event
    /// errAEUnknownSendMode, paramErr  sendMode or timeOutInTicks has no meaning, or reply is
    /// missing errAECorruptData, errAEEventNotPermitted, memFullErr  the peer's reply makes no
    /// sense, the bus
    ///                     forbids it, memory or a limit of the bus is exhausted
    /// any other number    the status that the handler returned
    OSErr AESend(const AppleEvent* theAppleEvent, AppleEvent* reply, AESendMode sendMode,
                 AESendPriority sendPriority, SInt32 timeOutInTicks, AEIdleUPP idleProc,
                 AEFilterUPP filterProc);

    /// Main thread. Installs the handler for one class and id, in place of the one before it. The
    /// first handler makes the process the receiver of its signature
    /// (<TarvanePlatform/Application.h>): events are handled from then on whenever the main
    /// thread's run loop runs in its default, modal-panel or event-tracking mode. When the bus is
    /// back after a loss, so is the receiver. isSysHandler means nothing.
    ///
    /// noErr                  installed, and the process owns its signature
    /// errAEDuplicateHandler  another process receives events for this signature
    /// procNotFound           there is no session bus to connect to
    /// errAETimeout           the session bus did not answer within the default timeout
    /// errAEEventNotPermitted, memFullErr  the bus refuses, or memory is exhausted
    /// paramErr               no handler, no signature, or not the main thread
    /// On every failure nothing is installed, and the call may be made again.
    OSErr AEInstallEventHandler(AEEventClass theAEEventClass, AEEventID theAEEventID,
                                AEEventHandlerUPP handler, void* handlerRefcon,
                                Boolean isSysHandler);

    /// Main thread. A null handler stands for whichever is installed. With the last handler the
    /// process stops being a receiver and gives up its name. errAEHandlerNotFound: there is no such
    /// handler.
    OSErr AERemoveEventHandler(AEEventClass theAEEventClass, AEEventID theAEEventID,
                               AEEventHandlerUPP handler, Boolean isSysHandler);

    /// Within the handler of the event: no reply goes out when the handler returns, and the sender
    /// waits on, until the event is resumed or its time is over. The event and its reply stay valid
    /// until then; keep copies of both descriptors.
    /// errAENotAppleEvent: theAppleEvent is no event.
    OSErr AESuspendTheCurrentEvent(const AppleEvent* theAppleEvent);

    /// Main thread, once for an event that was suspended: sends the reply, and disposes of both. No
    /// event is dispatched again: dispatcher is kAENoDispatch. A sender that has gone is no news.
    /// paramErr: no such event is suspended, any other dispatcher, or another thread.
    OSErr AEResumeTheCurrentEvent(const AppleEvent* theAppleEvent, const AppleEvent* reply,
                                  AEEventHandlerUPP dispatcher, void* handlerRefcon);

    /// A routine pointer is its own universal pointer; both exist for callers' sake.
    AEEventHandlerUPP NewAEEventHandlerUPP(AEEventHandlerProcPtr userRoutine);
    void DisposeAEEventHandlerUPP(AEEventHandlerUPP userUPP);
}
