#import <AppKit/AppKit.h>
#import <AppKit/DPSOperators.h>

#include "platform/gnustep/CoreGraphics/CGObjects.h"

#include <cmath>

namespace
{
NSGraphicsContext* Operators(CGContextRef context) { return (NSGraphicsContext*)context; }

constexpr CGGradientDrawingOptions kExtendBothWays =
    kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation;

// Beyond every picture, and within what the back end can count.
constexpr CGFloat kFar = 16384;

// GNUstep paints a gradient on both sides of its axis whatever the options are: the sides that are
// not wanted are clipped away, by lines across the axis through its ends.
void ClipToSides(NSGraphicsContext* operators, CGPoint start, CGPoint end,
                 CGGradientDrawingOptions options)
{
    const CGFloat length = std::hypot(end.x - start.x, end.y - start.y);
    if (length == 0)
        return;
    const CGFloat x = (end.x - start.x) / length * kFar;
    const CGFloat y = (end.y - start.y) / length * kFar;
    if (options & kCGGradientDrawsBeforeStartLocation)
        start = CGPointMake(start.x - x, start.y - y);
    if (options & kCGGradientDrawsAfterEndLocation)
        end = CGPointMake(end.x + x, end.y + y);
    DPSnewpath(operators);
    DPSmoveto(operators, start.x - y, start.y + x);
    DPSlineto(operators, start.x + y, start.y - x);
    DPSlineto(operators, end.x + y, end.y - x);
    DPSlineto(operators, end.x - y, end.y + x);
    DPSclosepath(operators);
    DPSclip(operators);
}
} // namespace

// The cairo back end has no port of its own to hand out.
@implementation NSGraphicsContext (CoreGraphicsPort)

- (void*)graphicsPort
{
    return self;
}

@end

void CGContextSaveGState(CGContextRef context) { DPSgsave(Operators(context)); }

void CGContextRestoreGState(CGContextRef context) { DPSgrestore(Operators(context)); }

void CGContextBeginPath(CGContextRef context) { DPSnewpath(Operators(context)); }

void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y)
{
    DPSmoveto(Operators(context), x, y);
}

void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y)
{
    DPSlineto(Operators(context), x, y);
}

void CGContextAddArcToPoint(CGContextRef context, CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2,
                            CGFloat radius)
{
    DPSarct(Operators(context), x1, y1, x2, y2, radius);
}

void CGContextAddRect(CGContextRef context, CGRect rect)
{
    NSGraphicsContext* operators = Operators(context);
    DPSmoveto(operators, NSMinX(rect), NSMinY(rect));
    DPSlineto(operators, NSMaxX(rect), NSMinY(rect));
    DPSlineto(operators, NSMaxX(rect), NSMaxY(rect));
    DPSlineto(operators, NSMinX(rect), NSMaxY(rect));
    DPSclosepath(operators);
}

void CGContextClosePath(CGContextRef context) { DPSclosepath(Operators(context)); }

void CGContextClip(CGContextRef context)
{
    DPSclip(Operators(context));
    DPSnewpath(Operators(context));
}

void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color)
{
    if (!color)
        return;
    const CGFloat* c = color->components;
    DPSsetrgbcolor(Operators(context), c[0], c[1], c[2]);
    DPSsetalpha(Operators(context), c[3]);
}

void CGContextFillRect(CGContextRef context, CGRect rect)
{
    DPSrectfill(Operators(context), NSMinX(rect), NSMinY(rect), NSWidth(rect), NSHeight(rect));
}

void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient, CGPoint start,
                                 CGPoint end, CGGradientDrawingOptions options)
{
    if (!gradient || !gradient->gradient)
        return;
    NSGraphicsContext* operators = Operators(context);
    const bool fBounded = options != kExtendBothWays;
    if (fBounded)
    {
        DPSgsave(operators);
        ClipToSides(operators, start, end, options);
    }
    [operators drawGradient:gradient->gradient fromPoint:start toPoint:end options:options];
    if (fBounded)
        DPSgrestore(operators);
}

void CGContextDrawShading(CGContextRef context, CGShadingRef shading)
{
    if (shading)
        CGContextDrawLinearGradient(context, shading->gradient, shading->start, shading->end,
                                    shading->options);
}
