#include <CoreFoundation/CoreFoundation.h>

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Units = std::vector<UniChar>;

CFStringRef FromUTF8(const char* text)
{
    return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
}

CFStringRef FromUnits(const Units& units)
{
    return CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), CFIndex(units.size()));
}

// The string's units; gives the string back.
Units TakeUnits(CFStringRef string)
{
    Units units(CFStringGetLength(string));
    CFStringGetCharacters(string, CFRangeMake(0, CFIndex(units.size())), units.data());
    CFRelease(string);
    return units;
}

// The string in an encoding; gives the string back.
std::string TakeText(CFStringRef string, CFStringEncoding encoding = kCFStringEncodingUTF8)
{
    std::string buffer(CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), encoding) + 1,
                       '#');
    const bool fConverted =
        CFStringGetCString(string, buffer.data(), CFIndex(buffer.size()), encoding);
    CFRelease(string);
    return fConverted ? std::string(buffer.c_str()) : "(failed)";
}

bool IsRefused(const char* utf8)
{
    CFStringRef string = FromUTF8(utf8);
    CFRelease(string);
    return string == nullptr;
}

TEST(CFString, UTF8BecomesUTF16)
{
    EXPECT_THAT(TakeUnits(FromUTF8("a\xC3\xA9\xE2\x82\xAC")), ElementsAre('a', 0xE9, 0x20AC));
    EXPECT_THAT(TakeUnits(FromUTF8("\xF0\x9F\x98\x80")), ElementsAre(0xD83D, 0xDE00));
    EXPECT_THAT(TakeUnits(FromUTF8("")), IsEmpty());
}

TEST(CFString, InvalidUTF8GivesNull)
{
    EXPECT_TRUE(IsRefused("\xFF"));                   // no lead byte
    EXPECT_TRUE(IsRefused("\x80"));                   // continuation without a lead
    EXPECT_TRUE(IsRefused("ab\xC3"));                 // cut off
    EXPECT_TRUE(IsRefused("\xC0\x80"));               // overlong
    EXPECT_TRUE(IsRefused("\xE0\x80\xAF"));           // overlong
    EXPECT_TRUE(IsRefused("\xF0\x80\x80\xAF"));       // overlong
    EXPECT_TRUE(IsRefused("\xED\xA0\x80"));           // surrogate
    EXPECT_TRUE(IsRefused("\xF4\x90\x80\x80"));       // beyond U+10FFFF
    EXPECT_TRUE(IsRefused("\xF8\x88\x80\x80\x80"));   // five bytes
    EXPECT_TRUE(IsRefused("\xEF\xBB\xBF good \xC3")); // behind a byte order mark
    EXPECT_FALSE(IsRefused("\xF4\x8F\xBF\xBF"));      // U+10FFFF itself
}

TEST(CFString, NullTextAndUnknownEncodingGiveNull)
{
    EXPECT_EQ(FromUTF8(nullptr), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(kCFAllocatorDefault, "a", kCFStringEncodingUTF16), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(kCFAllocatorDefault, "a", 0x12345), nullptr);
}

TEST(CFString, EightBitEncodingsConvertBothWays)
{
    const auto convert = [](const char* text, CFStringEncoding encoding)
    { return CFStringCreateWithCString(kCFAllocatorDefault, text, encoding); };
    EXPECT_THAT(TakeUnits(convert("\xE9", kCFStringEncodingISOLatin1)), ElementsAre(0xE9));
    EXPECT_THAT(TakeUnits(convert("\x8E", kCFStringEncodingMacRoman)), ElementsAre(0xE9));
    EXPECT_THAT(TakeUnits(convert("\x80", kCFStringEncodingWindowsLatin1)), ElementsAre(0x20AC));
    EXPECT_THAT(TakeUnits(convert("\xD5", kCFStringEncodingNextStepLatin)), ElementsAre(0xE0));
    EXPECT_THAT(TakeUnits(convert("~", kCFStringEncodingASCII)), ElementsAre('~'));
    EXPECT_EQ(TakeText(FromUnits({0xE9}), kCFStringEncodingMacRoman), "\x8E");
    EXPECT_EQ(TakeText(FromUnits({0x20AC}), kCFStringEncodingWindowsLatin1), "\x80");
}

