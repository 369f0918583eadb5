#include "apps/support/text/PlainText.h"

namespace Tarvane
{

std::string PlainText(std::string_view text)
{
    std::string strPlain;
    strPlain.reserve(text.size());
    for (std::size_t n = 0; n < text.size(); ++n)
    {
        const auto c = static_cast<unsigned char>(text[n]);
        const auto cNext = n + 1 < text.size() ? static_cast<unsigned char>(text[n + 1]) : 0;
        // U+0080 to U+009F
        const bool fHighControl = c == 0xC2 && cNext >= 0x80 && cNext <= 0x9F;
        const bool fControl = (c < 0x20 && c != '\n' && c != '\t') || c == 0x7F;
        strPlain += fControl || fHighControl ? '.' : text[n];
        n += fHighControl;
    }
    return strPlain;
}

} // namespace Tarvane
