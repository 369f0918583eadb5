// A capture in words for people and in JSON for programs.
#pragma once

#include "apps/support/unit/CaptureReport.h"

#include <nlohmann/json.hpp>
#include <string>

namespace Tarvane
{

/// What the link view showed after a capture.
struct ViewWords
{
    std::string strMessage; ///< first line
    std::string strAdvice;  ///< second line
    std::string strTrack;   ///< the menu's choice; empty when the menu is
};

enum class CaptureOutcome
{
    Delivered,
    Duplicate, ///< the server has this audio already
    NotDelivered,
    Empty,           ///< disarmed before the first sample
    Failed,          ///< no file could be written
    NotAcknowledged, ///< the view said nothing in time
};

struct CCaptureEntry
{
    CCaptureReport report;
    ViewWords words;
    /// A command that the server left without an answer for long, and how long; empty when there
    /// was none.
    std::string strSilence{};

    CaptureOutcome Outcome() const;
    /// As it should be: the server has the audio, now or already, and in its place.
    bool IsGood() const;
};

/// A delivered capture in a few words, UTF-8; empty for every other one, which the view tells of.
std::string WordOfDelivery(const CCaptureEntry& entry);

/// Lines with their line ends.
std::string TellCapture(const CCaptureEntry& entry);

/// One line, of a capture that its host did not see to its end, when it is found or kept.
std::string TellLeftover(const std::string& strWhat, const CCaptureReport& report);

nlohmann::json DescribeCapture(const CCaptureEntry& entry);

/// Text that no file name can make throw: what is not UTF-8 is replaced.
std::string JsonText(const nlohmann::json& value, int nIndent = -1);

} // namespace Tarvane
