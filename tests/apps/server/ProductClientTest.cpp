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

TEST_F(ProductClient, ARefusalReachesTheUser)
{
    const Child server = Start({"--track", "Vox"});
    EXPECT_FALSE(Deliver(0, 0, 101));
    EXPECT_THAT(m_script.m_strLastError, testing::HasSubstr("is too short: it has 100 frames"));
}

TEST_F(ProductClient, IsToldWhenNoServerRuns)
{
    EXPECT_FALSE(Deliver(0, 0, 100));
    EXPECT_EQ(m_script.m_strLastError, "Error - Tarvane not running.");
}

} // namespace
} // namespace TarvaneTest
