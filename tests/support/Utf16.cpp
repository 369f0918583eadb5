#include "tests/support/Utf16.h"

#include <cstddef>

namespace TarvaneTests
{
namespace
{
constexpr bool IsHighSurrogate(char32_t c)
{
    return c >= 0xD800 && c < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t c)
{
    return c >= 0xDC00 && c < 0xE000;
}

void AppendUtf8(std::string* pText, char32_t c)
{
    if (c < 0x80)
    {
        pText->push_back(static_cast<char>(c));
        return;
    }
    const int nTrailing = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr unsigned char kLead[] = {0, 0xC0, 0xE0, 0xF0};
    pText->push_back(static_cast<char>(kLead[nTrailing] | (c >> (6 * nTrailing))));
    for (int nByte = nTrailing - 1; nByte >= 0; --nByte)
        pText->push_back(static_cast<char>(0x80 | ((c >> (6 * nByte)) & 0x3F)));
}

void AppendUtf16(std::u16string* pText, char32_t c)
{
    if (c < 0x10000)
    {
        pText->push_back(static_cast<char16_t>(c));
        return;
    }
    pText->push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    pText->push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
}
} // namespace

std::string Utf8FromUtf16(std::u16string_view text)
{
    std::string utf8;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        char32_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        else if (IsHighSurrogate(c) || IsLowSurrogate(c))
            c = 0xFFFD;
        AppendUtf8(&utf8, c);
    }
    return utf8;
}

std::u16string Utf16FromUtf8(std::string_view text)
{
    std::u16string utf16;
    for (std::size_t i = 0; i < text.size();)
    {
        const unsigned char lead = static_cast<unsigned char>(text[i++]);
        const int nTrailing = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t c = nTrailing == 0 ? lead : lead & (0x3F >> nTrailing);
        for (int nByte = 0; nByte < nTrailing && i < text.size(); ++nByte)
            c = c << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
        AppendUtf16(&utf16, c);
    }
    return utf16;
}
} // namespace TarvaneTests
