// Where an operation gives a __CFString*, its result is one to its caller.
#include "utils/FileIO/DiskPath.h"
#include "utils/FileIO/FileName.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

namespace
{
std::string TextOf(CFStringRef text)
{
    char bytes[256] = {};
    CFStringGetCString(text, bytes, sizeof bytes, kCFStringEncodingUTF8);
    return bytes;
}
} // namespace

TEST(CFStringResults, OfAFileName)
{
    const CFileName name("/tmp/Take.wav");
    __CFString* pFull = name.GetFullPathCFString();
    __CFString* pName = name.GetNameCFString();
    EXPECT_EQ(TextOf(pFull), "/tmp/Take.wav");
    EXPECT_EQ(TextOf(pName), "Take.wav");
    CFRelease(pFull);
    CFRelease(pName);
}

TEST(CFStringResults, OfADiskPath)
{
    const CDiskPath path("/tmp");
    __CFString* pFull = path.GetFullPathCFString();
    EXPECT_EQ(TextOf(pFull).substr(0, 4), "/tmp");
    CFRelease(pFull);
}

TEST(CFStringResults, AreTakenAsConstantOnesToo)
{
    const CFileName name("/tmp/Take.wav");
    CFStringRef full = name.GetFullPathCFString();
    const CFileName again(full);
    EXPECT_EQ(again.GetFullPathString(), name.GetFullPathString());
    CFRelease(full);
}
