#include "apps/server/sandbox/PatternCost.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Tarvane::Server
{
namespace
{

// How many factors of the text's length a pattern's cost has.
int Power(std::string_view pattern, bool fAnchors = true)
{
    const double dCost = PatternCost(pattern, 9'999'999, fAnchors);
    return static_cast<int>(std::log10(dCost) / 7);
}

TEST(PatternCost, PlainTextIsTriedAtEveryPlace)
{
    EXPECT_EQ(PatternCost("abc", 9, true), 10 * 4);
}

TEST(PatternCost, AnAnchorTriesOnePlaceOnly)
{
    EXPECT_EQ(PatternCost("^abc", 9, true), 4);
    EXPECT_EQ(PatternCost("^abc", 9, false), 10 * 5);
}

TEST(PatternCost, EachRepetitionMultipliesByTheLength)
{
    EXPECT_EQ(Power("a*"), 2);
    EXPECT_EQ(Power("a+b-"), 3);
    EXPECT_EQ(Power("^.-.-.-b"), 3);
    EXPECT_EQ(Power("(%w+)=([^,]*)"), 3);
}

TEST(PatternCost, AnOptionDoubles)
{
    EXPECT_EQ(PatternCost("a?", 9, true), 10 * 2 * 3);
}

TEST(PatternCost, SignsThatRepeatNothingAreNotCounted)
{
    EXPECT_EQ(Power("%*%+%-%?"), 1);
    EXPECT_EQ(Power("[a-z*+]"), 1);
    EXPECT_EQ(Power("[]*]"), 1);
    EXPECT_EQ(Power("[^]*]"), 1);
    EXPECT_EQ(Power("[%]*]"), 1);
    EXPECT_EQ(Power("-"), 1);
    EXPECT_EQ(Power("(-)"), 1);
}

TEST(PatternCost, RepeatedSetsAreCounted)
{
    EXPECT_EQ(Power("[a-z]*"), 2);
    EXPECT_EQ(Power("[]*]*"), 2);
    EXPECT_EQ(Power("[%a%]]+x"), 2);
}

TEST(PatternCost, SignsAfterItemsThatCannotRepeatStandForThemselves)
{
    // In each the first sign is text, and the second repeats it.
    EXPECT_EQ(Power("%bxy?*"), 3); // one for the repetition, one for the scan of %b
    EXPECT_EQ(Power("(a)%1?*"), 3);
    EXPECT_EQ(Power("%f[a]?*"), 2);
    EXPECT_EQ(Power("(?*)"), 2);
}

TEST(PatternCost, ScansOfTheTextCount)
{
    EXPECT_EQ(Power("%b()"), 2);
    EXPECT_EQ(Power("(.)%1"), 2);
}

TEST(PatternCost, BrokenPatternsAreReadToTheirEnd)
{
    for (const char* szPattern : {"%", "[", "[^", "[%", "%b", "%bx", "%f", "%f[", "(", "^"})
        EXPECT_GT(PatternCost(szPattern, 10, true), 0.0) << szPattern;
}

TEST(PatternCost, StaysANumberForTheLongestPatterns)
{
    const std::string strBomb = []
    {
        std::string s;
        for (int n = 0; n < 5000; n++)
            s += "a*";
        return s;
    }();
    EXPECT_GT(PatternCost(strBomb, 1000, true), 1e300);
}

} // namespace
} // namespace Tarvane::Server
