// How long Lua's pattern functions can take, known before they begin.
#pragma once

#include <cstddef>
#include <string_view>

namespace Tarvane::Server
{

/// The most steps that matching the pattern against a text of so many bytes, from every place of
/// it, can take. Each repetition in a pattern can be tried with every length, so each multiplies
/// the steps by the length of the text. Most real matches take far fewer; what counts here is that
/// none takes more. fAnchors: a leading "^" holds the match to the text's start.
double PatternCost(std::string_view pattern, std::size_t nTextBytes, bool fAnchors);

} // namespace Tarvane::Server
