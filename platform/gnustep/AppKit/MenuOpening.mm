#import <AppKit/AppKit.h>

// GNUstep tells nobody when a menu opens, but posts a notification when a pop-up button shows
// its menu. This passes it on to the menu's delegate as menuWillOpen:, in the same call, so that
// the delegate can still change the items that will be shown.
@interface PlatformMenuOpening : NSObject
@end

@implementation PlatformMenuOpening

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(popUpButtonCellWillPopUp:)
                                                 name:NSPopUpButtonCellWillPopUpNotification
                                               object:nil];
    [pool drain];
}

+ (void)popUpButtonCellWillPopUp:(NSNotification*)notification
{
    NSMenu* menu = [(NSPopUpButtonCell*)[notification object] menu];
    id delegate = [menu delegate];
    if ([delegate respondsToSelector:@selector(menuWillOpen:)])
        [delegate menuWillOpen:menu];
}

@end
