#include "tests/apps/server/CommandFixture.h"

namespace Tarvane::Server
{
namespace
{

class ClearingFunctions : public TarvaneTest::CommandFixture
{
protected:
    void Add(int nTrackId, int nPosition)
    {
        SelectedResult("AddAudioRegion(" + std::to_string(nTrackId) + ", \"" + m_strTake +
                       "\", true, false, " + std::to_string(nPosition) + ",0,100)");
    }
};

TEST_F(ClearingFunctions, RegionsAreCountedAndFoundByTrack)
{
    Add(1, 0);
    Add(2, 10);
    Add(1, 20);
    EXPECT_EQ(SelectedResult("print(GetRegionCount(1), GetRegionCount(2))"), "2\t1\n");
    EXPECT_EQ(SelectedResult("print(GetRegionID(1, 0), GetRegionID(1, 1), GetRegionID(2, 0))"),
              "5\t7\t6\n");
    EXPECT_EQ(SelectedError("GetRegionID(1, 2)"),
              "GetRegionID: the track has nothing at place 2; it has 2, counted from 0");
    EXPECT_EQ(SelectedError("GetRegionID(1, -1)"),
              "GetRegionID: the track has nothing at place -1; it has 2, counted from 0");
    EXPECT_EQ(SelectedError("GetRegionCount(9)"),
              "GetRegionCount: the document has no track with the id 9");
}

TEST_F(ClearingFunctions, PlacesCloseUpAfterADeletion)
{
    Add(1, 0);
    Add(1, 10);
    SelectedResult("DeleteRegion(GetRegionID(1, 0))");
    EXPECT_EQ(SelectedResult("print(GetRegionCount(1), GetRegionID(1, 0))"), "1\t6\n");
    EXPECT_EQ(SelectedError("DeleteRegion(5)"),
              "DeleteRegion: the document has no region with the id 5");
}

TEST_F(ClearingFunctions, DeletingLeavesTheSoundFileAlone)
{
    Add(1, 0);
    SelectedResult("DeleteRegion(GetRegionID(1, 0))");
    EXPECT_EQ(TarvaneTest::ReadSamples(m_strTake), TarvaneTest::Noise(100));
}

TEST_F(ClearingFunctions, MarkerAreasAreCountedFoundAndDeleted)
{
    SelectedResult("CreateProcess('GDX', 'PT', {{IOType=1, Track=1, Start=0, End=5}, "
                   "{IOType=2, Track=1, Start=0, End=5}}, {{Track=2}})");
    EXPECT_EQ(SelectedResult("local m = GetMarkerTrackID(1, 0) print(CountMarkerAreas(m), "
                             "GetMarkerAreaID(m, 0), GetMarkerAreaID(m, 1))"),
              "2\t5\t6\n");
    SelectedResult("DeleteMarkerArea(5)");
    EXPECT_EQ(SelectedResult("local m = GetMarkerTrackID(1, 0) print(CountMarkerAreas(m), "
                             "GetMarkerAreaID(m, 0), CountMarkerAreas(GetMarkerTrackID(2, 0)))"),
              "1\t6\t0\n");
    EXPECT_EQ(SelectedError("DeleteMarkerArea(5)"),
              "DeleteMarkerArea: the document has no marker area with the id 5");
    EXPECT_EQ(SelectedError("GetMarkerTrackID(1, 1)"),
              "GetMarkerTrackID: a track has one marker track, number 0");
    EXPECT_EQ(SelectedError("GetMarkerTrackID(9, 0)"),
              "GetMarkerTrackID: the document has no track with the id 9");
}

} // namespace
} // namespace Tarvane::Server
