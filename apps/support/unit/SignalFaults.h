// What a signal side can do wrong on request, so that views can be tested beside one that does.
#pragma once

#include <set>
#include <string_view>
#include <vector>

namespace Tarvane
{

enum class SignalFault
{
    IndexNeverNegative,     ///< 64007 goes on answering the last index, and 64000 is raised twice
    ElementsUnannounced,    ///< 64000 is never raised
    RecordShort,            ///< 64002 ends before the times of the dub
    PathsUnterminated,      ///< the paths fill their fields
    NanPosition,            ///< of the dub
    InfinitePosition,       ///< likewise
    NanRegion,              ///< the dub's start and end
    InfiniteRegion,         ///< the dub's end
    FileDiscarded,          ///< the dub is removed before it is announced
    AckIgnored,             ///< the element stays the one to deliver
    ArmUnreported,          ///< 64004 is never raised
    ArmIgnored,             ///< 64005 changes nothing
    TrackForgotten,         ///< 64009 keeps what it was
    SixteenThreads,         ///< 64010 from 16 threads all the time
    Storm,                  ///< 64010 a hundred thousand times a second
    DisposedWhileNotifying, ///< the unit goes before the view, while 16 threads notify
    ReadsRefused,           ///< 64004, 64007, 64009 and 64010 cannot be read
    Overrun,                ///< values are written whole, however little room there is
    UnknownAccepted,        ///< every property is taken for one of the unit's own
    InfoMissing,            ///< neither sizes nor what may be written can be asked for
    NanLength,              ///< 64010
    PositionRaised,         ///< 64006 is raised beside 64010
    ElementLate,            ///< 64000 is raised 50 ms before 64007 and 64002 have the element
    ElementReplaced,        ///< an element takes the place of one that waits
    LastFirst,              ///< of two elements that wait, the later one is delivered first
    FileUnfinished,         ///< the dub is announced with its header alone
    AckPadding,             ///< acknowledges whose last byte is not 0 are not taken in
    AckUnmatched,           ///< any acknowledge is taken for the element to deliver
    ListenersKept,          ///< removal is answered, and changes nothing
    ListenersConfused,      ///< removal goes by the procedure, whatever the user data
    NotifiesAfterDisposal,  ///< 64010 goes on for a while
    StateShared,            ///< 64009 is one for all instances
    AnnouncedTwice,         ///< 64000 is raised twice for each element
    PathUncarried,          ///< the dub's name has a double quote in it
    RateWrong,              ///< the record's rate is not the file's
    DisarmUnreported,       ///< 64004 is not raised when the end of a capture disarms
    LengthShort,            ///< 64010 writes 32 bits
    ViewHidden,             ///< kAudioUnitProperty_CocoaUI is not answered
};

using SignalFaults = std::set<SignalFault>;

struct SignalFaultKind
{
    const char* szName;
    SignalFault fault;
    const char* szMeaning; ///< completes "the plug-in ..."
};

/// Every fault that can be asked for.
const std::vector<SignalFaultKind>& SignalFaultKinds();

/// Reads "NAME[,NAME...]". Throws std::invalid_argument, whose text says what can be asked for.
SignalFaults ParseSignalFaults(std::string_view names);

} // namespace Tarvane
