#include "apps/host/CaptureStory.h"

#include "apps/support/PlainText.h"
#include "apps/support/Timecode.h"

#include <cstdio>

namespace Tarvane
{
namespace
{

// The words that the view shows when the server knows the audio.
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
        return words.strMessage == kDuplicateMessage ? CaptureOutcome::Duplicate
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
    return fThere && !server.fWithoutOffset;
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
    std::string strStory = "Capture " + std::to_string(report.nNumber + 1) + ": " +
                           report.source.filename().string() + "\n";
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
    if (!entry.server.strRefusal.empty())
    {
        strStory += "  server says  " + PlainText(entry.server.strRefusal) + "\n";
    }
    if (entry.server.fWithoutOffset)
    {
        strStory += "  misplaced    placed without the offset, which the server did not tell" +
                    (entry.server.placeMissed
                         ? "; it should stand at sample " + FormatSamples(*entry.server.placeMissed)
                         : std::string()) +
                    "\n";
    }
    if (!entry.words.strMessage.empty() || !entry.words.strAdvice.empty())
    {
        strStory +=
            "  view says    " + entry.words.strMessage + " / " + entry.words.strAdvice + "\n";
    }
    return strStory;
}

nlohmann::json DescribeCapture(const CCaptureEntry& entry)
{
    const CCaptureReport& report = entry.report;
    return {
        {"source", report.source.string()},   {"dub", report.dub.string()},
        {"frames", report.Frames()},          {"sampleRate", report.dSampleRate},
        {"start", report.times.dStart},       {"end", report.times.dEnd},
        {"position", report.times.dPosition}, {"track", report.nTrack},
        {"trackName", entry.words.strTrack},  {"element", report.nElement},
        {"ack", DescribeAck(report)},         {"outcome", OutcomeWord(entry.Outcome())},
        {"failure", report.strFailure},       {"message", entry.words.strMessage},
        {"advice", entry.words.strAdvice},   {"refusal", entry.server.strRefusal},
        {"withoutOffset", entry.server.fWithoutOffset},
        {"placeMissed", entry.server.placeMissed ? nlohmann::json(*entry.server.placeMissed)
                                                 : nlohmann::json()},
    };
}

std::string JsonText(const nlohmann::json& value, int nIndent)
{
    return value.dump(nIndent, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace Tarvane
