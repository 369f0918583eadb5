#pragma once

#import <AppKit/AppKit.h>

namespace platform
{

/// The text as it is drawn on one line of this width, in points: shortened by an ellipsis where the
/// paragraph style at its beginning says to truncate, by as little as fits; else the same object.
/// Text of several lines stays as it is. Autoreleased. Main thread.
NSAttributedString* TruncatedText(NSAttributedString* text, CGFloat width);

} // namespace platform
