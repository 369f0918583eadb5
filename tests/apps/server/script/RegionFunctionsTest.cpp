#include "tests/apps/server/CommandFixture.h"

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

class RegionFunctions : public TarvaneTest::CommandFixture
{
protected:
    // A call with the take and the given numbers, on the first track.
    std::string Add(const std::string& strNumbers) const
    {
        return "AddAudioRegion(GetTrackID(0), \"" + m_strTake + "\", true, false, " + strNumbers +
               ")\n";
    }

    std::string Check(const std::string& strNumbers) const
    {
        return "print(CheckForDuplicateRegion(GetTrackID(0), \"" + m_strTake + "\"," + strNumbers +
               "))\n";
    }
};

TEST_F(RegionFunctions, AddKeepsWhatItIsGiven)
{
    EXPECT_EQ(SelectedResult("print(" + Add("-500,10,60") + ")"), "5\n");
    ASSERT_EQ(ScriptDocument().regions.size(), 1u);
    const Region region = ScriptDocument().regions[0];
    EXPECT_EQ(region.nId, 5);
    EXPECT_EQ(region.nTrackId, 1);
    EXPECT_EQ(region.strPath, m_strTake);
    EXPECT_EQ(region.nPosition, -500);
    EXPECT_EQ(region.nStart, 10);
    EXPECT_EQ(region.nEnd, 60);
    EXPECT_EQ(region.nSampleRate, 48000);
    EXPECT_TRUE(region.channels.empty());
    EXPECT_FALSE(region.fMuted);
    EXPECT_EQ(ScriptDocument().nSelectedRegionId, 5);
}

TEST_F(RegionFunctions, AddGoesToTheSelectedDocument)
{
    Result("SelectAudioSuiteDocument() " + Add("0,0,100"));
    EXPECT_TRUE(ScriptDocument().regions.empty());
    EXPECT_EQ(GetDocument(DocumentKind::AudioSuite).regions.size(), 1u);
}

TEST_F(RegionFunctions, FlagsSelectAndMute)
{
    SelectedResult("AddAudioRegion(1, \"" + m_strTake + "\", false, true, 0, 0, 100)");
    EXPECT_TRUE(ScriptDocument().regions[0].fMuted);
    EXPECT_EQ(ScriptDocument().nSelectedRegionId, kNullId);
}

TEST_F(RegionFunctions, AListOfChannelsCanFollow)
{
    TarvaneTest::MakeSound(m_strTake, TarvaneTest::Noise(300), 3);
    SelectedResult(Add("0,0,100,1,{0,2}"));
    EXPECT_EQ(ScriptDocument().regions[0].channels, (std::vector<std::int32_t>{0, 2}));

    EXPECT_EQ(SelectedError(Add("0,0,100,1,{3}")),
              "AddAudioRegion: the file has no channel 3; it has 3, counted from 0");
    EXPECT_EQ(SelectedError(Add("0,0,100,1,{-1}")),
              "AddAudioRegion: the file has no channel -1; it has 3, counted from 0");
    EXPECT_EQ(SelectedError(Add("0,0,100,1,{1,0}")),
              "AddAudioRegion: the channel numbers do not rise");
    EXPECT_EQ(SelectedError(Add("0,0,100,1,{}")), "AddAudioRegion: the list of channels is empty");
    EXPECT_EQ(SelectedError(Add("0,0,100,2,{0}")),
              "AddAudioRegion: argument 8 can only be 1, for the channels that follow");
    EXPECT_THAT(SelectedError(Add("0,0,100,1")), HasSubstr("argument 9 should be a table"));
    EXPECT_EQ(ScriptDocument().regions.size(), 1u);
}