TEST(CFString, CharacterOutsideTheEncodingFails)
{
    EXPECT_EQ(TakeText(FromUnits({'a', 0xE9}), kCFStringEncodingASCII), "(failed)");
    EXPECT_EQ(TakeText(FromUnits({0x20AC}), kCFStringEncodingISOLatin1), "(failed)");
}

TEST(CFString, UnitsStayWhateverTheyAre)
{
    EXPECT_THAT(TakeUnits(FromUnits({'a', 0, 'b'})), ElementsAre('a', 0, 'b'));
    EXPECT_THAT(TakeUnits(FromUnits({'a', 0xD800})), ElementsAre('a', 0xD800));
    EXPECT_THAT(TakeUnits(FromUnits({0xDC00, 'b'})), ElementsAre(0xDC00, 'b'));
    EXPECT_THAT(TakeUnits(FromUnits({})), IsEmpty());
}

TEST(CFString, LeadingByteOrderMarkStays)
{
    EXPECT_THAT(TakeUnits(FromUnits({0xFEFF, 'a'})), ElementsAre(0xFEFF, 'a'));
    EXPECT_THAT(TakeUnits(FromUnits({0xFEFF, 0xFEFF})), ElementsAre(0xFEFF, 0xFEFF));
    EXPECT_THAT(TakeUnits(FromUnits({0xFFFE, 'a'})), ElementsAre(0xFFFE, 'a'));
    EXPECT_THAT(TakeUnits(FromUnits({0xFEFF, 0xD800})), ElementsAre(0xFEFF, 0xD800));
    EXPECT_THAT(TakeUnits(FromUTF8("\xEF\xBB\xBF"
                                   "a")),
                ElementsAre(0xFEFF, 'a'));
    EXPECT_THAT(TakeUnits(FromUTF8("\xEF\xBF\xBE"
                                   "a")),
                ElementsAre(0xFFFE, 'a'));
    EXPECT_EQ(TakeText(FromUnits({0xFEFF, 'a'})), "\xEF\xBB\xBF"
                                                  "a");
}

TEST(CFString, SurrogateWithoutItsPartnerHasNoUTF8)
{
    EXPECT_EQ(TakeText(FromUnits({'a', 0xD800})), "(failed)");
    EXPECT_EQ(TakeText(FromUnits({0xDC00, 'a'})), "(failed)");
    EXPECT_EQ(TakeText(FromUnits({0xDE00, 0xD83D})), "(failed)");
    EXPECT_EQ(TakeText(FromUnits({0xD83D, 0xDE00})), "\xF0\x9F\x98\x80");
}

TEST(CFString, BadCharactersGiveNull)
{
    const UniChar unit = 'a';
    EXPECT_EQ(CFStringCreateWithCharacters(kCFAllocatorDefault, &unit, -1), nullptr);
    EXPECT_EQ(CFStringCreateWithCharacters(kCFAllocatorDefault, nullptr, 1), nullptr);
}

TEST(CFString, PartOfTheUnitsIsCopied)
{
    CFStringRef string = FromUTF8("abcdef");
    Units units(4, '#');
    CFStringGetCharacters(string, CFRangeMake(2, 3), units.data());
    EXPECT_THAT(units, ElementsAre('c', 'd', 'e', '#'));
    CFRelease(string);
}

TEST(CFString, RangeOutsideTheStringCopiesNothing)
{
    CFStringRef string = FromUTF8("abc");
    const CFIndex largest = std::numeric_limits<CFIndex>::max();
    for (const CFRange range : {CFRangeMake(2, 2), CFRangeMake(-1, 2), CFRangeMake(4, 1),
                                CFRangeMake(0, -1), CFRangeMake(1, largest)})
    {
        UniChar unit = '#';
        CFStringGetCharacters(string, range, &unit);
        EXPECT_EQ(unit, '#') << range.location << ", " << range.length;
    }
    CFStringGetCharacters(string, CFRangeMake(0, 3), nullptr);
    CFRelease(string);
}

