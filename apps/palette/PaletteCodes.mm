#include "apps/palette/PaletteCodes.h"

#include "apps/support/program/CommandLine.h"
#include "colours/ComponentsColors.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace Tarvane
{
namespace
{

constexpr struct
{
    CComponentCode code;
    const char* szName;
} kConstants[] = {
    {ccNull, "ccNull"},
    {ccTrackInfoBackground, "ccTrackInfoBackground"},
    {ccControlText, "ccControlText"},
    {ccLabelText, "ccLabelText"},
    {ccButtonBorder, "ccButtonBorder"},
    {ccButtonFace, "ccButtonFace"},
    {ccButtonBorderActive, "ccButtonBorderActive"},
    {ccButtonFaceActive, "ccButtonFaceActive"},
    {ccSelectedTextBackground, "ccSelectedTextBackground"},
    {ccTransportBtnFaceUp, "ccTransportBtnFaceUp"},
    {ccTransportBtnBorderUp, "ccTransportBtnBorderUp"},
    {ccTransportBtnFaceDown, "ccTransportBtnFaceDown"},
    {ccTransportBtnBorderDown, "ccTransportBtnBorderDown"},
};

std::optional<int> ParseNumber(std::string_view text)
{
    int nNumber = 0;
    const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), nNumber);
    if (error != std::errc() || pEnd != text.data() + text.size())
    {
        return std::nullopt;
    }
    return nNumber;
}

} // namespace

std::string NameOfCode(CComponentCode code)
{
    for (const auto& constant : kConstants)
    {
        if (constant.code.Key() == code.Key())
        {
            return constant.szName;
        }
    }
    return {};
}

std::string NumbersOfCode(CComponentCode code)
{
    return std::to_string(code.m_nModule) + ":" + std::to_string(code.m_nComponent);
}

CComponentCode ParseCode(const std::string& strText)
{
    for (const auto& constant : kConstants)
    {
        if (strText == constant.szName)
        {
            return constant.code;
        }
    }
    const size_t nColon = strText.find(':');
    const std::optional<int> nModule =
        nColon == std::string::npos ? 0 : ParseNumber(std::string_view(strText).substr(0, nColon));
    const std::optional<int> nComponent =
        ParseNumber(std::string_view(strText).substr(nColon == std::string::npos ? 0 : nColon + 1));
    if (!nModule || !nComponent)
    {
        throw CUsageError("\"" + strText +
                          "\" is no code - give a name such as ccButtonFace, a component such as "
                          "312, or MODULE:COMPONENT.");
    }
    return CComponentCode(*nModule, *nComponent);
}

} // namespace Tarvane
