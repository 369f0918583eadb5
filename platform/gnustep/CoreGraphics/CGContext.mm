#import <AppKit/AppKit.h>
#import <AppKit/DPSOperators.h>

#include "platform/gnustep/CoreGraphics/CGObjects.h"

namespace
{
NSGraphicsContext* Operators(CGContextRef context) { return (NSGraphicsContext*)context; }
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
    if (gradient && gradient->gradient)
        [Operators(context) drawGradient:BoundGradient(gradient->gradient, options)
                               fromPoint:start
                                 toPoint:end
                                 options:options];
}

void CGContextDrawShading(CGContextRef context, CGShadingRef shading)
{
    if (shading)
        CGContextDrawLinearGradient(context, shading->gradient, shading->start, shading->end,
                                    kDrawsBothWays);
}
