#include "apps/server/sandbox/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace Tarvane::Server
{
namespace
{

std::string Text(double dNumber)
{
    NumberBuffer buffer;
    return std::string(NumberText(dNumber, buffer));
}

TEST(NumberText, WholeNumbersKeepAPointAndNoExponent)
{
    EXPECT_EQ(Text(44100.0), "44100.0");
    EXPECT_EQ(Text(-2.0), "-2.0");
    EXPECT_EQ(Text(0.0), "0.0");
    EXPECT_EQ(Text(1e15), "1000000000000000.0");
}

TEST(NumberText, CReadersGetEveryDigitBack)
{
    for (double dNumber :
         {0.1, 1.0 / 3.0, 1001.0 / 30000.0, -123456.789, 1e-7, 5e-324, 1.7976931348623157e308})
    {
        EXPECT_EQ(std::atof(Text(dNumber).c_str()), dNumber);
        EXPECT_EQ(Text(dNumber).find('e'), std::string::npos) << Text(dNumber);
    }
}

TEST(NumberText, WholePartIsWhatAtollReads)
{
    EXPECT_EQ(std::atoll(Text(12345678901234.5).c_str()), 12345678901234);
    EXPECT_EQ(std::atoll(Text(9007199254740992.0).c_str()), 9007199254740992);
}

TEST(NumberText, LongestNumbersFit)
{
    EXPECT_LT(Text(-std::numeric_limits<double>::max()).size(), NumberBuffer().size());
    EXPECT_LT(Text(-std::numeric_limits<double>::denorm_min()).size(), NumberBuffer().size());
    EXPECT_LT(Text(-2.2250738585072014e-308).size(), NumberBuffer().size());
}

TEST(NumberText, WhatIsNoNumberSaysSo)
{
    EXPECT_EQ(Text(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(Text(-std::numeric_limits<double>::infinity()), "-inf");
    EXPECT_EQ(Text(std::nan("")), "nan");
    EXPECT_EQ(Text(-std::nan("")), "nan");
}

} // namespace
} // namespace Tarvane::Server
