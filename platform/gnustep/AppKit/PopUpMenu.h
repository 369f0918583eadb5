#pragma once

#import <AppKit/AppKit.h>

#import "platform/gnustep/AppKit/PopUpRows.h"

/// The open menu of a pop-up button. One at a time is open in a process. Main thread.
@interface PlatformPopUpMenu : NSWindow
{
    PlatformPopUpRows* m_rows;
}

/// Tells the menu's delegate and whoever else listens, which may fill the menu now, and shows the
/// menu over the frame, in the view's coordinates. Nil where there is nothing to show then. Any
/// other menu is closed before.
+ (PlatformPopUpMenu*)openForCell:(NSPopUpButtonCell*)cell frame:(NSRect)frame ofView:(NSView*)view;
/// The one that is open, or nil.
+ (PlatformPopUpMenu*)openMenu;
+ (void)close;

- (PlatformPopUpRows*)rows;

/// In screen coordinates: the row there, or -1; and highlights it.
- (NSInteger)pointAt:(NSPoint)point;
/// What to scroll by while the pointer is there.
- (NSInteger)scrollAt:(NSPoint)point;

@end
