#include "apps/server/session/SessionListing.h"

#include "tests/apps/server/database/MadeSession.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Tarvane::Server
{
namespace
{

CSession ListedSession()
{
    TarvaneTest::CMadeSession session({"Vox", "Guitar"}, 2.5);
    Region region;
    region.nTrackId = 2;
    region.strPath = "/audio/take.wav";
    region.nStart = 24000;
    region.nEnd = 48000 * 3661;
    region.nPosition = -48;
    region.nSampleRate = 48000;
    session.SelectRegion(DocumentKind::Script, session.AddRegion(region));
    region.channels = {0, 2};
    region.fMuted = true;
    session.AddRegion(region);
    session.MoveDisplay(DocumentKind::Script, 1234567);
    return session.Content();
}

TEST(SessionListing, TellsEveryRegionWhereItLies)
{
    EXPECT_EQ(ListSession(ListedSession()),
              "link offset 2.5 s, 4 updates\n"
              "script document, display at 1234567\n"
              "  track 0  Vox\n"
              "  track 1  Guitar\n"
              "    region 5  /audio/take.wav  48000 Hz  selected\n"
              "      start     24000  0:00:00.500\n"
              "      end       175728000  1:01:01.000\n"
              "      position  -48  -0:00:00.001\n"
              "    region 6  /audio/take.wav  48000 Hz  channels 0 2  muted\n"
              "      start     24000  0:00:00.500\n"
              "      end       175728000  1:01:01.000\n"
              "      position  -48  -0:00:00.001\n"
              "audiosuite document, display at 0\n"
              "  track 0  Vox\n"
              "  track 1  Guitar\n");
}

TEST(SessionListing, JsonTellsTheSame)
{
    const auto listing = nlohmann::json::parse(ListSessionAsJson(ListedSession()));
    EXPECT_EQ(listing["linkOffset"], 2.5);
    EXPECT_EQ(listing["updateCount"], 4);
    const auto& document = listing["documents"][0];
    EXPECT_EQ(document["kind"], "script");
    EXPECT_EQ(document["displayPosition"], 1234567);
    EXPECT_EQ(document["selectedRegion"], 5);
    EXPECT_EQ(document["tracks"][0]["regions"].size(), 0u);
    const auto& track = document["tracks"][1];
    EXPECT_EQ(track["name"], "Guitar");
    EXPECT_EQ(track["number"], 1);
    EXPECT_EQ(track["id"], 2);
    const auto& region = track["regions"][1];
    EXPECT_EQ(region, nlohmann::json::parse(R"({"id": 6, "file": "/audio/take.wav",
        "start": 24000, "end": 175728000, "position": -48, "timelineStart": 23952,
        "sampleRate": 48000, "channels": [0, 2], "muted": true, "startTime": "0:00:00.500",
        "endTime": "1:01:01.000", "positionTime": "-0:00:00.001"})"));
    EXPECT_EQ(listing["documents"][1]["kind"], "audiosuite");
}

TEST(SessionListing, MarkerAreasAndProcessesAreListed)
{
    TarvaneTest::CMadeSession session({"Vox"}, 0);
    session.AddMarkerArea({kNullId, 1, -5, 20});
    session.AddProcess(DocumentKind::Script, {kNullId, "GDX", "PT", {}, {1}, kNullId});
    Region region;
    region.nTrackId = 1;
    region.strPath = "/made.wav";
    region.nEnd = 1;
    region.nSampleRate = 48000;
    session.AddProcess(DocumentKind::Script,
                       {kNullId, "Spreader", "PT", {}, {1}, session.AddRegion(region)});
    EXPECT_THAT(ListSession(session.Content()),
                testing::HasSubstr("    marker area 3  -5 to 20\n"
                                   "  process 4  GDX\n"
                                   "  process 6  Spreader  made region 5\n"));
    const auto document =
        nlohmann::json::parse(ListSessionAsJson(session.Content()))["documents"][0];
    EXPECT_EQ(document["tracks"][0]["markerAreas"],
              nlohmann::json::parse(R"([{"id": 3, "start": -5, "end": 20}])"));
    EXPECT_EQ(document["processes"][1],
              nlohmann::json::parse(R"({"id": 6, "kind": "Spreader", "region": 5})"));
}

TEST(SessionListing, APathCannotBreakItsLine)
{
    TarvaneTest::CMadeSession session({"Vox"}, 0);
    Region region;
    region.nTrackId = 1;
    region.strPath = "/a\nb\x1b.wav";
    region.nEnd = 1;
    region.nSampleRate = 48000;
    session.AddRegion(region);
    EXPECT_THAT(ListSession(session.Content()),
                testing::HasSubstr("    region 3  /a?b?.wav  48000 Hz\n"));
    EXPECT_EQ(nlohmann::json::parse(ListSessionAsJson(
                  session.Content()))["documents"][0]["tracks"][0]["regions"][0]["file"],
              region.strPath);
}

TEST(SessionListing, AnEmptySessionIsListedToo)
{
    EXPECT_EQ(ListSession(CSession()), "link offset 0 s, 0 updates\n"
                                       "script document, display at 0\n"
                                       "audiosuite document, display at 0\n");
}

} // namespace
} // namespace Tarvane::Server
