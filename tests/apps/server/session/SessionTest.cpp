#include "apps/server/session/Session.h"

#include "tests/apps/server/session/SoundRegion.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

TEST(Session, ANewSessionHasItsTracksInBothDocuments)
{
    const CSession session({"Vox", "Guitar"}, 2.5);
    for (DocumentKind kind : kDocumentKinds)
    {
        const Document& document = session.GetDocument(kind);
        ASSERT_EQ(document.tracks.size(), 2u);
        EXPECT_EQ(document.tracks[0].strName, "Vox");
        EXPECT_EQ(document.tracks[1].strName, "Guitar");
        EXPECT_TRUE(document.regions.empty());
    }
    EXPECT_EQ(session.LinkOffset(), 2.5);
    EXPECT_EQ(session.UpdateCount(), 0);
    EXPECT_EQ(session.Flaw(), std::nullopt);
}

TEST(Session, ARegionBeginsWhereItsFirstFrameLies)
{
    const Region region = SoundRegion(1);
    EXPECT_EQ(region.Length(), 20);
    EXPECT_EQ(region.TimelineStart(), 1010);
}

TEST(Session, NamesThatWouldBreakAListOfLinesAreRefused)
{
    EXPECT_EQ(NameFlaw("Vox \u00e9"), std::nullopt);
    EXPECT_EQ(NameFlaw(std::string(999, 'x')), std::nullopt);
    EXPECT_EQ(NameFlaw(std::string(1000, 'x')), "is longer than 999 bytes");
    EXPECT_EQ(NameFlaw(""), "is empty");
    const std::string strControl = "contains a line end or another control character";
    EXPECT_EQ(NameFlaw("a\nb"), strControl);
    EXPECT_EQ(NameFlaw("a\r"), strControl);
    EXPECT_EQ(NameFlaw(std::string_view("a\0b", 3)), strControl);
    EXPECT_EQ(NameFlaw("\xff"), "is not UTF-8 text");
}

TEST(Session, OffsetsAreFiniteAndInReach)
{
    EXPECT_EQ(LinkOffsetFlaw(-1e6), std::nullopt);
    EXPECT_NE(LinkOffsetFlaw(1000001), std::nullopt);
    EXPECT_NE(LinkOffsetFlaw(std::nan("")), std::nullopt);
    EXPECT_NE(LinkOffsetFlaw(std::numeric_limits<double>::infinity()), std::nullopt);
}

TEST(Session, RegionsLieInTheirFileAndOnTheTimeline)
{
    Region region = SoundRegion(1);
    EXPECT_EQ(RegionPlaceFlaw(region), std::nullopt);
    region.nEnd = region.nStart;
    EXPECT_EQ(RegionPlaceFlaw(region), "the region is empty: it ends at 10 and starts at 10");
    region.nEnd = 5;
    EXPECT_EQ(RegionPlaceFlaw(region), "the region is empty: it ends at 5 and starts at 10");
    region = SoundRegion(1);
    region.nStart = -1;
    EXPECT_EQ(RegionPlaceFlaw(region), "the region starts before its file, at -1");
    region = SoundRegion(1);
    region.nPosition = kLargestPosition + 1;
    EXPECT_EQ(RegionPlaceFlaw(region), "a position is beyond 2^53 samples");
    region.nPosition = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(RegionPlaceFlaw(region), "a position is beyond 2^53 samples");
    region = SoundRegion(1);
    region.nEnd = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(RegionPlaceFlaw(region), "a position is beyond 2^53 samples");
}

// What a stored session may get wrong.

class RestoredSession : public testing::Test
{
protected:
    RestoredSession()
    {
        m_documents[0].tracks = {{1, "Vox"}};
        m_documents[0].regions = {SoundRegion(1)};
        m_documents[0].regions[0].nId = 2;
    }

    std::string Flaw() const
    {
        return CSession::Restore(m_documents, m_dLinkOffset, m_nUpdateCount, m_nNextId)
            .Flaw()
            .value_or("sound");
    }

    Region& TheRegion() { return m_documents[0].regions[0]; }

    std::array<Document, 2> m_documents;
    double m_dLinkOffset = 0.0;
    std::int64_t m_nUpdateCount = 1;
    std::int64_t m_nNextId = 3;
};

TEST_F(RestoredSession, IsSoundAsItIs)
{
    EXPECT_EQ(Flaw(), "sound");
}

TEST_F(RestoredSession, IdsWereGivenOutOnce)
{
    TheRegion().nId = 1;
    EXPECT_THAT(Flaw(), HasSubstr("the id 1 stands twice"));
    TheRegion().nId = 3;
    EXPECT_THAT(Flaw(), HasSubstr("the id 3 was never given out"));
    TheRegion().nId = 0;
    EXPECT_THAT(Flaw(), HasSubstr("the id 0 was never given out"));
}

TEST_F(RestoredSession, RegionsHaveTheirTrackInTheSameDocument)
{
    m_documents[1].tracks = {{3, "Other"}};
    m_nNextId = 4;
    EXPECT_EQ(Flaw(), "sound");
    TheRegion().nTrackId = 3;
    EXPECT_EQ(Flaw(), "the script document: region 2: its track 3 is missing");
}

