#import "Graphics/TGLGraphics.h"

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

using testing::Contains;
using testing::UnorderedElementsAre;

// A user before a panel: reads it, and presses one of its buttons with the mouse.
@interface PanelUser : NSObject
{
  @public
    std::string m_strPress;
    std::vector<std::string> m_texts;
    std::vector<std::string> m_buttons;
    int m_nPause; // in looks
}
- (void)look:(NSTimer*)timer;
@end

namespace
{

constexpr NSTimeInterval kPace = 0.1;   // seconds between two looks
constexpr int kLooksBetweenClicks = 30; // a click that the panel has not heard is made again

std::string Text(NSString* text) { return text ? [text UTF8String] : "nil"; }

void Input(const std::string& strCommand)
{
    EXPECT_EQ(std::system(("xdotool " + strCommand).c_str()), 0) << strCommand;
}

NSPoint MiddleInWindow(NSView* view)
{
    const NSRect bounds = [view bounds];
    return [view convertPoint:NSMakePoint(NSMidX(bounds), NSMidY(bounds)) toView:nil];
}

// True once the pointer is there.
bool PointAt(NSView* view)
{
    const NSPoint middle = MiddleInWindow(view);
    NSPoint place = [[view window] convertBaseToScreen:middle];
    place.y = NSMaxY([[NSScreen mainScreen] frame]) - place.y;
    Input("mousemove " + std::to_string(int(place.x)) + " " + std::to_string(int(place.y)));
    const NSPoint pointer = [[view window] mouseLocationOutsideOfEventStream];
    return std::hypot(pointer.x - middle.x, pointer.y - middle.y) < 4;
}

} // namespace

@implementation PanelUser

- (NSButton*)read:(NSView*)view
{
    NSButton* found = nil;
    NSArray* subviews = [view subviews];
    for (NSUInteger i = 0; i < [subviews count]; ++i)
    {
        NSView* each = [subviews objectAtIndex:i];
        if ([each isKindOfClass:[NSTextField class]])
            m_texts.push_back(Text([(NSTextField*)each stringValue]));
        if ([each isKindOfClass:[NSButton class]] && [(NSButton*)each imagePosition] != NSImageOnly)
        {
            m_buttons.push_back(Text([(NSButton*)each title]));
            if (m_buttons.back() == m_strPress)
                found = (NSButton*)each;
        }
        if (NSButton* inside = [self read:each])
            found = inside;
    }
    return found;
}

- (void)look:(NSTimer*)timer
{
    (void)timer;
    if (![[NSApp modalWindow] isVisible] || m_nPause-- > 0)
        return;
    m_texts.clear();
    m_buttons.clear();
    NSButton* button = [self read:[[NSApp modalWindow] contentView]];
    [NSApp activateIgnoringOtherApps:YES];
    if (!button || !PointAt(button))
        return;
    // As long as a hand takes, and beside us: we are inside the panel's own loop.
    Input("mousedown 1 sleep 0.2 mouseup 1 &");
    m_nPause = kLooksBetweenClicks;
}

@end

namespace
{

struct PanelClicks : testing::Test
{
    PanelClicks()
    {
        timer = [NSTimer timerWithTimeInterval:kPace
                                        target:user
                                      selector:@selector(look:)
                                      userInfo:nil
                                       repeats:YES];
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
    }
    ~PanelClicks() override
    {
        [timer invalidate];
        [user release];
    }

    PanelUser* user = [[PanelUser alloc] init];
    NSTimer* timer;
};

} // namespace

TEST_F(PanelClicks, OkIsTrue)
{
    user->m_strPress = "OK";
    EXPECT_TRUE(TGL::MessageBoxOKCancel("Überschreiben?", "%d takes on %s", 3, "Grüße"));
    EXPECT_THAT(user->m_texts, Contains("Überschreiben?"));
    EXPECT_THAT(user->m_texts, Contains("3 takes on Grüße"));
    EXPECT_THAT(user->m_buttons, UnorderedElementsAre("OK", "Cancel"));
}

TEST_F(PanelClicks, CancelIsFalse)
{
    user->m_strPress = "Cancel";
    EXPECT_FALSE(TGL::MessageBoxOKCancel("Title", "100%%%% sure"));
    EXPECT_THAT(user->m_texts, Contains("100% sure"));
}

TEST_F(PanelClicks, AlertHasOneButtonAndReturns)
{
    user->m_strPress = "OK";
    TGL::Alert("Alert title", "%s 100%%", "only");
    EXPECT_THAT(user->m_texts, Contains("Alert title"));
    EXPECT_THAT(user->m_texts, Contains("only 100%"));
    EXPECT_THAT(user->m_buttons, UnorderedElementsAre("OK"));
}

TEST_F(PanelClicks, PanelsLeaveNoWindowOpen)
{
    user->m_strPress = "OK";
    TGL::Alert("First", "text");
    EXPECT_EQ([NSApp modalWindow], nil);
    TGL::MessageBoxOKCancel("Second", "text");
    EXPECT_EQ([NSApp modalWindow], nil);
}
