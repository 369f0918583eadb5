#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/DisplayPresses.h"
#include "platform/gnustep/AppKit/MethodReplacement.h"
#import "platform/gnustep/AppKit/PopUpMenu.h"

#include <cmath>

// Pop-up buttons open, track and close their menus as published: a click opens the menu, which
// then stays until the next one; a press opens it until the release; and the keys choose as well.
// GNUstep closes it with the first release, wherever that is, shows it in a raised grey look of
// its own with names of any length and beyond the screen, does not open one without items though
// its delegate is about to fill it, and tells the delegate of no opening.
@interface PlatformPopUpTracking : NSObject
@end

namespace
{

using platform::ReplaceMethod;

using TrackMouseMethod = BOOL (*)(id, SEL, NSEvent*, NSRect, NSView*, BOOL);
using FrameMethod = void (*)(id, SEL, NSRect, NSView*);
using DismissMethod = void (*)(id, SEL);
using KeyDownMethod = void (*)(id, SEL, NSEvent*);

TrackMouseMethod g_trackMouse;
FrameMethod g_attach;
FrameMethod g_performClick;
DismissMethod g_dismiss;
KeyDownMethod g_keyDown;

constexpr CGFloat kSlip = 3; // points that a hand may move between press and release of a click
constexpr NSTimeInterval kLook = 0.05; // seconds between two looks at the pointer without an event
constexpr NSInteger kNone = -1;

constexpr NSUInteger kEvents = NSLeftMouseDownMask | NSLeftMouseUpMask | NSLeftMouseDraggedMask |
                               NSRightMouseDownMask | NSMouseMovedMask | NSScrollWheelMask |
                               NSKeyDownMask | NSAppKitDefinedMask | NSApplicationDefinedMask;

NSPoint ScreenPoint(NSEvent* event)
{
    const NSPoint point = [event locationInWindow];
    NSWindow* window = [event window];
    return window == nil ? point : [window convertBaseToScreen:point];
}

bool Near(NSPoint one, NSPoint other)
{
    return std::abs(one.x - other.x) <= kSlip && std::abs(one.y - other.y) <= kSlip;
}

// From the opening of a menu to the choice.
class CTracking
{
  public:
    CTracking(PlatformPopUpMenu* menu, NSView* view)
        : m_menu([menu retain]), m_parent([[view window] retain]), m_fActive([NSApp isActive])
    {
    }

    ~CTracking()
    {
        [m_parent release];
        [m_menu release];
    }

    CTracking(const CTracking&) = delete;
    CTracking& operator=(const CTracking&) = delete;

    // Where the mouse button went down that opened the menu and is still held.
    void BeginsWithPress(NSPoint point)
    {
        m_press = m_last = point;
        m_fClick = true;
    }

    // The item that was chosen, or kNone.
    NSInteger Run()
    {
        while (!m_fDone)
        {
            NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
            NSEvent* event =
                [NSApp nextEventMatchingMask:kEvents
                                   untilDate:[NSDate dateWithTimeIntervalSinceNow:kLook]
                                      inMode:NSEventTrackingRunLoopMode
                                     dequeue:YES];
            if (IsOver() || IsLeft(event))
                End(kNone);
            else if (event == nil)
                Look();
            else
                Handle(event);
            [pool drain];
        }
        return m_nChosen;
    }

  private:
    void End(NSInteger nItem)
    {
        m_nChosen = [[m_menu rows] canChooseItemAtIndex:nItem] ? nItem : kNone;
        m_fDone = true;
    }

    // Another menu has been opened, the window has gone, or the user to another application.
    bool IsOver() const
    {
        return [PlatformPopUpMenu openMenu] != m_menu || ![m_parent isVisible] ||
               [[m_menu rows] numberOfItems] == 0 || (m_fActive && ![NSApp isActive]);
    }

    // By a press in a window that is not ours, or by Escape while another program has the keyboard:
    // ours comes as an event.
    bool IsLeft(NSEvent* event)
    {
        const platform::CDisplayPresses::Presses presses = m_presses.Take();
        const NSPoint point = [NSEvent mouseLocation];
        m_fEscape = m_fEscape || presses.fEscape;
        return (m_fEscape && event == nil) ||
               (presses.fMouse && !NSPointInRect(point, [m_menu frame]) &&
                !NSPointInRect(point, [m_parent frame]));
    }

    void MoveTo(NSPoint point)
    {
        if (NSEqualPoints(point, m_last))
            return;
        m_last = point;
        m_fClick = m_fClick && Near(point, m_press);
        if (!m_fClick)
            [m_menu pointAt:point];
    }

    void Look()
    {
        const NSPoint point = [NSEvent mouseLocation];
        MoveTo(point);
        if (!m_fClick && [[m_menu rows] scrollBy:[m_menu scrollAt:point]])
            [m_menu pointAt:point];
    }

