#import "tests/support/DesktopWindow.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#import "platform/gnustep/AppKit/PopUpMenu.h"

namespace
{
constexpr NSTimeInterval kPatience = 10; // seconds
constexpr NSTimeInterval kPace = 0.1;    // seconds; between two looks, not a limit

std::string OutputOf(const std::string& strCommand)
{
    std::string strOutput;
    FILE* pPipe = popen(strCommand.c_str(), "r");
    std::array<char, 256> line;
    while (pPipe != nullptr && std::fgets(line.data(), line.size(), pPipe) != nullptr)
        strOutput += line.data();
    if (pPipe != nullptr)
        pclose(pPipe);
    while (!strOutput.empty() && strOutput.back() == '\n')
        strOutput.pop_back();
    return strOutput;
}

void Input(const std::string& strCommand)
{
    EXPECT_EQ(std::system(("xdotool " + strCommand).c_str()), 0) << strCommand;
}

// In the display server's coordinates: from the top.
NSPoint OnDisplay(NSView* pView, NSPoint pt)
{
    NSPoint ptScreen = [[pView window] convertBaseToScreen:[pView convertPoint:pt toView:nil]];
    ptScreen.y = NSMaxY([[NSScreen mainScreen] frame]) - ptScreen.y;
    return ptScreen;
}

std::string Position(NSPoint pt)
{
    return std::to_string(static_cast<int>(pt.x)) + " " + std::to_string(static_cast<int>(pt.y));
}

// Of the display, as the picture taker wants it.
std::string Area(NSView* pView)
{
    const NSSize size = [pView bounds].size;
    const NSPoint pt = OnDisplay(pView, NSMakePoint(0, [pView isFlipped] ? 0 : size.height));
    char szArea[100];
    std::snprintf(szArea, sizeof szArea, "%dx%d+%d+%d", static_cast<int>(size.width),
                  static_cast<int>(size.height), static_cast<int>(pt.x), static_cast<int>(pt.y));
    return szArea;
}

NSPoint Centre(NSRect rc) { return NSMakePoint(NSMidX(rc), NSMidY(rc)); }
} // namespace

// While a menu is open: goes to an item and lets the mouse go there, or types.
@interface MenuHand : NSObject
{
  @public
    NSInteger m_nItem;
    std::string m_strKeys;
    bool m_fDone;
}
- (void)Move:(NSTimer*)pTimer;
@end

@implementation MenuHand

- (void)Move:(NSTimer*)pTimer
{
    (void)pTimer;
    PlatformPopUpRows* pRows = [[PlatformPopUpMenu openMenu] rows];
    if (m_fDone || ![[pRows window] isVisible])
        return;
    if (!m_strKeys.empty())
    {
        m_fDone = true;
        Input("key " + m_strKeys);
        return;
    }
    const NSRect rcRow = [pRows rectOfItemAtIndex:m_nItem];
    ASSERT_FALSE(NSIsEmptyRect(rcRow)) << "the item is out of sight";
    Input("mousemove " + Position(OnDisplay(pRows, Centre(rcRow))));
    if ([pRows highlightedItemIndex] != m_nItem)
        return;
    m_fDone = true;
    Input("mouseup 1");
}

@end

CDesktopWindow::CDesktopWindow(NSView* pView)
    : m_pWindow([[NSWindow alloc]
          initWithContentRect:NSMakeRect(200, 400, NSWidth([pView frame]), NSHeight([pView frame]))
                    styleMask:NSTitledWindowMask
                      backing:NSBackingStoreBuffered
                        defer:NO])
{
    static int nWindows;
    const std::string strTitle = "Link view " + std::to_string(++nWindows);
    [m_pWindow setReleasedWhenClosed:NO];
    [m_pWindow setTitle:[NSString stringWithUTF8String:strTitle.c_str()]];
    [m_pWindow setContentView:pView];
    // The display server's word counts: the window manager may still deal with another window.
    std::string strFocused;
    const bool fFocused = RunUntil(
        [&]
        {
            strFocused = OutputOf("xdotool getwindowfocus getwindowname 2>/dev/null");
            if ([m_pWindow isKeyWindow] && [NSApp isActive] && strFocused == strTitle)
                return true;
            [NSApp activateIgnoringOtherApps:YES];
            [m_pWindow makeKeyAndOrderFront:nil];
            return false;
        });
    EXPECT_TRUE(fFocused) << "the focus is with '" << strFocused << "'";
}

CDesktopWindow::~CDesktopWindow()
{
    [m_pWindow close];
    [m_pWindow release];
}

bool CDesktopWindow::RunUntil(const std::function<bool()>& done)
{
    NSDate* pLimit = [NSDate dateWithTimeIntervalSinceNow:kPatience];
    while (!done() && [pLimit timeIntervalSinceNow] > 0)
    {
        NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
        NSEvent* pEvent = [NSApp nextEventMatchingMask:NSAnyEventMask
                                             untilDate:[NSDate dateWithTimeIntervalSinceNow:kPace]
                                                inMode:NSDefaultRunLoopMode
                                               dequeue:YES];
        [NSApp sendEvent:pEvent];
        [pPool drain];
    }
    return done();
}

