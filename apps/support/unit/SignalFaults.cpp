#include "apps/support/unit/SignalFaults.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Tarvane
{
namespace
{

SignalFault FaultOf(std::string_view name)
{
    std::string strKnown;
    for (const SignalFaultKind& kind : SignalFaultKinds())
    {
        if (name == kind.szName)
        {
            return kind.fault;
        }
        strKnown += std::string(strKnown.empty() ? "" : ", ") + kind.szName;
    }
    throw std::invalid_argument("there is no fault \"" + std::string(name) + "\"; the names are " +
                                strKnown);
}

} // namespace

const std::vector<SignalFaultKind>& SignalFaultKinds()
{
    static const std::vector<SignalFaultKind> kinds{
        {"index-never-negative", SignalFault::IndexNeverNegative,
         "announces each element twice and has always one to deliver"},
        {"elements-unannounced", SignalFault::ElementsUnannounced,
         "announces no element that is ready"},
        {"record-short", SignalFault::RecordShort, "writes the first half of the record alone"},
        {"paths-unterminated", SignalFault::PathsUnterminated, "leaves paths without their end"},
        {"nan-position", SignalFault::NanPosition, "gives a position that is no number"},
        {"infinite-position", SignalFault::InfinitePosition, "gives an infinite position"},
        {"nan-region", SignalFault::NanRegion, "gives a start and an end that are no numbers"},
        {"infinite-region", SignalFault::InfiniteRegion, "gives an infinite end"},
        {"file-discarded", SignalFault::FileDiscarded, "removes the file before it is delivered"},
        {"ack-ignored", SignalFault::AckIgnored, "takes in no acknowledge"},
        {"arm-unreported", SignalFault::ArmUnreported, "reports no change of the armed state"},
        {"arm-ignored", SignalFault::ArmIgnored, "does not arm when it is asked to"},
        {"track-forgotten", SignalFault::TrackForgotten, "does not keep the track that is chosen"},
        {"sixteen-threads", SignalFault::SixteenThreads, "notifies from 16 threads all the time"},
        {"storm", SignalFault::Storm, "notifies a hundred thousand times a second"},
        {"disposed-while-notifying", SignalFault::DisposedWhileNotifying,
         "is disposed of before the view, while 16 threads notify"},
        {"reads-refused", SignalFault::ReadsRefused,
         "refuses to tell armed state, index, track and length"},
        {"overrun", SignalFault::Overrun, "writes values beyond the room that there is"},
        {"unknown-accepted", SignalFault::UnknownAccepted, "accepts properties that it has not"},
        {"info-missing", SignalFault::InfoMissing, "tells nothing about its properties"},
        {"nan-length", SignalFault::NanLength, "gives a length that is no number"},
        {"position-raised", SignalFault::PositionRaised,
         "reports its position, which ends the progress display"},
        {"element-late", SignalFault::ElementLate, "announces an element before it can be read"},
        {"element-replaced", SignalFault::ElementReplaced,
         "forgets an element that waits for the next one"},
        {"last-first", SignalFault::LastFirst, "has the later of two elements delivered first"},
        {"file-unfinished", SignalFault::FileUnfinished,
         "announces an element whose file has no audio"},
        {"ack-padding", SignalFault::AckPadding, "reads the last byte of an acknowledge"},
        {"ack-unmatched", SignalFault::AckUnmatched,
         "takes any acknowledge for the element to deliver"},
        {"listeners-kept", SignalFault::ListenersKept, "notifies whom it was told not to any more"},
        {"listeners-confused", SignalFault::ListenersConfused,
         "removes other listeners beside the one that is meant"},
        {"notifies-after-disposal", SignalFault::NotifiesAfterDisposal,
         "notifies when it has been disposed of"},
        {"state-shared", SignalFault::StateShared, "keeps one track for all instances"},
        {"announced-twice", SignalFault::AnnouncedTwice, "announces each element twice"},
        {"path-uncarried", SignalFault::PathUncarried,
         "gives its files names with a double quote in them"},
        {"rate-wrong", SignalFault::RateWrong, "gives another rate than the file's"},
        {"disarm-unreported", SignalFault::DisarmUnreported,
         "does not report that the end of a capture disarms it"},
        {"length-short", SignalFault::LengthShort, "writes the length as 32 bits"},
        {"view-hidden", SignalFault::ViewHidden, "does not tell hosts where its view is"},
    };
    return kinds;
}

SignalFaults ParseSignalFaults(std::string_view names)
{
    SignalFaults faults;
    while (true)
    {
        const std::size_t nComma = names.find(',');
        faults.insert(FaultOf(names.substr(0, nComma)));
        if (nComma == std::string_view::npos)
        {
            return faults;
        }
        names.remove_prefix(nComma + 1);
    }
}

} // namespace Tarvane
