#import "tests/controls/SwitchWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

@implementation WatchedSwitch

- (bool)isArmed
{
    return m_fMouseDown;
}

- (void)setNeedsDisplay:(BOOL)fNeeds
{
    m_nRedraws += fNeeds;
    [super setNeedsDisplay:fNeeds];
}

- (void)mouseDown:(NSEvent*)event
{
    [super mouseDown:event];
    ++m_nDowns;
}

- (void)mouseDragged:(NSEvent*)event
{
    [super mouseDragged:event];
    ++m_nDrags;
    m_lastDrag = [self convertPoint:[event locationInWindow] fromView:nil];
}

- (void)mouseUp:(NSEvent*)event
{
    [super mouseUp:event];
    ++m_nUps;
}

@end

@implementation WatchingDelegate

- (void)TKSwitchChange:(TKToggleSwitch*)pSwitch ModifierFlags:(std::int32_t)nFlags
{
    ++m_nTold;
    m_nState = [pSwitch state];
    m_nFlags = nFlags;
    m_fArmed = [(WatchedSwitch*)pSwitch isArmed];
}

@end

namespace TarvaneTests
{
namespace
{

// In the switch's own coordinates.
const NSPoint kInside = NSMakePoint(40, 15);
const NSPoint kOutside = NSMakePoint(40, 70);

void Input(const std::string& strCommand)
{
    ASSERT_EQ(std::system(("xdotool " + strCommand).c_str()), 0) << strCommand;
}

std::string NameOfFocusedWindow()
{
    std::FILE* pOutput = popen("xdotool getwindowfocus getwindowname 2>/dev/null", "r");
    char line[100] = "";
    if (pOutput == nullptr || std::fgets(line, sizeof line, pOutput) == nullptr)
        line[0] = '\0';
    if (pOutput != nullptr)
        pclose(pOutput);
    return std::string(line, std::strcspn(line, "\n"));
}

bool IsAt(NSPoint a, NSPoint b) { return std::hypot(a.x - b.x, a.y - b.y) < 4; }

} // namespace

SwitchWindow::SwitchWindow()
{
    static int nWindows;
    const std::string strName = "Switch test " + std::to_string(++nWindows);
    m_window = [[NSWindow alloc] initWithContentRect:NSMakeRect(300, 400, 240, 160)
                                           styleMask:NSTitledWindowMask
                                             backing:NSBackingStoreBuffered
                                               defer:NO];
    [m_window setReleasedWhenClosed:NO];
    [m_window setTitle:[NSString stringWithUTF8String:strName.c_str()]];
    control = [[WatchedSwitch alloc] initWithFrame:NSMakeRect(60, 40, 80, 30)];
    delegate = [[WatchingDelegate alloc] init];
    [control SetDelegate:delegate];
    [[m_window contentView] addSubview:control];
    // The display server's word counts: the window manager may still give the focus elsewhere.
    EXPECT_TRUE(RunUntil(
        [&]
        {
            if ([m_window isKeyWindow] && [NSApp isActive] && NameOfFocusedWindow() == strName)
                return true;
            [NSApp activateIgnoringOtherApps:YES];
            [m_window makeKeyAndOrderFront:nil];
            return false;
        }));
    control->m_nRedraws = 0;
}

SwitchWindow::~SwitchWindow()
{
    if (m_fButton)
        Input("mouseup 1");
    for (const std::string& strKey : m_keys)
        Input("keyup " + strKey);
    [control SetDelegate:nil];
    [m_window close];
    [control release];
    [delegate release];
    [m_window release];
}

bool SwitchWindow::RunUntil(const std::function<bool()>& done)
{
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:20];
    while (!done() && [limit timeIntervalSinceNow] > 0)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                            untilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]
                                               inMode:NSDefaultRunLoopMode
                                              dequeue:YES];
        [NSApp sendEvent:event];
        [pool drain];
    }
    return done();
}

NSPoint SwitchWindow::OnScreen(NSPoint point) const
{
    const NSPoint place = [m_window convertBaseToScreen:[control convertPoint:point toView:nil]];
    return NSMakePoint(place.x, NSMaxY([[NSScreen mainScreen] frame]) - place.y);
}

void SwitchWindow::PointAt(NSPoint point)
{
    EXPECT_TRUE(RunUntil(
        [&]
        {
            const NSPoint place = OnScreen(point);
            Input("mousemove " + std::to_string(int(place.x)) + " " + std::to_string(int(place.y)));
            const NSPoint pointer =
                [control convertPoint:[m_window mouseLocationOutsideOfEventStream] fromView:nil];
            return IsAt(pointer, point);
        }));
}

void SwitchWindow::PressInside()
{
    PointAt(kInside);
    const int nDowns = control->m_nDowns;
    Input("mousedown 1");
    m_fButton = true;
    EXPECT_TRUE(RunUntil([&] { return control->m_nDowns > nDowns; }));
}

void SwitchWindow::PressBeside()
{
    PointAt(kOutside);
    Input("mousedown 1");
    m_fButton = true;
}

// A point that it has not been at: the server tells of movements only.
void SwitchWindow::DragTo(NSPoint point)
{
    point.x += 6 * (++m_nPlace % 5);
    const int nDrags = control->m_nDrags;
    const NSPoint place = OnScreen(point);
    Input("mousemove " + std::to_string(int(place.x)) + " " + std::to_string(int(place.y)));
    EXPECT_TRUE(
        RunUntil([&] { return control->m_nDrags > nDrags && IsAt(control->m_lastDrag, point); }));
}

void SwitchWindow::DragInside() { DragTo(kInside); }

void SwitchWindow::DragOutside() { DragTo(kOutside); }

void SwitchWindow::ReleaseSeen()
{
    const int nUps = control->m_nUps;
    Input("mouseup 1");
    m_fButton = false;
    EXPECT_TRUE(RunUntil([&] { return control->m_nUps > nUps; }));
}

// Nothing tells that an event has not come: the queue must stay empty for a while, twice.
void SwitchWindow::ReleaseUnseen()
{
    Input("mouseup 1");
    m_fButton = false;
    bool fIdle = false;
    EXPECT_TRUE(RunUntil(
        [&]
        {
            const bool fWasIdle = fIdle;
            fIdle = [NSApp nextEventMatchingMask:NSAnyEventMask
                                       untilDate:[NSDate dateWithTimeIntervalSinceNow:0.3]
                                          inMode:NSDefaultRunLoopMode
                                         dequeue:NO] == nil;
            return fWasIdle && fIdle;
        }));
}

void SwitchWindow::KeyDown(const std::string& strKey)
{
    Input("keydown " + strKey);
    m_keys.push_back(strKey);
}

void SwitchWindow::KeyUp(const std::string& strKey)
{
    Input("keyup " + strKey);
    m_keys.erase(std::find(m_keys.begin(), m_keys.end(), strKey));
}

} // namespace TarvaneTests
