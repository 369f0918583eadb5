#include "tests/apps/server/CommandFixture.h"

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

// Track 1 is the guide and, by turns, the output; track 2 the dub.
class ProcessFunctions : public TarvaneTest::CommandFixture
{
protected:
    // Frames 10 to 60 of the take on the dub's track, from 1010 to 1060.
    void AddDub()
    {
        SelectedResult("AddAudioRegion(2, \"" + m_strTake + "\", false, false, 1000,10,60)");
    }

    static std::string Gdx(const std::string& strGuide, const std::string& strDub)
    {
        return "print(CreateProcess('GDX', 'PT', {{IOType=1, Track=1, " + strGuide +
               "}, {IOType=2, Track=2, " + strDub + "}}, {{Track=1}}))";
    }
};

TEST_F(ProcessFunctions, GdxMovesTheDubToTheGuide)
{
    AddDub();
    EXPECT_EQ(SelectedResult(Gdx("Start=500, End=600", "Start=1010, End=1060")), "9\n");
    ASSERT_EQ(ScriptDocument().regions.size(), 2u);
    const Region made = ScriptDocument().regions[1];
    EXPECT_EQ(made.nTrackId, 1);
    EXPECT_EQ(made.TimelineStart(), 500);
    EXPECT_EQ(made.nStart, 10);
    EXPECT_EQ(made.nEnd, 60);
    EXPECT_EQ(ScriptDocument().processes.at(0).nRegionId, made.nId);
}

TEST_F(ProcessFunctions, OnlyTheStretchIsTaken)
{
    AddDub();
    SelectedResult(Gdx("Start=0, End=100", "Start=1000, End=1030"));
    const Region made = ScriptDocument().regions.at(1);
    EXPECT_EQ(made.nStart, 10);
    EXPECT_EQ(made.nEnd, 30);
    EXPECT_EQ(made.TimelineStart(), 10);
}

TEST_F(ProcessFunctions, SpreaderLeavesItsInputInPlace)
{
    AddDub();
    SelectedResult("CreateProcess('Spreader', 'PT', {{IOType=1, Track=2, Start=1020, End=9000}}, "
                   "{{Track=1}})");
    const Region made = ScriptDocument().regions.at(1);
    EXPECT_EQ(made.nTrackId, 1);
    EXPECT_EQ(made.nStart, 20);
    EXPECT_EQ(made.nEnd, 60);
    EXPECT_EQ(made.TimelineStart(), 1020);
}

TEST_F(ProcessFunctions, WithoutAudioNothingIsMade)
{
    AddDub();
    SelectedResult(Gdx("Start=0, End=10", "Start=1060, End=1070"));
    EXPECT_EQ(ScriptDocument().regions.size(), 1u);
    EXPECT_EQ(ScriptDocument().processes.at(0).nRegionId, kNullId);
    SelectedResult("SelectProcess(FindLastProcessCreated())");
    EXPECT_EQ(ScriptDocument().nSelectedRegionId, kNullId);
}

TEST_F(ProcessFunctions, EachInputIsMarked)
{
    SelectedResult(Gdx("Start=0, End=10", "Start=-5, End=7"));
    ASSERT_EQ(ScriptDocument().markerAreas.size(), 2u);
    EXPECT_EQ(ScriptDocument().markerAreas[0].nTrackId, 1);
    EXPECT_EQ(ScriptDocument().markerAreas[1].nTrackId, 2);
    EXPECT_EQ(ScriptDocument().markerAreas[1].nStart, -5);
    EXPECT_EQ(ScriptDocument().markerAreas[1].nEnd, 7);
}

TEST_F(ProcessFunctions, TheLastOneIsFoundAndSelectsWhatItMade)
{
    EXPECT_EQ(SelectedResult("print(FindLastProcessCreated())"), "0\n");
    AddDub();
    SelectedResult(Gdx("Start=0, End=50", "Start=1010, End=1060"));
    SelectedResult(Gdx("Start=70, End=80", "Start=1010, End=1060"));
    SelectedResult("SelectProcess(FindLastProcessCreated())");
    const Document document = ScriptDocument();
    EXPECT_EQ(document.FindRegion(document.nSelectedRegionId)->TimelineStart(), 70);
    EXPECT_EQ(SelectedError("SelectProcess(1)"),
              "SelectProcess: the document has no process with the id 1");
}

TEST_F(ProcessFunctions, WhatCannotBeMadeIsRefused)
{
    const std::string strGuide = "{IOType=1, Track=1, Start=0, End=10}";
    const std::string strDub = "{IOType=2, Track=2, Start=0, End=10}";
    const struct
    {
        std::string strArguments;
        const char* szError;
    } refusals[] = {
        {"'Mixer', 'PT', {}, {}", "there is no process \"Mixer\"; there are GDX and Spreader"},
        {"'GDX', 'P\\nT', {}, {}", "the host's name contains a line end"},
        {"'GDX', 'PT', {" + strGuide + "}, {{Track=1}}", "GDX takes 2 inputs, not 1"},
        {"'Spreader', 'PT', {}, {{Track=1}}", "Spreader takes 1 inputs, not 0"},
        {"'GDX', 'PT', {" + strDub + "," + strGuide + "}, {{Track=1}}",
         "an input's IOType is 2 in the place of 1"},
        {"'GDX', 'PT', {" + strGuide + "," + strDub + "}, {}", "GDX has one output, not 0"},
        {"'GDX', 'PT', {" + strGuide + "," + strDub + "}, {{Track=9}}",
         "the document has no track with the id 9"},
        {"'Spreader', 'PT', {{IOType=1, Track=9, Start=0, End=1}}, {{Track=1}}",
         "the document has no track with the id 9"},
        {"'Spreader', 'PT', {{IOType=1, Track=1, Start=5, End=5}}, {{Track=1}}",
         "the stretch is empty: it ends at 5 and starts at 5"},
        {"'Spreader', 'PT', {{IOType=1, Track=1, Start=0, End=1<<60}}, {{Track=1}}",
         "a position is beyond 2^53 samples"},
        {"'Spreader', 'PT', {{IOType=1, Track=1, Start=0}}, {{Track=1}}",
         "an input or output has no whole number \"End\""},
        {"'Spreader', 'PT', " + strGuide + ", {{Track=1}}", "Spreader takes 1 inputs, not 0"},
        {"'Spreader', 'PT', 3, {{Track=1}}", "argument 3 should be a table"},
    };
    for (const auto& refusal : refusals)
        EXPECT_THAT(SelectedError("CreateProcess(" + refusal.strArguments + ")"),
                    HasSubstr(std::string("CreateProcess: ") + refusal.szError));
    EXPECT_EQ(m_database.UpdateCount(), 0);
}

} // namespace
} // namespace Tarvane::Server
