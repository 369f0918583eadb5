#import "Graphics/TGLGraphics.h"
#include "tests/support/ReplacedMethod.h"

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

using TarvaneTests::ReplacedMethod;
using TGL::CEvent;

namespace
{

NSEvent* EventWith(NSUInteger nFlags, int nClicks = 1, NSPoint place = NSZeroPoint)
{
    return [NSEvent mouseEventWithType:NSLeftMouseDown
                              location:place
                         modifierFlags:nFlags
                             timestamp:0
                          windowNumber:0
                               context:nil
                           eventNumber:0
                            clickCount:nClicks
                              pressure:0];
}

NSEvent* currentEvent;

struct Event : testing::Test
{
    ~Event() override { currentEvent = nil; }

    // Of the application.
    const ReplacedMethod current
    {
        [NSApplication class], @selector(currentEvent), [](id, SEL) { return currentEvent; }
    };
};

constexpr NSUInteger kAllBits = 0xffffffff;
constexpr NSUInteger Bit(int nBit) { return NSUInteger(1) << nBit; }

} // namespace

TEST_F(Event, TellsPlaceAndClicksOfTheHeldEvent)
{
    CEvent event(EventWith(0, 3, NSMakePoint(12.5, 34)));
    EXPECT_TRUE(NSEqualPoints(event.locationInWindow(), NSMakePoint(12.5, 34)));
    EXPECT_EQ(event.clickCount(), 3);
}

TEST_F(Event, ThreeKeysAreOneBitOfTheHeldEventEach)
{
    currentEvent = EventWith(kAllBits);
    for (int nBit = 0; nBit < 32; ++nBit)
    {
        CEvent event(EventWith(Bit(nBit)));
        EXPECT_EQ(event.ShiftKey(), nBit == 17) << nBit;
        EXPECT_EQ(event.AlternateKey(), nBit == 19) << nBit;
        EXPECT_EQ(event.FunctionKey(), nBit == 23) << nBit;
    }
    currentEvent = EventWith(0);
    CEvent all(EventWith(kAllBits));
    EXPECT_TRUE(all.ShiftKey() && all.AlternateKey() && all.FunctionKey());
}

TEST_F(Event, TwoKeysAreOneBitOfTheCurrentEventEach)
{
    CEvent all(EventWith(kAllBits));
    for (int nBit = 0; nBit < 32; ++nBit)
    {
        currentEvent = EventWith(Bit(nBit));
        EXPECT_EQ(all.AlternateKeyPressed(), nBit == 19) << nBit;
        EXPECT_EQ(all.CommandKey(), nBit == 20) << nBit;
    }
    currentEvent = EventWith(kAllBits);
    CEvent none(EventWith(0));
    EXPECT_TRUE(none.AlternateKeyPressed() && none.CommandKey());
}

TEST_F(Event, IsNotRetained)
{
    NSEvent* held = EventWith(0);
    const NSUInteger nBefore = [held retainCount];
    {
        const CEvent event(held);
        EXPECT_EQ([held retainCount], nBefore);
    }
    EXPECT_EQ([held retainCount], nBefore);
}

TEST_F(Event, WithoutAnEventEverythingIsNought)
{
    CEvent nothing(nullptr);
    EXPECT_TRUE(NSEqualPoints(nothing.locationInWindow(), NSZeroPoint));
    EXPECT_EQ(nothing.clickCount(), 0);
    EXPECT_FALSE(nothing.ShiftKey() || nothing.AlternateKey() || nothing.FunctionKey());
    EXPECT_FALSE(nothing.AlternateKeyPressed() || nothing.CommandKey());
}
