// What each command of the view's script link leaves in the server's session file, and what it says
// where something is missing.
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "apps/server/database/SessionStore.h"
#include "tests/apps/server/ServerFixture.h"
#include "utils/FileIO/FileName.h"

#include <cstdlib>

namespace TarvaneTest
{
namespace
{

using namespace Tarvane::Server;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kNoSession[] = "No Tarvane session is selected";
constexpr char kNoRegion[] = "No Tarvane region is selected";
constexpr char kNoProcess[] = "No Tarvane Process exists";
constexpr bool kBothDocuments[] = {false, true};

// Tracks 1, 2, 3 of the script document and 4, 5, 6 of the other.
class ProductSession : public ServerFixture
{
protected:
    ~ProductSession() override { unsetenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS"); }

    Child StartWithTracks(std::vector<std::string> more = {}) const
    {
        more.insert(more.begin(), {"--session", m_strSession, "--track", "Guide", "--track", "Dub",
                                   "--track", "Out", "--link-offset", "1.5"});
        return Start(more);
    }

    Document Stored(bool fAudioSuite) const
    {
        return CSessionStore(m_strSession)
            .Load()
            ->GetDocument(fAudioSuite ? DocumentKind::AudioSuite : DocumentKind::Script);
    }
    std::int64_t Updates() const { return CSessionStore(m_strSession).Load()->UpdateCount(); }
    static std::int64_t TrackId(bool fAudioSuite, int nTrack)
    {
        return nTrack + (fAudioSuite ? 4 : 1);
    }

    // Frames 10 to 60 of the take on a track, from 5010 to 5060.
    void SendTake(bool fAudioSuite, int nTrack)
    {
        CFileName file(m_strTake.c_str());
        EXPECT_EQ(m_script.SendFile(fAudioSuite, nTrack, &file, 5000, 10, 60, 0), 0);
        EXPECT_EQ(m_script.m_strLastError, "");
    }

    bool Export(bool fAudioSuite)
    {
        return m_script.ExportSelectedRegion(fAudioSuite, -1, &m_exported);
    }
    bool Render(bool fAudioSuite, long nRate = -1)
    {
        return m_script.RenderSelectedRegion(fAudioSuite, nRate, &m_nStart, &m_nEnd);
    }

    CTarvaneScript m_script;
    CFileName m_exported{"/old/kept.wav"};
    long long m_nStart = -7;
    long long m_nEnd = -8;
};

TEST_F(ProductSession, QuestionsChangeNothing)
{
    const Child server = StartWithTracks();
    const std::int64_t nBefore = Updates();
    CFileName file(m_strTake.c_str());
    for (const bool fAudioSuite : kBothDocuments)
    {
        std::vector<std::string> tracks;
        EXPECT_TRUE(m_script.ListTracks(fAudioSuite, &tracks));
        EXPECT_THAT(tracks, ElementsAre("Guide", "Dub", "Out"));
        EXPECT_EQ(m_script.ListTracksWithTimeout(fAudioSuite, &tracks, 600), 0);
        EXPECT_THAT(tracks, SizeIs(6));
        EXPECT_FALSE(m_script.CheckDuplicateRegion(fAudioSuite, 1, &file, 0, 0, 100));
        EXPECT_EQ(m_script.GetLinkSMPTEOffset(fAudioSuite), 1.5);
    }
    EXPECT_EQ(m_script.GetUpdateCount(), nBefore);
    EXPECT_EQ(Updates(), nBefore);
    EXPECT_THAT(Stored(false).regions, IsEmpty());
    EXPECT_THAT(Stored(true).regions, IsEmpty());
}

TEST_F(ProductSession, ASentFileIsTheSelectedRegionAndWhereTheDisplayIs)
{
    const Child server = StartWithTracks();
    for (const bool fAudioSuite : kBothDocuments)
    {
        SendTake(fAudioSuite, 1);
        const Document document = Stored(fAudioSuite);
        ASSERT_THAT(document.regions, SizeIs(1));
        const Region& region = document.regions[0];
        EXPECT_EQ(region.nTrackId, TrackId(fAudioSuite, 1));
        EXPECT_EQ(region.strPath, m_strTake);
        EXPECT_EQ(region.nPosition, 5000);
        EXPECT_EQ(region.nStart, 10);
        EXPECT_EQ(region.nEnd, 60);
        EXPECT_FALSE(region.fMuted);
        EXPECT_THAT(region.channels, IsEmpty());
        EXPECT_EQ(document.nSelectedRegionId, region.nId);
        EXPECT_EQ(document.dDisplayPosition, 5010);
    }
}

TEST_F(ProductSession, AnIndexMaskChoosesChannels)
{
    const Child server = StartWithTracks();
    const std::string strSound = MakeSound(m_folder / "three.wav", Noise(300), 3);
    CFileName file(strSound.c_str());
    EXPECT_EQ(m_script.SendFile(false, 0, &file, 0, 0, 100, 5), 0);
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_THAT(Stored(false).regions.at(0).channels, ElementsAre(0, 2));
}

TEST_F(ProductSession, AnExportLeavesTheSessionAsItIs)
{
    const Child server = StartWithTracks();
    SendTake(false, 1);
    const std::int64_t nBefore = Updates();
    EXPECT_TRUE(Export(false)) << m_script.m_strLastError;
    EXPECT_EQ(Updates(), nBefore);
    EXPECT_EQ(Stored(false).regions.at(0).strPath, m_strTake);
    EXPECT_THAT(ReadSamples(std::string(m_exported.GetFullPathString())), SizeIs(50));
}

TEST_F(ProductSession, ARenderedRegionPlaysItsOwnFileWhereItWas)
{
    const Child server = StartWithTracks();
    SendTake(false, 1);
    EXPECT_TRUE(Render(false)) << m_script.m_strLastError;
    EXPECT_EQ(m_nStart, 5010);
    EXPECT_EQ(m_nEnd, 5060);
    const Region region = Stored(false).regions.at(0);
    EXPECT_NE(region.strPath, m_strTake);
    EXPECT_EQ(region.TimelineStart(), 5010);
    EXPECT_EQ(region.Length(), 50);
    const std::vector<double> samples = Noise(100);
    EXPECT_EQ(ReadSamples(region.strPath),
              std::vector<double>(samples.begin() + 10, samples.begin() + 60));
}

TEST_F(ProductSession, AnAlignmentIsRecordedWithItsInputsAndWhatItMade)
{
    const Child server = StartWithTracks();
    for (const bool fAudioSuite : kBothDocuments)
    {
        SendTake(fAudioSuite, 1);
        EXPECT_TRUE(m_script.CreateGDX(fAudioSuite, 0, 1234567, 1234700, 1, 5010, 5060, 2));
        EXPECT_EQ(m_script.m_strLastError, "");
        const Document document = Stored(fAudioSuite);
        ASSERT_THAT(document.processes, SizeIs(1));
        const Process& process = document.processes[0];
        EXPECT_EQ(process.strKind, "GDX");
        EXPECT_EQ(process.strHost, "PT");
        ASSERT_THAT(process.inputs, SizeIs(2));
        EXPECT_EQ(process.inputs[0].nIOType, 1);
        EXPECT_EQ(process.inputs[0].nTrackId, TrackId(fAudioSuite, 0));
        EXPECT_EQ(process.inputs[0].nStart, 1234567);
        EXPECT_EQ(process.inputs[0].nEnd, 1234700);
        EXPECT_EQ(process.inputs[1].nIOType, 2);
        EXPECT_EQ(process.inputs[1].nTrackId, TrackId(fAudioSuite, 1));
        EXPECT_EQ(process.inputs[1].nStart, 5010);
        EXPECT_EQ(process.inputs[1].nEnd, 5060);
        EXPECT_THAT(process.outputTrackIds, ElementsAre(TrackId(fAudioSuite, 2)));
        const Region* pMade = document.FindRegion(process.nRegionId);
        ASSERT_NE(pMade, nullptr);
        EXPECT_EQ(pMade->nTrackId, TrackId(fAudioSuite, 2));
        EXPECT_EQ(pMade->TimelineStart(), 1234567);
        EXPECT_EQ(pMade->Length(), 50);
        EXPECT_EQ(document.dDisplayPosition, 1234567);
    }
}

TEST_F(ProductSession, ASpreadIsRecordedWithItsInputAndWhatItMade)
{
    const Child server = StartWithTracks();
    for (const bool fAudioSuite : kBothDocuments)
    {
        SendTake(fAudioSuite, 1);
        EXPECT_TRUE(m_script.CreateSpreader(fAudioSuite, 1, 5020, 5050, 99, 2));
        EXPECT_EQ(m_script.m_strLastError, "");
        const Document document = Stored(fAudioSuite);
        ASSERT_THAT(document.processes, SizeIs(1));
        const Process& process = document.processes[0];
        EXPECT_EQ(process.strKind, "Spreader");
        EXPECT_EQ(process.strHost, "PT");
        ASSERT_THAT(process.inputs, SizeIs(1));
        EXPECT_EQ(process.inputs[0].nIOType, 1);
        EXPECT_EQ(process.inputs[0].nTrackId, TrackId(fAudioSuite, 1));
        EXPECT_EQ(process.inputs[0].nStart, 5020);
        EXPECT_EQ(process.inputs[0].nEnd, 5050);
        EXPECT_THAT(process.outputTrackIds, ElementsAre(TrackId(fAudioSuite, 2)));
        const Region* pMade = document.FindRegion(process.nRegionId);
        ASSERT_NE(pMade, nullptr);
        EXPECT_EQ(pMade->nTrackId, TrackId(fAudioSuite, 2));
        EXPECT_EQ(pMade->TimelineStart(), 5020);
        EXPECT_EQ(pMade->Length(), 30);
        EXPECT_EQ(document.dDisplayPosition, 5020);
    }
}

TEST_F(ProductSession, TheLastProcessIsExportedAndRendered)
{
    const Child server = StartWithTracks();
    SendTake(true, 1);
    m_script.CreateSpreader(true, 1, 5020, 5050, 0, 2);
    SendTake(true, 0);
    EXPECT_TRUE(Export(true)) << m_script.m_strLastError;
    EXPECT_THAT(ReadSamples(std::string(m_exported.GetFullPathString())), SizeIs(30));
    EXPECT_TRUE(Render(true)) << m_script.m_strLastError;
    EXPECT_EQ(m_nStart, 5020);
    EXPECT_EQ(m_nEnd, 5050);
    const Document document = Stored(true);
    const Region* pMade = document.FindRegion(document.processes.at(0).nRegionId);
    ASSERT_NE(pMade, nullptr);
    EXPECT_EQ(document.nSelectedRegionId, pMade->nId);
    EXPECT_NE(pMade->strPath, m_strTake);
}

TEST_F(ProductSession, AClearedTrackHasNoMarkersAndNoRegions)
{
    const Child server = StartWithTracks();
    for (const bool fAudioSuite : kBothDocuments)
    {
        SendTake(fAudioSuite, 1);
        SendTake(fAudioSuite, 1);
        SendTake(fAudioSuite, 0);
        m_script.CreateGDX(fAudioSuite, 1, 0, 10, 1, 5010, 5060, 2);
        ASSERT_THAT(Stored(fAudioSuite).markerAreas, SizeIs(2));
        m_script.ClearTrack(fAudioSuite, 1);
        EXPECT_EQ(m_script.m_strLastError, "");
        const Document document = Stored(fAudioSuite);
        EXPECT_THAT(document.markerAreas, IsEmpty());
        ASSERT_THAT(document.regions, SizeIs(2));
        EXPECT_EQ(document.regions[0].nTrackId, TrackId(fAudioSuite, 0));
        EXPECT_EQ(document.regions[1].nTrackId, TrackId(fAudioSuite, 2));
    }
}

TEST_F(ProductSession, WithoutADocumentNothingIsDoneAndTheWordsSaySo)
{
    const Child server = StartWithTracks({"--no-document"});
    const std::int64_t nBefore = Updates();
    CFileName file(m_strTake.c_str());
    for (const bool fAudioSuite : kBothDocuments)
    {
        std::vector<std::string> tracks;
        EXPECT_FALSE(m_script.ListTracks(fAudioSuite, &tracks));
        EXPECT_EQ(m_script.m_strLastError, kNoSession);
        EXPECT_EQ(m_script.ListTracksWithTimeout(fAudioSuite, &tracks, 600), 0);
        EXPECT_EQ(m_script.m_strLastError, kNoSession);
        EXPECT_FALSE(Export(fAudioSuite));
        EXPECT_EQ(m_script.m_strLastError, kNoSession);
        EXPECT_FALSE(Render(fAudioSuite, 44100));
        EXPECT_EQ(m_script.m_strLastError, kNoSession);
        EXPECT_EQ(m_script.SendFile(fAudioSuite, 0, &file, 0, 0, 100, 0), errAEDescNotFound);
        EXPECT_FALSE(m_script.CreateGDX(fAudioSuite, 0, 0, 10, 1, 0, 10, 2));
        EXPECT_FALSE(m_script.CreateSpreader(fAudioSuite, 0, 0, 10, 0, 2));
        m_script.ClearTrack(fAudioSuite, 0);
        EXPECT_FALSE(m_script.CheckDuplicateRegion(fAudioSuite, 0, &file, 0, 0, 100));
        EXPECT_EQ(m_script.GetLinkSMPTEOffset(fAudioSuite), 0.0);
        EXPECT_EQ(m_script.m_strLastError, "");
    }
    EXPECT_EQ(Updates(), nBefore);
    EXPECT_EQ(m_exported.GetFullPathString(), "/old/kept.wav");
    EXPECT_EQ(m_nStart, -7);
    EXPECT_EQ(m_nEnd, -8);
}

TEST_F(ProductSession, AProcessThatMadeNothingLeavesNoRegionToExport)
{
    const Child server = StartWithTracks();
    m_script.CreateSpreader(true, 0, 0, 10, 0, 2);
    EXPECT_EQ(Stored(true).processes.at(0).nRegionId, kNullId);
    EXPECT_FALSE(Export(true));
    EXPECT_EQ(m_script.m_strLastError, kNoRegion);
    EXPECT_FALSE(Render(true));
    EXPECT_EQ(m_script.m_strLastError, kNoRegion);
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(ProductSession, WhatIsMissingIsToldInEachDocument)
{
    const Child server = StartWithTracks();
    EXPECT_FALSE(Export(false));
    EXPECT_EQ(m_script.m_strLastError, kNoRegion);
    EXPECT_FALSE(Render(false));
    EXPECT_EQ(m_script.m_strLastError, kNoRegion);
    SendTake(true, 0); // a selected region is no process
    EXPECT_FALSE(Export(true));
    EXPECT_EQ(m_script.m_strLastError, kNoProcess);
    EXPECT_FALSE(Render(true));
    EXPECT_EQ(m_script.m_strLastError, kNoProcess);
}

TEST_F(ProductSession, OnlyAnotherRateIsAWarning)
{
    const Child server = StartWithTracks();
    SendTake(false, 0);
    for (const long nRate : {48000L, -1L})
    {
        EXPECT_TRUE(Render(false, nRate));
        EXPECT_EQ(m_script.m_strLastError, "");
        EXPECT_EQ(m_script.m_strSelectedRegion1, "Start: 5010 End: 5060 Sample Rate: 48000");
    }
    EXPECT_TRUE(Render(false, 96000));
    EXPECT_EQ(m_script.m_strLastError,
              "Warning - Session Sample Rate is: 96000 Tarvane Sample rate is: 48000");
}

// Names that together are more than the server prints at once.
TEST_F(ProductSession, AnErrorInPlaceOfAListIsToldAsNoSession)
{
    std::vector<std::string> names;
    for (int n = 0; n < 4300; ++n)
        names.push_back(std::to_string(n) + std::string(990, 'x'));
    CSessionStore(m_strSession).Save(CSession(names, 0));
    const Child server = Start({"--session", m_strSession});
    EXPECT_THAT(SendScript("SelectScriptDocument() for n = 0, GetTrackCount() - 1 do "
                           "print(GetTrackName(GetTrackID(n))) end")
                    .error.value_or(""),
                testing::HasSubstr("prints more than"));
    std::vector<std::string> tracks;
    EXPECT_FALSE(m_script.ListTracks(false, &tracks));
    EXPECT_EQ(m_script.m_strLastError, kNoSession);
    EXPECT_THAT(tracks, IsEmpty());
}

TEST_F(ProductSession, AChangeThatTheServerRefusesHasFailed)
{
    const Child server = StartWithTracks();
    constexpr const char* kNoResult = "AEError ID:-1701";
    EXPECT_FALSE(m_script.CreateGDX(false, 0, 0, 10, 1, 0, 10, 99));
    EXPECT_EQ(m_script.m_strLastError, kNoResult);
    EXPECT_FALSE(m_script.CreateSpreader(false, 0, 10, 10, 0, 1));
    EXPECT_EQ(m_script.m_strLastError, kNoResult);
    m_script.ClearTrack(false, 99);
    EXPECT_EQ(m_script.m_strLastError, kNoResult);
    EXPECT_THAT(Stored(false).processes, IsEmpty());
}

TEST_F(ProductSession, AServerThatIsNotThereFailsEveryCommand)
{
    const auto expectNotRunning = [this](bool fSucceeded)
    {
        EXPECT_FALSE(fSucceeded);
        EXPECT_EQ(m_script.m_strLastError, "Error - Tarvane not running.");
        EXPECT_EQ(m_script.m_strAdvice, "Locate and launch Tarvane.");
        m_script.m_strLastError.clear();
    };
    std::vector<std::string> tracks;
    for (const bool fAudioSuite : kBothDocuments)
    {
        expectNotRunning(m_script.ListTracks(fAudioSuite, &tracks));
        expectNotRunning(Export(fAudioSuite));
        expectNotRunning(Render(fAudioSuite));
        expectNotRunning(m_script.CreateGDX(fAudioSuite, 0, 0, 10, 1, 0, 10, 2));
        expectNotRunning(m_script.CreateSpreader(fAudioSuite, 0, 0, 10, 0, 2));
        m_script.ClearTrack(fAudioSuite, 0);
        expectNotRunning(false);
    }
    EXPECT_EQ(m_script.ListTracksWithTimeout(false, &tracks, 60), -600);
}

TEST_F(ProductSession, AServerThatHangsIsToldByTheTimeoutsNumber)
{
    setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", "20", 1);
    const Child server = StartWithTracks({"--misbehave", "hang@1"});
    const auto expectTimeout = [this](bool fSucceeded)
    {
        EXPECT_FALSE(fSucceeded);
        EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
        EXPECT_EQ(m_script.m_strAdvice, "");
        m_script.m_strLastError.clear();
    };
    std::vector<std::string> tracks;
    expectTimeout(m_script.ListTracks(false, &tracks));
    expectTimeout(Export(false));
    expectTimeout(Render(false));
    expectTimeout(m_script.CreateGDX(false, 0, 0, 10, 1, 0, 10, 2));
    expectTimeout(m_script.CreateSpreader(false, 0, 0, 10, 0, 2));
    m_script.ClearTrack(false, 0);
    expectTimeout(false);
    EXPECT_EQ(m_script.ListTracksWithTimeout(false, &tracks, 5), -1712);
}

TEST_F(ProductSession, AServerThatEndsInTheMiddleIsToldByItsNumber)
{
    for (const char* szFault : {"exit-before-effect@1", "exit-after-effect@1"})
    {
        const Child server = StartWithTracks({"--misbehave", szFault});
        EXPECT_FALSE(m_script.CreateSpreader(false, 0, 0, 10, 0, 2));
        EXPECT_EQ(m_script.m_strLastError, "AEError ID:-609");
        EXPECT_EQ(server->WaitForEnd(kAnyTime), 70);
    }
    EXPECT_THAT(Stored(false).processes, SizeIs(1)) << "the second one's";
}

} // namespace
} // namespace TarvaneTest
