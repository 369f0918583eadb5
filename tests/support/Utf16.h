#pragma once

#include <string>
#include <string_view>

namespace TarvaneTests
{

/// Between the UTF-8 of the product's strings and the UTF-16 of its wire format. For well-formed
/// text; an unpaired surrogate comes out as U+FFFD.
std::string Utf8FromUtf16(std::u16string_view text);
std::u16string Utf16FromUtf8(std::string_view text);

} // namespace TarvaneTests
