#include "utils/ParameterBlock.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
std::string SaveToMemory(CParameterBlock& block)
{
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const unsigned long nSize = block.SaveBinarySessionToMemory(pData);
    std::string bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(pData)), nSize);
    CFRelease(pData);
    return bytes;
}
} // namespace

TEST(BinarySession, WorkedExample)
{
    CParameterBlock code;
    code.AddParameter("Mod", 9);
    CParameterBlock root;
    root.AddParameter("Mod", 7);
    root.AddParameter("Code", &code);
    const char szExpected[] = "[TNE Binary Session File]\0\x64\0\0\0\x09\0\0\0\x02\0\0\0Mod\0Code\0"
                              "\0\x02\0\0\0"
                              "\x02\0\0\0\x01\x07\0\0\0"
                              "\x06\0\0\0\x02\x01\0\0\0"
                              "\x02\0\0\0\x01\x09\0\0";
    EXPECT_EQ(SaveToMemory(root), std::string(szExpected, sizeof szExpected));
    EXPECT_EQ(sizeof szExpected, 79u);
}
