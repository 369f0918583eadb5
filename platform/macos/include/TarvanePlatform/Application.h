#pragma once

#include <MacTypes.h>

extern "C"
{
    /// The signature under which this process receives events. Here it stands in the Info.plist of
    /// the application, by which the system finds it: this makes the process an application, and
    /// says on the standard error stream when its bundle states another signature, or none. Main
    /// thread, before the first handler is installed.
    void TarvaneSetApplicationSignature(OSType signature);

    /// Waits for events, at most for so many seconds, and has their handlers called. Returns at any
    /// time before, so that the caller may look at what else it waits for. Main thread.
    void TarvaneHandleEvents(double seconds);
}
