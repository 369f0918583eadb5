// The part of CoreGraphics that the project draws with, on GNUstep's public drawing operators.
//
// Follows the published CoreGraphics interface: names, argument order, constants and ownership.
// Objects that a Create function returns belong to the caller, who gives them up with the Release
// function of the same type; releasing null does nothing. Counts are plain numbers: an object is
// used by one thread at a time. Drawing is for the main thread, inside AppKit's drawing.
// GNUstep's geometry is Objective-C, so this header is for Objective-C++ sources only.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/NSGeometry.h>

#include <stddef.h>
#include <stdint.h>

typedef NSPoint CGPoint;
typedef NSSize CGSize;
typedef NSRect CGRect;

/// GNUstep's graphics context itself; -[NSGraphicsContext graphicsPort] answers with it.
typedef struct CGContext* CGContextRef;
typedef struct CGColor* CGColorRef;
typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGGradient* CGGradientRef;
typedef struct CGFunction* CGFunctionRef;
typedef struct CGShading* CGShadingRef;

typedef uint32_t CGGradientDrawingOptions;
enum : CGGradientDrawingOptions
{
    kCGGradientDrawsBeforeStartLocation = 1 << 0,
    kCGGradientDrawsAfterEndLocation = 1 << 1,
};

/// Called with the info of CGFunctionCreate; reads the inputs, writes the outputs.
typedef void (*CGFunctionEvaluateCallback)(void* info, const CGFloat* in, CGFloat* out);
typedef void (*CGFunctionReleaseInfoCallback)(void* info);

typedef struct CGFunctionCallbacks
{
    unsigned int version; ///< 0
    CGFunctionEvaluateCallback evaluate;
    CGFunctionReleaseInfoCallback releaseInfo; ///< may be null
} CGFunctionCallbacks;

static inline CGPoint CGPointMake(CGFloat x, CGFloat y)
{
    CGPoint point = {x, y};
    return point;
}

static inline CGSize CGSizeMake(CGFloat width, CGFloat height)
{
    CGSize size = {width, height};
    return size;
}

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height)
{
    CGRect rect = {{x, y}, {width, height}};
    return rect;
}

#ifdef __cplusplus
extern "C"
{
#endif

    /// The rectangle with dx taken off its left and right, dy off its bottom and top.
    CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy);

    /// Colour spaces. Red, green and blue in the device's own terms are the one space there is.
    CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
    void CGColorSpaceRelease(CGColorSpaceRef space);
    size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space); ///< without alpha

    /// Colours. components: one number for each component of the space, then alpha, each 0 to 1.
    /// Null for a null space or null components.
    CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components);
    CGColorRef CGColorRetain(CGColorRef color);
    void CGColorRelease(CGColorRef color);
    const CGFloat* CGColorGetComponents(CGColorRef color); ///< belongs to the colour
    size_t CGColorGetNumberOfComponents(CGColorRef color); ///< with alpha

    /// Gradients. colors holds CGColorRef; locations holds a number from 0 to 1 for each, or is
    /// null for even steps. The gradient takes the numbers over and keeps neither array nor
    /// colours. One of no colours can be made and paints nothing. A null colour counts as clear.
    CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef space, CFArrayRef colors,
                                             const CGFloat* locations);
    void CGGradientRelease(CGGradientRef gradient);

    /// Functions of domainDimension inputs and rangeDimension outputs. domain and range hold a pair
    /// of bounds for each; range may be null for no bounds. The callbacks are copied.
    CGFunctionRef CGFunctionCreate(void* info, size_t domainDimension, const CGFloat* domain,
                                   size_t rangeDimension, const CGFloat* range,
                                   const CGFunctionCallbacks* callbacks);
    void CGFunctionRelease(CGFunctionRef function);

    /// A shading along the axis from start to end. The function is asked at once, at 257 places;
    /// the shading keeps neither it nor the space.
    CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end,
                                      CGFunctionRef function, bool extendStart, bool extendEnd);
    void CGShadingRelease(CGShadingRef shading);

    /// Graphics state.
    void CGContextSaveGState(CGContextRef context);
    void CGContextRestoreGState(CGContextRef context);

    /// Paths. The current path is used up by CGContextClip.
    void CGContextBeginPath(CGContextRef context);
    void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y);
    void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y);
    void CGContextAddArcToPoint(CGContextRef context, CGFloat x1, CGFloat y1, CGFloat x2,
                                CGFloat y2, CGFloat radius);
    void CGContextAddRect(CGContextRef context, CGRect rect);
    void CGContextClosePath(CGContextRef context);
    void CGContextClip(CGContextRef context);

    /// Painting. A null colour leaves the fill colour as it was.
    void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
    void CGContextFillRect(CGContextRef context, CGRect rect);
    void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient, CGPoint start,
                                     CGPoint end, CGGradientDrawingOptions options);
    void CGContextDrawShading(CGContextRef context, CGShadingRef shading);

#ifdef __cplusplus
}
#endif
