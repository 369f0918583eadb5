#include "utils/UnicodeText.h"

#include <cstddef>
#include <cstdint>

namespace Tarvane
{

namespace
{

constexpr char32_t kReplacement = 0xfffd;
constexpr char32_t kMalformed = 0xffffffff;

struct Decoded
{
    char32_t nCode; // kMalformed when nBytes is a stray byte
    std::size_t nBytes;
};

// Reads the character that begins a text that is not empty.
Decoded DecodeUtf8(std::string_view text)
{
    const auto nFirst = static_cast<unsigned char>(text[0]);
    if (nFirst < 0x80)
        return {nFirst, 1};
    const std::size_t nBytes = nFirst >= 0xf0 ? 4 : nFirst >= 0xe0 ? 3 : 2;
    if (nFirst < 0xc2 || nFirst > 0xf4 || nBytes > text.size())
        return {kMalformed, 1};

    char32_t nCode = nFirst & (0x7fu >> nBytes);
    for (std::size_t nByte = 1; nByte < nBytes; nByte++)
    {
        const auto nNext = static_cast<unsigned char>(text[nByte]);
        if ((nNext & 0xc0) != 0x80)
            return {kMalformed, 1};
        nCode = nCode << 6 | (nNext & 0x3f);
    }
    const char32_t nLeast = nBytes == 4 ? 0x10000 : nBytes == 3 ? 0x800 : 0x80;
    const bool fSurrogate = nCode >= 0xd800 && nCode <= 0xdfff;
    if (nCode < nLeast || nCode > 0x10ffff || fSurrogate)
        return {kMalformed, 1};
    return {nCode, nBytes};
}

void AppendUtf8(std::string& strText, char32_t nCode)
{
    const auto trail = [nCode](int nShift)
    { return static_cast<char>(0x80 | (nCode >> nShift & 0x3f)); };
    if (nCode < 0x80)
    {
        strText += static_cast<char>(nCode);
    }
    else if (nCode < 0x800)
    {
        strText += static_cast<char>(0xc0 | nCode >> 6);
        strText += trail(0);
    }
    else if (nCode < 0x10000)
    {
        strText += static_cast<char>(0xe0 | nCode >> 12);
        strText += trail(6);
        strText += trail(0);
    }
    else
    {
        strText += static_cast<char>(0xf0 | nCode >> 18);
        strText += trail(12);
        strText += trail(6);
        strText += trail(0);
    }
}

} // namespace

bool IsUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const Decoded decoded = DecodeUtf8(text);
        if (decoded.nCode == kMalformed)
            return false;
        text.remove_prefix(decoded.nBytes);
    }
    return true;
}

std::u16string Utf16FromUtf8(std::string_view text)
{
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty())
    {
        const Decoded decoded = DecodeUtf8(text);
        const char32_t nCode = decoded.nCode == kMalformed ? kReplacement : decoded.nCode;
        if (nCode >= 0x10000)
        {
            units += static_cast<char16_t>(0xd800 + ((nCode - 0x10000) >> 10));
            units += static_cast<char16_t>(0xdc00 + ((nCode - 0x10000) & 0x3ff));
        }
        else
        {
            units += static_cast<char16_t>(nCode);
        }
        text.remove_prefix(decoded.nBytes);
    }
    return units;
}

std::string Utf8FromUtf16(std::u16string_view text)
{
    std::string strText;
    strText.reserve(text.size());
    for (std::size_t nUnit = 0; nUnit < text.size(); nUnit++)
    {
        char32_t nCode = text[nUnit];
        const bool fLead = nCode >= 0xd800 && nCode <= 0xdbff;
        const char32_t nNext = fLead && nUnit + 1 < text.size() ? text[nUnit + 1] : 0;
        if (nNext >= 0xdc00 && nNext <= 0xdfff)
        {
            nCode = 0x10000 + ((nCode - 0xd800) << 10) + (nNext - 0xdc00);
            nUnit++;
        }
        else if (nCode >= 0xd800 && nCode <= 0xdfff)
        {
            nCode = kReplacement;
        }
        AppendUtf8(strText, nCode);
    }
    return strText;
}

} // namespace Tarvane
