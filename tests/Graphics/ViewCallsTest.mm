#import "Graphics/TGLGraphics.h"
#include "tests/Graphics/RecordedCalls.h"
#include "tests/support/ReplacedMethod.h"

#include <type_traits>

using namespace TarvaneTests;
using testing::ElementsAre;
using TGL::CView;

// Note what they are asked.
@interface NotingView : NSObject
{
  @public
    id m_window; // not retained
}
@end

@interface NotingWindow : NSObject
{
  @public
    id m_view; // not retained
}
@end

@implementation NotingView

- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view
{
    Note("convertPoint " + Text(point) + (view ? " from a view" : " from nil"));
    return NSMakePoint(70, 80);
}

- (void)setNeedsDisplay:(BOOL)fNeeds
{
    Note(fNeeds ? "setNeedsDisplay 1" : "setNeedsDisplay 0");
}

- (id)window
{
    Note("window");
    return m_window;
}

- (NSRect)visibleRect
{
    Note("visibleRect");
    return NSMakeRect(1, 2, 3, 4);
}

- (void)addCursorRect:(NSRect)rect cursor:(NSCursor*)cursor
{
    Note("addCursorRect " + Text(rect) +
         (cursor == [NSCursor openHandCursor] ? " the hand" : " another"));
}

@end

@implementation NotingWindow

- (void)invalidateCursorRectsForView:(NSView*)view
{
    Note(view == m_view ? "invalidateCursorRectsForView its own" : "another view");
}

- (void)disableCursorRects
{
    Note("disableCursorRects");
}

- (void)enableCursorRects
{
    Note("enableCursorRects");
}

@end

namespace
{

struct ViewCalls : RecordedCalls
{
    ViewCalls()
    {
        view->m_window = window;
        window->m_view = view;
    }
    ~ViewCalls() override
    {
        EXPECT_EQ([view retainCount], 1u);
        [view release];
        [window release];
    }

    NotingView* view = [[NotingView alloc] init];
    NotingWindow* window = [[NotingWindow alloc] init];
    CView wrapped{view};
};

} // namespace

static_assert(std::has_virtual_destructor_v<CView>);
static_assert(!std::is_polymorphic_v<TGL::CImage> &&
              !std::is_polymorphic_v<TGL::CAttributedString> &&
              !std::is_polymorphic_v<TGL::CEvent> && !std::is_polymorphic_v<TGL::CCursor> &&
              !std::is_polymorphic_v<TGL::CNotification>);

TEST_F(ViewCalls, ViewIsNeitherRetainedNorReleased)
{
    {
        const CView other(view);
        EXPECT_EQ([view retainCount], 1u);
    }
    EXPECT_EQ([view retainCount], 1u);
    EXPECT_THAT(Calls(), ElementsAre());
}

TEST_F(ViewCalls, ConvertPointIsFromTheWindow)
{
    const CGPoint converted = wrapped.convertPoint(CGPointMake(5, 6.5));
    EXPECT_TRUE(NSEqualPoints(converted, NSMakePoint(70, 80)));
    EXPECT_THAT(Calls(), ElementsAre("convertPoint 5 6.5 from nil"));
}

TEST_F(ViewCalls, SetNeedsDisplayIsForTheWholeView)
{
    wrapped.setNeedsDisplay();
    EXPECT_THAT(Calls(), ElementsAre("setNeedsDisplay 1"));
}

TEST_F(ViewCalls, CursorRectsAreTheWindows)
{
    wrapped.invalidateCursorRectsForView();
    wrapped.disableCursorRects();
    wrapped.enableCursorRects();
    EXPECT_THAT(Calls(), ElementsAre("window", "invalidateCursorRectsForView its own", "window",
                                     "disableCursorRects", "window", "enableCursorRects"));
}

TEST_F(ViewCalls, VisibleRectIsTheViews)
{
    EXPECT_TRUE(NSEqualRects(wrapped.visibleRect(), NSMakeRect(1, 2, 3, 4)));
    EXPECT_THAT(Calls(), ElementsAre("visibleRect"));
}

TEST_F(ViewCalls, AddCursorRectPassesTheCursorOn)
{
    TGL::CCursor hand(TGL::kCursorOpenHand);
    wrapped.addCursorRect(CGRectMake(1.5, 2, 3, 4), &hand);
    EXPECT_THAT(Calls(), ElementsAre("addCursorRect 1.5 2 3 4 the hand"));
}

TEST(ViewOfNothing, HasAZeroVisibleRectAndDoesNothing)
{
    CView nothing(nullptr);
    EXPECT_TRUE(NSEqualRects(nothing.visibleRect(), NSZeroRect));
    EXPECT_TRUE(NSEqualPoints(nothing.convertPoint(CGPointMake(5, 6)), NSZeroPoint));
    nothing.setNeedsDisplay();
    nothing.invalidateCursorRectsForView();
    nothing.disableCursorRects();
    nothing.enableCursorRects();
    TGL::CCursor hand(TGL::kCursorOpenHand);
    nothing.addCursorRect(CGRectMake(1, 2, 3, 4), &hand);
}
