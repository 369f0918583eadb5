#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

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
}

@end

// While a menu is tracked by the mouse: goes to an item and lets the button go, or clicks.
@interface TestMenuHand : NSObject
{
  @public
    NSPoint m_item;
    int m_nMoves;
}
- (void)move:(NSTimer*)timer;
@end

namespace
{

const NSTimeInterval kMoveEvery = 0.2; // seconds; a pace, not a limit

void Input(const std::string& command)
{
    ASSERT_EQ(std::system(("xdotool " + command).c_str()), 0) << command;
}

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

} // namespace

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
    // The first time the button is still down from its press.
    Input(MoveTo(m_item) + (m_nMoves++ == 0 ? " mouseup 1" : " click 1"));
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
    return NSMakePoint(point.x, NSMaxY([[NSScreen mainScreen] frame]) - point.y);
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

void MenuWindow::ClickAndChoose()
{
    TestMenuHand* hand = [[[TestMenuHand alloc] init] autorelease];
    PointAtTheButton();
    const NSPoint centre = Centre();
    hand->m_item = NSMakePoint(centre.x, centre.y + NSHeight([button frame]) * 0.8);
    NSTimer* timer = [NSTimer timerWithTimeInterval:kMoveEvery
                                             target:hand
                                           selector:@selector(move:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    Input("mousedown 1");
    EXPECT_TRUE(RunUntil([&] { return hand->m_nMoves > 0; }));
    [timer invalidate];
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
    Input("key space");
    EXPECT_TRUE(RunUntil([this] { return delegate->m_nOpened > 0; }));
    Input("key Down key Return");
    EXPECT_TRUE(RunUntil([this] { return target->m_chosen != nil; }));
}
