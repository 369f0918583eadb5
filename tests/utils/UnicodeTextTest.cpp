#include "utils/UnicodeText.h"

#include <gtest/gtest.h>

namespace Tarvane
{
namespace
{

TEST(UnicodeText, EveryLengthOfCharacterGoesThereAndBack)
{
    const std::string strText = "A\u00e9\u20ac\U0001f3a4";
    const std::u16string units = u"A\u00e9\u20ac\U0001f3a4";
    EXPECT_EQ(Utf16FromUtf8(strText), units);
    EXPECT_EQ(Utf8FromUtf16(units), strText);
    EXPECT_TRUE(IsUtf8(strText));
}

TEST(UnicodeText, EndsOfTheRangesGoThereAndBack)
{
    for (char32_t nCode :
         {0x0u, 0x7fu, 0x80u, 0x7ffu, 0x800u, 0xd7ffu, 0xe000u, 0xffffu, 0x10000u, 0x10ffffu})
    {
        std::u16string units;
        if (nCode < 0x10000)
            units = {static_cast<char16_t>(nCode)};
        else
            units = {static_cast<char16_t>(0xd800 + ((nCode - 0x10000) >> 10)),
                     static_cast<char16_t>(0xdc00 + ((nCode - 0x10000) & 0x3ff))};
        const std::string strText = Utf8FromUtf16(units);
        EXPECT_TRUE(IsUtf8(strText)) << std::hex << static_cast<unsigned>(nCode);
        EXPECT_EQ(Utf16FromUtf8(strText), units) << std::hex << static_cast<unsigned>(nCode);
    }
}

TEST(UnicodeText, StrayBytesBecomeOneReplacementEach)
{
    EXPECT_EQ(Utf16FromUtf8("a\xff\xfe"
                            "b"),
              u"a\ufffd\ufffdb");
    EXPECT_EQ(Utf16FromUtf8("\x80"), u"\ufffd");
    // A character cut off at the end of the text.
    EXPECT_EQ(Utf16FromUtf8("x\xe2\x82"), u"x\ufffd\ufffd");
}

TEST(UnicodeText, OverlongFormsSurrogatesAndTooLargeCodesAreNotUtf8)
{
    for (const char* szText :
         {"\xc0\x80", "\xc1\xbf", "\xe0\x80\x80", "\xf0\x80\x80\x80", "\xed\xa0\x80",
          "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xe2\x28\xa1"})
        EXPECT_FALSE(IsUtf8(szText)) << szText;
}

TEST(UnicodeText, LoneSurrogatesBecomeReplacements)
{
    EXPECT_EQ(Utf8FromUtf16(std::u16string{u'a', 0xd800, u'b'}), "a\ufffdb");
    EXPECT_EQ(Utf8FromUtf16(std::u16string{0xdc00, 0xd800}), "\ufffd\ufffd");
}

TEST(UnicodeText, NothingComesOutOfNothing)
{
    EXPECT_EQ(Utf16FromUtf8(""), u"");
    EXPECT_EQ(Utf8FromUtf16(u""), "");
    EXPECT_TRUE(IsUtf8(""));
}

} // namespace
} // namespace Tarvane
