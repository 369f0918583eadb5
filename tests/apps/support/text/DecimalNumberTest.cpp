#include "apps/support/text/DecimalNumber.h"

#include "tests/support/DecimalComma.h"

#include <gtest/gtest.h>

#include <limits>

using Tarvane::DecimalFrom;

TEST(DecimalNumber, IsReadToTheLastBit)
{
    EXPECT_EQ(DecimalFrom<double>("0.1"), 0.1);
    EXPECT_EQ(DecimalFrom<double>("-12"), -12.0);
    EXPECT_EQ(DecimalFrom<double>("1e-3"), 1e-3);
    EXPECT_EQ(DecimalFrom<double>("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(DecimalFrom<double>("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(DecimalFrom<double>("4.9406564584124654e-324"),
              std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(DecimalFrom<double>("-0.0e5"), 0.0);
}

TEST(DecimalNumber, IsRoundedOnceToItsOwnWidth)
{
    EXPECT_EQ(DecimalFrom<float>("0.1"), 0.1f);
    // By way of a double it would be rounded up.
    EXPECT_EQ(DecimalFrom<float>("1.00000005960464480"), 1.00000012f);
    EXPECT_EQ(DecimalFrom<float>("1.00000005960464477"), 1.0f);
}

TEST(DecimalNumber, IsAllOfTheText)
{
    for (const char* szText : {"", "-", ".", "e5", "+1", " 1", "1 ", "1,5", "1.5.2", "1e", "0x10",
                               "inf", "-nan", "1e5x", "1\n"})
        EXPECT_EQ(DecimalFrom<double>(szText), std::nullopt) << szText;
    EXPECT_EQ(DecimalFrom<double>(std::string("1\0", 2)), std::nullopt);
}

TEST(DecimalNumber, IsNoneWhereItCannotBeHeld)
{
    EXPECT_EQ(DecimalFrom<double>("1e309"), std::nullopt);
    EXPECT_EQ(DecimalFrom<double>("-1e309"), std::nullopt);
    EXPECT_EQ(DecimalFrom<double>("1e-400"), std::nullopt);
    EXPECT_EQ(DecimalFrom<float>("1e39"), std::nullopt);
    EXPECT_EQ(DecimalFrom<float>("1e-50"), std::nullopt);
}

TEST(DecimalNumber, HasAPointInEveryLocale)
{
    const TarvaneTests::DecimalComma comma;
    EXPECT_EQ(DecimalFrom<double>("1.5"), 1.5);
    EXPECT_EQ(DecimalFrom<double>("1,5"), std::nullopt);
}
