#import "controls/TKToggleSwitch.h"

#include "colours/ComponentsColors.h"
#include "tests/support/Canvas.h"

#include <gtest/gtest.h>

using namespace TarvaneTests;

@interface PressedSwitch : TKToggleSwitch
- (void)press;
@end

@implementation PressedSwitch
- (void)press
{
    m_fMouseDown = true;
}
@end

namespace
{

constexpr CComponentCode kFace(9, 1), kBorder(9, 2), kDownFace(9, 3), kDownBorder(9, 4);
constexpr Pixel kDarkGreen = {0, 128, 0}, kDarkRed = {128, 0, 0};

class TogglePixels : public testing::Test
{
  protected:
    TogglePixels()
    {
        Add(kFace, 0, 1);
        Add(kBorder, 1, 0);
        Add(kDownFace, 0, 128 / 255.0);
        Add(kDownBorder, 128 / 255.0, 0);
        // The image's 17 by 17 points leave an even remainder on all sides.
        m_switch = [[PressedSwitch alloc] initWithFrame:NSMakeRect(0, 0, 61, 31)];
    }
    ~TogglePixels() override
    {
        [m_switch release];
        gAppColours.Clear();
    }

    static void Add(CComponentCode code, double dRed, double dGreen)
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Add(new CComponentColour(code, "", dRed, dGreen, 0, 1, space, true));
        CGColorSpaceRelease(space);
    }

    void SetColours()
    {
        [m_switch SetUpColorsFace:kFace Border:kBorder];
        [m_switch SetDownColorsFace:kDownFace Border:kDownBorder];
    }

    void SetImages()
    {
        [m_switch SetStateImages:1 Up:@"LinkActive17" Down:@"LinkActive17"];
        [m_switch SetStateImages:0 Up:@"LinkInactive17" Down:@"LinkInactive17"];
    }

    Picture Draw()
    {
        const Canvas canvas(NSMakeSize(80, 40));
        return canvas.TakeView(m_switch);
    }

    // What the image covers when it is drawn at its own size in the lower left corner.
    static NSRect BoxOfImage(NSString* strName)
    {
        NSString* path = [[NSBundle mainBundle] pathForResource:strName ofType:@"png"];
        NSImage* image = [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
        const Canvas canvas(NSMakeSize(17, 17));
        [image drawInRect:NSMakeRect(0, 0, 17, 17)
                 fromRect:NSZeroRect
                operation:NSCompositeSourceOver
                 fraction:1.0];
        return canvas.Take().BoxOfAllBut(kWhite);
    }

    PressedSwitch* m_switch;
};

} // namespace

TEST_F(TogglePixels, FaceLiesOnePointInsideTheBorder)
{
    SetColours();
    const Picture picture = Draw();
    EXPECT_EQ(picture.At(0, 0), kWhite) << "rounded";
    EXPECT_EQ(picture.At(0, 15), kRed);
    EXPECT_EQ(picture.At(60, 15), kRed);
    EXPECT_EQ(picture.At(30, 0), kRed);
    EXPECT_EQ(picture.At(30, 30), kRed);
    EXPECT_EQ(picture.At(1, 15), kGreen);
    EXPECT_EQ(picture.At(59, 15), kGreen);
    EXPECT_EQ(picture.At(30, 1), kGreen);
    EXPECT_EQ(picture.At(30, 29), kGreen);
}

TEST_F(TogglePixels, PressedItShowsItsDownColours)
{
    SetColours();
    [m_switch press];
    const Picture picture = Draw();
    EXPECT_EQ(picture.At(0, 15), kDarkRed);
    EXPECT_EQ(picture.At(1, 15), kDarkGreen);
}

TEST_F(TogglePixels, ImageIsCentredAtItsOwnSize)
{
    SetImages();
    for (const bool fOn : {false, true})
    {
        [m_switch setState:fOn];
        const NSRect own = BoxOfImage(fOn ? @"LinkActive17" : @"LinkInactive17");
        ASSERT_FALSE(NSIsEmptyRect(own));
        EXPECT_TRUE(NSEqualRects(Draw().BoxOfAllBut(kWhite), NSOffsetRect(own, 22, 7)));
    }
}

TEST_F(TogglePixels, ImageStaysInTheMiddleOfABorder)
{
    SetImages();
    Add(kFace, 1, 1);
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    gAppColours.Add(new CComponentColour(kFace, "", 1, 1, 1, 1, space, true));
    gAppColours.Add(new CComponentColour(kBorder, "", 1, 1, 1, 1, space, true));
    CGColorSpaceRelease(space);
    const Picture bare = Draw();
    SetColours();
    EXPECT_TRUE(Draw() == bare);
}

TEST_F(TogglePixels, OffsetMovesTheImageToTheRight)
{
    SetImages();
    [m_switch SetImageOffset:5];
    const NSRect own = BoxOfImage(@"LinkInactive17");
    EXPECT_TRUE(NSEqualRects(Draw().BoxOfAllBut(kWhite), NSOffsetRect(own, 27, 7)));
}

TEST_F(TogglePixels, WithoutAButtonTheImageIsStretchedOverTheBounds)
{
    SetColours();
    SetImages();
    [m_switch SetDrawButton:false];
    const Picture picture = Draw();
    EXPECT_EQ(picture.Count(kGreen) + picture.Count(kRed), 0);
    const NSRect own = BoxOfImage(@"LinkInactive17");
    const NSRect box = picture.BoxOfAllBut(kWhite);
    EXPECT_NEAR(NSWidth(box), NSWidth(own) * 61 / 17, 4);
    EXPECT_NEAR(NSHeight(box), NSHeight(own) * 31 / 17, 4);
}

TEST_F(TogglePixels, OnAndOffDifferInTheirImageOnly)
{
    SetColours();
    const Picture off = Draw();
    [m_switch setState:1];
    EXPECT_TRUE(Draw() == off);
    SetImages();
    const Picture on = Draw();
    [m_switch setState:0];
    EXPECT_FALSE(Draw() == on);
}

TEST_F(TogglePixels, DisabledLooksAsEnabled)
{
    SetColours();
    SetImages();
    const Picture enabled = Draw();
    [m_switch SetEnabled:false];
    EXPECT_TRUE(Draw() == enabled);
}

TEST_F(TogglePixels, LabelIsDrawnInItsColourFromItsOffset)
{
    [m_switch SetLabel:@"Take" XOffset:20];
    [m_switch SetLabelColor:kBorder];
    const NSRect box = Draw().BoxOfAllBut(kWhite);
    EXPECT_GE(NSMinX(box), 19);
    EXPECT_LE(NSMinX(box), 24);
    EXPECT_GT(NSWidth(box), 12);
}

TEST_F(TogglePixels, DrawingKeepsNothing)
{
    SetColours();
    SetImages();
    [m_switch SetLabel:@"Take" XOffset:20];
    Draw();
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    for (int n = 0; n < 3; ++n)
        Draw();
    [pool drain];
    EXPECT_EQ([m_switch retainCount], 1u);
}
