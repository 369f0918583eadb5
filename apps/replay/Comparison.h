// Where what came parts from what was recorded.
#pragma once

#include "apps/replay/Recording.h"

#include <string>

namespace Tarvane::Replay
{

/// Whole lines that show the first difference of two texts that are not the same, marked, with what
/// is around it:
///
///     line 2, character 6
///       expected: print(1)
///       got:      print(2)
///                       ^
std::string FirstDifference(const std::string& strExpected, const std::string& strGot);

/// The same for every parameter that differs, is missing or was not expected. Empty when all are as
/// recorded.
std::string Differences(const Parameters& expected, const Parameters& got);

/// "event 3, at 1.204500 s"
std::string PlaceOf(const Exchange& exchange);

} // namespace Tarvane::Replay