TEST(CFString, CStringNeedsRoomForItsClosingZero)
{
    CFStringRef string = FromUTF8("abc\xC3\xA9"); // five bytes
    char buffer[8] = "#######";
    EXPECT_TRUE(CFStringGetCString(string, buffer, 6, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "abc\xC3\xA9");
    EXPECT_EQ(buffer[6], '#');
    EXPECT_FALSE(CFStringGetCString(string, buffer, 5, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(string, buffer, 1, kCFStringEncodingUTF8));
    CFRelease(string);
}

TEST(CFString, FailedCStringLeavesAnEmptyText)
{
    CFStringRef string = FromUTF8("abc");
    CFStringRef lone = FromUnits({'a', 0xD800});
    const auto leaves = [](CFStringRef from, CFIndex size, CFStringEncoding encoding)
    {
        char buffer[8] = "#######";
        EXPECT_FALSE(CFStringGetCString(from, buffer, size, encoding));
        return std::string(buffer);
    };
    EXPECT_EQ(leaves(string, 3, kCFStringEncodingUTF8), "");
    EXPECT_EQ(leaves(lone, 8, kCFStringEncodingUTF8), "");
    EXPECT_EQ(leaves(string, 8, kCFStringEncodingUTF16), "");
    EXPECT_EQ(leaves(nullptr, 8, kCFStringEncodingUTF8), "");
    EXPECT_EQ(leaves(string, 0, kCFStringEncodingUTF8), "#######");
    EXPECT_EQ(leaves(string, -1, kCFStringEncodingUTF8), "#######");
    EXPECT_FALSE(CFStringGetCString(string, nullptr, 8, kCFStringEncodingUTF8));
    CFRelease(lone);
    CFRelease(string);
}

TEST(CFString, MaximumSizeIsThreeBytesAUnitInUTF8)
{
    const auto size = CFStringGetMaximumSizeForEncoding;
    EXPECT_EQ(size(5, kCFStringEncodingUTF8), 15);
    EXPECT_EQ(size(0, kCFStringEncodingUTF8), 0);
    EXPECT_EQ(size(5, kCFStringEncodingASCII), 5);
    EXPECT_EQ(size(5, kCFStringEncodingMacRoman), 5);
    EXPECT_EQ(size(5, kCFStringEncodingUTF16), 10);
    EXPECT_EQ(size(5, kCFStringEncodingUTF32LE), 20);
    EXPECT_EQ(size(-1, kCFStringEncodingUTF8), kCFNotFound);
    EXPECT_EQ(size(std::numeric_limits<CFIndex>::max() / 2, kCFStringEncodingUTF8), kCFNotFound);
    EXPECT_EQ(size(5, 0x12345), kCFNotFound);
}

TEST(CFString, LongTextGoesThereAndBack)
{
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += "x\xC3\xA9\xF0\x9F\x98\x80";
    CFStringRef string = FromUTF8(text.c_str());
    EXPECT_EQ(CFStringGetLength(string), 80000);
    EXPECT_EQ(TakeText(string), text);
}

TEST(CFString, NullStringReadsAsEmpty)
{
    EXPECT_EQ(CFStringGetLength(nullptr), 0);
    UniChar unit = '#';
    CFStringGetCharacters(nullptr, CFRangeMake(0, 1), &unit);
    EXPECT_EQ(unit, '#');
}

TEST(CFString, EncodingsHaveThePublishedNumbers)
{
    EXPECT_EQ(kCFStringEncodingMacRoman, 0u);
    EXPECT_EQ(kCFStringEncodingUTF8, 0x08000100u);
    EXPECT_EQ(kCFStringEncodingASCII, 0x0600u);
    EXPECT_EQ(kCFStringEncodingISOLatin1, 0x0201u);
    EXPECT_EQ(kCFStringEncodingUTF16, 0x0100u);
    EXPECT_EQ(kCFStringEncodingUTF16LE, 0x14000100u);
}

} // namespace
