#import <AppKit/AppKit.h>

#include "platform/gnustep/CoreGraphics/CGObjects.h"

namespace
{
// Finer than the 256 levels that a colour component can show.
constexpr int kSteps = 256;

CGGradientRef SampledGradient(CGColorSpaceRef space, const CGFunction& function)
{
    std::vector<CGColorRef> colours;
    std::vector<CGFloat> locations;
    for (int i = 0; i <= kSteps; ++i)
    {
        locations.push_back(CGFloat(i) / kSteps);
        std::vector<CGFloat> components = EvaluateFunction(function, locations.back());
        components.resize(CGColorSpaceGetNumberOfComponents(space) + 1);
        colours.push_back(CGColorCreate(space, components.data()));
    }
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, (const void**)colours.data(),
                                     CFIndex(colours.size()), nullptr);
    CGGradientRef gradient = CGGradientCreateWithColors(space, array, locations.data());
    CFRelease(array);
    for (CGColorRef colour : colours)
        CGColorRelease(colour);
    return gradient;
}
} // namespace

CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end,
                                  CGFunctionRef function, bool extendStart, bool extendEnd)
{
    if (!space || !function)
        return nullptr;
    CGGradientDrawingOptions options = 0;
    if (extendStart)
        options |= kCGGradientDrawsBeforeStartLocation;
    if (extendEnd)
        options |= kCGGradientDrawsAfterEndLocation;
    CGGradientRef gradient = SampledGradient(space, *function);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSGradient* bound = [BoundGradient(gradient->gradient, options) retain];
    [gradient->gradient release];
    gradient->gradient = bound;
    [pool drain];
    return new CGShading{1, start, end, gradient};
}

void CGShadingRelease(CGShadingRef shading)
{
    if (!ReleaseReference(shading))
        return;
    CGGradientRelease(shading->gradient);
    delete shading;
}
