// What an application's Info.plist says about it elsewhere, a process says here.
#pragma once

#include <MacTypes.h>

extern "C"
{

    /// The four-character signature under which this process receives Apple events. Main thread,
    /// before the first AEInstallEventHandler; a receiver that is already open keeps the signature
    /// that it has. 0 is no signature.
    void TarvaneSetApplicationSignature(OSType signature);

    /// Waits for events, at most for so many seconds, and has their handlers called. Returns at any
    /// time before, so that the caller may look at what else it waits for. Main thread.
    void TarvaneHandleEvents(double seconds);
}
