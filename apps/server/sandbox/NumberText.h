// Numbers in the words of print and tostring.
#pragma once

#include <array>
#include <string_view>

namespace Tarvane::Server
{

using NumberBuffer = std::array<char, 400>;

/// Writes a plain decimal number that atol, atoll and atof read in full: never an exponent, always
/// at least one digit after the point ("44100.0"), and as many as it takes to read the same number
/// again. "inf", "-inf" and "nan" are what they are. The result lies in the buffer.
std::string_view NumberText(double dNumber, NumberBuffer& buffer);

} // namespace Tarvane::Server
