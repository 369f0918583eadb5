#import "plugin/view/EmbeddedView.h"

#import <GNUstepGUI/GSDisplayServer.h>

#include <X11/Xlib.h>
#include <objc/runtime.h>

#include <cstdio>

namespace
{

// How often the window's place on the display is looked at, in seconds.
constexpr NSTimeInterval kFollowInterval = 0.1;

Display* TheDisplay() { return static_cast<Display*>([GSCurrentServer() serverDevice]); }

Window DeviceOf(NSWindow* window)
{
    void* pDevice = [GSServerForWindow(window) windowDevice:[window windowNumber]];
    return reinterpret_cast<Window>(pDevice);
}

bool IsInside(Display* pDisplay, Window window, Window host)
{
    Window root = 0;
    Window parent = 0;
    Window* pChildren = nullptr;
    unsigned int nChildren = 0;
    if (!XQueryTree(pDisplay, window, &root, &parent, &pChildren, &nChildren))
        return false;
    if (pChildren != nullptr)
        XFree(pChildren);
    return parent == host;
}

int LogError(Display*, XErrorEvent* pError)
{
    std::fprintf(stderr, "tarvane-link-view: display error %d of request %d, window 0x%lx\n",
                 pError->error_code, pError->request_code, pError->resourceid);
    return 0;
}

} // namespace

// The focus is the host's at all times, and yet the display tells of it as coming and going. An
// application that believed it had lost it would close a menu that has just been opened.
@interface EmbeddedApplication : NSApplication
@end

@implementation EmbeddedApplication

- (void)deactivate
{
}

@end

@implementation EmbeddedWindow

- (BOOL)canBecomeKeyWindow
{
    return YES;
}

// Key for the views' sake only: the display's focus stays with the host.
- (void)becomeKeyWindow
{
    _f.is_key = YES;
}

- (void)sendEvent:(NSEvent*)event
{
    // The first click on a window that is not key would do no more than make it key.
    if ([event type] == NSLeftMouseDown)
        _f.is_key = YES;
    [super sendEvent:event];
}

@end

@interface EmbeddedView ()
- (void)follow:(NSTimer*)timer;
@end

@implementation EmbeddedView

+ (void)prepareApplication
{
    XSetErrorHandler(&LogError);
    object_setClass(NSApp, [EmbeddedApplication class]);
}

- (id)initWithView:(NSView*)view
{
    self = [super init];
    if (self != nil)
        m_view = [view retain];
    return self;
}

- (void)dealloc
{
    [self detach:0];
    [m_view release];
    [super dealloc];
}

- (void)embed:(unsigned long)nHost
{
    [self detach:0];
    const NSRect frame = {NSZeroPoint, [m_view frame].size};
    // A fresh one each time: a host may have destroyed the last one with its own.
    m_window = [[EmbeddedWindow alloc] initWithContentRect:frame
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
    [m_window setReleasedWhenClosed:NO];
    [m_window setContentView:m_view];
    m_nHost = nHost;

    Display* pDisplay = TheDisplay();
    const Window window = DeviceOf(m_window);
    // Before it is shown, so that the window manager never sees it.
    XReparentWindow(pDisplay, window, nHost, 0, 0);
    // The host's window may be gone by now: then there is nowhere to show it.
    if (!IsInside(pDisplay, window, nHost))
        return;
    [m_window orderFront:nil];
    // It is shown at a place of the display; its place is a corner of the host's window.
    XMoveWindow(pDisplay, window, 0, 0);
    XSync(pDisplay, False);

    m_ptSeen = NSMakePoint(-1, -1);
    m_timer = [NSTimer scheduledTimerWithTimeInterval:kFollowInterval
                                               target:self
                                             selector:@selector(follow:)
                                             userInfo:nil
                                              repeats:YES];
}

- (void)detach:(unsigned long)nHost
{
    if (m_nHost == 0 || (nHost != 0 && nHost != m_nHost))
        return;
    [m_timer invalidate];
    m_timer = nil;
    m_nHost = 0;

    Display* pDisplay = TheDisplay();
    const Window window = DeviceOf(m_window);
    [m_window orderOut:nil];
    XReparentWindow(pDisplay, window, DefaultRootWindow(pDisplay), 0, 0);
    XSync(pDisplay, False);
    [m_window setContentView:nil];
    [m_window close];
    [m_window release];
    m_window = nil;
}

// A window hears nothing when one that it lies in is moved: menus would open where it was. It is
// told by an event of its own, as a window manager would.
- (void)follow:(NSTimer*)timer
{
    (void)timer;
    Display* pDisplay = TheDisplay();
    const Window window = DeviceOf(m_window);
    int nLeft = 0;
    int nTop = 0;
    Window child = 0;
    if (!XTranslateCoordinates(pDisplay, window, DefaultRootWindow(pDisplay), 0, 0, &nLeft, &nTop,
                               &child) ||
        (m_ptSeen.x == nLeft && m_ptSeen.y == nTop))
        return;
    m_ptSeen = NSMakePoint(nLeft, nTop);
    XEvent event = {};
    event.xconfigure.type = ConfigureNotify;
    event.xconfigure.event = window;
    event.xconfigure.window = window;
    event.xconfigure.x = nLeft;
    event.xconfigure.y = nTop;
    event.xconfigure.width = static_cast<int>([m_view frame].size.width);
    event.xconfigure.height = static_cast<int>([m_view frame].size.height);
    XSendEvent(pDisplay, window, False, StructureNotifyMask, &event);
    XFlush(pDisplay);
}

@end
