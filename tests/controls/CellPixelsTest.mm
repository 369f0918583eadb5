#import "controls/TKButtonCell.h"
#import "controls/TKPopUpButtonCell.h"

#include "colours/ComponentsColors.h"
#include "tests/support/Canvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace TarvaneTests;

// A control's view: its y axis runs downward.
@interface CellHolder : NSView
{
  @public
    NSCell* m_cell; // not owned
    NSRect m_frame;
}
@end

@implementation CellHolder

- (BOOL)isFlipped
{
    return YES;
}

- (void)drawRect:(NSRect)rect
{
    (void)rect;
    [m_cell drawWithFrame:m_frame inView:self];
}

@end

namespace
{

constexpr CComponentCode kFaceUp(9, 1), kBorderUp(9, 2), kFaceDown(9, 3), kBorderDown(9, 4);
constexpr Pixel kDarkRed = {128, 0, 0}, kDarkGreen = {0, 128, 0};

class CellPixels : public testing::Test
{
  protected:
    CellPixels()
    {
        AppCreateDefaultColoursDesigner();
        Add(kFaceUp, 0, 1);
        Add(kBorderUp, 1, 0);
        Add(kFaceDown, 0, 128 / 255.0);
        Add(kBorderDown, 128 / 255.0, 0);
        m_button = [[TKButtonCell alloc] init];
        [m_button setTitle:@""];
        m_popUp = [[TKPopUpButtonCell alloc] init];
        for (NSCell* cell : Both())
            [(id<TKButtonCellColors>)cell SetButtonControlsFaceUp:kFaceUp
                                                         BorderUp:kBorderUp
                                                         FaceDown:kFaceDown
                                                       BorderDown:kBorderDown];
    }

    ~CellPixels() override
    {
        gnAppStyle = 1;
        [m_button release];
        [m_popUp release];
        gAppColours.Clear();
    }

    static void Add(CComponentCode code, double dRed, double dGreen)
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Add(new CComponentColour(code, "", dRed, dGreen, 0, 1, space, true));
        CGColorSpaceRelease(space);
    }

    std::vector<NSCell*> Both() { return {m_button, m_popUp}; }

    static Picture Draw(NSCell* cell, NSRect frame = NSMakeRect(0, 0, 60, 22))
    {
        const Canvas canvas(NSMakeSize(80, 40));
        CellHolder* holder =
            [[[CellHolder alloc] initWithFrame:NSMakeRect(0, 0, 80, 40)] autorelease];
        holder->m_cell = cell;
        holder->m_frame = frame;
        return canvas.TakeView(holder);
    }

    TKButtonCell* m_button;
    TKPopUpButtonCell* m_popUp;
};

} // namespace

TEST_F(CellPixels, BorderIsARingOfOnePoint)
{
    for (NSCell* cell : Both())
    {
        const Picture picture = Draw(cell);
        for (const int x : {0, 59})
            EXPECT_EQ(picture.At(x, 11), kRed);
        for (const int y : {0, 21})
            EXPECT_EQ(picture.At(20, y), kRed);
        EXPECT_EQ(picture.At(1, 11), kGreen);
        EXPECT_EQ(picture.At(58, 11), kGreen);
        EXPECT_EQ(picture.At(20, 1), kGreen);
        EXPECT_EQ(picture.At(20, 20), kGreen);
        EXPECT_EQ(picture.At(60, 11), kWhite);
        EXPECT_EQ(picture.At(20, 22), kWhite);
    }
}

TEST_F(CellPixels, RingIsOnePointWideAroundTheCornersToo)
{
    const Picture picture = Draw(m_button);
    EXPECT_EQ(picture.At(0, 0), kWhite);
    // Between the outer arc of 6 and the inner arc of 5, which have one centre.
    const Pixel ring = picture.At(1, 2);
    EXPECT_TRUE(IsNear(ring, kRed, 80)) << ring;
    EXPECT_EQ(picture.At(3, 3), kGreen);
}

TEST_F(CellPixels, HeldDownTheActiveColoursShow)
{
    for (NSCell* cell : Both())
    {
        [cell setHighlighted:YES];
        const Picture picture = Draw(cell);
        EXPECT_EQ(picture.At(0, 11), kDarkRed);
        EXPECT_EQ(picture.At(1, 11), kDarkGreen);
    }
}

