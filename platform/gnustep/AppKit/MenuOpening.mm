#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

// GNUstep tells a menu's delegate nothing when the menu opens, but posts a notification when a
// pop-up button is about to show its menu. This passes it on as menuWillOpen:, in the same call,
// so that the delegate can still change the items that will be shown.
//
// A pop-up button without items refuses a click and the space bar before it posts anything. Its
// delegate may be about to fill it, so it is told before; the notification that follows, if
// there are items now, belongs to the same opening and is not passed on again.
//
// Main thread, as all of AppKit.
@interface PlatformMenuOpening : NSObject
@end

namespace
{

using TrackMouseMethod = BOOL (*)(id, SEL, NSEvent*, NSRect, NSView*, BOOL);
using KeyDownMethod = void (*)(id, SEL, NSEvent*);

TrackMouseMethod g_trackMouse;
KeyDownMethod g_keyDown;

// The menu whose opening has been told before its notification. Compared, never sent anything.
NSMenu* g_menuTold;

void TellDelegate(NSMenu* menu)
{
    id delegate = [menu delegate];
    if ([delegate respondsToSelector:@selector(menuWillOpen:)])
        [delegate menuWillOpen:menu];
}

// For the time in which GNUstep handles an event that opens a menu without items.
class EmptyMenuOpening
{
  public:
    explicit EmptyMenuOpening(NSPopUpButtonCell* cell)
    {
        NSMenu* menu = [cell menu];
        if (![cell isEnabled] || [menu numberOfItems] > 0)
            return;
        TellDelegate(menu);
        g_menuTold = menu;
    }

    ~EmptyMenuOpening() { g_menuTold = nil; }
    EmptyMenuOpening(const EmptyMenuOpening&) = delete;
    EmptyMenuOpening& operator=(const EmptyMenuOpening&) = delete;
};

BOOL TrackMouse(id self, SEL selector, NSEvent* event, NSRect frame, NSView* view, BOOL untilUp)
{
    EmptyMenuOpening opening(self);
    return g_trackMouse(self, selector, event, frame, view, untilUp);
}

void KeyDown(id self, SEL selector, NSEvent* event)
{
    if (![[event characters] isEqualToString:@" "])
    {
        g_keyDown(self, selector, event);
        return;
    }
    EmptyMenuOpening opening([self cell]);
    g_keyDown(self, selector, event);
}

} // namespace

@implementation PlatformMenuOpening

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(popUpButtonCellWillPopUp:)
                                                 name:NSPopUpButtonCellWillPopUpNotification
                                               object:nil];
    platform::ReplaceMethod([NSPopUpButtonCell class],
                            @selector(trackMouse:inRect:ofView:untilMouseUp:), TrackMouse,
                            g_trackMouse);
    platform::ReplaceMethod([NSPopUpButton class], @selector(keyDown:), KeyDown, g_keyDown);
    [pool drain];
}

+ (void)popUpButtonCellWillPopUp:(NSNotification*)notification
{
    NSMenu* menu = [(NSPopUpButtonCell*)[notification object] menu];
    if (menu == g_menuTold)
        g_menuTold = nil;
    else
        TellDelegate(menu);
}

@end
