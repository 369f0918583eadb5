// A text field whose selection and insertion point follow the palette. Instances come from the nib.
#pragma once

#import <AppKit/AppKit.h>

@interface ColoredTextField : NSTextField

/// Gives the window's field editor the palette's colours. Main thread; called by the class itself
/// when editing starts and ends.
- (void)setSelectedColor;

@end
