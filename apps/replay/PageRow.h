// A line of a recording as a row of its page.
#pragma once

#include "apps/replay/Recording.h"

#include <map>
#include <string>

namespace Tarvane::Replay
{

enum class Lane
{
    PlugIn,
    View,
    Server
};

struct PageRow
{
    std::string strTime;
    Lane from, to;
    bool fAnswer = false; ///< of one that was asked: dashed
    bool fSignal = false; ///< nothing but a signal: dotted
    bool fError = false;
    std::string strLabel;   ///< one line
    std::string strDetails; ///< any number of lines
    bool fOpen = false;     ///< an event is under way while this row passes
};

/// An event in a few words: its number and what it asks.
std::string ShortName(const Exchange& exchange);

/// Of every kind but "lost" and "waiting"; the replies are looked up by their numbers.
PageRow RowOf(const Line& line, const std::map<long long, const Exchange*>& exchanges);

/// The row's picture, an SVG element of the page's width.
std::string DrawRow(const PageRow& row);

/// The names of the lanes, likewise.
std::string DrawHeads();

/// A stretch of time in which nothing happens; the longer, the higher, within bounds.
std::string DrawGap(long long nMicroseconds, bool fOpen);

} // namespace Tarvane::Replay
