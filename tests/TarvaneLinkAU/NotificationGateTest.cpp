#include "TarvaneLinkAU/NotificationGate.h"

#include <gtest/gtest.h>

#include <latch>

namespace
{
TEST(NotificationGate, LetsEverybodyInUntilItIsClosed)
{
    CNotificationGate gate;
    CNotificationGate::CPass first(gate);
    CNotificationGate::CPass second(gate);
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
}

TEST(NotificationGate, NobodyComesInOnceItIsClosed)
{
    CNotificationGate gate;
    gate.Close();
    EXPECT_FALSE(CNotificationGate::CPass(gate));
    gate.Close();
    EXPECT_FALSE(CNotificationGate::CPass(gate));
}

TEST(NotificationGate, ClosingWaitsForWhoeverIsInside)
{
    CNotificationGate gate;
    std::latch entered(1);
    int nWrittenInside = 0; // a race, for the thread sanitizer, if closing did not wait
    std::thread visitor(
        [&]
        {
            CNotificationGate::CPass pass(gate);
            entered.count_down();
            for (int n = 0; n < 1000; ++n)
            {
                std::this_thread::yield();
                ++nWrittenInside;
            }
        });
    entered.wait();
    gate.Close();
    EXPECT_EQ(nWrittenInside, 1000);
    visitor.join();
}
} // namespace
