#pragma once

#include "colours/GradientFill.h"
#include "tests/support/RecordingCoreGraphics.h"
#include "utils/ParameterBlock.h"

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// Tests with a colour space; at the end every platform object is released again.
class ColourFixture : public testing::Test
{
  protected:
    ColourFixture()
        : m_nLiveBefore(TarvaneTests::LiveGraphicsObjects()),
          m_pool([[NSAutoreleasePool alloc] init])
    {
        TarvaneTests::ResetGraphicsCalls();
        m_space = CGColorSpaceCreateDeviceRGB();
    }

    ~ColourFixture() override
    {
        CGColorSpaceRelease(m_space);
        [m_pool drain];
        EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), m_nLiveBefore);
    }

    /// The number under which m_space is recorded; every other space has another.
    static constexpr size_t kSpace = 1;

    /// How many references a platform colour has beside that of whoever asks for it, once the
    /// operation and what it autoreleased are done.
    template <typename Operation>
    static NSUInteger OwnersAfter(NSColor* colour, Operation operation)
    {
        [colour retain];
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        operation();
        [pool drain];
        const NSUInteger nOwners = [colour retainCount] - 1;
        [colour release];
        return nOwners;
    }

    size_t m_nLiveBefore;
    NSAutoreleasePool* m_pool;
    CGColorSpaceRef m_space;
};

inline std::vector<std::string> NamesIn(const CParameterBlock& block)
{
    std::vector<std::string> names;
    for (const CParameter* pParameter : block.m_vParameters)
        names.push_back(std::string(pParameter->m_strName));
    return names;
}

inline std::vector<float> PositionsOf(const CGradientFill& fill)
{
    std::vector<float> positions;
    for (const CGradComponent* pStop : fill.m_Stops)
        positions.push_back(pStop->m_fPosition);
    return positions;
}

inline std::vector<double> RGBAOf(const CComponentColour& colour)
{
    return {colour.m_dRed, colour.m_dGreen, colour.m_dBlue, colour.m_dAlpha};
}

inline std::vector<double> RGBAOf(NSColor* colour)
{
    return {[colour redComponent],
            [colour greenComponent],
            [colour blueComponent],
            [colour alphaComponent]};
}
