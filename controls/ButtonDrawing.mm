#import "controls/ButtonDrawing.h"

#include "colours/ComponentsColors.h"
#include "controls/ButtonShading.h"
#import "controls/GraphicUtils.h"

namespace
{
CGFunctionEvaluateCallback ShaderFor(bool fEnabled, bool fActive)
{
    if (fEnabled)
        return fActive ? TKShaderSelectedBtn : TKShaderNormalBtn;
    return fActive ? TKShaderDisabledSelectedBtn : TKShaderDisabledNormalBtn;
}

void FillFromTop(CGContextRef context, CComponentCode colour, CGRect rect, float fRadius,
                 bool fFlipped)
{
    [GraphicUtils FillRoundRect:context
                          Color:colour
                     Background:CComponentCode(0, 0)
                           Rect:rect
                         Radius:fRadius
                  FillDirection:kFillTopToBottom
                        Flipped:fFlipped];
}

CGFloat FontSizeOf(NSControlSize size)
{
    switch (size)
    {
    case NSSmallControlSize:
        return 10.0;
    case NSMiniControlSize:
        return 8.0;
    default:
        return 12.0;
    }
}
} // namespace

CGContextRef CurrentContext()
{
    return (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
}

void DrawPaletteButton(CGContextRef context, CComponentCode border, CComponentCode face,
                       CGRect area, bool fFlipped)
{
    FillFromTop(context, border, area, [GraphicUtils GetButtonCornerRadius], fFlipped);
    FillFromTop(context, face, CGRectInset(area, 1.0, 1.0),
                [GraphicUtils GetButtonCornerRadius] + -1.0f, fFlipped);
}

void DrawShadedButton(CGContextRef context, CGRect area, bool fEnabled, bool fActive)
{
    const float w = float(area.size.width);
    const float h = float(area.size.height);
    // The area's origin is ignored and no state is saved around the clip; both are kept so.
    ClipToRoundRect(context, CGRectMake(0, 0, w, h), [GraphicUtils GetButtonCornerRadius]);

    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGFunctionRef function = GetBtnShader(space, ShaderFor(fEnabled, fActive));
    CGShadingRef shading =
        CGShadingCreateAxial(space, CGPointMake(w, 0), CGPointMake(w, h), function, false, false);
    CGContextDrawShading(context, shading);
    CGColorSpaceRelease(space);
    CGShadingRelease(shading);
    CGFunctionRelease(function);
}

NSMutableDictionary* ButtonTitleAttributes(NSControlSize size, NSTextAlignment alignment)
{
    NSFont* font = [NSFont boldSystemFontOfSize:FontSizeOf(size)];
    NSMutableParagraphStyle* style = [[NSMutableParagraphStyle alloc] init];
    [style setAlignment:alignment];
    [style setLineBreakMode:NSLineBreakByTruncatingMiddle];
    // The colour comes last: without one in the palette the list ends there.
    NSMutableDictionary* attributes =
        [NSMutableDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, style,
                                                          NSParagraphStyleAttributeName,
                                                          gAppColours.FindNSColor(ccControlText),
                                                          NSForegroundColorAttributeName, nil];
    [style release];
    return attributes;
}
