#include <MacTypes.h>

#include <gtest/gtest.h>

#include <type_traits>

TEST(MacTypes, SizesAreThePublishedOnes)
{
    EXPECT_EQ(sizeof(UInt8), 1u);
    EXPECT_EQ(sizeof(SInt16), 2u);
    EXPECT_EQ(sizeof(UniChar), 2u);
    EXPECT_EQ(sizeof(UInt32), 4u);
    EXPECT_EQ(sizeof(SInt64), 8u);
    EXPECT_EQ(sizeof(Float32), 4u);
    EXPECT_EQ(sizeof(Float64), 8u);
    EXPECT_EQ(sizeof(Boolean), 1u);
    EXPECT_EQ(sizeof(OSErr), 2u);
    EXPECT_EQ(sizeof(OSStatus), 4u);
    EXPECT_TRUE(std::is_unsigned_v<OSType>);
    EXPECT_TRUE(std::is_signed_v<Size>);
}

TEST(MacTypes, FirstOfFourCharactersIsTheHighestByte)
{
    EXPECT_EQ(OSType('TkNe'), 0x546B4E65u);
}

TEST(MacTypes, ErrorsHaveThePublishedNumbers)
{
    EXPECT_EQ(noErr, 0);
    EXPECT_EQ(paramErr, -50);
    EXPECT_EQ(memFullErr, -108);
    EXPECT_EQ(userCanceledErr, -128);
}
