#include "apps/server/SessionText.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Tarvane::Server
{
namespace
{

using nlohmann::json;
using testing::HasSubstr;

constexpr DocumentKind kScript = DocumentKind::Script;

CSession FullSession()
{
    CSession session({"Vox \u00e9", "Guitar"}, 1001.0 / 30000.0);
    Region region;
    region.nTrackId = 2;
    region.strPath = "/audio/take \"1\"\\.wav";
    region.nStart = 10;
    region.nEnd = 4000000000;
    region.nPosition = -96000;
    region.nSampleRate = 96000;
    region.channels = {0, 2};
    region.fMuted = true;
    session.SelectRegion(kScript, session.AddRegion(kScript, region));
    session.MoveDisplay(DocumentKind::AudioSuite, 1244.5);
    session.AddMarkerArea(kScript, {kNullId, 1, -20, 30});
    session.AddProcess(kScript, {kNullId, "GDX", "PT", {{1, 1, 5, 25}, {2, 2, 0, 7}}, {1}, 5});
    return session;
}

std::string FlawOf(const std::string& text)
{
    try
    {
        DecodeSession(text);
        return "sound";
    }
    catch (const CSessionFlaw& flaw)
    {
        return flaw.what();
    }
}

json FullJson()
{
    return json::parse(EncodeSession(FullSession()));
}

TEST(SessionText, EverythingComesBack)
{
    const CSession session = DecodeSession(EncodeSession(FullSession()));
    EXPECT_EQ(session.LinkOffset(), 1001.0 / 30000.0);
    EXPECT_EQ(session.UpdateCount(), 5);
    EXPECT_EQ(session.NextId(), 8);
    const Document& document = session.GetDocument(kScript);
    ASSERT_EQ(document.tracks.size(), 2u);
    EXPECT_EQ(document.tracks[0].strName, "Vox \u00e9");
    EXPECT_EQ(document.tracks[1].nId, 2);
    ASSERT_EQ(document.regions.size(), 1u);
    const Region& region = document.regions[0];
    EXPECT_EQ(region.nId, 5);
    EXPECT_EQ(region.nTrackId, 2);
    EXPECT_EQ(region.strPath, "/audio/take \"1\"\\.wav");
    EXPECT_EQ(region.nStart, 10);
    EXPECT_EQ(region.nEnd, 4000000000);
    EXPECT_EQ(region.nPosition, -96000);
    EXPECT_EQ(region.nSampleRate, 96000);
    EXPECT_EQ(region.channels, (std::vector<std::int32_t>{0, 2}));
    EXPECT_TRUE(region.fMuted);
    EXPECT_EQ(document.nSelectedRegionId, 5);
    EXPECT_EQ(session.GetDocument(DocumentKind::AudioSuite).dDisplayPosition, 1244.5);
    const MarkerArea& area = document.markerAreas.at(0);
    EXPECT_EQ(area.nId, 6);
    EXPECT_EQ(area.nTrackId, 1);
    EXPECT_EQ(area.nStart, -20);
    EXPECT_EQ(area.nEnd, 30);
    const Process& process = document.processes.at(0);
    EXPECT_EQ(process.nId, 7);
    EXPECT_EQ(process.strKind, "GDX");
    EXPECT_EQ(process.strHost, "PT");
    ASSERT_EQ(process.inputs.size(), 2u);
    EXPECT_EQ(process.inputs[1].nIOType, 2);
    EXPECT_EQ(process.inputs[1].nTrackId, 2);
    EXPECT_EQ(process.inputs[0].nStart, 5);
    EXPECT_EQ(process.inputs[0].nEnd, 25);
    EXPECT_EQ(process.outputTrackIds, std::vector<std::int64_t>{1});
    EXPECT_EQ(process.nRegionId, 5);
}

TEST(SessionText, EncodingIsTheSameEachTime)
{
    const std::string strText = EncodeSession(FullSession());
    EXPECT_EQ(EncodeSession(DecodeSession(strText)), strText);
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
    text["version"] = 2;
    EXPECT_EQ(FlawOf(text.dump()), "its version is 2; this program reads 1");
}

TEST(SessionText, EveryCutIsRefused)
{
    const std::string strText = EncodeSession(FullSession());
    // The last byte is the line end.
    for (std::size_t nLength = 0; nLength + 1 < strText.size(); nLength++)
        ASSERT_NE(FlawOf(strText.substr(0, nLength)), "sound") << nLength;
}

TEST(SessionText, EveryChangedBitLoadsOrIsRefused)
{
    std::string strText = EncodeSession(FullSession());
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
