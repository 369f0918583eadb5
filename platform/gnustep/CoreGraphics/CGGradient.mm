#import <AppKit/AppKit.h>

#include "platform/gnustep/CoreGraphics/CGObjects.h"

namespace
{
NSColor* ColourOf(CGColorRef color)
{
    if (!color)
        return [NSColor clearColor];
    const CGFloat* c = color->components;
    return [NSColor colorWithDeviceRed:c[0] green:c[1] blue:c[2] alpha:c[3]];
}

// The place and the colour of a stop, and the same colour as if it were not there.
struct Stop
{
    NSColor* colour;
    CGFloat location;

    Stop At(CGFloat place) const { return {colour, place}; }
    Stop ClearAt(CGFloat place) const { return {[colour colorWithAlphaComponent:0], place}; }
};

Stop StopOf(NSGradient* gradient, NSInteger index)
{
    Stop stop;
    [gradient getColor:&stop.colour location:&stop.location atIndex:index];
    return stop;
}

NSGradient* MakeGradient(const std::vector<Stop>& stops)
{
    NSMutableArray* colours = [NSMutableArray arrayWithCapacity:stops.size()];
    std::vector<CGFloat> locations;
    for (const Stop& stop : stops)
    {
        [colours addObject:stop.colour];
        locations.push_back(stop.location);
    }
    return [[[NSGradient alloc] initWithColors:colours
                                   atLocations:locations.data()
                                    colorSpace:[NSColorSpace deviceRGBColorSpace]] autorelease];
}

std::vector<CGFloat> EvenSteps(CFIndex count)
{
    std::vector<CGFloat> steps(count);
    for (CFIndex i = 0; i < count; ++i)
        steps[i] = count > 1 ? CGFloat(i) / CGFloat(count - 1) : 0;
    return steps;
}
} // namespace

CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef, CFArrayRef colors,
                                         const CGFloat* locations)
{
    if (!colors)
        return nullptr;
    auto* result = new CGGradient{1, nil};
    const CFIndex count = CFArrayGetCount(colors);
    if (count == 0)
        return result;

    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSMutableArray* stops = [NSMutableArray arrayWithCapacity:count];
    for (CFIndex i = 0; i < count; ++i)
        [stops addObject:ColourOf((CGColorRef)CFArrayGetValueAtIndex(colors, i))];
    std::vector<CGFloat> steps =
        locations ? std::vector<CGFloat>(locations, locations + count) : EvenSteps(count);
    if (count == 1)
    {
        // NSGradient wants two stops; one colour is the same everywhere.
        [stops addObject:[stops lastObject]];
        steps = EvenSteps(2);
    }
    result->gradient = [[NSGradient alloc] initWithColors:stops
                                              atLocations:steps.data()
                                               colorSpace:[NSColorSpace deviceRGBColorSpace]];
    [pool drain];
    return result;
}

void CGGradientRelease(CGGradientRef gradient)
{
    if (!ReleaseReference(gradient))
        return;
    [gradient->gradient release];
    delete gradient;
}

NSGradient* BoundGradient(NSGradient* gradient, CGGradientDrawingOptions options)
{
    if ((options & kDrawsBothWays) == kDrawsBothWays)
        return gradient;
    std::vector<Stop> stops;
    for (NSInteger i = 0; i < [gradient numberOfColorStops]; ++i)
        stops.push_back(StopOf(gradient, i));
    if (!(options & kCGGradientDrawsBeforeStartLocation))
        stops.insert(stops.begin(), {stops.front().ClearAt(0), stops.front().At(0)});
    if (!(options & kCGGradientDrawsAfterEndLocation))
        stops.insert(stops.end(), {stops.back().At(1), stops.back().ClearAt(1)});
    return MakeGradient(stops);
}
