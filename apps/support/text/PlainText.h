// Text of others on its way to a terminal.
#pragma once

#include <string>
#include <string_view>

namespace Tarvane
{

/// The text, UTF-8, with a point for each control character but line feed and tab: they could move
/// the cursor, recolour what is there or make the terminal type.
std::string PlainText(std::string_view text);

} // namespace Tarvane
