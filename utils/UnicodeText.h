// Between the UTF-16 text of events and the UTF-8 text of everything else.
#pragma once

#include <string>
#include <string_view>

namespace Tarvane
{

/// True for well-formed UTF-8: shortest forms, no surrogates, nothing above U+10FFFF.
bool IsUtf8(std::string_view text);

/// What is not well formed comes out as U+FFFD, one for each stray byte or unit.
std::u16string Utf16FromUtf8(std::string_view text);
std::string Utf8FromUtf16(std::u16string_view text);

} // namespace Tarvane
