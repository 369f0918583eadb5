#include "apps/server/sandbox/NumberText.h"

#include <charconv>
#include <cmath>

namespace Tarvane::Server
{

std::string_view NumberText(double dNumber, NumberBuffer& buffer)
{
    if (std::isnan(dNumber))
        return "nan";
    // The longest number has a sign, a digit, a point and some 340 places.
    char* pEnd = std::to_chars(buffer.data(), buffer.data() + buffer.size(), dNumber,
                               std::chars_format::fixed)
                     .ptr;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(pEnd - buffer.data()));
    if (!std::isfinite(dNumber) || text.find('.') != std::string_view::npos)
        return text;
    *pEnd++ = '.';
    *pEnd++ = '0';
    return {buffer.data(), static_cast<std::size_t>(pEnd - buffer.data())};
}

} // namespace Tarvane::Server
