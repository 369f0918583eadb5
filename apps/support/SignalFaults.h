// What a signal side can do wrong on request, so that views can be tested beside one that does.
#pragma once

#include <set>
#include <string_view>
#include <vector>

namespace Tarvane
{

enum class SignalFault
{
    IndexNeverNegative,     // 64007 goes on answering the last index, and 64000 is raised twice
    ElementsUnannounced,    // 64000 is never raised
    RecordShort,            // 64002 ends before the times of the dub
    PathsUnterminated,      // the paths fill their fields
    NanPosition,            // of the dub
    InfinitePosition,       // likewise
    NanRegion,              // the dub's start and end
    InfiniteRegion,         // the dub's end
    FileDiscarded,          // the dub is removed before it is announced
    AckIgnored,             // the element stays the one to deliver
    ArmUnreported,          // 64004 is never raised
    ArmIgnored,             // 64005 changes nothing
    TrackForgotten,         // 64009 keeps what it was
    SixteenThreads,         // 64010 from 16 threads all the time
    Storm,                  // 64010 a hundred thousand times a second
    DisposedWhileNotifying, // the unit goes before the view, while 16 threads notify
};

using SignalFaults = std::set<SignalFault>;

struct SignalFaultKind
{
    const char* szName;
    SignalFault fault;
    const char* szMeaning; // completes "the plug-in ..."
};

// Every fault that can be asked for.
const std::vector<SignalFaultKind>& SignalFaultKinds();

// Reads "NAME[,NAME...]". Throws std::invalid_argument, whose text says what can be asked for.
SignalFaults ParseSignalFaults(std::string_view names);

} // namespace Tarvane
