#import "controls/TKMessageCell.h"

#import "controls/GraphicUtils.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr CGFloat kPadding = 4.0;      // points, on each side of a text on a ground of its own
constexpr CGFloat kGroundLevel = 0.93; // at which the red of errors has a contrast above 4.5:1
constexpr CGFloat kDark = 0.4;         // texts below this brightness want a light ground

CGFloat Brightness(NSColor* colour)
{
    colour = [colour colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return 0.2126 * [colour redComponent] + 0.7152 * [colour greenComponent] +
           0.0722 * [colour blueComponent];
}
} // namespace

@implementation TKMessageCell

- (void)drawGround:(NSRect)frame
{
    const CGFloat width = std::ceil([[self attributedStringValue] size].width) + 3 * kPadding;
    frame.size.width = std::min(NSWidth(frame), width);
    [[NSColor colorWithCalibratedWhite:kGroundLevel alpha:1.0] set];
    [[NSBezierPath bezierPathWithRoundedRect:frame xRadius:gfDefaultRadius
                                     yRadius:gfDefaultRadius] fill];
}

- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view
{
    if ([[self stringValue] length] > 0 && Brightness([self textColor]) < kDark)
    {
        [self drawGround:frame];
        frame = NSInsetRect(frame, kPadding, 0);
    }
    [super drawInteriorWithFrame:frame inView:view];
}

@end
