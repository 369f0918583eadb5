#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

CFURLRef Create(const std::string& path, bool fDirectory = false)
{
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                   reinterpret_cast<const UInt8*>(path.data()),
                                                   CFIndex(path.size()), fDirectory);
}

// The path of a URL; gives the URL back.
std::string TakePath(CFURLRef url)
{
    UInt8 buffer[1024];
    const bool fWritten = CFURLGetFileSystemRepresentation(url, true, buffer, sizeof buffer);
    CFRelease(url);
    return fWritten ? reinterpret_cast<const char*>(buffer) : "(failed)";
}

TEST(CFURL, PathGoesThereAndBack)
{
    EXPECT_EQ(TakePath(Create("/tmp/a b%20#?.bundle")), "/tmp/a b%20#?.bundle");
    EXPECT_EQ(TakePath(Create("/tmp/\xC3\xA9\xF0\x9F\x98\x80")), "/tmp/\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(TakePath(Create("/tmp/some.bundle", true)), "/tmp/some.bundle");
}

TEST(CFURL, RelativePathBecomesAbsolute)
{
    const std::string path = TakePath(Create("some.bundle"));
    EXPECT_EQ(path.front(), '/');
    EXPECT_TRUE(path.ends_with("/some.bundle")) << path;
}

TEST(CFURL, BadPathsGiveNull)
{
    EXPECT_EQ(Create(""), nullptr);
    EXPECT_EQ(Create("/tmp/\xFF"), nullptr);
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, nullptr, 3, false),
              nullptr);
}

TEST(CFURL, PathNeedsRoomForItsClosingZero)
{
    CFURLRef url = Create("/tmp/ab");
    UInt8 buffer[16] = "#######";
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, true, buffer, 8));
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, buffer, 7));
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, nullptr, 8));
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, buffer, -1));
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, true, buffer, 16));
    CFRelease(url);
}

} // namespace
