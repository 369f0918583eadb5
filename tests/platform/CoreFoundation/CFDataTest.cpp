#include <CoreFoundation/CoreFoundation.h>

#include <gmock/gmock.h>

#include <vector>

namespace
{

using testing::Each;
using testing::ElementsAre;

std::vector<UInt8> BytesOf(CFDataRef data)
{
    const UInt8* bytes = CFDataGetBytePtr(data);
    return {bytes, bytes + CFDataGetLength(data)};
}

const UInt8 kThree[] = {1, 0, 3};

TEST(CFData, HoldsACopyOfItsBytes)
{
    UInt8 bytes[] = {1, 0, 3};
    CFDataRef data = CFDataCreate(kCFAllocatorDefault, bytes, 3);
    bytes[0] = 9;
    EXPECT_THAT(BytesOf(data), ElementsAre(1, 0, 3));
    CFRelease(data);
}

TEST(CFData, BadBytesAndCapacityGiveNull)
{
    EXPECT_EQ(CFDataCreate(kCFAllocatorDefault, kThree, -1), nullptr);
    EXPECT_EQ(CFDataCreate(kCFAllocatorDefault, nullptr, 1), nullptr);
    EXPECT_EQ(CFDataCreateMutable(kCFAllocatorDefault, -1), nullptr);
}

TEST(CFData, EmptyDataNeedsNoBytes)
{
    CFDataRef data = CFDataCreate(kCFAllocatorDefault, nullptr, 0);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(CFDataGetLength(data), 0);
    CFRelease(data);
}

TEST(CFMutableData, IsEmptyAtFirst)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    EXPECT_EQ(CFDataGetLength(data), 0);
    CFRelease(data);
}

TEST(CFMutableData, BytesItGrowsByAreZero)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    CFDataSetLength(data, 100);
    std::fill_n(CFDataGetMutableBytePtr(data), 100, UInt8(7));
    CFDataSetLength(data, 2);
    EXPECT_THAT(BytesOf(data), ElementsAre(7, 7));
    CFDataSetLength(data, 100);
    const std::vector<UInt8> bytes = BytesOf(data);
    EXPECT_THAT(std::vector<UInt8>(bytes.begin() + 2, bytes.end()), Each(0));
    CFDataSetLength(data, 0);
    EXPECT_EQ(CFDataGetLength(data), 0);
    CFRelease(data);
}

TEST(CFMutableData, CapacityIsNoLimit)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 4);
    CFDataSetLength(data, 4000000);
    EXPECT_EQ(CFDataGetLength(data), 4000000);
    CFDataGetMutableBytePtr(data)[3999999] = 1;
    CFRelease(data);
}

TEST(CFMutableData, AppendsBytes)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    CFDataAppendBytes(data, kThree, 3);
    CFDataAppendBytes(data, kThree, 1);
    EXPECT_THAT(BytesOf(data), ElementsAre(1, 0, 3, 1));
    CFRelease(data);
}

TEST(CFMutableData, BadLengthsChangeNothing)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    CFDataAppendBytes(data, kThree, 3);
    CFDataSetLength(data, -1);
    CFDataAppendBytes(data, kThree, -1);
    CFDataAppendBytes(data, nullptr, 2);
    EXPECT_THAT(BytesOf(data), ElementsAre(1, 0, 3));
    CFRelease(data);
}

TEST(CFMutableData, NullReadsAsEmpty)
{
    EXPECT_EQ(CFDataGetLength(nullptr), 0);
    EXPECT_EQ(CFDataGetBytePtr(nullptr), nullptr);
    EXPECT_EQ(CFDataGetMutableBytePtr(nullptr), nullptr);
    CFDataSetLength(nullptr, 3);
    CFDataAppendBytes(nullptr, kThree, 3);
}

} // namespace
