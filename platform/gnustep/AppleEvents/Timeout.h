#pragma once

#include "platform/gnustep/AppleEvents/Deadline.h"

#include <MacTypes.h>

#include <optional>

namespace AppleEvents
{

/// When a call that starts now with this timeout gives up: ticks of 1/60 second,
/// kAEDefaultTimeout or kNoTimeOut. Nothing for any other negative number.
std::optional<Deadline> DeadlineForTicks(SInt32 ticks);

/// What kAEDefaultTimeout stands for: one minute, or fewer ticks when the variable's text (null
/// when it is not set) is a whole number of them, 1 to 3600. Any other text is passed over.
SInt32 DefaultTimeoutTicks(const char* szVariable);

} // namespace AppleEvents
