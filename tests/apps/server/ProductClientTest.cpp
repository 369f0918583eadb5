// The view's own script link against a real server.
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "tests/apps/server/ServerFixture.h"
#include "utils/FileIO/FileName.h"

namespace TarvaneTest
{
namespace
{

class ProductClient : public ServerFixture
{
protected:
    // One capture as the view sends it; true when it was no duplicate and the event came through.
    bool Deliver(double dPosition, double dStart, double dEnd)
    {
        CFileName file(m_strTake.c_str());
        if (m_script.CheckDuplicateRegion(m_fAudioSuite, 0, &file, dPosition, dStart, dEnd))
            return false;
        const double dAdded = m_script.GetLinkSMPTEOffset(m_fAudioSuite) * 48000.0 + dPosition;
        return m_script.SendFile(m_fAudioSuite, 0, &file, dAdded, dStart, dEnd, 0) == 0 &&
               m_script.m_strLastError.empty();
    }

    CTarvaneScript m_script;
    bool m_fAudioSuite = false;
};

TEST_F(ProductClient, ListsTheTracksOfBothDocuments)
{
    const Child server = Start({"--track", "Vox", "--track", "Lead \u00e9"});
    for (bool fAudioSuite : {false, true})
    {
        std::vector<std::string> tracks;
        EXPECT_TRUE(m_script.ListTracks(fAudioSuite, &tracks));
        EXPECT_EQ(tracks, (std::vector<std::string>{"Vox", "Lead \u00e9"}));
    }
}

TEST_F(ProductClient, TheLongestTrackNameIsOneItem)
{
    const Child server = Start({"--track", std::string(999, 'x'), "--track", "b"});
    std::vector<std::string> tracks;
    EXPECT_TRUE(m_script.ListTracks(false, &tracks));
    EXPECT_EQ(tracks, (std::vector<std::string>{std::string(999, 'x'), "b"}));
}

TEST_F(ProductClient, IsToldWhenThereIsNothingToList)
{
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--no-document", "--track", "Vox"}, {}})
    {
        const Child server = Start(options);
        std::vector<std::string> tracks;
        EXPECT_FALSE(m_script.ListTracks(false, &tracks));
        EXPECT_EQ(m_script.m_strLastError, "No Tarvane session is selected");
    }
}

TEST_F(ProductClient, ACaptureIsDeliveredOnceInEachDocument)
{
    const Child server = Start({"--track", "Vox", "--link-offset", "0.0333666"});
    for (bool fAudioSuite : {false, true})
    {
        m_fAudioSuite = fAudioSuite;
        m_script.m_fUserError = false;
        EXPECT_TRUE(Deliver(1234.9, 10.5, 90.0)) << m_script.m_strLastError;
        EXPECT_FALSE(Deliver(1234.9, 10.5, 90.0));
        EXPECT_EQ(m_script.m_strLastError, "Same audio captured previously.");
        EXPECT_EQ(m_script.m_strAdvice, "This capture has been cancelled");
    }
}

TEST_F(ProductClient, TheUpdateCountFollowsTheChanges)
{
    const Child server = Start({"--track", "Vox"});
    EXPECT_EQ(m_script.GetUpdateCount(), 0);
    EXPECT_TRUE(Deliver(0, 0, 100));
    // The region, its selection; the display stays where it is.
    EXPECT_EQ(m_script.GetUpdateCount(), 2);
    EXPECT_TRUE(Deliver(1000, 0, 100));
    EXPECT_EQ(m_script.GetUpdateCount(), 5);
}

TEST_F(ProductClient, ARefusalIsNotDelivered)
{
    const Child server = Start({"--track", "Vox"});
    EXPECT_FALSE(Deliver(0, 0, 101));
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1701");
    EXPECT_EQ(m_script.GetUpdateCount(), 0);
}

TEST_F(ProductClient, ADeliveredCaptureCanBeExportedAndRendered)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox"});
    EXPECT_TRUE(Deliver(1000, 10, 60));
    CFileName file;
    ASSERT_TRUE(m_script.ExportSelectedRegion(false, 48000, &file)) << m_script.m_strLastError;
    const std::string strPath = file.GetFullPathString();
    const std::vector<double> samples = Noise(100);
    EXPECT_EQ(ReadSamples(strPath),
              std::vector<double>(samples.begin() + 10, samples.begin() + 60));

