// Takes of a recording that stand at the wrong place on the server's timeline.
#pragma once

#include "apps/replay/Recording.h"

#include <map>
#include <optional>
#include <string>

namespace Tarvane::Replay
{

/// A take that was added while the server had not told the offset between the timelines, which
/// counts as 0 then.
struct Misplaced
{
    std::string strPath;
    /// Where it should stand, in samples; empty when the server never told its offset, or the
    /// recording has no take of this path, such as one of tarvane-link.
    std::optional<double> place;
};

/// By the numbers of the events that added them.
std::map<long long, Misplaced> FindMisplaced(const Recording& recording);

/// For people, in one line.
std::string MisplacedText(const Misplaced& misplaced);

} // namespace Tarvane::Replay
