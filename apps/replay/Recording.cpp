#include "apps/replay/Recording.h"

#include "utils/UnicodeText.h"

#include <cstring>

namespace Tarvane::Replay
{
namespace
{

std::u16string UnitsOf(const std::string& strBytes)
{
    std::u16string units(strBytes.size() / sizeof(char16_t), u'\0');
    if (!units.empty())
        std::memcpy(units.data(), strBytes.data(), units.size() * sizeof(char16_t));
    return units;
}

std::string BytesOf(const std::u16string& units)
{
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

void ReplaceIn(Parameters& parameters, const std::u16string& from, const std::u16string& to)
{
    for (auto& [nKeyword, parameter] : parameters)
    {
        if (parameter.nType != typeUnicodeText || parameter.strBytes.size() % sizeof(char16_t) != 0)
            continue;
        std::u16string units = UnitsOf(parameter.strBytes);
        for (std::size_t nAt = 0; (nAt = units.find(from, nAt)) != std::u16string::npos;
             nAt += to.size())
            units.replace(nAt, from.size(), to);
        parameter.strBytes = BytesOf(units);
    }
}

} // namespace

std::string Parameter::Text() const
{
    return nType == typeUnicodeText ? Utf8FromUtf16(UnitsOf(strBytes)) : HexOf(strBytes);
}

std::string Exchange::Script() const
{
    const auto found = event.find(keyDirectObject);
    return found == event.end() ? std::string() : found->second.Text();
}

void ReplaceInTexts(Recording& recording, const std::string& strFrom, const std::string& strTo)
{
    const std::u16string from = Utf16FromUtf8(strFrom);
    const std::u16string to = Utf16FromUtf8(strTo);
    for (Exchange& exchange : recording.exchanges)
    {
        ReplaceIn(exchange.event, from, to);
        ReplaceIn(exchange.reply, from, to);
    }
}

} // namespace Tarvane::Replay
