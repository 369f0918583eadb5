#include "TarvaneLinkShared/ScriptNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(ScriptNumbers, IntegersEndAtTheFirstOtherCharacter)
{
    EXPECT_EQ(LongFromText("44100.0"), 44100);
    EXPECT_EQ(LongFromText("12abc"), 12);
    EXPECT_EQ(LongFromText("7\n8\n"), 7);
    EXPECT_EQ(LongLongFromText("9007199254740993.5"), 9007199254740993);
    EXPECT_EQ(IntFromText("2\r"), 2);
}

TEST(ScriptNumbers, IntegersMayHaveBlanksAndASignInFront)
{
    EXPECT_EQ(LongFromText(" \t\r\n\v\f-15"), -15);
    EXPECT_EQ(LongFromText("+15"), 15);
    EXPECT_EQ(IntFromText("-0"), 0);
}

TEST(ScriptNumbers, WhatIsNoIntegerReadsAsZero)
{
    for (const char* szText : {"", " ", "abc", "+", "-", "+-1", "-+1", "--1", "+ 1", ".5", "nan"})
        EXPECT_EQ(LongFromText(szText), 0) << szText;
}

TEST(ScriptNumbers, IntegersBeyondTheTypeReadAsItsNearest)
{
    EXPECT_EQ(IntFromText("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(IntFromText(" -2147483649"), std::numeric_limits<int>::min());
    EXPECT_EQ(LongFromText("+99999999999999999999"), std::numeric_limits<long>::max());
    EXPECT_EQ(LongLongFromText("-99999999999999999999"), std::numeric_limits<long long>::min());
    EXPECT_EQ(LongLongFromText("-9223372036854775808"), std::numeric_limits<long long>::min());
}

TEST(ScriptNumbers, FloatsAreReadWithADecimalPoint)
{
    EXPECT_EQ(DoubleFromText("1.5\n"), 1.5);
    EXPECT_EQ(DoubleFromText(" -0.25e1x"), -2.5);
    EXPECT_EQ(DoubleFromText("1,5"), 1.0);
    EXPECT_EQ(DoubleFromText("3600"), 3600.0);
    EXPECT_EQ(DoubleFromText(".5"), 0.5);
}

TEST(ScriptNumbers, WhatIsNoFloatReadsAsZero)
{
    for (const char* szText : {"", "nil", ",5", "-", "e5"})
        EXPECT_EQ(DoubleFromText(szText), 0.0) << szText;
}

TEST(ScriptNumbers, PositionsAreCutTowardZero)
{
    EXPECT_EQ(WholeSamples(1234.9), 1234);
    EXPECT_EQ(WholeSamples(-0.5), 0);
    EXPECT_EQ(WholeSamples(-1.5), -1);
    EXPECT_EQ(WholeSamples(9007199254740992.0), 9007199254740992);
    EXPECT_EQ(WholeSamples(-9223372036854775808.0), std::numeric_limits<long long>::min());
}

TEST(ScriptNumbers, PositionsBeyond64BitsAreTheNearest)
{
    constexpr long long nLowest = std::numeric_limits<long long>::min();
    constexpr long long nHighest = std::numeric_limits<long long>::max();
    EXPECT_EQ(WholeSamples(9223372036854775808.0), nHighest);
    EXPECT_EQ(WholeSamples(1e300), nHighest);
    EXPECT_EQ(WholeSamples(HUGE_VAL), nHighest);
    EXPECT_EQ(WholeSamples(-9223372036854777856.0), nLowest);
    EXPECT_EQ(WholeSamples(-1e300), nLowest);
    EXPECT_EQ(WholeSamples(-HUGE_VAL), nLowest);
}

TEST(ScriptNumbers, APositionThatIsNoNumberIsZero)
{
    EXPECT_EQ(WholeSamples(std::nan("")), 0);
}
