#include "platform/gnustep/CoreGraphics/CGObjects.h"
#include "tests/platform/CoreGraphics/CanvasFixture.h"

using namespace TarvaneTests;

namespace
{

class CGGradientPixels : public CanvasTest
{
  protected:
    // Draws and releases; the axis runs from left to right unless told otherwise.
    Picture Draw(CGGradientRef gradient, CGGradientDrawingOptions options = kBothWays,
                 CGPoint start = {0, 0}, CGPoint end = {60, 0})
    {
        CGContextDrawLinearGradient(m_context, gradient, start, end, options);
        CGGradientRelease(gradient);
        return m_canvas.Take();
    }
};

} // namespace

TEST_F(CGGradientPixels, TwoStopsRunFromTheFirstToTheLast)
{
    const Picture picture = Draw(MakeGradient({kRed, kBlue}, {0, 1}));
    EXPECT_TRUE(IsNear(picture.At(0, 20), kRed, 6)) << picture.At(0, 20);
    EXPECT_TRUE(IsNear(picture.At(30, 20), {127, 0, 127}, 6)) << picture.At(30, 20);
    EXPECT_TRUE(IsNear(picture.At(59, 20), kBlue, 6)) << picture.At(59, 20);
    for (int y = 0; y < 40; ++y)
        EXPECT_EQ(picture.At(20, y), picture.At(20, 0)) << "the same across the axis";
}

// Five shades over sixty pixels: a band of twelve is as narrow as they can be.
TEST_F(CGGradientPixels, GentleOnesShowNoWiderBandsThanThereAreShades)
{
    const Picture picture = Draw(MakeGradient({{32, 32, 32}, {37, 37, 37}}, {0, 1}));
    int nBand = 1;
    for (int x = 1; x < 60; ++x)
    {
        const int nStep = picture.At(x, 20).nRed - picture.At(x - 1, 20).nRed;
        EXPECT_TRUE(nStep == 0 || nStep == 1) << "at " << x;
        nBand = nStep == 0 ? nBand + 1 : 1;
        EXPECT_LE(nBand, 13) << "at " << x;
    }
    EXPECT_EQ(picture.At(0, 20).nRed, 32);
    EXPECT_EQ(picture.At(59, 20).nRed, 37);
}

TEST_F(CGGradientPixels, BeforeTheFirstStopAndBehindTheLastTheirColoursStand)
{
    const Picture picture = Draw(MakeGradient({kRed, kBlue}, {0.25, 0.75}));
    EXPECT_EQ(picture.At(0, 0), kRed);
    EXPECT_EQ(picture.At(13, 0), kRed);
    EXPECT_EQ(picture.At(46, 0), kBlue);
    EXPECT_EQ(picture.At(59, 0), kBlue);
}

TEST_F(CGGradientPixels, WithoutLocationsTheStepsAreEven)
{
    const Picture picture = Draw(MakeGradient({kRed, kGreen, kBlue}, {}));
    EXPECT_TRUE(IsNear(picture.At(29, 0), kGreen, 12)) << picture.At(29, 0);
    EXPECT_TRUE(IsNear(picture.At(59, 0), kBlue, 12)) << picture.At(59, 0);
}

TEST_F(CGGradientPixels, OneStopIsItsColourEverywhere)
{
    const Pixel grey = {54, 54, 54};
    const Picture picture =
        Draw(MakeGradient({grey}, {0.4}), kBothWays, CGPointMake(20, 0), CGPointMake(30, 0));
    EXPECT_EQ(picture.Count(grey), 60 * 40);
}

TEST_F(CGGradientPixels, NoStopsAndNoGradientPaintNothing)
{
    CGGradientRef none = MakeGradient({}, {0.5});
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(Draw(none).Count(kWhite), 60 * 40);
    EXPECT_EQ(Draw(nullptr).Count(kWhite), 60 * 40);
    EXPECT_EQ(CGGradientCreateWithColors(m_space, nullptr, nullptr), nullptr);
}

TEST_F(CGGradientPixels, ANullColourIsClear)
{
    const void* none[] = {nullptr, nullptr};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, none, 2, nullptr);
    CGGradientRef gradient = CGGradientCreateWithColors(m_space, array, nullptr);
    CFRelease(array);
    EXPECT_EQ(Draw(gradient).Count(kWhite), 60 * 40);
}

