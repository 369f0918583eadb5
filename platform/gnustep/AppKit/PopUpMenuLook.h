#pragma once

#import <AppKit/AppKit.h>

/// How the open menu of a pop-up button looks, for cells that have a look of their own; with those
/// that do not adopt this the menu has the system's colours. Main thread, while drawing.
@protocol PlatformPopUpMenuLook

/// The ground behind the rows with the border around them, one point wide.
- (void)drawMenuWithFrame:(NSRect)frame inView:(NSView*)view;

/// Behind the row that the next click chooses.
- (void)drawHighlightWithFrame:(NSRect)frame inView:(NSView*)view;

/// Of a row's name. Autoreleased.
- (NSDictionary*)menuTextAttributesHighlighted:(BOOL)highlighted;

@end
