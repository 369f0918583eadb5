#include "TarvaneLinkAU/NotificationGate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

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

// Many gates, since the moment between a look at the gate and the step through it is short.
TEST(NotificationGate, NobodyIsInsideOnceClosingHasReturned)
{
    struct Door
    {
        CNotificationGate gate;
        std::atomic<bool> fEntered{false}, fGone{false};
    };
    std::vector<Door> doors(200);
    std::atomic<int> nInsideOfNothing{0};
    std::thread visitor(
        [&]
        {
            for (Door& door : doors)
            {
                for (bool fOpen = true; fOpen;)
                {
                    CNotificationGate::CPass pass(door.gate);
                    fOpen = bool(pass);
                    door.fEntered = true;
                    nInsideOfNothing += fOpen && door.fGone;
                }
            }
        });
    for (Door& door : doors)
    {
        while (!door.fEntered)
            std::this_thread::yield();
        door.gate.Close();
        door.fGone = true;
    }
    visitor.join();
    EXPECT_EQ(nInsideOfNothing, 0);
}
} // namespace
