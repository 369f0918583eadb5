#include "apps/replay/Comparison.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace Tarvane::Replay
{
namespace
{

// Characters that are shown around a difference, before it and behind.
constexpr std::size_t kBefore = 32;
constexpr std::size_t kBehind = 48;

// The end of the character that begins at nAt.
std::size_t CharacterEnd(const std::string& strText, std::size_t nAt)
{
    do
        ++nAt;
    while (nAt < strText.size() && (static_cast<unsigned char>(strText[nAt]) & 0xC0) == 0x80);
    return nAt;
}

// Characters, each as it is shown: what a terminal would act on is written out.
std::vector<std::string> Characters(const std::string& strText)
{
    std::vector<std::string> characters;
    for (std::size_t nAt = 0, nEnd = 0; nAt < strText.size(); nAt = nEnd)
    {
        nEnd = CharacterEnd(strText, nAt);
        characters.push_back(strText.substr(nAt, nEnd - nAt));
    }
    return characters;
}

std::string Shown(const std::string& strCharacter)
{
    const auto nFirst = static_cast<unsigned char>(strCharacter[0]);
    const bool fSecondSet = strCharacter.size() == 2 && nFirst == 0xC2 &&
                            static_cast<unsigned char>(strCharacter[1]) < 0xA0;
    if (strCharacter == "\n")
        return "\\n";
    if (strCharacter == "\t")
        return "\\t";
    if (nFirst >= 0x20 && nFirst != 0x7F && !fSecondSet)
        return strCharacter;
    char szCode[8];
    std::snprintf(szCode, sizeof szCode, "\\x%02x",
                  fSecondSet ? static_cast<unsigned char>(strCharacter[1]) : nFirst);
    return szCode;
}

std::string Shown(const std::vector<std::string>& characters, std::size_t nFrom, std::size_t nTo)
{
    std::string strShown;
    for (std::size_t n = nFrom; n < std::min(nTo, characters.size()); ++n)
        strShown += Shown(characters[n]);
    return strShown + (nTo < characters.size() ? "..." : "");
}

std::string InQuotes(const Parameter& parameter)
{
    return "\"" + Shown(Characters(parameter.Text()), 0, kBefore + kBehind) + "\"";
}

std::string DifferenceOf(const std::string& strKey, const Parameter& expected, const Parameter& got)
{
    if (expected.nType != got.nType)
        return "  " + strKey + " is of type '" + CodeText(got.nType) + "', and '" +
               CodeText(expected.nType) + "' was recorded\n";
    const std::string strExpected = expected.Text(), strGot = got.Text();
    // Two texts that are not well formed may look alike.
    const bool fAlike = strExpected == strGot;
    return "  " + strKey + (fAlike ? ", in bytes, " : ", ") +
           FirstDifference(fAlike ? HexOf(expected.strBytes) : strExpected,
                           fAlike ? HexOf(got.strBytes) : strGot);
}

} // namespace

std::string FirstDifference(const std::string& strExpected, const std::string& strGot)
{
    const std::vector<std::string> expected = Characters(strExpected), got = Characters(strGot);
    const auto differing =
        std::mismatch(expected.begin(), expected.end(), got.begin(), got.end()).first;
    const auto nAt = static_cast<std::size_t>(differing - expected.begin());
    const auto nLine = 1 + std::count(expected.begin(), differing, "\n");
    std::size_t nLineStart = nAt;
    while (nLineStart > 0 && expected[nLineStart - 1] != "\n")
        --nLineStart;

    const std::size_t nFrom = nAt > nLineStart + kBefore ? nAt - kBefore : nLineStart;
    const std::size_t nTo = nAt + kBehind;
    const std::string strCut = nFrom > nLineStart ? "..." : "";
    std::size_t nMark = strCut.size();
    for (std::size_t n = nFrom; n < nAt; ++n)
        nMark += Characters(Shown(expected[n])).size();
    return "line " + std::to_string(nLine) + ", character " + std::to_string(nAt - nLineStart + 1) +
           "\n    expected: " + strCut + Shown(expected, nFrom, nTo) + "\n    got:      " + strCut +
           Shown(got, nFrom, nTo) + "\n              " + std::string(nMark, ' ') + "^\n";
}

std::string Differences(const Parameters& expected, const Parameters& got)
{
    std::set<AEKeyword> keywords;
    for (const auto& [nKeyword, parameter] : expected)
        keywords.insert(nKeyword);
    for (const auto& [nKeyword, parameter] : got)
        keywords.insert(nKeyword);
    std::string strText;
    for (const AEKeyword nKeyword : keywords)
    {
        const std::string strKey = "'" + CodeText(nKeyword) + "'";
        const auto recorded = expected.find(nKeyword), came = got.find(nKeyword);
        if (came == got.end())
            strText +=
                "  " + strKey + " is missing; recorded was " + InQuotes(recorded->second) + "\n";
        else if (recorded == expected.end())
            strText += "  " + strKey + " was not recorded; it is " + InQuotes(came->second) + "\n";
        else if (recorded->second != came->second)
            strText += DifferenceOf(strKey, recorded->second, came->second);
    }
    return strText;
}

std::string PlaceOf(const Exchange& exchange)
{
    char szTime[48];
    std::snprintf(szTime, sizeof szTime, "%lld.%06lld", exchange.nTime / 1'000'000,
                  exchange.nTime % 1'000'000);
    return "event " + std::to_string(exchange.nNumber) + ", at " + szTime + " s";
}

} // namespace Tarvane::Replay