    long long nStart = 0;
    long long nEnd = 0;
    EXPECT_TRUE(m_script.RenderSelectedRegion(false, 44100, &nStart, &nEnd));
    EXPECT_EQ(nStart, 1010);
    EXPECT_EQ(nEnd, 1060);
    EXPECT_EQ(m_script.m_strLastError,
              "Warning - Session Sample Rate is: 44100 Tarvane Sample rate is: 48000");
}

TEST_F(ProductClient, IsToldWhatIsMissingForAnExport)
{
    const Child server = Start({"--track", "Vox"});
    CFileName file;
    EXPECT_FALSE(m_script.ExportSelectedRegion(false, -1, &file));
    EXPECT_EQ(m_script.m_strLastError, "No Tarvane region is selected");
    EXPECT_FALSE(m_script.ExportSelectedRegion(true, -1, &file));
    EXPECT_EQ(m_script.m_strLastError, "No Tarvane Process exists");
    long long nPosition = 0;
    EXPECT_FALSE(m_script.RenderSelectedRegion(false, -1, &nPosition, &nPosition));
    EXPECT_EQ(m_script.m_strLastError, "No Tarvane region is selected");
    EXPECT_FALSE(m_script.RenderSelectedRegion(true, -1, &nPosition, &nPosition));
    EXPECT_EQ(m_script.m_strLastError, "No Tarvane Process exists");
}

TEST_F(ProductClient, WhatAProcessMadeCanBeRendered)
{
    m_fAudioSuite = true;
    const Child server =
        Start({"--session", m_strSession, "--track", "Guide", "--track", "Dub", "--track", "Out"});
    CFileName file(m_strTake.c_str());
    ASSERT_EQ(m_script.SendFile(true, 1, &file, 5000, 0, 100, 0), 0);
    EXPECT_TRUE(m_script.CreateGDX(true, 0, 2000, 2100, 1, 5000, 5100, 2));
    EXPECT_EQ(m_script.m_strLastError, "");
    long long nStart = 0;
    long long nEnd = 0;
    EXPECT_TRUE(m_script.RenderSelectedRegion(true, 48000, &nStart, &nEnd));
    EXPECT_EQ(nStart, 2000);
    EXPECT_EQ(nEnd, 2100);

    EXPECT_TRUE(m_script.CreateSpreader(true, 1, 5020, 5060, 0, 0));
    CFileName exported;
    ASSERT_TRUE(m_script.ExportSelectedRegion(true, 48000, &exported)) << m_script.m_strLastError;
    const std::string strPath = exported.GetFullPathString();
    EXPECT_EQ(ReadSamples(strPath).size(), 40u);
}

TEST_F(ProductClient, AClearedTrackIsEmpty)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox", "--track", "Out"});
    EXPECT_TRUE(Deliver(0, 0, 100));
    EXPECT_TRUE(Deliver(500, 0, 100));
    EXPECT_TRUE(m_script.CreateSpreader(false, 0, 0, 100, 0, 1));
    m_script.ClearTrack(false, 0);
    EXPECT_EQ(m_script.m_strLastError, "");
    const CScriptAnswer answer =
        SendScript("SelectScriptDocument() for n = 0, 1 do local id = GetTrackID(n) "
                   "print(GetRegionCount(id), CountMarkerAreas(id)) end");
    EXPECT_EQ(answer.result, "0\t0\n1\t0\n");
}

TEST_F(ProductClient, IsToldWhenNoServerRuns)
{
    EXPECT_FALSE(Deliver(0, 0, 100));
    EXPECT_EQ(m_script.m_strLastError, "Error - Tarvane not running.");
}

} // namespace
} // namespace TarvaneTest
