#include "platform/gnustep/CoreGraphics/CGObjects.h"

#include <gtest/gtest.h>

TEST(CGColor, HoldsItsComponents)
{
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(space), 3u);
    CGFloat components[] = {0.1, 0.2, 0.3, 0.4};
    CGColorRef colour = CGColorCreate(space, components);
    components[0] = 9;
    CGColorSpaceRelease(space);
    ASSERT_EQ(CGColorGetNumberOfComponents(colour), 4u);
    EXPECT_EQ(CGColorGetComponents(colour)[0], 0.1);
    EXPECT_EQ(CGColorGetComponents(colour)[3], 0.4);
    CGColorRelease(colour);
}

TEST(CGColor, LivesUntilItsLastRelease)
{
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    const CGFloat components[] = {0.1, 0.2, 0.3, 0.4};
    CGColorRef colour = CGColorCreate(space, components);
    CGColorSpaceRelease(space);
    EXPECT_EQ(CGColorRetain(colour), colour);
    CGColorRelease(colour);
    EXPECT_EQ(colour->nReferences, 1u);
    EXPECT_EQ(CGColorGetComponents(colour)[1], 0.2);
    CGColorRelease(colour);
}

TEST(CGColor, NullIsAnsweredWithNothing)
{
    const CGFloat components[] = {0, 0, 0, 0};
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    EXPECT_EQ(CGColorCreate(nullptr, components), nullptr);
    EXPECT_EQ(CGColorCreate(space, nullptr), nullptr);
    CGColorSpaceRelease(space);
    EXPECT_EQ(CGColorRetain(nullptr), nullptr);
    EXPECT_EQ(CGColorGetComponents(nullptr), nullptr);
    EXPECT_EQ(CGColorGetNumberOfComponents(nullptr), 0u);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(nullptr), 0u);
    CGColorRelease(nullptr);
    CGColorSpaceRelease(nullptr);
}
