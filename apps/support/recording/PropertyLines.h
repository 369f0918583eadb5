// Properties and notifications as lines of a recording.
#pragma once

#include "apps/support/recording/RecordedText.h"

#include <AudioUnit/AudioUnit.h>

#include <string>

namespace Tarvane
{

/// What passed between the plug-in and its view, once.
struct SeenProperty
{
    enum class Kind
    {
        Read,
        Write,
        Notification
    } kind;
    AudioUnitPropertyID nId;
    AudioUnitScope nScope;
    AudioUnitElement nElement;
    bool fMainThread;
    OSStatus nStatus;     ///< of a read or write
    std::string strBytes; ///< what was read or written; empty for a read that failed

    /// Whether the two make one line when they come one soon after the other. The two that tell how
    /// far a capture is do so whatever they tell.
    bool IsRepeatOf(const SeenProperty& other) const;
};

/// All but the times.
RecordedJson PropertyLine(const SeenProperty& seen);

} // namespace Tarvane
