#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#import "platform/gnustep/AppKit/PopUpMenu.h"

@implementation TestMenuDelegate

- (void)dealloc
{
    [m_titles release];
    [super dealloc];
}

- (void)setTitles:(NSArray*)titles
{
    [m_titles autorelease];
    m_titles = [titles retain];
}

- (void)menuWillOpen:(NSMenu*)menu
{
    ++m_nOpened;
    m_lastMenu = menu;
    if (m_titles == nil)
        return;
    while ([menu numberOfItems] > 0)
        [menu removeItemAtIndex:0];
    for (NSUInteger i = 0; i < [m_titles count]; ++i)
        [menu addItemWithTitle:[m_titles objectAtIndex:i] action:NULL keyEquivalent:@""];
}

@end

@implementation TestMenuTarget

- (void)dealloc
{
    [m_chosen release];
    [super dealloc];
}

- (void)choose:(id)sender
{
    [m_chosen autorelease];
    m_chosen = [[sender titleOfSelectedItem] copy];
    m_sender = sender;
    ++m_nChoices;
}

@end

// While a menu is open: takes one step after the other.
@interface TestMenuHand : NSObject
{
  @public
    std::vector<std::function<void()>> m_steps;
    std::size_t m_nDone;
    NSTimer* m_timer;
}
- (void)move:(NSTimer*)timer;
@end

namespace
{

const NSTimeInterval kMoveEvery = 0.2; // seconds; a pace, not a limit

std::string NameOfFocusedWindow()
{
    FILE* output = popen("xdotool getwindowfocus getwindowname 2>/dev/null", "r");
    char line[100] = "";
    if (output == nullptr || fgets(line, sizeof line, output) == nullptr)
        line[0] = '\0';
    if (output != nullptr)
        pclose(output);
    return std::string(line, std::strcspn(line, "\n"));
}

std::string MoveTo(NSPoint point)
{
    return "mousemove " + std::to_string(int(point.x)) + " " + std::to_string(int(point.y));
}

// By name: one of the programs has no such class at first.
PlatformPopUpMenu* OpenMenu() { return [NSClassFromString(@"PlatformPopUpMenu") openMenu]; }

// In the display server's coordinates: from the top.
NSPoint OnDisplay(NSPoint point)
{
    return NSMakePoint(point.x, NSMaxY([[NSScreen mainScreen] frame]) - point.y);
}

} // namespace

void Input(const std::string& command)
{
    ASSERT_EQ(std::system(("xdotool " + command).c_str()), 0) << command;
}

void StartApplication()
{
    // The test program's own options are not documents to open.
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (NSApp != nil)
        return;
    [NSProcessInfo initializeWithArguments:arguments count:1 environment:environ];
    [NSApplication sharedApplication];
    [NSApp finishLaunching];
}

@implementation TestMenuHand

- (void)move:(NSTimer*)timer
{
    (void)timer;
    if (m_nDone < m_steps.size() && [OpenMenu() isVisible])
        m_steps[m_nDone++]();
}

@end

