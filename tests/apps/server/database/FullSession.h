// A session with something of everything, and the same one in the earlier written form.
#pragma once

#include "apps/server/session/Session.h"
#include "tests/apps/server/database/MadeSession.h"

#include <gtest/gtest.h>

#include <string>

namespace TarvaneTest
{

inline Tarvane::Server::CSession FullSession()
{
    using namespace Tarvane::Server;
    constexpr DocumentKind kScript = DocumentKind::Script;
    CMadeSession session({"Vox \u00e9", "Guitar"}, 1001.0 / 30000.0);
    Region region;
    region.nTrackId = 2;
    region.strPath = "/audio/take \"1\"\\.wav";
    region.nStart = 10;
    region.nEnd = 4000000000;
    region.nPosition = -96000;
    region.nSampleRate = 96000;
    region.channels = {0, 2};
    region.fMuted = true;
    session.SelectRegion(kScript, session.AddRegion(region));
    session.MoveDisplay(DocumentKind::AudioSuite, 1244.5);
    session.AddMarkerArea({kNullId, 1, -20, 30});
    session.AddProcess(kScript, {kNullId, "GDX", "PT", {{1, 1, 5, 25}, {2, 2, 0, 7}}, {1}, 5});
    return session.Content();
}

inline void ExpectFullSession(const Tarvane::Server::CSession& session)
{
    using namespace Tarvane::Server;
    EXPECT_EQ(session.LinkOffset(), 1001.0 / 30000.0);
    EXPECT_EQ(session.UpdateCount(), 5);
    EXPECT_EQ(session.NextId(), 8);
    const Document& document = session.GetDocument(DocumentKind::Script);
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
    EXPECT_EQ(document.dDisplayPosition, 0.0);
    ASSERT_EQ(document.markerAreas.size(), 1u);
    const MarkerArea& area = document.markerAreas[0];
    EXPECT_EQ(area.nId, 6);
    EXPECT_EQ(area.nTrackId, 1);
    EXPECT_EQ(area.nStart, -20);
    EXPECT_EQ(area.nEnd, 30);
    ASSERT_EQ(document.processes.size(), 1u);
    const Process& process = document.processes[0];
    EXPECT_EQ(process.nId, 7);
    EXPECT_EQ(process.strKind, "GDX");
    EXPECT_EQ(process.strHost, "PT");
    ASSERT_EQ(process.inputs.size(), 2u);
    EXPECT_EQ(process.inputs[0].nStart, 5);
    EXPECT_EQ(process.inputs[0].nEnd, 25);
    EXPECT_EQ(process.inputs[1].nIOType, 2);
    EXPECT_EQ(process.inputs[1].nTrackId, 2);
    EXPECT_EQ(process.outputTrackIds, std::vector<std::int64_t>{1});
    EXPECT_EQ(process.nRegionId, 5);
    const Document& other = session.GetDocument(DocumentKind::AudioSuite);
    EXPECT_EQ(other.dDisplayPosition, 1244.5);
    EXPECT_EQ(other.tracks.size(), 2u);
    EXPECT_EQ(other.regions.size() + other.markerAreas.size() + other.processes.size(), 0u);
}

/// As the server wrote it before sessions were binary.
inline constexpr const char* szFullText = R"({
 "form": "Tarvane Link session",
 "version": 1,
 "linkOffset": 0.03336666666666667,
 "updateCount": 5,
 "nextId": 8,
 "documents": {
  "script": {
   "displayPosition": 0.0,
   "selectedRegion": 5,
   "tracks": [
    {"id": 1, "name": "Vox é"},
    {"id": 2, "name": "Guitar"}
   ],
   "regions": [
    {
     "id": 5,
     "track": 2,
     "file": "/audio/take \"1\"\\.wav",
     "start": 10,
     "end": 4000000000,
     "position": -96000,
     "sampleRate": 96000,
     "channels": [0, 2],
     "muted": true
    }
   ],
   "markerAreas": [{"id": 6, "track": 1, "start": -20, "end": 30}],
   "processes": [
    {
     "id": 7,
     "kind": "GDX",
     "host": "PT",
     "inputs": [
      {"ioType": 1, "track": 1, "start": 5, "end": 25},
      {"ioType": 2, "track": 2, "start": 0, "end": 7}
     ],
     "outputs": [1],
     "region": 5
    }
   ]
  },
  "audiosuite": {
   "displayPosition": 1244.5,
   "selectedRegion": 0,
   "tracks": [
    {"id": 3, "name": "Vox é"},
    {"id": 4, "name": "Guitar"}
   ],
   "regions": [],
   "markerAreas": [],
   "processes": []
  }
 }
}
)";

} // namespace TarvaneTest
