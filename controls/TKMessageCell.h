// The cell of a line that may have to show a dark colour, as errors have it, where the window is
// dark: such a text stands on a light ground of its own. Instances come from the nib. Main thread.
#pragma once

#import <AppKit/AppKit.h>

@interface TKMessageCell : NSTextFieldCell
@end