TEST_F(CGGradientPixels, AlphaOfAStopLetsTheGroundShow)
{
    CGColorRef colour = MakeColour(kRed, 0.5);
    const void* colours[] = {colour};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, colours, 1, nullptr);
    CGGradientRef gradient = CGGradientCreateWithColors(m_space, array, nullptr);
    CFRelease(array);
    CGColorRelease(colour);
    const Pixel pixel = Draw(gradient).At(5, 5);
    EXPECT_TRUE(IsNear(pixel, {255, 128, 128})) << pixel;
}

TEST_F(CGGradientPixels, OptionsSayOnWhichSidesOfTheAxisItIsPainted)
{
    struct
    {
        CGGradientDrawingOptions options;
        NSRect painted;
    } const cases[] = {
        {0, NSMakeRect(20, 0, 20, 40)},
        {kCGGradientDrawsBeforeStartLocation, NSMakeRect(0, 0, 40, 40)},
        {kCGGradientDrawsAfterEndLocation, NSMakeRect(20, 0, 40, 40)},
        {kBothWays, NSMakeRect(0, 0, 60, 40)},
    };
    for (const auto& c : cases)
    {
        Canvas canvas(NSMakeSize(60, 40));
        CGGradientRef gradient = MakeGradient({kRed, kBlue}, {0, 1});
        CGContextDrawLinearGradient(canvas.Context(), gradient, CGPointMake(20, 7),
                                    CGPointMake(40, 7), c.options);
        CGGradientRelease(gradient);
        const NSRect painted = canvas.Take().BoxOfAllBut(kWhite);
        EXPECT_TRUE(NSEqualRects(painted, c.painted))
            << c.options << " " << [NSStringFromRect(painted) UTF8String];
    }
}

TEST_F(CGGradientPixels, OptionsHoldAcrossASlantingAxisToo)
{
    const Picture picture =
        Draw(MakeGradient({kRed, kBlue}, {0, 1}), 0, CGPointMake(20, 10), CGPointMake(40, 30));
    // Rows count from the top: the axis runs from (20, 29) to (40, 9), rising to the right.
    EXPECT_EQ(picture.At(10, 32), kWhite) << "before the start";
    EXPECT_EQ(picture.At(50, 5), kWhite) << "behind the end";
    EXPECT_NE(picture.At(30, 20), kWhite) << "on the axis";
    EXPECT_NE(picture.At(15, 5), kWhite) << "beside the axis";
    EXPECT_NE(picture.At(45, 35), kWhite) << "on its other side";
}

TEST_F(CGGradientPixels, DrawingLeavesClipAndPathAsTheyWere)
{
    CGContextBeginPath(m_context);
    CGContextAddRect(m_context, CGRectMake(10, 0, 10, 40));
    CGGradientRef gradient = MakeGradient({kRed}, {0});
    CGContextDrawLinearGradient(m_context, gradient, CGPointMake(30, 0), CGPointMake(40, 0), 0);
    CGGradientRelease(gradient);
    CGContextSaveGState(m_context);
    CGContextClip(m_context);
    SetColour(kBlue);
    CGContextFillRect(m_context, CGRectMake(0, 0, 60, 40));
    CGContextRestoreGState(m_context);
    const Picture picture = m_canvas.Take();
    EXPECT_EQ(picture.Count(kBlue), 10 * 40);
    EXPECT_EQ(picture.Count(kRed), 10 * 40);
}

TEST_F(CGGradientPixels, ReleaseGivesUpThePlatformsGradient)
{
    CGGradientRef gradient = MakeGradient({kRed, kBlue}, {0, 1});
    NSGradient* inner = [gradient->gradient retain];
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    CGContextDrawLinearGradient(m_context, gradient, NSZeroPoint, NSMakePoint(9, 9), 0);
    [pool drain];
    EXPECT_EQ([inner retainCount], 2u);
    CGGradientRelease(gradient);
    EXPECT_EQ([inner retainCount], 1u);
    [inner release];
    CGGradientRelease(nullptr);
}
