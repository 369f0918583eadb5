#include "tests/platform/CoreGraphics/CanvasFixture.h"

using namespace TarvaneTests;

using CGContextPixels = CanvasTest;

namespace
{
const CGRect kWhole = CGRectMake(0, 0, 60, 40);
} // namespace

TEST_F(CGContextPixels, ContextStandsForTheOneThatHasTheFocus)
{
    ASSERT_NE(m_context, nullptr);
    EXPECT_EQ((void*)m_context, (void*)[NSGraphicsContext currentContext]);
}

TEST_F(CGContextPixels, FillRectPaintsItsPointsAndNoOthers)
{
    SetColour(kRed);
    CGContextFillRect(m_context, CGRectMake(10, 5, 30, 20));
    const Picture picture = m_canvas.Take();
    EXPECT_TRUE(NSEqualRects(picture.BoxOfAllBut(kWhite), NSMakeRect(10, 15, 30, 20)));
    EXPECT_EQ(picture.Count(kRed), 30 * 20);
}

TEST_F(CGContextPixels, AlphaLetsTheGroundShow)
{
    SetColour(kRed, 0.5);
    CGContextFillRect(m_context, kWhole);
    const Pixel pixel = m_canvas.Take().At(30, 20);
    EXPECT_TRUE(IsNear(pixel, {255, 128, 128})) << pixel;
}

TEST_F(CGContextPixels, ANullColourLeavesTheFillColour)
{
    SetColour(kGreen);
    CGContextSetFillColorWithColor(m_context, nullptr);
    CGContextFillRect(m_context, kWhole);
    EXPECT_EQ(m_canvas.Take().Count(kGreen), 60 * 40);
}

TEST_F(CGContextPixels, RestoreBringsBackColourAndClip)
{
    SetColour(kRed);
    CGContextSaveGState(m_context);
    SetColour(kBlue);
    ClipTo(CGRectMake(0, 0, 10, 40));
    CGContextRestoreGState(m_context);
    CGContextFillRect(m_context, kWhole);
    EXPECT_EQ(m_canvas.Take().Count(kRed), 60 * 40);
}

TEST_F(CGContextPixels, ClipsIntersect)
{
    SetColour(kRed);
    CGContextSaveGState(m_context);
    ClipTo(CGRectMake(0, 0, 30, 40));
    ClipTo(CGRectMake(20, 10, 40, 10));
    CGContextFillRect(m_context, kWhole);
    CGContextRestoreGState(m_context);
    const Picture picture = m_canvas.Take();
    EXPECT_TRUE(NSEqualRects(picture.BoxOfAllBut(kWhite), NSMakeRect(20, 20, 10, 10)));
}

TEST_F(CGContextPixels, ClipUsesUpThePath)
{
    SetColour(kRed);
    CGContextSaveGState(m_context);
    ClipTo(CGRectMake(0, 0, 30, 40));
    // Without a new path: were the old one still there, all of the left half would be in the clip.
    CGContextAddRect(m_context, CGRectMake(20, 0, 10, 40));
    CGContextClip(m_context);
    CGContextFillRect(m_context, kWhole);
    CGContextRestoreGState(m_context);
    EXPECT_TRUE(NSEqualRects(m_canvas.Take().BoxOfAllBut(kWhite), NSMakeRect(20, 0, 10, 40)));
}

TEST_F(CGContextPixels, ArcToPointRoundsTheCorner)
{
    SetColour(kRed);
    CGContextSaveGState(m_context);
    CGContextBeginPath(m_context);
    CGContextMoveToPoint(m_context, 6, 40);
    CGContextAddArcToPoint(m_context, 0, 40, 0, 34, 6);
    CGContextAddLineToPoint(m_context, 0, 0);
    CGContextAddLineToPoint(m_context, 60, 0);
    CGContextAddLineToPoint(m_context, 60, 40);
    CGContextClosePath(m_context);
    CGContextClip(m_context);
    CGContextFillRect(m_context, kWhole);
    CGContextRestoreGState(m_context);
    const Picture picture = m_canvas.Take();
    EXPECT_EQ(picture.At(0, 0), kWhite);
    EXPECT_EQ(picture.At(0, 1), kWhite) << "left of the circle of 6 around (6, 6)";
    EXPECT_EQ(picture.At(3, 3), kRed) << "inside of it";
    EXPECT_EQ(picture.At(0, 6), kRed);
    EXPECT_EQ(picture.At(6, 0), kRed);
    EXPECT_EQ(picture.At(59, 0), kRed);
    EXPECT_EQ(picture.At(0, 39), kRed);
}

TEST(CGGeometry, InsetTakesOffBothSides)
{
    EXPECT_TRUE(
        NSEqualRects(CGRectInset(CGRectMake(1, 2, 30, 20), 3, -4), NSMakeRect(4, -2, 24, 28)));
}
