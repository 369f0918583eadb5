#include "apps/server/session/SessionText.h"

#include "tests/apps/server/database/FullSession.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Tarvane::Server
{
namespace
{

using nlohmann::json;
using TarvaneTest::szFullText;
using testing::HasSubstr;

std::string FlawOf(const std::string& text)
{
    try
    {
        DecodeSessionText(text);
        return "sound";
    }
    catch (const CSessionFlaw& flaw)
    {
        return flaw.what();
    }
    catch (const CSessionTooNew& version)
    {
        return version.what();
    }
}

json FullJson()
{
    return json::parse(szFullText);
}

TEST(SessionText, EverythingIsRead)
{
    TarvaneTest::ExpectFullSession(DecodeSessionText(szFullText));
}

TEST(SessionText, ItIsKnownByItsFirstCharacter)
{
    EXPECT_TRUE(IsSessionText(szFullText));
    EXPECT_TRUE(IsSessionText(" \t\r\n{"));
    EXPECT_FALSE(IsSessionText(""));
    EXPECT_FALSE(IsSessionText(" \n"));
    EXPECT_FALSE(IsSessionText("[TNE Binary Session File]{"));
}

TEST(SessionText, WhatIsNoSessionIsRefused)
{
    EXPECT_THAT(FlawOf(""), HasSubstr("this is no whole session text"));
    EXPECT_THAT(FlawOf("hello"), HasSubstr("this is no whole session text"));
    EXPECT_EQ(FlawOf("{}"), "this is no session of this program");
    EXPECT_EQ(FlawOf("[1]"), "this is no session of this program");
    EXPECT_EQ(FlawOf("{\"form\": 3}"), "this is no session of this program");
    EXPECT_THAT(FlawOf(std::string(100000, '[')), HasSubstr("this is no whole session text"));
}

TEST(SessionText, AnotherVersionIsNamed)
{
    json text = FullJson();
    text["version"] = 0;
    EXPECT_EQ(FlawOf(text.dump()), "its version is 0, which never was one");
    text["version"] = 2;
    try
    {
        DecodeSessionText(text.dump());
        FAIL();
    }
    catch (const CSessionTooNew& version)
    {
        EXPECT_STREQ(version.what(), "its version is 2; this program reads 1");
    }
}

TEST(SessionText, EveryCutIsRefused)
{
    const std::string strText = szFullText;
    // The last byte is the line end.
    for (std::size_t nLength = 0; nLength + 1 < strText.size(); nLength++)
        ASSERT_NE(FlawOf(strText.substr(0, nLength)), "sound") << nLength;
}

TEST(SessionText, EveryChangedBitLoadsOrIsRefused)
{
    std::string strText = szFullText;
    int nRefused = 0;
    for (std::size_t nBit = 0; nBit < strText.size() * 8; nBit++)
    {
        const char cMask = static_cast<char>(1 << nBit % 8);
        strText[nBit / 8] = static_cast<char>(strText[nBit / 8] ^ cMask);
        nRefused += FlawOf(strText) != "sound";
        strText[nBit / 8] = static_cast<char>(strText[nBit / 8] ^ cMask);
    }
    EXPECT_GT(nRefused, static_cast<int>(strText.size()));
    EXPECT_EQ(FlawOf(strText), "sound");
}

TEST(SessionText, EveryMissingMemberIsNamed)
{
    for (const char* szKey : {"version", "linkOffset", "updateCount", "nextId", "documents"})
    {
        json text = FullJson();
        text.erase(szKey);
        EXPECT_EQ(FlawOf(text.dump()), std::string("\"") + szKey + "\" is missing");
    }
    for (const char* szKey :
         {"displayPosition", "selectedRegion", "tracks", "regions", "markerAreas", "processes"})
    {
        json text = FullJson();
        text["documents"]["script"].erase(szKey);
        EXPECT_EQ(FlawOf(text.dump()), std::string("\"") + szKey + "\" is missing");
    }
    for (const char* szKey :
         {"id", "track", "file", "start", "end", "position", "sampleRate", "channels", "muted"})
    {
        json text = FullJson();
        text["documents"]["script"]["regions"][0].erase(szKey);
        EXPECT_EQ(FlawOf(text.dump()), std::string("\"") + szKey + "\" is missing");
    }
}

TEST(SessionText, EveryMemberOfAnotherTypeIsNamed)
{
    for (const char* szKey :
         {"id", "track", "file", "start", "end", "position", "sampleRate", "channels", "muted"})
    {
        json text = FullJson();
        text["documents"]["script"]["regions"][0][szKey] = json::object();
        EXPECT_THAT(FlawOf(text.dump()), HasSubstr(std::string("\"") + szKey + "\" is no "));
    }
    json text = FullJson();
    text["linkOffset"] = "2";
    EXPECT_EQ(FlawOf(text.dump()), "\"linkOffset\" is no number");
    text = FullJson();
    text["documents"]["script"] = 3;
    EXPECT_EQ(FlawOf(text.dump()), "there is no object to hold \"displayPosition\"");
    text = FullJson();
    text["documents"]["script"]["regions"][0]["channels"] = {0, "1"};
    EXPECT_EQ(FlawOf(text.dump()), "\"channels\" is no whole number in range");
}

TEST(SessionText, NumbersOutOfRangeAreRefused)
{
    json text = FullJson();
    text["documents"]["script"]["regions"][0]["sampleRate"] = 4294967297;
    EXPECT_EQ(FlawOf(text.dump()), "\"sampleRate\" is no whole number in range");
    text = FullJson();
    text["nextId"] = 18446744073709551615u;
    EXPECT_EQ(FlawOf(text.dump()), "\"nextId\" is no whole number in range");
    text = FullJson();
    text["nextId"] = 6.5;
    EXPECT_EQ(FlawOf(text.dump()), "\"nextId\" is no whole number in range");
}

TEST(SessionText, WhatIsWellFormedAndUnsoundIsRefused)
{
    json text = FullJson();
    text["documents"]["script"]["tracks"][0]["name"] = "two\nlines";
    EXPECT_THAT(FlawOf(text.dump()), HasSubstr("the name of track 1 contains a line end"));
}

} // namespace
} // namespace Tarvane::Server
