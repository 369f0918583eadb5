#import "bench/painting/DirectDrawing.h"

#import <AppKit/DPSOperators.h>

namespace Bench
{
namespace
{

constexpr NSUInteger kExtendBothWays = 3;

NSColor* Grey(CGFloat dLevel)
{
    return [NSColor colorWithDeviceRed:dLevel green:dLevel blue:dLevel alpha:1];
}

void ClipToRect(NSGraphicsContext* operators, NSRect rect)
{
    DPSnewpath(operators);
    DPSmoveto(operators, NSMinX(rect), NSMinY(rect));
    DPSlineto(operators, NSMaxX(rect), NSMinY(rect));
    DPSlineto(operators, NSMaxX(rect), NSMaxY(rect));
    DPSlineto(operators, NSMinX(rect), NSMaxY(rect));
    DPSclosepath(operators);
    DPSclip(operators);
    DPSnewpath(operators);
}

void ClipToRoundRect(NSGraphicsContext* operators, NSRect rect, CGFloat r)
{
    const CGFloat x0 = NSMinX(rect), y0 = NSMinY(rect), x1 = NSMaxX(rect), y1 = NSMaxY(rect);
    DPSnewpath(operators);
    DPSmoveto(operators, x0 + r, y0);
    DPSarct(operators, x0, y0, x0, y0 + r, r);
    DPSlineto(operators, x0, y1 - r);
    DPSarct(operators, x0, y1, x0 + r, y1, r);
    DPSlineto(operators, x1 - r, y1);
    DPSarct(operators, x1, y1, x1, y1 - r, r);
    DPSlineto(operators, x1, y0 + r);
    DPSarct(operators, x1, y0, x1 - r, y0, r);
    DPSlineto(operators, x0 + r, y0);
    DPSclosepath(operators);
    DPSclip(operators);
    DPSnewpath(operators);
}

} // namespace

NSGradient* MakeGradient(CGFloat dFrom, CGFloat dTo, CGFloat dPlace)
{
    const CGFloat locations[] = {0, dPlace};
    return [[NSGradient alloc] initWithColors:[NSArray arrayWithObjects:Grey(dFrom), Grey(dTo), nil]
                                  atLocations:locations
                                   colorSpace:[NSColorSpace deviceRGBColorSpace]];
}

void DrawFlat(NSGraphicsContext* operators, NSRect rect, CGFloat dLevel)
{
    DPSsetrgbcolor(operators, dLevel, dLevel, dLevel);
    DPSsetalpha(operators, 1);
    DPSrectfill(operators, NSMinX(rect), NSMinY(rect), NSWidth(rect), NSHeight(rect));
}

void DrawGradient(NSGraphicsContext* operators, NSGradient* gradient, NSRect rect, CGFloat r,
                  NSPoint start, NSPoint end)
{
    DPSgsave(operators);
    if (r != 0)
        ClipToRoundRect(operators, rect, r);
    else
        ClipToRect(operators, rect);
    [operators drawGradient:gradient fromPoint:start toPoint:end options:kExtendBothWays];
    DPSgrestore(operators);
}

void DrawRoundFlat(NSGraphicsContext* operators, NSRect rect, CGFloat r, CGFloat dLevel)
{
    DPSgsave(operators);
    ClipToRoundRect(operators, rect, r);
    DrawFlat(operators, rect, dLevel);
    DPSgrestore(operators);
}

Fall FallOf(NSRect rect, bool fFlipped)
{
    const NSPoint low = {NSMinX(rect), NSMinY(rect)}, high = {NSMinX(rect), NSMaxY(rect)};
    return fFlipped ? Fall{low, high} : Fall{high, low};
}

} // namespace Bench
