// How a difference is told.

#include "apps/replay/Comparison.h"

#include <gmock/gmock.h>

using namespace Tarvane::Replay;

namespace
{

Parameter Text(const std::u16string& units)
{
    return {'utxt', {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)}};
}

} // namespace

TEST(Comparison, FirstDifferenceIsMarkedInItsLine)
{
    EXPECT_EQ(FirstDifference("one\nprint(1)\n", "one\nprint(2)\n"), "line 2, character 7\n"
                                                                     "    expected: print(1)\\n\n"
                                                                     "    got:      print(2)\\n\n"
                                                                     "                    ^\n");
}

TEST(Comparison, MarkStandsUnderTheCharacterThatIsShown)
{
    EXPECT_EQ(FirstDifference("\t\xC3\xB6\x1B\xC2\x9B!", "\t\xC3\xB6\x1B\xC2\x9B?"),
              "line 1, character 5\n"
              "    expected: \\t\xC3\xB6\\x1b\\x9b!\n"
              "    got:      \\t\xC3\xB6\\x1b\\x9b?\n"
              "                         ^\n");
}

TEST(Comparison, TextThatEndsEarlierIsMarkedAtItsEnd)
{
    EXPECT_EQ(FirstDifference("ab", "abc"), "line 1, character 3\n"
                                            "    expected: ab\n"
                                            "    got:      abc\n"
                                            "                ^\n");
    EXPECT_EQ(FirstDifference("", "x"), "line 1, character 1\n"
                                        "    expected: \n"
                                        "    got:      x\n"
                                        "              ^\n");
}

TEST(Comparison, LongTextsAreCutAroundTheDifference)
{
    const std::string strBefore(100, 'a'), strBehind(100, 'b');
    EXPECT_EQ(FirstDifference(strBefore + "1" + strBehind, strBefore + "2" + strBehind),
              "line 1, character 101\n"
              "    expected: ..." +
                  std::string(32, 'a') + "1" + std::string(47, 'b') +
                  "...\n"
                  "    got:      ..." +
                  std::string(32, 'a') + "2" + std::string(47, 'b') + "...\n" +
                  std::string(14 + 3 + 32, ' ') + "^\n");
}

TEST(Comparison, WhatIsTheSameIsNoDifference)
{
    const Parameters parameters{{'Rslt', Text(u"1\n")}};
    EXPECT_EQ(Differences(parameters, parameters), "");
}

TEST(Comparison, EachParameterIsCompared)
{
    EXPECT_EQ(Differences({{'Rslt', Text(u"1")}}, {{'Rslt', Text(u"2")}}),
              "  'Rslt', line 1, character 1\n"
              "    expected: 1\n"
              "    got:      2\n"
              "              ^\n");
    EXPECT_EQ(Differences({{'Rslt', Text(u"1\n")}}, {}),
              "  'Rslt' is missing; recorded was \"1\\n\"\n");
    EXPECT_EQ(Differences({}, {{'Errr', Text(u"no")}}),
              "  'Errr' was not recorded; it is \"no\"\n");
    EXPECT_EQ(Differences({{'Rslt', Text(u"1")}}, {{'Rslt', {'TEXT', "1"}}}),
              "  'Rslt' is of type 'TEXT', and 'utxt' was recorded\n");
}

TEST(Comparison, LoneSurrogatesThatLookAlikeAreComparedByTheirBytes)
{
    EXPECT_EQ(Differences({{'Rslt', Text({0xD800})}}, {{'Rslt', Text({0xD900})}}),
              "  'Rslt', in bytes, line 1, character 4\n"
              "    expected: 00d8\n"
              "    got:      00d9\n"
              "                 ^\n");
}

TEST(Comparison, PlaceHasNumberAndTime)
{
    Exchange exchange;
    exchange.nNumber = 3;
    exchange.nTime = 1'004'500;
    EXPECT_EQ(PlaceOf(exchange), "event 3, at 1.004500 s");
}
