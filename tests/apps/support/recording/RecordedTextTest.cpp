#include "apps/support/recording/RecordedText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace Tarvane;

namespace
{

std::string Bytes(std::u16string_view units)
{
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

} // namespace

TEST(RecordedText, HexGoesThereAndBack)
{
    const std::string strBytes("\x00\x7f\x80\xff", 4);
    EXPECT_EQ(HexOf(strBytes), "007f80ff");
    EXPECT_EQ(BytesOfHex("007f80ff"), strBytes);
    EXPECT_EQ(BytesOfHex(""), "");
    for (const std::string strWrong : {"0", "0g", "FF", " 1"})
        EXPECT_THROW(BytesOfHex(strWrong), std::invalid_argument) << strWrong;
    EXPECT_THROW(BytesOfHex(std::string_view("0\0", 2)), std::invalid_argument);
}

TEST(RecordedText, WellFormedTextNeedsNoBytesBesideIt)
{
    const RecordedJson json = Utf16Json(Bytes(u"V\u00F6x \U0001F399\n"));
    EXPECT_EQ(json.dump(), "{\"text\":\"V\xC3\xB6x \xF0\x9F\x8E\x99\\n\"}");
    EXPECT_EQ(Utf16Json({}).dump(), "{\"text\":\"\"}");
}

TEST(RecordedText, LoneSurrogatesAndOddBytesAreKeptAsBytes)
{
    const std::u16string surrogates{u'a', 0xD800};
    EXPECT_EQ(Utf16Json(Bytes(surrogates)).dump(),
              "{\"text\":\"a\xEF\xBF\xBD\",\"hex\":\"610000d8\"}");
    EXPECT_EQ(Utf16Json("a").dump(), "{\"text\":\"\",\"hex\":\"61\"}");
    // Not mistaken for a flaw.
    EXPECT_EQ(Utf16Json(Bytes(u"\uFFFD")).dump(), "{\"text\":\"\xEF\xBF\xBD\"}");
}

TEST(RecordedText, PathThatIsNotUtf8IsKeptAsBytes)
{
    EXPECT_EQ(Utf8Json("/a\xC3\xB6").dump(), "\"/a\xC3\xB6\"");
    EXPECT_EQ(Utf8Json("/a\xF6").dump(), "{\"text\":\"/a\xEF\xBF\xBD\",\"hex\":\"2f61f6\"}");
}

TEST(RecordedText, NumbersThatJsonDoesNotKnowAreWords)
{
    EXPECT_EQ(NumberJson(0.1).dump(), "0.1");
    EXPECT_EQ(NumberJson(std::nan("")).dump(), "\"NaN\"");
    EXPECT_EQ(NumberJson(std::numeric_limits<double>::infinity()).dump(), "\"Infinity\"");
    EXPECT_EQ(NumberJson(-std::numeric_limits<double>::infinity()).dump(), "\"-Infinity\"");
}

TEST(RecordedText, CodesGoThereAndBack)
{
    for (const std::uint32_t nCode : {0x546B4E65u, 0x2D2D2D2Du, 0x00000000u, 0x546B4EFFu,
                                      0x30783030u, 0x20202020u, 0x7F7F7F7Fu})
        EXPECT_EQ(CodeOfText(CodeText(nCode)), nCode) << CodeText(nCode);
    EXPECT_EQ(CodeText(0x546B4E65), "TkNe");
    EXPECT_EQ(CodeText(0x546B4E0A), "0x546b4e0a");
    for (const char* szWrong : {"", "TkN", "TkNe1", "0x546b4e0", "0x546b4eXY"})
        EXPECT_THROW(CodeOfText(szWrong), std::invalid_argument) << szWrong;
}
