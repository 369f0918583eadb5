#import "Graphics/TGLGraphics.h"
#include "colours/ComponentsColors.h"
#include "tests/Graphics/CursorOnScreen.h"
#include "tests/support/DesktopWindow.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

using TarvaneTests::CursorOnScreen;
using TarvaneTests::TakeCursor;

namespace
{

constexpr CComponentCode kPaper(9, 1); // white
constexpr CComponentCode kBlue(9, 2);
constexpr CComponentCode kRed(9, 3);
constexpr CComponentCode kNone(0, 0);
const CGRect kHandRect = CGRectMake(160, 10, 30, 50);

} // namespace

// Draws with the layer alone, and has it manage its cursors.
@interface LayerView : NSView
{
  @public
    int m_nDrawn;
    int m_nCursorResets;
}
@end

@implementation LayerView

- (void)drawRect:(NSRect)rect
{
    (void)rect;
    CGContextRef context = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
    const __CFString* fontName = (const __CFString*)@"DejaVuSans";
    const CGRect line = CGRectMake(5, 70, 190, 25);
    TGL::FillRect(context, kPaper, kNone, [self bounds], kFillTopToBottom, false);
    TGL::FillRoundRect(context, kBlue, kNone, CGRectMake(10, 10, 60, 50), 12, kFillTopToBottom,
                       false);
    TGL::CImage image("Quarters");
    image.Draw(context, CGRectMake(80, 12, 64, 48), 1);
    TGL::FillRect(context, kRed, kNone, kHandRect, kFillTopToBottom, false);
    TGL::DrawText(context, "Left", line, kRed, fontName, 16, TGL::kTextLeft);
    TGL::DrawText(context, "Mitte", line, kBlue, fontName, 16, TGL::kTextCentre);
    TGL::DrawText(context, "Right", line, kRed, fontName, 16, TGL::kTextRight);
    ++m_nDrawn;
}

- (void)resetCursorRects
{
    TGL::CCursor hand(TGL::kCursorOpenHand);
    TGL::CView(self).addCursorRect(kHandRect, &hand);
    ++m_nCursorResets;
}

@end

namespace
{

class OnScreen : public testing::Test
{
  protected:
    OnScreen()
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Add(new CComponentColour(kPaper, "", 1, 1, 1, 1, space, true));
        gAppColours.Add(new CComponentColour(kBlue, "", 0, 0, 1, 1, space, true));
        gAppColours.Add(new CComponentColour(kRed, "", 1, 0, 0, 1, space, true));
        CGColorSpaceRelease(space);
        m_view = [[LayerView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)];
        m_window = std::make_unique<CDesktopWindow>(m_view);
        EXPECT_TRUE(m_window->RunUntil([&] { return m_view->m_nDrawn > 0; }));
    }
    ~OnScreen() override
    {
        m_window.reset();
        [m_view release];
        gAppColours.Clear();
    }

    std::string ColourAt(CGFloat x, CGFloat y)
    {
        NSColor* colour = m_window->ColourAt(m_view, NSMakePoint(x, y));
        char text[60];
        snprintf(text, sizeof text, "%.3g %.3g %.3g", [colour redComponent],
                 [colour greenComponent], [colour blueComponent]);
        return text;
    }

    void PointAt(CGFloat x, CGFloat y)
    {
        NSPoint place = [[m_view window] convertBaseToScreen:NSMakePoint(x, y)];
        place.y = NSMaxY([[NSScreen mainScreen] frame]) - place.y;
        const std::string strCommand = "xdotool mousemove " + std::to_string(int(place.x)) + " " +
                                       std::to_string(int(place.y));
        EXPECT_EQ(std::system(strCommand.c_str()), 0);
    }

    bool Shows(const CursorOnScreen& cursor)
    {
        return m_window->RunUntil([&] { return TakeCursor() == cursor; });
    }

    // What the display server shows for a cursor of the platform.
    CursorOnScreen LookOf(NSCursor* cursor)
    {
        [cursor set];
        int nLooks = 0;
        m_window->RunUntil([&] { return ++nLooks > 2; });
        return TakeCursor();
    }

    LayerView* m_view;
    std::unique_ptr<CDesktopWindow> m_window;
};

} // namespace

TEST_F(OnScreen, FillsAndImagesStandWhereTheyWereDrawn)
{
    // The window manager may still be moving the window.
    EXPECT_TRUE(m_window->RunUntil([&] { return ColourAt(40, 35) == "0 0 1"; }));
    EXPECT_EQ(ColourAt(11, 11), "1 1 1") << "outside of the rounded corner";
    EXPECT_EQ(ColourAt(90, 50), "1 0 0") << "the image's upper left";
    EXPECT_EQ(ColourAt(130, 50), "0 1 0");
    EXPECT_EQ(ColourAt(90, 20), "0 0 1");
    EXPECT_EQ(ColourAt(130, 20), "0 0 0");
    EXPECT_EQ(ColourAt(175, 35), "1 0 0");
}

