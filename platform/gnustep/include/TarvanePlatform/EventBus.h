// What Apple events travel over elsewhere is always there; here it is a session bus, and a program
// that helps its user may ask for it.
#pragma once

#include <MacTypes.h>

#include <sys/types.h>

extern "C"
{

    /// Whether there is a session bus that takes connections, by a connection of its own that is
    /// closed again. Any thread; blocks for the timeout at most, in ticks as AESend takes them.
    ///
    /// noErr         there is
    /// procNotFound  there is none: its address is not known, or nobody is there
    /// errAETimeout  somebody is there and does not answer
    /// paramErr, memFullErr  the timeout has no meaning, or memory is exhausted
    OSErr TarvaneCheckEventBus(SInt32 timeOutInTicks);

    /// The error that answered the last event which this thread sent, in the bus's own words: its
    /// name and its text, UTF-8. Empty when no error came from the bus or from the receiver. Lives
    /// until the thread sends again.
    const char* TarvaneLastEventError(void);

    /// The process that receives the events of a signature now; 0 when there is none, or nobody
    /// tells within the timeout. Thread and connection as above.
    pid_t TarvaneEventReceiverProcess(OSType signature, SInt32 timeOutInTicks);
}
