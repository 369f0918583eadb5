#include "apps/support/text/Timecode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using Tarvane::FormatSamples;
using Tarvane::FormatTimecode;

TEST(Timecode, ShowsHoursMinutesSecondsAndMilliseconds)
{
    EXPECT_EQ(FormatTimecode(0.0), "0:00:00.000");
    EXPECT_EQ(FormatTimecode(3723.004), "1:02:03.004");
    EXPECT_EQ(FormatTimecode(36000.0), "10:00:00.000");
    EXPECT_EQ(FormatTimecode(360000.5), "100:00:00.500");
}

TEST(Timecode, RoundsToTheNearestMillisecondAndCarries)
{
    EXPECT_EQ(FormatTimecode(1.4278), "0:00:01.428");
    EXPECT_EQ(FormatTimecode(0.0004), "0:00:00.000");
    EXPECT_EQ(FormatTimecode(59.9996), "0:01:00.000");
    EXPECT_EQ(FormatTimecode(3599.9999), "1:00:00.000");
}

TEST(Timecode, BeforeTheStartHasASignUnlessItRoundsToZero)
{
    EXPECT_EQ(FormatTimecode(-1.5), "-0:00:01.500");
    EXPECT_EQ(FormatTimecode(-0.0001), "0:00:00.000");
}

TEST(Timecode, WhatNoClockCanShowIsDashes)
{
    EXPECT_EQ(FormatTimecode(std::nan("")), "-:--:--.---");
    EXPECT_EQ(FormatTimecode(std::numeric_limits<double>::infinity()), "-:--:--.---");
    EXPECT_EQ(FormatTimecode(1e300), "-:--:--.---");
}

TEST(Timecode, SamplesNeedAPositiveRate)
{
    EXPECT_EQ(FormatTimecode(96100.0, 48000.0), "0:00:02.002");
    EXPECT_EQ(FormatTimecode(96100.0, 0.0), "-:--:--.---");
    EXPECT_EQ(FormatTimecode(96100.0, -48000.0), "-:--:--.---");
    EXPECT_EQ(FormatTimecode(96100.0, std::nan("")), "-:--:--.---");
}

TEST(Timecode, SampleCountsNeverTakeAnExponent)
{
    EXPECT_EQ(FormatSamples(1234567.0), "1234567");
    EXPECT_EQ(FormatSamples(9007199254740992.0), "9007199254740992");
    EXPECT_EQ(FormatSamples(-12.6), "-13");
    EXPECT_EQ(FormatSamples(-0.4), "0");
}
