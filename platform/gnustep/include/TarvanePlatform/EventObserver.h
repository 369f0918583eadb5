// What this process sends as Apple events and what comes back, for programs that show or keep it.
#pragma once

#include <AE/AppleEvents.h>

extern "C"
{

    /// A parameter of an event or of a reply. The data is the bytes as they travel.
    struct TarvaneSeenParameter
    {
        AEKeyword keyword;
        DescType type;
        const void* data; ///< lives as long as the call that shows it
        Size size;        ///< bytes
    };

    /// An event on its way out or, when it has ended, what came of it.
    struct TarvaneSeenEvent
    {
        UInt32 number; ///< rising from 1; both sides of an event have the same
        Boolean ended;
        OSType target; ///< 0 when the event is addressed to no signature
        AEEventClass eventClass;
        AEEventID eventID;
        const TarvaneSeenParameter* parameters; ///< of the event, or of its reply; by keyword
        UInt32 parameterCount;
        OSErr status;        ///< what AESend answers; 0 until the event has ended
        UInt64 microseconds; ///< since the event went out; 0 until it has ended
    };

    /// Called on the sending thread, in AESend: before the event goes out, and before AESend
    /// returns. It must not send events, set observers or throw.
    using TarvaneEventObserverProc = void (*)(const TarvaneSeenEvent* event, void* refcon);

    /// Has every event of this process shown to the observer, which takes the place of the one
    /// before; null shows them to nobody. An event that is under way meanwhile is shown to neither.
    /// Any thread. When this returns, the observer before is not called any more.
    void TarvaneSetEventObserver(TarvaneEventObserverProc observer, void* refcon);
}
