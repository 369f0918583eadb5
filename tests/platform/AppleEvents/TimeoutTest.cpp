#include "platform/gnustep/AppleEvents/Timeout.h"
#include "platform/gnustep/AppleEvents/Deadline.h"

#include <AE/AppleEvents.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>

using namespace AppleEvents;

TEST(Timeout, DefaultIsOneMinute)
{
    EXPECT_EQ(3600, DefaultTimeoutTicks(nullptr));
}

TEST(Timeout, VariableShortensTheDefault)
{
    EXPECT_EQ(1, DefaultTimeoutTicks("1"));
    EXPECT_EQ(90, DefaultTimeoutTicks("90"));
    EXPECT_EQ(3600, DefaultTimeoutTicks("3600"));
}

TEST(Timeout, NonsenseInTheVariableIsPassedOver)
{
    for (const char* const text : {"", "0", "-1", "-2", "3601", "99999999999999999999", "ten",
                                   "10 ", " 10", "10s", "1.5", "0x10", "+5"})
        EXPECT_EQ(3600, DefaultTimeoutTicks(text)) << text;
}

TEST(Timeout, TicksAreSixtiethsOfASecond)
{
    const std::uint64_t before = MonotonicMicroseconds();
    const std::optional<Deadline> deadline = DeadlineForTicks(60 * 1000);
    ASSERT_TRUE(deadline);
    const std::uint64_t remaining = deadline->Remaining();
    EXPECT_LE(remaining, 1'000'000'000u);
    EXPECT_GE(remaining + (MonotonicMicroseconds() - before), 1'000'000'000u);
}

TEST(Timeout, NoTicksArePassedAtOnce)
{
    EXPECT_TRUE(DeadlineForTicks(0)->Passed());
}

TEST(Timeout, NoTimeOutNeverPasses)
{
    EXPECT_FALSE(DeadlineForTicks(kNoTimeOut)->Passed());
    EXPECT_EQ(kForever, DeadlineForTicks(kNoTimeOut)->Remaining());
}

TEST(Timeout, OtherNegativeTicksHaveNoMeaning)
{
    EXPECT_FALSE(DeadlineForTicks(-3));
    EXPECT_FALSE(DeadlineForTicks(INT32_MIN));
}

TEST(Timeout, LongestTicksDoNotWrap)
{
    EXPECT_GT(DeadlineForTicks(INT32_MAX)->Remaining(), 35'000'000'000'000u);
}

TEST(Timeout, GoesByTheClockThatNobodySets)
{
    const auto now = []
    {
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC, &time);
        return std::uint64_t(time.tv_sec) * 1'000'000 + std::uint64_t(time.tv_nsec) / 1'000;
    };
    const std::uint64_t before = now();
    const std::uint64_t instant = MonotonicMicroseconds();
    EXPECT_LE(before, instant);
    EXPECT_LE(instant, now());
}
