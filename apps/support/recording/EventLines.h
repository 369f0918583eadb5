// Events and their replies as lines of a recording.
#pragma once

#include "apps/support/recording/RecordedText.h"

#include <Carbon/Carbon.h>

#include <string_view>
#include <vector>

namespace Tarvane
{

struct SeenParameter
{
    AEKeyword nKeyword;
    DescType nType;
    std::string_view bytes;
};

/// An event that goes out.
struct SeenEvent
{
    UInt32 nNumber; ///< of its reply as well
    OSType nTarget;
    AEEventClass nClass;
    AEEventID nId;
    std::vector<SeenParameter> parameters;
};

/// What came of it.
struct SeenReply
{
    UInt32 nNumber;
    OSErr nStatus;
    UInt64 nMicroseconds; ///< that it took
    std::vector<SeenParameter> parameters;
};

/// All but the time.
RecordedJson EventLine(const SeenEvent& event);
RecordedJson ReplyLine(const SeenReply& reply);

} // namespace Tarvane
