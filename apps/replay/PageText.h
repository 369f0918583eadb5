// Text for a page, of which none can pass for markup or upset the page's order.
#pragma once

#include <string>

namespace Tarvane::Replay
{

/// For content and for attributes in double quotes. Line ends and tabs stay; every other control
/// character, and those that turn the direction of writing, are written out: "\u{1b}".
std::string Escaped(const std::string& strText);

/// In one line of at most so many characters, with line ends as " / ", "..." where it is cut. Not
/// escaped.
std::string Shortened(const std::string& strText, std::size_t nMost);

/// "2.263951 s" and "0.412 ms", of microseconds.
std::string SecondsText(long long nMicroseconds);
std::string MillisecondsText(long long nMicroseconds);

} // namespace Tarvane::Replay