void CDesktopWindow::MoveTo(NSView* pView, NSPoint pt)
{
    // Asked of the display server: the window manager may still be moving the window.
    const bool fThere = RunUntil(
        [&]
        {
            Input("mousemove " + Position(OnDisplay(pView, pt)));
            const NSPoint ptPointer =
                [pView convertPoint:[m_pWindow mouseLocationOutsideOfEventStream] fromView:nil];
            return std::abs(ptPointer.x - pt.x) <= 2 && std::abs(ptPointer.y - pt.y) <= 2;
        });
    EXPECT_TRUE(fThere) << "the pointer does not reach the view";
}

void CDesktopWindow::PointAt(NSView* pView) { MoveTo(pView, Centre([pView bounds])); }

void CDesktopWindow::PointAway() { Input("mousemove 1 1"); }

void CDesktopWindow::Press() { Input("mousedown 1"); }

void CDesktopWindow::LetGo() { Input("mouseup 1"); }

void CDesktopWindow::Click(NSView* pView, const std::string& strKeyHeld)
{
    PointAt(pView);
    // As long as a hand takes, and beside us: the release of a shorter first click of a window can
    // overtake its press.
    const std::string strClick = "mousedown 1 sleep 0.2 mouseup 1";
    if (strKeyHeld.empty())
        Input(strClick + " &");
    else
        Input("keydown " + strKeyHeld + " " + strClick + " keyup " + strKeyHeld + " &");
}

void CDesktopWindow::Choose(NSPopUpButton* pButton, NSInteger nItem)
{
    MenuHand* pHand = [[[MenuHand alloc] init] autorelease];
    pHand->m_nItem = nItem;
    PointAt(pButton);
    UseMenu(pHand, "mousedown 1");
}

void CDesktopWindow::ChooseByKeys(NSPopUpButton* pButton, const std::string& strKeys)
{
    MenuHand* pHand = [[[MenuHand alloc] init] autorelease];
    pHand->m_strKeys = strKeys;
    [m_pWindow makeFirstResponder:pButton];
    UseMenu(pHand, "key space");
}

void CDesktopWindow::UseMenu(MenuHand* pHand, const std::string& strOpening)
{
    NSTimer* pTimer = [NSTimer timerWithTimeInterval:kPace
                                              target:pHand
                                            selector:@selector(Move:)
                                            userInfo:nil
                                             repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:pTimer forMode:NSEventTrackingRunLoopMode];
    Input(strOpening);
    EXPECT_TRUE(RunUntil([&] { return pHand->m_fDone && [PlatformPopUpMenu openMenu] == nil; }))
        << "the menu does not open";
    [pTimer invalidate];
}

std::string CDesktopWindow::Look(NSView* pView)
{
    int nQuiet = 0;
    RunUntil([&] { return nQuiet++ == 4; });
    return OutputOf("import -silent -window root -crop " + Area(pView) + " rgb:- | cksum");
}

bool CDesktopWindow::IsUpToDate(NSView* pView)
{
    const std::string strLook = Look(pView);
    [[[pView window] contentView] setNeedsDisplay:YES];
    return Look(pView) == strLook;
}

NSColor* CDesktopWindow::ColourAt(NSView* pView, NSPoint pt)
{
    const NSPoint ptDisplay = OnDisplay(pView, pt);
    const std::string strPixel = OutputOf(
        "import -silent -window root -crop 1x1+" + std::to_string(static_cast<int>(ptDisplay.x)) +
        "+" + std::to_string(static_cast<int>(ptDisplay.y)) + " rgb:- | od -An -tu1");
    // One or two bytes a channel, by the display's depth of colour; the first is the higher.
    unsigned values[6] = {};
    const int nValues = std::sscanf(strPixel.c_str(), "%u %u %u %u %u %u", &values[0], &values[1],
                                    &values[2], &values[3], &values[4], &values[5]);
    EXPECT_TRUE(nValues == 3 || nValues == 6) << strPixel;
    const int nStep = nValues / 3;
    return [NSColor colorWithCalibratedRed:values[0] / 255.0
                                     green:values[nStep] / 255.0
                                      blue:values[2 * nStep] / 255.0
                                     alpha:1.0];
}

void CDesktopWindow::TakePicture(NSView* pView, const std::string& strFile)
{
    // Three bytes a pixel, however few colours there are.
    const std::string strCommand =
        "import -silent -window root -crop " + Area(pView) +
        " +repage -strip -define png:exclude-chunks=date,time 'png24:" + strFile + "'";
    EXPECT_EQ(std::system(strCommand.c_str()), 0) << strCommand;
}