MenuWindow::MenuWindow(bool fPullsDown) : m_pool([[NSAutoreleasePool alloc] init])
{
    StartApplication();
    window = [[NSWindow alloc] initWithContentRect:NSMakeRect(300, 400, 300, 200)
                                         styleMask:NSTitledWindowMask
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
    [window setReleasedWhenClosed:NO];
    static int nWindows;
    const std::string name = "Menu test " + std::to_string(++nWindows);
    [window setTitle:[NSString stringWithUTF8String:name.c_str()]];
    button = [[NSPopUpButton alloc] initWithFrame:NSMakeRect(20, 120, 200, 26)
                                        pullsDown:fPullsDown];
    [button addItemWithTitle:@"one"];
    [button addItemWithTitle:@"two"];
    delegate = [[TestMenuDelegate alloc] init];
    target = [[TestMenuTarget alloc] init];
    [button setTarget:target];
    [button setAction:@selector(choose:)];
    TestMenuHand* hand = [[TestMenuHand alloc] init];
    m_hand = hand;
    hand->m_timer = [NSTimer timerWithTimeInterval:kMoveEvery
                                            target:hand
                                          selector:@selector(move:)
                                          userInfo:nil
                                           repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:hand->m_timer forMode:NSEventTrackingRunLoopMode];
    [[window contentView] addSubview:button];
    [window makeFirstResponder:button];
    // The display server's word counts: while the window manager still deals with the window of
    // the test before, it may give the focus elsewhere.
    EXPECT_TRUE(RunUntil(
        [&]
        {
            if ([window isKeyWindow] && [NSApp isActive] && NameOfFocusedWindow() == name)
                return true;
            [NSApp activateIgnoringOtherApps:YES];
            [window makeKeyAndOrderFront:nil];
            return false;
        }))
        << "focused: " << NameOfFocusedWindow() << ", key: " << int([window isKeyWindow])
        << ", active: " << int([NSApp isActive]);
}

MenuWindow::~MenuWindow()
{
    [((TestMenuHand*)m_hand)->m_timer invalidate];
    [m_hand release];
    [window close];
    [button release];
    [window release];
    [target release];
    [delegate release];
    [m_pool drain];
}

bool MenuWindow::RunUntil(const std::function<bool()>& done)
{
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:10];
    while (!done() && [limit timeIntervalSinceNow] > 0)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                            untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                                               inMode:NSDefaultRunLoopMode
                                              dequeue:YES];
        [NSApp sendEvent:event];
        m_nMouseDowns += [event type] == NSLeftMouseDown;
        m_nMouseUps += [event type] == NSLeftMouseUp;
        [pool drain];
    }
    return done();
}

NSPoint MenuWindow::Centre() const
{
    const NSRect frame = [button convertRect:[button bounds] toView:nil];
    const NSPoint point = [window convertBaseToScreen:NSMakePoint(NSMidX(frame), NSMidY(frame))];
    return OnDisplay(point);
}

bool MenuWindow::PointerIsOnTheButton() const
{
    // Asked of the display server: the window manager may still be moving the window.
    const NSPoint point = [button convertPoint:[window mouseLocationOutsideOfEventStream]
                                      fromView:nil];
    return NSPointInRect(point, NSInsetRect([button bounds], 5, 5));
}

void MenuWindow::PointAtTheButton()
{
    EXPECT_TRUE(RunUntil(
        [this]
        {
            Input(MoveTo(Centre()));
            return PointerIsOnTheButton();
        }));
}

void MenuWindow::WhileOpen(const std::vector<std::function<void()>>& steps)
{
    TestMenuHand* hand = (TestMenuHand*)m_hand;
    hand->m_steps = steps;
    hand->m_nDone = 0;
}

bool MenuWindow::AllDone() const
{
    const TestMenuHand* hand = (const TestMenuHand*)m_hand;
    return hand->m_nDone == hand->m_steps.size();
}

void MenuWindow::PointAtRow(NSInteger row)
{
    PlatformPopUpRows* rows = [OpenMenu() rows];
    const NSRect frame = [rows convertRect:[rows rectOfItemAtIndex:row] toView:nil];
    const NSPoint point =
        [[rows window] convertBaseToScreen:NSMakePoint(NSMidX(frame), NSMidY(frame))];
    Input(MoveTo(OnDisplay(point)));
}

void MenuWindow::PointBeside()
{
    const NSRect frame = [OpenMenu() frame];
    Input(MoveTo(OnDisplay(NSMakePoint(NSMaxX(frame) + 20, NSMidY(frame)))));
}

void MenuWindow::Press()
{
    PointAtTheButton();
    Input("mousedown 1");
}

void MenuWindow::ClickAtOnce()
{
    PointAtTheButton();
    Input("click 1");
}

void MenuWindow::ClickAndChoose()
{
    WhileOpen({[] { PointAtRow(1); }, [] { Input("mouseup 1"); }});
    Press();
    EXPECT_TRUE(RunUntil([this] { return target->m_chosen != nil; }));
}

void MenuWindow::ClickOnce()
{
    PointAtTheButton();
    const int nDowns = m_nMouseDowns;
    const int nUps = m_nMouseUps;
    Input("click 1");
    // The first two of a window may come in either order.
    EXPECT_TRUE(RunUntil([&] { return m_nMouseDowns > nDowns && m_nMouseUps > nUps; }));
}

void MenuWindow::PressSpaceAndReturn()
{
    WhileOpen({[] { Input("key Down key Return"); }});
    Input("key space");
    EXPECT_TRUE(RunUntil([this] { return target->m_chosen != nil; }));
}
