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
