#include "apps/replay/PageText.h"

#include "utils/UnicodeText.h"

#include <cstdio>

namespace Tarvane::Replay
{
namespace
{

bool TurnsDirection(char16_t nUnit)
{
    return nUnit == 0x061C || nUnit == 0x200E || nUnit == 0x200F ||
           (nUnit >= 0x202A && nUnit <= 0x202E) || (nUnit >= 0x2066 && nUnit <= 0x2069);
}

// Neither is a character of XML, and a picture in a page is XML.
bool IsNoCharacter(char16_t nUnit)
{
    return nUnit == 0xFFFE || nUnit == 0xFFFF;
}

bool IsControl(char16_t nUnit)
{
    return (nUnit < 0x20 && nUnit != '\n' && nUnit != '\t') || (nUnit >= 0x7F && nUnit < 0xA0);
}

void Append(std::u16string& text, const std::string& strAscii)
{
    text.append(strAscii.begin(), strAscii.end());
}

void AppendEscaped(std::u16string& text, char16_t nUnit)
{
    char szCode[16];
    switch (nUnit)
    {
    case '&':
        return Append(text, "&amp;");
    case '<':
        return Append(text, "&lt;");
    case '>':
        return Append(text, "&gt;");
    case '"':
        return Append(text, "&quot;");
    case '\'':
        return Append(text, "&#39;");
    default:
        if (!IsControl(nUnit) && !TurnsDirection(nUnit) && !IsNoCharacter(nUnit))
        {
            text += nUnit;
            return;
        }
        std::snprintf(szCode, sizeof szCode, "\\u{%x}", static_cast<unsigned>(nUnit));
        Append(text, szCode);
    }
}

} // namespace

std::string Escaped(const std::string& strText)
{
    std::u16string escaped;
    for (const char16_t nUnit : Utf16FromUtf8(strText))
        AppendEscaped(escaped, nUnit);
    return Utf8FromUtf16(escaped);
}

std::string Shortened(const std::string& strText, std::size_t nMost)
{
    std::string strLine;
    std::size_t nCharacters = 0;
    for (std::size_t nAt = 0; nAt < strText.size(); ++nAt)
    {
        const char c = strText[nAt];
        const bool fBegins = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
        if (fBegins && nCharacters++ >= nMost)
            return strLine + "...";
        if (c != '\n')
            strLine += c == '\t' ? ' ' : c;
        else if (nAt + 1 < strText.size())
            strLine += " / ";
    }
    return strLine;
}

std::string SecondsText(long long nMicroseconds)
{
    char szText[48];
    std::snprintf(szText, sizeof szText, "%lld.%06lld s", nMicroseconds / 1'000'000,
                  nMicroseconds % 1'000'000);
    return szText;
}

std::string MillisecondsText(long long nMicroseconds)
{
    char szText[48];
    std::snprintf(szText, sizeof szText, "%lld.%03lld ms", nMicroseconds / 1000,
                  nMicroseconds % 1000);
    return szText;
}

} // namespace Tarvane::Replay
