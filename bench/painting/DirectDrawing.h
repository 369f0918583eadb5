// Pictures drawn by the platform's operators alone, with everything prepared that can be.
#pragma once

#import <AppKit/AppKit.h>

namespace Bench
{

/// Device colours, from place 0 to another; owned by the caller.
NSGradient* MakeGradient(CGFloat dFrom, CGFloat dTo, CGFloat dPlace = 1);

void DrawFlat(NSGraphicsContext* operators, NSRect rect, CGFloat dLevel);

/// The rectangle, rounded when the radius is not 0, filled from start to end.
void DrawGradient(NSGraphicsContext* operators, NSGradient* gradient, NSRect rect, CGFloat r,
                  NSPoint start, NSPoint end);
void DrawRoundFlat(NSGraphicsContext* operators, NSRect rect, CGFloat r, CGFloat dLevel);

/// The visual top to the visual bottom of a rectangle.
struct Fall
{
    NSPoint start, end;
};
Fall FallOf(NSRect rect, bool fFlipped);

} // namespace Bench
