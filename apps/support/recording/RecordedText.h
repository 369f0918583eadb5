// Bytes, texts and codes as a recording holds them: readable, and without loss.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace Tarvane
{

using RecordedJson = nlohmann::ordered_json;

/// Two lower-case digits a byte.
std::string HexOf(std::string_view bytes);

/// Throws std::invalid_argument for what HexOf does not write.
std::string BytesOfHex(std::string_view hex);

/// The bytes as "text" (from UTF-16 of this machine's byte order) and, where the text does not give
/// them back, because of a lone surrogate or an odd byte, as "hex" as well.
RecordedJson Utf16Json(std::string_view bytes);

/// UTF-8 bytes as a string; what is not UTF-8 as an object with "text", where U+FFFD stands for the
/// flaws, and "hex".
RecordedJson Utf8Json(std::string_view bytes);

/// JSON knows no "NaN", "Infinity" and "-Infinity": these come as strings.
RecordedJson NumberJson(double dNumber);

/// 'TkNe' is "TkNe"; a code with anything but visible ASCII in it is "0x" and eight digits.
std::string CodeText(std::uint32_t nCode);

/// Throws std::invalid_argument for what CodeText does not write.
std::uint32_t CodeOfText(std::string_view text);

} // namespace Tarvane
