// What stands behind the published object types. Each starts with a count of one.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstddef>
#include <vector>

@class NSGradient;

struct CGColorSpace
{
    std::size_t nReferences;
};

struct CGColor
{
    std::size_t nReferences;
    CGFloat components[4]; ///< red, green, blue, alpha
};

struct CGGradient
{
    std::size_t nReferences;
    NSGradient* gradient; ///< owned; nil paints nothing
};

struct CGFunction
{
    std::size_t nReferences;
    void* info;
    std::vector<CGFloat> domain;
    std::vector<CGFloat> range;
    std::size_t nOutputs;
    CGFunctionCallbacks callbacks;
};

struct CGShading
{
    std::size_t nReferences;
    CGPoint start;
    CGPoint end;
    CGGradientRef gradient; ///< owned; bound already
};

/// Takes one reference off; true when it was the last and the object is to be deleted.
template <class Object> bool ReleaseReference(Object* object)
{
    return object && --object->nReferences == 0;
}

constexpr CGGradientDrawingOptions kDrawsBothWays =
    kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation;

/// A gradient that is clear on the sides of its axis that the options leave out; the same gradient
/// when they leave out none. GNUstep passes over the options, and a clip would not do: its graphics
/// state cannot be saved under a clip that is not made of rectangles. Autoreleased.
NSGradient* BoundGradient(NSGradient* gradient, CGGradientDrawingOptions options);

/// Evaluates the function at one input, input and outputs held within domain and range.
std::vector<CGFloat> EvaluateFunction(const CGFunction& function, CGFloat input);