TEST_F(CellPixels, DisabledLooksAsEnabled)
{
    [m_button setTitle:@"Send"];
    [m_popUp addItemWithTitle:@"Dialogue"];
    for (NSCell* cell : Both())
    {
        const Picture enabled = Draw(cell);
        [cell setEnabled:NO];
        EXPECT_TRUE(Draw(cell) == enabled);
    }
}

TEST_F(CellPixels, TitleIsDrawnInTheColourOfControlText)
{
    const Picture bare = Draw(m_button);
    [m_button setTitle:@"IIIIII"];
    const Picture titled = Draw(m_button);
    EXPECT_EQ(bare.Count({192, 192, 192}), 0);
    EXPECT_GT(titled.Count({192, 192, 192}), 10);
}

TEST_F(CellPixels, DefaultButtonFadesFromItsTop)
{
    [m_button SetButtonControlsFaceUp:ccButtonFace
                             BorderUp:ccButtonBorder
                             FaceDown:ccButtonFaceActive
                           BorderDown:ccButtonBorderActive];
    const Picture picture = Draw(m_button);
    EXPECT_TRUE(IsNear(picture.At(30, 0), {114, 114, 114}, 4)) << picture.At(30, 0);
    EXPECT_TRUE(IsNear(picture.At(30, 21), {40, 40, 40}, 4)) << picture.At(30, 21);
    EXPECT_EQ(picture.At(30, 5), (Pixel{54, 54, 54}));
}

TEST_F(CellPixels, ArrowStandsFourPointsFromTheEdgeInTheMiddle)
{
    // What the image itself covers, within its own bounds.
    NSString* path = [[NSBundle mainBundle] pathForResource:@"PopupArrow" ofType:@"png"];
    NSImage* image = [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
    ASSERT_TRUE(image != nil);
    const NSSize size = [image size];
    NSRect box;
    {
        const Canvas canvas(size);
        [image drawInRect:NSMakeRect(0, 0, size.width, size.height)
                 fromRect:NSZeroRect
                operation:NSCompositeSourceOver
                 fraction:1.0];
        box = canvas.Take().BoxOfAllBut(kWhite);
    }
    ASSERT_FALSE(NSIsEmptyRect(box));

    // An even remainder above and below, so that it falls on whole pixels.
    const CGFloat dHeight = size.height + 10;
    const NSRect frame = NSMakeRect(3, 2, 60, dHeight);
    Add(kFaceUp, 0, 0);
    Add(kBorderUp, 0, 0);
    const Picture picture = Draw(m_popUp, frame);
    NSRect arrow = NSZeroRect;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x)
            if (NSPointInRect(NSMakePoint(x, y), NSInsetRect(frame, 3, 3)) &&
                picture.At(x, y) != kBlack)
                arrow = NSUnionRect(arrow, NSMakeRect(x, y, 1, 1));
    EXPECT_EQ(NSMinX(arrow), 3 + 60 - 4 - size.width + NSMinX(box));
    EXPECT_EQ(NSMinY(arrow), 2 + 5 + NSMinY(box));
    EXPECT_EQ(NSWidth(arrow), NSWidth(box));
    EXPECT_EQ(NSHeight(arrow), NSHeight(box));
}

TEST_F(CellPixels, ShadedStyleRampsFromTheTopAtTheOrigin)
{
    gnAppStyle = 0;
    struct
    {
        bool fEnabled, fHeld;
        int nTop, nBottom;
    } const cases[] = {{true, false, 153, 51},
                       {true, true, 204, 102},
                       {false, false, 230, 191},
                       {false, true, 230, 191}};
    for (const auto& c : cases)
    {
        [m_button setEnabled:c.fEnabled];
        [m_button setHighlighted:c.fHeld];
        const Picture picture = Draw(m_button, NSMakeRect(11, 7, 60, 22));
        const Pixel top = picture.At(30, 0), bottom = picture.At(30, 21);
        EXPECT_TRUE(IsNear(top, {c.nTop, c.nTop, c.nTop}, 4)) << top;
        EXPECT_TRUE(IsNear(bottom, {c.nBottom, c.nBottom, c.nBottom}, 4)) << bottom;
        EXPECT_TRUE(NSEqualRects(picture.BoxOfAllBut(kWhite), NSMakeRect(0, 0, 60, 22)));
        EXPECT_EQ(picture.At(0, 0), kWhite) << "rounded";
    }
}
