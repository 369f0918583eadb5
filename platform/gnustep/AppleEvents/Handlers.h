#pragma once

#include "platform/gnustep/AppleEvents/Storage.h"

#include <AE/AppleEvents.h>

#include <map>
#include <utility>

namespace AppleEvents
{

/// The handlers of this process, by class and id. Main thread.
class Handlers
{
public:
    void Install(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                 void* refcon);

    /// Null stands for any handler. False: there was none like it.
    bool Remove(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler);

    bool IsEmpty() const { return m_handlers.empty(); }

    /// What a handler made of an event.
    struct Outcome
    {
        OSErr status;
        /// Of a suspended event, with its reply: the caller's from then on.
        bool fSuspended = false;
        AEDesc event = kNullDescriptor;
        AEDesc reply = kNullDescriptor;
    };

    /// Runs the event's handler; the status is errAEEventNotHandled without one. A handler
    /// that throws has failed with errAEEventFailed (memFullErr when it ran out of memory). With a
    /// null answer the handler is told that no reply is wanted.
    Outcome Run(EventStorage event, Parameters* answer) const;

private:
    struct Handler
    {
        AEEventHandlerUPP routine;
        void* refcon;
    };

    std::map<std::pair<AEEventClass, AEEventID>, Handler> m_handlers;
};

} // namespace AppleEvents