    void Handle(NSEvent* event)
    {
        switch ([event type])
        {
        case NSLeftMouseDown:
            MoveTo(ScreenPoint(event));
            m_fClick = false;
            if ([m_menu pointAt:m_last] < 0)
                End(kNone);
            break;
        case NSLeftMouseUp:
            LetGo(ScreenPoint(event));
            break;
        case NSLeftMouseDragged:
        case NSMouseMoved:
            MoveTo(ScreenPoint(event));
            break;
        case NSScrollWheel:
            [[m_menu rows] scrollBy:[event deltaY] > 0 ? -1 : 1];
            break;
        case NSKeyDown:
            HandleKey(event);
            break;
        case NSAppKitDefined:
            // A window is uncovered, the menu itself among them, or moved.
            [NSApp sendEvent:event];
            break;
        case NSApplicationDefined:
            // The program wants to go on: it may be about to end.
            [NSApp postEvent:event atStart:YES];
            End(kNone);
            break;
        default:
            End(kNone);
        }
    }

    // The end of the click that has opened the menu leaves it open.
    void LetGo(NSPoint point)
    {
        MoveTo(point);
        const bool fOpened = m_fClick;
        m_fClick = false;
        if (!fOpened)
            End([m_menu pointAt:point]);
    }

    void HandleKey(NSEvent* event)
    {
        PlatformPopUpRows* rows = [m_menu rows];
        NSString* characters = [event characters];
        constexpr NSInteger kPage = 10, kAll = 1 << 30;
        switch ([characters length] > 0 ? [characters characterAtIndex:0] : 0)
        {
        case NSUpArrowFunctionKey:
            [rows moveHighlightBy:-1];
            break;
        case NSDownArrowFunctionKey:
            [rows moveHighlightBy:1];
            break;
        case NSPageUpFunctionKey:
            [rows moveHighlightBy:-kPage];
            break;
        case NSPageDownFunctionKey:
            [rows moveHighlightBy:kPage];
            break;
        case NSHomeFunctionKey:
            [rows moveHighlightBy:-kAll];
            break;
        case NSEndFunctionKey:
            [rows moveHighlightBy:kAll];
            break;
        case NSCarriageReturnCharacter:
        case NSNewlineCharacter:
        case NSEnterCharacter:
        case ' ':
            End([rows highlightedItemIndex]);
            break;
        case NSTabCharacter:
        case 0x1B: // escape
            End(kNone);
            break;
        default:
            break;
        }
    }

    PlatformPopUpMenu* m_menu;
    NSWindow* m_parent;
    const bool m_fActive;
    platform::CDisplayPresses m_presses;
    bool m_fEscape = false;
    bool m_fClick = false; // as far as one can tell: a press that has not moved
    bool m_fDone = false;
    NSInteger m_nChosen = kNone;
    NSPoint m_press = {0, 0};
    NSPoint m_last = [NSEvent mouseLocation];
};

// event: the press that opens the menu, or nil.
void OpenAndTrack(NSPopUpButtonCell* cell, NSRect frame, NSView* view, NSEvent* event)
{
    if (![cell isEnabled])
        return;
    // Whoever fills the menu, or is told of the choice, may let go of the button.
    [[cell retain] autorelease];
    [[view retain] autorelease];
    PlatformPopUpMenu* menu = [PlatformPopUpMenu openForCell:cell frame:frame ofView:view];
    if (menu == nil)
        return;
    NSInteger nChosen = kNone;
    {
        CTracking tracking(menu, view);
        if (event != nil)
            tracking.BeginsWithPress(ScreenPoint(event));
        nChosen = tracking.Run();
    }
    if ([PlatformPopUpMenu openMenu] == menu)
        [PlatformPopUpMenu close];
    if (nChosen != kNone)
        [[cell menu] performActionForItemAtIndex:nChosen];
    // What was found to need it while the menu was open may have been forgotten since.
    [[view window] displayIfNeeded];
}

BOOL TrackMouse(id self, SEL, NSEvent* event, NSRect frame, NSView* view, BOOL)
{
    OpenAndTrack(self, frame, view, event);
    return NO;
}

void PerformClick(id self, SEL, NSRect frame, NSView* view)
{
    OpenAndTrack(self, frame, view, nil);
}

void Attach(id self, SEL, NSRect frame, NSView* view)
{
    [PlatformPopUpMenu openForCell:self frame:frame ofView:view];
}

void Dismiss(id, SEL) { [PlatformPopUpMenu close]; }

void KeyDown(id self, SEL selector, NSEvent* event)
{
    NSString* characters = [event characters];
    switch ([characters length] > 0 ? [characters characterAtIndex:0] : 0)
    {
    case ' ':
    case NSUpArrowFunctionKey:
    case NSDownArrowFunctionKey:
        OpenAndTrack([self cell], [self bounds], self, nil);
        break;
    default:
        g_keyDown(self, selector, event);
    }
}

} // namespace

@implementation PlatformPopUpTracking

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Class cell = [NSPopUpButtonCell class];
    ReplaceMethod(cell, @selector(trackMouse:inRect:ofView:untilMouseUp:), TrackMouse,
                  g_trackMouse);
    ReplaceMethod(cell, @selector(performClickWithFrame:inView:), PerformClick, g_performClick);
    ReplaceMethod(cell, @selector(attachPopUpWithFrame:inView:), Attach, g_attach);
    ReplaceMethod(cell, @selector(dismissPopUp), Dismiss, g_dismiss);
    ReplaceMethod([NSPopUpButton class], @selector(keyDown:), KeyDown, g_keyDown);
    [pool drain];
}

@end