TEST_F(RegionFunctions, AddRefusesWithWords)
{
    EXPECT_EQ(SelectedError(Add("0,10,10")),
              "AddAudioRegion: the region is empty: it ends at 10 and starts at 10");
    EXPECT_EQ(SelectedError(Add("0,-1,10")),
              "AddAudioRegion: the region starts before its file, at -1");
    EXPECT_EQ(SelectedError(Add("0,0,101")), "AddAudioRegion: the file " + m_strTake +
                                                 " is too short: it has 100 frames, and the "
                                                 "region ends at 101");
    EXPECT_EQ(SelectedError(Add("9007199254740993,0,100")),
              "AddAudioRegion: a position is beyond 2^53 samples");
    EXPECT_EQ(SelectedError("AddAudioRegion(7, \"" + m_strTake + "\", true, false, 0, 0, 1)"),
              "AddAudioRegion: the document has no track with the id 7");
    EXPECT_EQ(SelectedError("AddAudioRegion(1, '/none.wav', true, false, 0, 0, 1)"),
              "AddAudioRegion: the file /none.wav does not exist");
    EXPECT_EQ(SelectedError("AddAudioRegion(1, 'none.wav', true, false, 0, 0, 1)"),
              "AddAudioRegion: \"none.wav\" is not a full path");
    EXPECT_EQ(SelectedError("AddAudioRegion(1, '/\\xff', true, false, 0, 0, 1)"),
              "AddAudioRegion: the file's path is not UTF-8 text");
    EXPECT_EQ(SelectedError("AddAudioRegion(1, '/a\\0b', true, false, 0, 0, 1)"),
              "AddAudioRegion: argument 2 contains a NUL byte");
    EXPECT_EQ(SelectedError("AddAudioRegion(1, '/none.wav', 1, false, 0, 0, 1)"),
              "AddAudioRegion: argument 3 should be a boolean, and is a number");
    EXPECT_EQ(m_database.UpdateCount(), 0);
}

TEST_F(RegionFunctions, CheckAnswersOneOrNought)
{
    EXPECT_EQ(SelectedResult(Check("0,0,100")), "0\n");
    SelectedResult(Add("4800,0,100"));
    EXPECT_EQ(SelectedResult(Check("0,0,100")), "1\n");
    EXPECT_EQ(SelectedResult(Check("1,0,100")), "0\n");
    EXPECT_EQ(SelectedResult(Check("0,0,99")), "0\n");
}

TEST_F(RegionFunctions, CheckLooksOnItsTrackAndInItsDocument)
{
    SelectedResult(Add("4800,0,100"));
    EXPECT_EQ(SelectedResult("print(CheckForDuplicateRegion(GetTrackID(1), \"" + m_strTake +
                             "\",0,0,100))"),
              "0\n");
    EXPECT_EQ(Result("SelectAudioSuiteDocument() " + Check("0,0,100")), "0\n");
}

TEST_F(RegionFunctions, CheckRefusesWhatCannotBeAdded)
{
    EXPECT_THAT(SelectedError(Check("0,0,101")), HasSubstr("is too short"));
    EXPECT_THAT(SelectedError(Check("0,5,5")), HasSubstr("the region is empty"));
    EXPECT_EQ(SelectedError("CheckForDuplicateRegion(9, '/none.wav', 0, 0, 1)"),
              "CheckForDuplicateRegion: the document has no track with the id 9");
    EXPECT_EQ(SelectedError("CheckForDuplicateRegion(1, '/none.wav', 0, 0, 1)"),
              "CheckForDuplicateRegion: the file /none.wav does not exist");
}

TEST_F(RegionFunctions, CheckChangesNothing)
{
    SelectedResult(Check("0,0,100"));
    EXPECT_EQ(m_database.UpdateCount(), 0);
}

// What the view sends for a capture at any place: the check says no, and once added, yes.
TEST_F(RegionFunctions, ACaptureIsFoundAgainAtEveryPlace)
{
    for (double dOffset : {0.0, 0.1, 2.00001, -0.77777, 1001.0 / 30000.0})
    {
        for (double dPosition : {0.0, -0.5, -1.5, 0.999, 1234.9, -1234.9, 100000.25, -4800.0})
        {
            CSessionDatabase database(CSession({"Vox"}, dOffset));
            CCommandProcessor processor(database, RenderFolder(), true);
            const auto run = [&](const std::string& strScript)
            { return processor.Run("SelectScriptDocument() " + strScript); };
            const auto text = [](double d)
            { return std::to_string(static_cast<long long>(d)) + ",0,100"; };

            ASSERT_EQ(run(Check(text(dPosition))).strResult, "0\n");
            const double dGiven = std::atof(run("print(GetLinkSMPTEOffset())").strResult.c_str());
            ASSERT_EQ(run(Add(text(dGiven * 48000.0 + dPosition))).strError, "");
            EXPECT_EQ(run(Check(text(dPosition))).strResult, "1\n") << dOffset << ' ' << dPosition;
        }
    }
}

} // namespace
} // namespace Tarvane::Server
