// The frame around what a window tells: a ring and a face of the palette, with round corners as the
// toggle switch has them. Instances come from the nib. Main thread.
#pragma once

#import <AppKit/AppKit.h>

@interface TKInsetFrame : NSView
@end
