#include "apps/session/EntryText.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace Tarvane::Session
{

namespace
{

// The length of the well-formed character at the front, 0 if there is none.
std::size_t Utf8Length(std::string_view text)
{
    const auto at = [text](std::size_t i)
    { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
    const unsigned nFirst = at(0);
    if (nFirst < 0x80)
        return 1;
    const std::size_t nLength = nFirst >= 0xF0 ? 4 : nFirst >= 0xE0 ? 3 : 2;
    if (nFirst < 0xC2 || nFirst > 0xF4)
        return 0;
    for (std::size_t i = 1; i < nLength; ++i)
        if ((at(i) & 0xC0) != 0x80)
            return 0;
    // Longer than need be, a surrogate, or beyond the last character.
    const unsigned nSecond = at(1);
    const bool fWrong = (nFirst == 0xE0 && nSecond < 0xA0) || (nFirst == 0xED && nSecond > 0x9F) ||
                        (nFirst == 0xF0 && nSecond < 0x90) || (nFirst == 0xF4 && nSecond > 0x8F);
    return fWrong ? 0 : nLength;
}

std::string HexByte(char c)
{
    constexpr char digits[] = "0123456789abcdef";
    const auto n = static_cast<unsigned char>(c);
    return {'\\', 'x', digits[n >> 4], digits[n & 15]};
}

template <typename Float, typename Bits> std::string FloatText(Float value)
{
    char text[64];
    if (!std::isnan(value))
        return {text, std::to_chars(std::begin(text), std::end(text), value).ptr};
    const Bits nBits = std::bit_cast<Bits>(value);
    if (nBits == std::bit_cast<Bits>(std::numeric_limits<Float>::quiet_NaN()))
        return "nan";
    return "nan:" +
           std::string(text, std::to_chars(std::begin(text), std::end(text), nBits, 16).ptr);
}

} // namespace

const char* TypeName(int nType)
{
    static constexpr const char* names[] = {nullptr,  "string", "int",  "double", "uint64",
                                            "fileid", "block",  "bool", "float",  "int64"};
    return nType >= 1 && nType <= 9 ? names[nType] : nullptr;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t nLength = Utf8Length(text);
        if (nLength == 0)
            return false;
        text.remove_prefix(nLength);
    }
    return true;
}

std::string PrintableText(std::string_view text, std::string_view special)
{
    std::string result;
    while (!text.empty())
    {
        const std::size_t nLength = Utf8Length(text);
        const char c = text.front();
        const bool fControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        if (nLength == 0 || fControl)
            result += HexByte(c);
        else if (c == '\\' || special.find(c) != std::string_view::npos)
            result += {'\\', c};
        else
            result += text.substr(0, nLength);
        text.remove_prefix(nLength == 0 ? 1 : nLength);
    }
    return result;
}

std::string ValueText(const CParameter& parameter)
{
    switch (parameter.m_nType)
    {
    case CStringParameter::kType:
        return "\"" +
               PrintableText(static_cast<const CStringParameter&>(parameter).m_strValue, "\"") +
               "\"";
    case CIntParameter::kType:
        return std::to_string(static_cast<const CIntParameter&>(parameter).m_nValue);
    case CDoubleParameter::kType:
        return NumberText(static_cast<const CDoubleParameter&>(parameter).m_dValue);
    case CUInt64Parameter::kType:
        return std::to_string(static_cast<const CUInt64Parameter&>(parameter).m_nValue);
    case CFileIdTypeParameter::kType:
    {
        const auto& id = static_cast<const CFileIdTypeParameter&>(parameter).m_idValue;
        return std::to_string(id.nFileKey) + " " + std::to_string(id.nFileSub);
    }
    case CParameterBlock::kType:
        return std::to_string(static_cast<const CParameterBlock&>(parameter).m_vParameters.size()) +
               " entries";
    case CBoolParameter::kType:
        return static_cast<const CBoolParameter&>(parameter).m_bValue ? "true" : "false";
    case CFloatParameter::kType:
        return NumberText(static_cast<const CFloatParameter&>(parameter).m_fValue);
    case CSInt64Parameter::kType:
        return std::to_string(static_cast<const CSInt64Parameter&>(parameter).m_nValue);
    default:
        return "?";
    }
}

std::string NumberText(double dValue)
{
    return FloatText<double, std::uint64_t>(dValue);
}
std::string NumberText(float fValue)
{
    return FloatText<float, std::uint32_t>(fValue);
}

} // namespace Tarvane::Session
