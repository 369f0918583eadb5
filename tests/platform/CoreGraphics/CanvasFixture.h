#pragma once

#include "tests/support/Canvas.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace TarvaneTests
{

/// A white canvas of 60 by 40, and what is drawn on it.
class CanvasTest : public testing::Test
{
  protected:
    CanvasTest() : m_canvas(NSMakeSize(60, 40)), m_context(m_canvas.Context()) {}
    ~CanvasTest() override { CGColorSpaceRelease(m_space); }

    CGColorRef MakeColour(Pixel pixel, CGFloat dAlpha = 1) const
    {
        const CGFloat components[] = {pixel.nRed / 255.0, pixel.nGreen / 255.0, pixel.nBlue / 255.0,
                                      dAlpha};
        return CGColorCreate(m_space, components);
    }

    void SetColour(Pixel pixel, CGFloat dAlpha = 1)
    {
        CGColorRef colour = MakeColour(pixel, dAlpha);
        CGContextSetFillColorWithColor(m_context, colour);
        CGColorRelease(colour);
    }

    CGGradientRef MakeGradient(std::initializer_list<Pixel> pixels,
                               const std::vector<CGFloat>& locations) const
    {
        std::vector<const void*> colours;
        for (const Pixel& pixel : pixels)
            colours.push_back(MakeColour(pixel));
        CFArrayRef array =
            CFArrayCreate(kCFAllocatorDefault, colours.data(), CFIndex(colours.size()), nullptr);
        CGGradientRef gradient = CGGradientCreateWithColors(
            m_space, array, locations.empty() ? nullptr : locations.data());
        // What is drawn later stands on what the gradient took over.
        CFRelease(array);
        for (const void* pColour : colours)
            CGColorRelease((CGColorRef)pColour);
        return gradient;
    }

    void ClipTo(CGRect rect)
    {
        CGContextBeginPath(m_context);
        CGContextAddRect(m_context, rect);
        CGContextClip(m_context);
    }

    Canvas m_canvas;
    CGContextRef m_context;
    CGColorSpaceRef m_space = CGColorSpaceCreateDeviceRGB();
};

constexpr CGGradientDrawingOptions kBothWays =
    kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation;

} // namespace TarvaneTests
