#include "tests/TarvaneLinkShared/ScriptFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
using Tracks = std::vector<std::string>;

// Written out once more: a script that changes by a byte is another wire format.
constexpr char szExpected[] =
    "if(SelectScriptDocument()) then\n\tnTracks = "
    "GetTrackCount()\n\tprint(nTracks+1)\n\tprint(1)\n\tfor nTrack = 0,nTracks-1 do\n\t\tidTrack = "
    "GetTrackID(nTrack)\n\t\tprint(GetTrackName(idTrack))\n\tend\nelse\n\tprint(1)\n\tprint(0)"
    "\nend\n";
constexpr char szExpectedAudioSuite[] =
    "if(SelectAudioSuiteDocument()) then\n\tnTracks = "
    "GetTrackCount()\n\tprint(nTracks+1)\n\tprint(1)\n\tfor nTrack = 0,nTracks-1 do\n\t\tidTrack = "
    "GetTrackID(nTrack)\n\t\tprint(GetTrackName(idTrack))\n\tend\nelse\n\tprint(1)\n\tprint(0)"
    "\nend\n";

class TrackListing : public ScriptFixture
{
protected:
    Tracks m_tracks;
};
} // namespace

TEST_F(TrackListing, SendsTheScriptOfTheScriptDocument)
{
    m_script.ListTracks(false, &m_tracks);
    EXPECT_EQ(OnlyScript(), szExpected);
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(TrackListing, SendsTheScriptOfTheAudioSuiteDocument)
{
    m_script.ListTracks(true, &m_tracks);
    EXPECT_EQ(OnlyScript(), szExpectedAudioSuite);
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(TrackListing, ListsTheNamesBehindTheStatus)
{
    m_events.Print("4\n1\nVox\nB\xC3\xA4ss\nDrums 2\n");
    EXPECT_TRUE(m_script.ListTracks(false, &m_tracks));
    EXPECT_THAT(m_tracks, ElementsAre("Vox", "B\xC3\xA4ss", "Drums 2"));
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(TrackListing, DoesNotLookAtTheStatus)
{
    m_events.Print("2\n0\nVox\n");
    EXPECT_TRUE(m_script.ListTracks(false, &m_tracks));
    EXPECT_THAT(m_tracks, ElementsAre("Vox"));
}

TEST_F(TrackListing, AppendsToWhatTheCallerHolds)
{
    m_tracks = {"before"};
    m_events.Print("2\n1\nVox\n");
    EXPECT_TRUE(m_script.ListTracks(false, &m_tracks));
    EXPECT_THAT(m_tracks, ElementsAre("before", "Vox"));
}

TEST_F(TrackListing, NoDocumentAndNoTracksAreToldInTheSameWords)
{
    for (const char* szPrinted : {"1\n0\n", "1\n1\n", "0\n", ""})
    {
        SCOPED_TRACE(szPrinted);
        m_script.m_fUserError = true; // keeps the advice, which is left alone
        m_script.m_strAdvice = "advice";
        m_script.m_strLastError = "old";
        m_events.Print(szPrinted);
        EXPECT_FALSE(m_script.ListTracks(false, &m_tracks));
        EXPECT_THAT(m_tracks, IsEmpty());
        EXPECT_EQ(m_script.m_strLastError, "No Tarvane session is selected");
        EXPECT_EQ(m_script.m_strAdvice, "advice");
    }
}

TEST_F(TrackListing, AnErrorTextWithoutAResultIsOverwritten)
{
    m_events.PrintWithError("", "attempt to call a nil value");
    EXPECT_FALSE(m_script.ListTracks(false, &m_tracks));
    EXPECT_EQ(m_script.m_strLastError, "No Tarvane session is selected");
}

TEST_F(TrackListing, AnErrorTextBesideTracksStays)
{
    m_events.PrintWithError("2\n1\nVox\n", "words");
    EXPECT_TRUE(m_script.ListTracks(false, &m_tracks));
    EXPECT_EQ(m_script.m_strLastError, "words");
}

TEST_F(TrackListing, AFailedCommandListsNothing)
{
    m_events.FailSend(-600);
    EXPECT_FALSE(m_script.ListTracks(false, &m_tracks));
    EXPECT_THAT(m_tracks, IsEmpty());
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);

    m_events.FailSend(-1708);
    EXPECT_FALSE(m_script.ListTracks(false, &m_tracks));
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1708");
}

TEST_F(TrackListing, WithATimeoutSendsTheSameScriptsAndThoseTicks)
{
    m_script.ListTracksWithTimeout(false, &m_tracks, 30);
    m_script.ListTracksWithTimeout(true, &m_tracks, 600);
    EXPECT_THAT(m_events.Scripts(), ElementsAre(szExpected, szExpectedAudioSuite));
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, 30);
    EXPECT_EQ(m_events.Commands()[1].m_nTimeoutTicks, 600);
}

TEST_F(TrackListing, WithATimeoutAnswersTheStatus)
{
    m_events.Print("3\n1\nVox\nBass\n");
    EXPECT_EQ(m_script.ListTracksWithTimeout(false, &m_tracks, 30), 0);
    EXPECT_THAT(m_tracks, ElementsAre("Vox", "Bass"));

    m_events.FailSend(-1712);
    EXPECT_EQ(m_script.ListTracksWithTimeout(false, &m_tracks, 30), -1712);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
}

TEST_F(TrackListing, WithATimeoutAnswersZeroThoughNothingWasListed)
{
    m_events.Print("1\n0\n");
    EXPECT_EQ(m_script.ListTracksWithTimeout(false, &m_tracks, 30), 0);
    EXPECT_THAT(m_tracks, IsEmpty());
    EXPECT_EQ(m_script.m_strLastError, "No Tarvane session is selected");
}

TEST_F(TrackListing, ACountThatDoesNotMatchStopsTheProcess)
{
    EXPECT_DEATH(
        {
            m_events.Print("3\n1\nVox\n");
            m_script.ListTracks(false, &m_tracks);
        },
        "function SplitResult");
}
