#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <stddef.h>

typedef double CGFloat;
struct CGPoint
{
    CGFloat x;
    CGFloat y;
};
typedef struct CGPoint CGPoint;
struct CGSize
{
    CGFloat width;
    CGFloat height;
};
typedef struct CGSize CGSize;
struct CGRect
{
    CGPoint origin;
    CGSize size;
};
typedef struct CGRect CGRect;

typedef struct CGContext* CGContextRef;
typedef struct CGColor* CGColorRef;
typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGGradient* CGGradientRef;
typedef struct CGFunction* CGFunctionRef;
typedef struct CGShading* CGShadingRef;

/// A set of bits, and so a number in C++.
typedef uint32_t CGGradientDrawingOptions;
enum : CGGradientDrawingOptions
{
    kCGGradientDrawsBeforeStartLocation = 1 << 0,
    kCGGradientDrawsAfterEndLocation = 1 << 1
};

typedef void (*CGFunctionEvaluateCallback)(void* info, const CGFloat* in, CGFloat* out);
typedef void (*CGFunctionReleaseInfoCallback)(void* info);
struct CGFunctionCallbacks
{
    unsigned int version;
    CGFunctionEvaluateCallback evaluate;
    CGFunctionReleaseInfoCallback releaseInfo;
};
typedef struct CGFunctionCallbacks CGFunctionCallbacks;

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

extern "C"
{
    extern const CGRect CGRectZero;

    CGRect CGRectInset(CGRect, CGFloat, CGFloat);
    CGFloat CGRectGetWidth(CGRect);
    CGFloat CGRectGetHeight(CGRect);
    CGFloat CGRectGetMinX(CGRect);
    CGFloat CGRectGetMinY(CGRect);
    CGFloat CGRectGetMaxX(CGRect);
    CGFloat CGRectGetMaxY(CGRect);

    CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
    void CGColorSpaceRelease(CGColorSpaceRef);
    size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef);
    CGColorRef CGColorCreate(CGColorSpaceRef, const CGFloat*);
    CGColorRef CGColorRetain(CGColorRef);
    void CGColorRelease(CGColorRef);
    const CGFloat* CGColorGetComponents(CGColorRef);
    size_t CGColorGetNumberOfComponents(CGColorRef);
    CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef, CFArrayRef, const CGFloat*);
    void CGGradientRelease(CGGradientRef);
    CGFunctionRef CGFunctionCreate(void*, size_t, const CGFloat*, size_t, const CGFloat*,
                                   const CGFunctionCallbacks*);
    void CGFunctionRelease(CGFunctionRef);
    CGShadingRef CGShadingCreateAxial(CGColorSpaceRef, CGPoint, CGPoint, CGFunctionRef, bool, bool);
    void CGShadingRelease(CGShadingRef);

    void CGContextSaveGState(CGContextRef);
    void CGContextRestoreGState(CGContextRef);
    void CGContextBeginPath(CGContextRef);
    void CGContextMoveToPoint(CGContextRef, CGFloat, CGFloat);
    void CGContextAddLineToPoint(CGContextRef, CGFloat, CGFloat);
    void CGContextAddArcToPoint(CGContextRef, CGFloat, CGFloat, CGFloat, CGFloat, CGFloat);
    void CGContextAddRect(CGContextRef, CGRect);
    void CGContextClosePath(CGContextRef);
    void CGContextClip(CGContextRef);
    void CGContextSetFillColorWithColor(CGContextRef, CGColorRef);
    void CGContextFillRect(CGContextRef, CGRect);
    void CGContextDrawLinearGradient(CGContextRef, CGGradientRef, CGPoint, CGPoint,
                                     CGGradientDrawingOptions);
    void CGContextDrawShading(CGContextRef, CGShadingRef);
}
