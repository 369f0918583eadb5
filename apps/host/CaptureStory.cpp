#include "apps/host/CaptureStory.h"

#include "apps/support/text/PlainText.h"
#include "apps/support/text/Timecode.h"

#include <cstdio>

namespace Tarvane
{
namespace
{

// The words that the view shows when the server knows the audio. They say so where the system shows
// the events to nobody.
constexpr const char* kDuplicateMessage = "Same audio captured previously.";

const char* OutcomeWord(CaptureOutcome outcome)
{
    switch (outcome)
    {
    case CaptureOutcome::Delivered:
        return "delivered";
    case CaptureOutcome::Duplicate:
        return "duplicate";
    case CaptureOutcome::NotDelivered:
        return "not delivered";
    case CaptureOutcome::Empty:
        return "nothing captured";
    case CaptureOutcome::Failed:
        return "failed";
    case CaptureOutcome::NotAcknowledged:
        return "not acknowledged";
    }
    return "";
}

std::string Length(double dFrames, double dRate)
{
    char sz[64];
    std::snprintf(sz, sizeof sz, "%.3f s", dRate > 0 ? dFrames / dRate : 0.0);
    return sz;
}

std::string Track(const CCaptureEntry& entry)
{
    if (entry.words.strTrack.empty())
    {
        return "no track is chosen";
    }
    return "track " + std::to_string(entry.report.nTrack) + " \"" + entry.words.strTrack + "\"";
}

// Why the server did not add it.
std::string Refusal(const CCaptureReport& report)
{
    return report.outcome == TakeOutcome::Refused ? report.strWords : "";
}

// Where it should stand on the server's timeline, in samples; empty when it does, or when the
// server has never told its offset.
std::optional<double> PlaceMissed(const CCaptureReport& report)
{
    const bool fMissed =
        report.outcome == TakeOutcome::PlacedWithoutOffset && report.dExpectedPosition != 0;
    return fMissed ? std::optional(report.dExpectedPosition) : std::nullopt;
}

nlohmann::json DescribeAck(const CCaptureReport& report)
{
    if (!report.pAck)
    {
        return nullptr;
    }
    return {{"nElement", report.pAck->nElement},
            {"fHandled", report.pAck->fHandled},
            {"fNotDelivered", report.pAck->fNotDelivered},
            {"fFinal", report.pAck->fFinal}};
}

} // namespace

CaptureOutcome CCaptureEntry::Outcome() const
{
    switch (report.state)
    {
    case CaptureState::Acknowledged:
        if (report.IsDelivered())
        {
            return CaptureOutcome::Delivered;
        }
        return report.outcome == TakeOutcome::Duplicate || words.strMessage == kDuplicateMessage
                   ? CaptureOutcome::Duplicate
                   : CaptureOutcome::NotDelivered;
    case CaptureState::Empty:
        return CaptureOutcome::Empty;
    case CaptureState::Failed:
        return CaptureOutcome::Failed;
    case CaptureState::Running:
    case CaptureState::Waiting:
        break;
    }
    return CaptureOutcome::NotAcknowledged;
}

bool CCaptureEntry::IsGood() const
{
    const bool fThere =
        Outcome() == CaptureOutcome::Delivered || Outcome() == CaptureOutcome::Duplicate;
    const bool fWhole = report.strFailure.empty() && report.nLostFrames == 0;
    return fThere && fWhole && report.outcome != TakeOutcome::PlacedWithoutOffset;
}

std::string WordOfDelivery(const CCaptureEntry& entry)
{
    if (entry.Outcome() != CaptureOutcome::Delivered || !entry.IsGood())
    {
        return "";
    }
    return Length(entry.report.Frames(), entry.report.dSampleRate) + " delivered to " +
           entry.words.strTrack;
}

std::string TellCapture(const CCaptureEntry& entry)
{
    const CCaptureReport& report = entry.report;
    const double dRate = report.dSampleRate;
    std::string strStory =
        (report.fLate ? "Later, " : "Capture " + std::to_string(report.nNumber + 1) + ": ") +
        (report.source.empty() ? report.dub : report.source).filename().string() + "\n";
    if (report.nElement >= 0)
    {
        strStory += "  length       " + Length(report.Frames(), dRate) + ", " +
                    FormatSamples(report.Frames()) + " samples at " + FormatSamples(dRate) +
                    " Hz\n";
        strStory += "  host's time  sample " + FormatSamples(report.times.dPosition) + ", " +
                    FormatTimecode(report.times.dPosition, dRate) + "\n";
        strStory += "  file         " + report.dub.string() + "\n";
        strStory += "  sent to      " + Track(entry) + "\n";
    }
    strStory += "  outcome      " + std::string(OutcomeWord(entry.Outcome())) + "\n";
    if (!report.strFailure.empty())
    {
        strStory += "  because      " + report.strFailure + "\n";
    }
    if (report.nLostFrames > 0)
    {
        strStory += "  lost         " + std::to_string(report.nLostFrames) + " samples\n";
    }
    if (!Refusal(report).empty())
    {
        strStory += "  server says  " + PlainText(Refusal(report)) + "\n";
    }
    if (report.outcome == TakeOutcome::PlacedWithoutOffset)
    {
        const std::optional<double> missed = PlaceMissed(report);
        strStory +=
            "  misplaced    placed without the offset, which the server did not tell" +
            (missed ? "; it should stand at sample " + FormatSamples(*missed) : std::string()) +
            "\n";
    }
    if (!entry.strSilence.empty())
    {
        strStory += "  no answer    to " + entry.strSilence + "\n";
    }
    if (report.outcome == TakeOutcome::Unreachable)
    {
        strStory += "  waits        for a server\n";
    }
    if (!entry.words.strMessage.empty() || !entry.words.strAdvice.empty())
    {
        strStory +=
            "  view says    " + entry.words.strMessage + " / " + entry.words.strAdvice + "\n";
    }
    return strStory;
}

std::string TellLeftover(const std::string& strWhat, const CCaptureReport& report)
{
    return strWhat + ": " + report.dub.string() + ", " + FormatSamples(report.Frames()) +
           " samples at " + FormatSamples(report.dSampleRate) + " Hz from sample " +
           FormatSamples(report.times.dPosition) + ".\n";
}

nlohmann::json DescribeCapture(const CCaptureEntry& entry)
{
    const CCaptureReport& report = entry.report;
    const std::optional<double> missed = PlaceMissed(report);
    return {
        {"source", report.source.string()},
        {"dub", report.dub.string()},
        {"frames", report.Frames()},
        {"sampleRate", report.dSampleRate},
        {"start", report.times.dStart},
        {"end", report.times.dEnd},
        {"position", report.times.dPosition},
        {"track", report.nTrack},
        {"trackName", entry.words.strTrack},
        {"element", report.nElement},
        {"ack", DescribeAck(report)},
        {"outcome", OutcomeWord(entry.Outcome())},
        {"failure", report.strFailure},
        {"message", entry.words.strMessage},
        {"advice", entry.words.strAdvice},
        {"refusal", Refusal(report)},
        {"withoutOffset", report.outcome == TakeOutcome::PlacedWithoutOffset},
        {"placeMissed", missed ? nlohmann::json(*missed) : nlohmann::json()},
        {"fate",
         report.outcome ? nlohmann::json(TakeOutcomeWord(*report.outcome)) : nlohmann::json()},
        {"silence", entry.strSilence.empty() ? nlohmann::json() : nlohmann::json(entry.strSilence)},
        {"late", report.fLate},
        {"lost", report.nLostFrames},
    };
}

std::string JsonText(const nlohmann::json& value, int nIndent)
{
    return value.dump(nIndent, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace Tarvane
