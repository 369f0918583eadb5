// Whether there is a bus, apart from whether there is a receiver.

#include "tests/platform/AppleEvents/EventFixture.h"
#include "tests/platform/AppleEvents/MuteBus.h"

#include <TarvanePlatform/EventBus.h>

using namespace AppleEventTests;

using EventBusTest = BusTest;

TEST_F(EventBusTest, IsThereWithoutAReceiver)
{
    EXPECT_EQ(noErr, TarvaneCheckEventBus(kPlentyTicks));
    EXPECT_EQ(procNotFound, Echo("x").first);
}

TEST_F(EventBusTest, ThatIsGoneIsNotThere)
{
    m_bus.Kill();
    EXPECT_EQ(procNotFound, TarvaneCheckEventBus(kPlentyTicks));
    m_bus.Start();
    EXPECT_EQ(noErr, TarvaneCheckEventBus(kPlentyTicks));
}

TEST_F(EventBusTest, ATimeoutWithoutAMeaningIsRefused)
{
    EXPECT_EQ(paramErr, TarvaneCheckEventBus(-3));
}

TEST(MuteEventBus, IsATimeout)
{
    const MuteBus bus;
    EXPECT_EQ(errAETimeout, TarvaneCheckEventBus(6));
}
