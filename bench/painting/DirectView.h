// The link view's twin: what stands in it drawn directly.
#pragma once

#import <AppKit/AppKit.h>

namespace Bench
{

/// Each of the parts of the link view at its place: its texts as plain text fields, its toggle and
/// its menu as views that draw what these show. Autoreleased.
NSView* MakeDirectTwin(NSView* linkView, NSImage* toggleImage, NSImage* arrow);

} // namespace Bench
