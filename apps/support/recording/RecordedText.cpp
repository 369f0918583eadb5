#include "apps/support/recording/RecordedText.h"

#include "utils/UnicodeText.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace Tarvane
{
namespace
{

constexpr char kDigits[] = "0123456789abcdef";

unsigned ValueOfDigit(char c)
{
    const char* const pFound = c == '\0' ? nullptr : std::strchr(kDigits, c);
    if (pFound == nullptr)
        throw std::invalid_argument("not a hexadecimal digit");
    return static_cast<unsigned>(pFound - kDigits);
}

bool IsVisible(char c)
{
    return c >= ' ' && c <= '~';
}

} // namespace

std::string HexOf(std::string_view bytes)
{
    std::string strHex;
    strHex.reserve(2 * bytes.size());
    for (const char c : bytes)
    {
        strHex += kDigits[static_cast<unsigned char>(c) >> 4];
        strHex += kDigits[static_cast<unsigned char>(c) & 0xf];
    }
    return strHex;
}

std::string BytesOfHex(std::string_view hex)
{
    if (hex.size() % 2 != 0)
        throw std::invalid_argument("half a byte");
    std::string strBytes;
    strBytes.reserve(hex.size() / 2);
    for (std::size_t n = 0; n < hex.size(); n += 2)
        strBytes += static_cast<char>(ValueOfDigit(hex[n]) << 4 | ValueOfDigit(hex[n + 1]));
    return strBytes;
}

RecordedJson Utf16Json(std::string_view bytes)
{
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    if (!units.empty())
        std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    const std::string strText = Utf8FromUtf16(units);
    RecordedJson json{{"text", strText}};
    if (bytes.size() % sizeof(char16_t) != 0 || Utf16FromUtf8(strText) != units)
        json["hex"] = HexOf(bytes);
    return json;
}

RecordedJson Utf8Json(std::string_view bytes)
{
    if (IsUtf8(bytes))
        return bytes;
    return {{"text", Utf8FromUtf16(Utf16FromUtf8(bytes))}, {"hex", HexOf(bytes)}};
}

RecordedJson NumberJson(double dNumber)
{
    if (std::isnan(dNumber))
        return "NaN";
    if (std::isinf(dNumber))
        return dNumber > 0 ? "Infinity" : "-Infinity";
    return dNumber;
}

std::string CodeText(std::uint32_t nCode)
{
    std::string strText, strBytes;
    for (int nShift = 24; nShift >= 0; nShift -= 8)
    {
        const char c = static_cast<char>(nCode >> nShift);
        strBytes += c;
        if (IsVisible(c))
            strText += c;
    }
    return strText.size() == sizeof nCode ? strText : "0x" + HexOf(strBytes);
}

std::uint32_t CodeOfText(std::string_view text)
{
    std::string strBytes(text);
    if (text.size() == 10 && text.substr(0, 2) == "0x")
        strBytes = BytesOfHex(text.substr(2));
    if (strBytes.size() != 4)
        throw std::invalid_argument("not a code of four characters");
    std::uint32_t nCode = 0;
    for (const char c : strBytes)
        nCode = nCode << 8 | static_cast<unsigned char>(c);
    return nCode;
}

} // namespace Tarvane