TEST_F(OnScreen, SetNeedsDisplayDrawsTheViewAgain)
{
    const int nDrawn = m_view->m_nDrawn;
    TGL::CView(m_view).setNeedsDisplay();
    EXPECT_TRUE(m_window->RunUntil([&] { return m_view->m_nDrawn > nDrawn; }));
}

TEST_F(OnScreen, VisibleRectAndPointsAreTheViews)
{
    [m_view setBoundsOrigin:NSMakePoint(7, 0)];
    TGL::CView view(m_view);
    EXPECT_TRUE(NSEqualRects(view.visibleRect(), NSMakeRect(7, 0, 200, 100)));
    const NSPoint inWindow = [m_view convertPoint:NSMakePoint(30, 40) toView:nil];
    EXPECT_FALSE(NSEqualPoints(inWindow, NSMakePoint(30, 40)));
    EXPECT_TRUE(NSEqualPoints(view.convertPoint(inWindow), NSMakePoint(30, 40)));
}

TEST_F(OnScreen, ACursorOfAResourceIsShownWhileItIsPushed)
{
    PointAt(40, 35);
    [[NSCursor arrowCursor] set];
    const CursorOnScreen arrow = LookOf([NSCursor arrowCursor]);
    TGL::CCursor cursor("Quarters", 3, 4);
    cursor.push();
    EXPECT_TRUE(m_window->RunUntil([] { return TakeCursor().nWidth == 16; }));
    const CursorOnScreen shown = TakeCursor();
    ASSERT_EQ(shown.pixels.size(), 16u * 12u);
    EXPECT_EQ(shown.nHotSpotX, 3);
    EXPECT_EQ(shown.nHotSpotY, 4);
    EXPECT_EQ(shown.pixels[2 * 16 + 2], 0xffff0000);
    EXPECT_EQ(shown.pixels[2 * 16 + 14], 0xff00ff00);
    EXPECT_EQ(shown.pixels[10 * 16 + 2], 0xff0000ff);
    EXPECT_EQ(shown.pixels[10 * 16 + 14], 0xff000000);
    cursor.pop();
    EXPECT_TRUE(Shows(arrow));
}

TEST_F(OnScreen, PopTakesWhateverIsOnTop)
{
    PointAt(40, 35);
    const CursorOnScreen arrow = LookOf([NSCursor arrowCursor]);
    TGL::CCursor below("Quarters", 3, 4);
    TGL::CCursor above(TGL::kCursorResizeLeftRight);
    below.push();
    above.push();
    below.pop();
    EXPECT_TRUE(m_window->RunUntil([] { return TakeCursor().nWidth == 16; }));
    above.pop();
    EXPECT_TRUE(Shows(arrow));
}

TEST_F(OnScreen, StockCursorsLookLikeThePlatforms)
{
    PointAt(40, 35);
    NSCursor* const all[] = {[NSCursor arrowCursor],       [NSCursor resizeLeftCursor],
                             [NSCursor resizeRightCursor], [NSCursor resizeLeftRightCursor],
                             [NSCursor resizeUpCursor],    [NSCursor resizeUpDownCursor],
                             [NSCursor resizeDownCursor],  [NSCursor openHandCursor]};
    for (int nCursor = 0; nCursor < 8; ++nCursor)
    {
        const CursorOnScreen expected = LookOf(all[nCursor]);
        LookOf([NSCursor IBeamCursor]);
        TGL::CCursor cursor{TGL::StockCursor(nCursor)};
        cursor.push();
        EXPECT_TRUE(Shows(expected)) << nCursor;
        cursor.pop();
    }
}

TEST_F(OnScreen, ACursorRectangleShowsItsCursor)
{
    PointAt(40, 35);
    const CursorOnScreen hand = LookOf([NSCursor openHandCursor]);
    const CursorOnScreen arrow = LookOf([NSCursor arrowCursor]);
    ASSERT_FALSE(hand == arrow);
    const int nResets = m_view->m_nCursorResets;
    TGL::CView(m_view).invalidateCursorRectsForView();
    EXPECT_TRUE(m_window->RunUntil([&] { return m_view->m_nCursorResets > nResets; }));
    PointAt(175, 35);
    EXPECT_TRUE(Shows(hand));
    PointAt(40, 35);
    EXPECT_TRUE(Shows(arrow));
}
