// Tracks and regions as texts that other editors read.
#pragma once

#include "apps/editor/Editor.h"

#include <cstdint>
#include <string>

namespace Tarvane::Editor
{

/// Frames a second, as nNumber / nDivisor: 25, or 30000 / 1001.
struct FrameRate
{
    std::int64_t nNumber = 25;
    std::int64_t nDivisor = 1;
    bool fDropFrame = false; ///< numbers are left out, so that the count keeps to the clock
    std::string strName = "25";
};

/// "23.976", "24", "25", "29.97", "29.97df" or "30". Throws CUsageError for another text.
FrameRate FrameRateNamed(const std::string& strName);

/// The number of a frame as hh:mm:ss:ff, with ; before the frames where numbers are left out.
/// Throws CEditorError for one of a day's end and behind.
std::string FrameText(std::int64_t nFrame, const FrameRate& rate);
/// The frame of such a text. Throws CUsageError for any other, and for a number that is left out.
std::int64_t FrameNumbered(const std::string& strText, const FrameRate& rate);

struct EdlSettings
{
    std::string strTitle;
    FrameRate rate;
    std::int64_t nOffset = 0;    ///< the frame at which the timeline begins
    bool fBetweenFrames = false; ///< places within a frame are put to its beginning, and said so
};

/// A CMX 3600 edit decision list, of frames: one event a region, by their places. Muted regions are
/// left out, and named in a comment. A file's first sample is frame 0 of its source. Throws
/// CEditorError for what such a list cannot hold: a place, a start or a length that is no whole
/// number of frames (unless the settings allow it), more than 999 events, more than four tracks,
/// and some of a file's channels.
std::string EditDecisionList(const Model& model, const EdlSettings& settings);

/// A REAPER project at the rate of the first region, or 48000; positions in seconds, with so many
/// digits that samples stay apart. dOffset: seconds that the ruler shows at the timeline's
/// beginning. Throws CEditorError for channels that an item cannot choose: it takes all, one, or
/// two neighbours.
std::string ReaperProject(const Model& model, double dOffset);

} // namespace Tarvane::Editor
