#import "controls/GraphicUtils.h"

#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"

namespace
{
constexpr CGGradientDrawingOptions kExtendBothWays =
    kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation;

struct Axis
{
    CGPoint start;
    CGPoint end;
};

// From the visual top to the visual bottom.
Axis Downward(CGRect rect, bool fFlipped)
{
    const CGPoint low = CGPointMake(NSMinX(rect), NSMinY(rect));
    const CGPoint high = CGPointMake(NSMinX(rect), NSMaxY(rect));
    return fFlipped ? Axis{low, high} : Axis{high, low};
}

Axis Rightward(CGRect rect)
{
    return {CGPointMake(NSMinX(rect), NSMinY(rect)), CGPointMake(NSMaxX(rect), NSMinY(rect))};
}

Axis PlainAxis(CGRect rect, FillDirection direction, bool fFlipped)
{
    const Axis right = Rightward(rect);
    const CGPoint highLeft = CGPointMake(NSMinX(rect), NSMaxY(rect));
    switch (direction)
    {
    case kFillLeftToRight:
        return right;
    case kFillRightToLeft:
        return {right.end, right.start};
    case kFillDiagonal:
        return fFlipped ? Axis{right.end, highLeft} : Axis{highLeft, right.end};
    default:
        return Downward(rect, fFlipped);
    }
}

// Not PlainAxis on purpose: no right to left, and a diagonal that starts at the visual top left
// whichever way the target is flipped.
Axis RoundAxis(CGRect rect, FillDirection direction, bool fFlipped)
{
    const Axis right = Rightward(rect);
    const CGPoint highLeft = CGPointMake(NSMinX(rect), NSMaxY(rect));
    const CGPoint highRight = CGPointMake(NSMaxX(rect), NSMaxY(rect));
    switch (direction)
    {
    case kFillLeftToRight:
        return right;
    case kFillDiagonal:
        return fFlipped ? Axis{right.start, highRight} : Axis{highLeft, right.end};
    default:
        return Downward(rect, fFlipped);
    }
}

void FillFlat(CGContextRef context, CComponentCode colour, const CGRect& rect)
{
    CGContextSetFillColorWithColor(context, gAppColours.FindCGColorRef(colour));
    CGContextFillRect(context, rect);
}

void FillBackground(CGContextRef context, CComponentCode background, const CGRect& rect)
{
    if (!background.Empty())
        FillFlat(context, background, rect);
}

// The code is that of a gradient.
const CGradientFill* FindGradient(CComponentCode colour)
{
    return static_cast<const CGradientFill*>(gAppColours.Find(colour));
}

void DrawGradient(CGContextRef context, const CGradientFill* pFill, Axis axis)
{
    CGContextDrawLinearGradient(context, pFill->m_refGradient, axis.start, axis.end,
                                kExtendBothWays);
}
} // namespace

void ClipToRoundRect(CGContextRef context, CGRect rect, float fRadius)
{
    const float x0 = float(rect.origin.x);
    const float y0 = float(rect.origin.y);
    const float x1 = float(rect.origin.x + rect.size.width);
    const float y1 = float(rect.origin.y + rect.size.height);
    const float r = fRadius;

    CGContextBeginPath(context);
    CGContextMoveToPoint(context, x0 + r, y0);
    CGContextAddArcToPoint(context, x0, y0, x0, y0 + r, r);
    CGContextAddLineToPoint(context, x0, y1 - r);
    CGContextAddArcToPoint(context, x0, y1, x0 + r, y1, r);
    CGContextAddLineToPoint(context, x1 - r, y1);
    CGContextAddArcToPoint(context, x1, y1, x1, y1 - r, r);
    CGContextAddLineToPoint(context, x1, y0 + r);
    CGContextAddArcToPoint(context, x1, y0, x1 - r, y0, r);
    CGContextAddLineToPoint(context, x0 + r, y0);
    CGContextClosePath(context);
    CGContextClip(context);
}

@implementation GraphicUtils

+ (void)FillRect:(CGContextRef)context
            Color:(CComponentCode)colour
       Background:(CComponentCode)background
             Rect:(CGRect)rect
    FillDirection:(FillDirection)direction
          Flipped:(bool)fFlipped
{
    FillBackground(context, background, rect);
    if (!gAppColours.IsGradient(colour))
    {
        FillFlat(context, colour, rect);
        return;
    }
    const CGradientFill* pFill = FindGradient(colour);
    const Axis axis = PlainAxis(rect, direction, fFlipped);
    CGContextSaveGState(context);
    CGContextBeginPath(context);
    CGContextAddRect(context, rect);
    CGContextClip(context);
    DrawGradient(context, pFill, axis);
    CGContextRestoreGState(context);
}

+ (void)FillRoundRect:(CGContextRef)context
                Color:(CComponentCode)colour
           Background:(CComponentCode)background
                 Rect:(CGRect)rect
               Radius:(float)fRadius
        FillDirection:(FillDirection)direction
              Flipped:(bool)fFlipped
{
    if (fRadius == 0.0f)
    {
        [self FillRect:context
                    Color:colour
               Background:background
                     Rect:rect
            FillDirection:direction
                  Flipped:fFlipped];
        return;
    }
    FillBackground(context, background, rect);
    CGContextSaveGState(context);
    ClipToRoundRect(context, rect, fRadius);
    if (gAppColours.IsGradient(colour))
        DrawGradient(context, FindGradient(colour), RoundAxis(rect, direction, fFlipped));
    else
        FillFlat(context, colour, rect);
    CGContextRestoreGState(context);
}

+ (float)GetButtonCornerRadius
{
    return 6.0f;
}

@end
