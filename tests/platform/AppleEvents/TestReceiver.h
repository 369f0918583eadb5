// The events that the receiver program of these tests handles, all of class 'Test'.
#pragma once

#include <AE/AppleEvents.h>

namespace TestReceiver
{

inline constexpr AEEventClass kClass = 'Test';

enum Event : AEEventID
{
    kEcho = 'Echo',  ///< answers with the parameters 'Aaaa', 'Bbbb' and '----' that came
    kFail = 'Fail',  ///< returns the status in '----' (typeSInt16), with a reply parameter as well
    kSlow = 'Slow',  ///< sleeps for the milliseconds of '----' (typeSInt32), then echoes 'Aaaa'
    kBulk = 'Bulk',  ///< answers with as many bytes as '----' (typeSInt32) says
    kDie = 'Die!',   ///< ends the process without an answer
    kCount = 'Cnt ', ///< answers with the number of events handled before, as typeSInt32
    kThrow = 'Thro', ///< throws a C++ exception
    kThrowInt = 'ThrI',  ///< throws a number
    kRaise = 'Rais',     ///< raises an NSException
    kNest = 'Nest',      ///< answers once another event has come, handled by a run loop within
    kMode = 'Mode',      ///< from now on the run loop runs in the mode that '----' names (UTF-8)
    kKill = 'Kill',      ///< kills the process whose id is in '----' (typeSInt32), then sleeps
    kRemoveAll = 'RmAl', ///< removes every handler
    kBack = 'Back',      ///< removes every handler and installs them again
    kRemove = 'Rmve',    ///< removes the handler for kEcho
    kSpin = 'Spin',      ///< answers with the passes of the run loop until now, as typeSInt32
    kSuspend = 'Susp',   ///< suspends itself, and returns noErr
    kClock = 'Clck', ///< sets the process's clock back by an hour, '----' (typeSInt32) ms from now
    kNow = 'Now '    ///< answers with the process's time of day, typeSInt32 seconds
};

} // namespace TestReceiver