TEST_F(RestoredSession, PathsAreFullUtf8)
{
    TheRegion().strPath = "take.wav";
    EXPECT_THAT(Flaw(), HasSubstr("its file is no full path"));
    TheRegion().strPath = "";
    EXPECT_THAT(Flaw(), HasSubstr("its file is no full path"));
    TheRegion().strPath = "/\xff";
    EXPECT_THAT(Flaw(), HasSubstr("its path is not UTF-8 text"));
    TheRegion().strPath = std::string("/a\0b", 4);
    EXPECT_THAT(Flaw(), HasSubstr("its path is not UTF-8 text"));
}

TEST_F(RestoredSession, NumbersMakeSense)
{
    TheRegion().nSampleRate = 0;
    EXPECT_THAT(Flaw(), HasSubstr("its sample rate is 0"));
    TheRegion() = SoundRegion(1);
    TheRegion().nId = 2;
    TheRegion().nEnd = 0;
    EXPECT_THAT(Flaw(), HasSubstr("region 2: the region is empty"));
}

TEST_F(RestoredSession, ChannelsRise)
{
    TheRegion().channels = {0, 2};
    EXPECT_EQ(Flaw(), "sound");
    TheRegion().channels = {1, 1};
    EXPECT_THAT(Flaw(), HasSubstr("its channel numbers do not rise"));
    TheRegion().channels = {-1, 1};
    EXPECT_THAT(Flaw(), HasSubstr("a channel number is negative"));
}

TEST_F(RestoredSession, SelectionExists)
{
    m_documents[0].nSelectedRegionId = 2;
    EXPECT_EQ(Flaw(), "sound");
    m_documents[0].nSelectedRegionId = 1;
    EXPECT_THAT(Flaw(), HasSubstr("the selected region 1 is missing"));
}

TEST_F(RestoredSession, MarkerAreasAreStretchesOfTracks)
{
    m_nNextId = 4;
    m_documents[0].markerAreas = {{3, 1, -5, 5}};
    EXPECT_EQ(Flaw(), "sound");
    m_documents[0].markerAreas = {{3, 2, -5, 5}};
    EXPECT_EQ(Flaw(), "the script document: marker area 3: its track 2 is missing");
    m_documents[0].markerAreas = {{3, 1, 5, 5}};
    EXPECT_THAT(Flaw(), HasSubstr("the stretch is empty: it ends at 5 and starts at 5"));
    m_documents[0].markerAreas = {{3, 1, -kLargestPosition - 1, 5}};
    EXPECT_THAT(Flaw(), HasSubstr("a position is beyond 2^53 samples"));
    m_documents[0].markerAreas = {{2, 1, 0, 5}};
    EXPECT_THAT(Flaw(), HasSubstr("the id 2 stands twice"));
}

TEST_F(RestoredSession, ProcessesNameWhatExists)
{
    m_nNextId = 4;
    const Process sound{3, "GDX", "PT", {{1, 1, 0, 5}}, {1}, 2};
    const auto flawOf = [this](const Process& process)
    {
        m_documents[0].processes = {process};
        return Flaw();
    };
    EXPECT_EQ(flawOf(sound), "sound");
    Process process = sound;
    process.nRegionId = 1;
    EXPECT_EQ(flawOf(process), "the script document: process 3: its region 1 is missing");
    process = sound;
    process.inputs[0].nTrackId = 9;
    EXPECT_THAT(flawOf(process), HasSubstr("its track 9 is missing"));
    process = sound;
    process.inputs[0].nEnd = 0;
    EXPECT_THAT(flawOf(process), HasSubstr("the stretch is empty"));
    process = sound;
    process.outputTrackIds = {8};
    EXPECT_THAT(flawOf(process), HasSubstr("its track 8 is missing"));
    process = sound;
    process.strKind = "";
    EXPECT_THAT(flawOf(process), HasSubstr("one of its names is empty"));
    process = sound;
    process.strHost = "a\nb";
    EXPECT_THAT(flawOf(process), HasSubstr("one of its names contains a line end"));
}

TEST_F(RestoredSession, NamesOffsetsAndCountsAreInRange)
{
    m_documents[0].tracks[0].strName = "a\nb";
    EXPECT_THAT(Flaw(), HasSubstr("the name of track 1 contains a line end"));
    m_documents[0].tracks[0].strName = "Vox";
    m_documents[0].dDisplayPosition = std::nan("");
    EXPECT_THAT(Flaw(), HasSubstr("the display position is no number"));
    m_documents[0].dDisplayPosition = 0;
    m_nUpdateCount = -1;
    EXPECT_EQ(Flaw(), "the update count is -1");
    m_nUpdateCount = 0;
    m_nNextId = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(Flaw(), "the next id is 9223372036854775807");
    m_nNextId = 3;
    m_dLinkOffset = 1e7;
    EXPECT_EQ(Flaw(), "the link offset is not within a million seconds");
}

} // namespace
} // namespace Tarvane::Server
