#include "tests/TarvaneLinkShared/ScriptFixture.h"

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::SizeIs;

namespace
{
class ProcessCommands : public ScriptFixture
{
};
} // namespace

TEST_F(ProcessCommands, GDXNamesThreeTracksAndTwoStretches)
{
    EXPECT_TRUE(m_script.CreateGDX(false, 0, 1234567, 4294967297, 11, -48000, 9007199254740993, 3));
    EXPECT_EQ(OnlyScript(), "if SelectScriptDocument() then\n"
                            "idGuide = GetTrackID(0)\n"
                            "idDub = GetTrackID(11)\n"
                            "idAligned = GetTrackID(3)\n"
                            "Guide = { IOType=1, Track=idGuide, Start=1234567, End=4294967297}\n"
                            "Dub = { IOType=2, Track=idDub, Start=-48000, End=9007199254740993}\n"
                            "Inputs = { Guide, Dub }\n"
                            "Aligned = { Track=idAligned }\n"
                            "Outputs = { Aligned }\n"
                            "idProcess = CreateProcess(\"GDX\", \"PT\", Inputs, Outputs)\n"
                            "MoveDisplayToPosition(1234567)\n"
                            "end\n");
}

TEST_F(ProcessCommands, PositionsBeyond32BitsAreWrittenInFullEverywhere)
{
    m_script.CreateGDX(false, 0, 4294967301, 4294967302, 1, 4294967303, 4294967304, 2);
    EXPECT_THAT(m_events.Scripts().back(),
                HasSubstr("Track=idGuide, Start=4294967301, End=4294967302}\n"));
    EXPECT_THAT(m_events.Scripts().back(),
                HasSubstr("Track=idDub, Start=4294967303, End=4294967304}\n"));
    EXPECT_THAT(m_events.Scripts().back(), HasSubstr("MoveDisplayToPosition(4294967301)\n"));

    m_script.CreateSpreader(false, 0, -4294967301, -4294967302, 0, 1);
    EXPECT_THAT(m_events.Scripts().back(), HasSubstr("Start=-4294967301, End=-4294967302}\n"));
    EXPECT_THAT(m_events.Scripts().back(), HasSubstr("MoveDisplayToPosition(-4294967301)\n"));
}

TEST_F(ProcessCommands, GDXInTheAudioSuiteDocumentDiffersInItsFirstLineOnly)
{
    m_script.CreateGDX(false, 1, 2, 3, 4, 5, 6, 7);
    m_script.CreateGDX(true, 1, 2, 3, 4, 5, 6, 7);
    const std::string first = "if SelectScriptDocument() then\n";
    EXPECT_EQ(m_events.Scripts()[1],
              "if SelectAudioSuiteDocument() then\n" + m_events.Scripts()[0].substr(first.size()));
}

TEST_F(ProcessCommands, SpreaderNamesTwoTracksAndAStretch)
{
    EXPECT_TRUE(m_script.CreateSpreader(true, 2, 1234567, 7654321, 99, 5));
    EXPECT_EQ(OnlyScript(), "if SelectAudioSuiteDocument() then\n"
                            "idInput = GetTrackID(2)\n"
                            "idOutput = GetTrackID(5)\n"
                            "Input = { IOType=1, Track=idInput, Start=1234567, End=7654321}\n"
                            "Inputs = { Input }\n"
                            "Output = { Track=idOutput }\n"
                            "Outputs = { Output }\n"
                            "idProcess = CreateProcess(\"Spreader\", \"PT\", Inputs, Outputs)\n"
                            "MoveDisplayToPosition(1234567)\n"
                            "end\n");
}

TEST_F(ProcessCommands, SpreaderInTheScriptDocumentDiffersInItsFirstLineOnly)
{
    m_script.CreateSpreader(true, 2, 3, 4, 0, 5);
    m_script.CreateSpreader(false, 2, 3, 4, 0, 5);
    const std::string first = "if SelectAudioSuiteDocument() then\n";
    EXPECT_EQ(m_events.Scripts()[1],
              "if SelectScriptDocument() then\n" + m_events.Scripts()[0].substr(first.size()));
}

TEST_F(ProcessCommands, SpreaderDoesNotReadItsFifthArgument)
{
    for (const int nUnused : {0, 1, -1, 12345})
        m_script.CreateSpreader(false, 2, 3, 4, nUnused, 5);
    EXPECT_THAT(m_events.Scripts(), SizeIs(4));
    EXPECT_THAT(m_events.Scripts(), Each(m_events.Scripts()[0]));
}

TEST_F(ProcessCommands, ClearTrackRemovesMarkerAreasBeforeRegions)
{
    m_script.ClearTrack(false, 4);
    EXPECT_EQ(OnlyScript(), "if SelectScriptDocument() then\n"
                            "idTrack = GetTrackID(4)\n"
                            "idMarker = GetMarkerTrackID(idTrack, 0)\n"
                            "while CountMarkerAreas(idMarker) > 0 do\n"
                            "idSrcArea = GetMarkerAreaID(idMarker, 0)\n"
                            "DeleteMarkerArea(idSrcArea)\n"
                            "end\n"
                            "while GetRegionCount(idTrack) > 0 do\n"
                            "idRegion = GetRegionID(idTrack, 0)\n"
                            "DeleteRegion(idRegion)\n"
                            "end\n"
                            "end\n");
}

TEST_F(ProcessCommands, ClearTrackSelectsTheAudioSuiteDocument)
{
    m_script.ClearTrack(true, 4);
    EXPECT_TRUE(OnlyScript().starts_with("if SelectAudioSuiteDocument() then\n"
                                         "idTrack = GetTrackID(4)\n"));
}

TEST_F(ProcessCommands, AllUseTheDefaultTimeout)
{
    m_script.CreateGDX(false, 1, 2, 3, 4, 5, 6, 7);
    m_script.CreateSpreader(false, 2, 3, 4, 0, 5);
    m_script.ClearTrack(false, 4);
    ASSERT_THAT(m_events.Commands(), SizeIs(3));
    for (const auto& command : m_events.Commands())
        EXPECT_EQ(command.m_nTimeoutTicks, -1);
}

TEST_F(ProcessCommands, AFailedCommandIsFalse)
{
    m_events.FailSend(-600);
    EXPECT_FALSE(m_script.CreateGDX(false, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);

    m_events.FailSend(-1712);
    EXPECT_FALSE(m_script.CreateSpreader(false, 2, 3, 4, 0, 5));
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");

    m_events.FailSend(-609);
    m_script.ClearTrack(false, 4);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-609");
}

TEST_F(ProcessCommands, AnErrorOfTheServerIsTrueWithItsWords)
{
    m_events.PrintWithError("", "no such track");
    EXPECT_TRUE(m_script.CreateGDX(false, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_EQ(m_script.m_strLastError, "no such track");

    m_events.PrintWithError("", "no such output");
    EXPECT_TRUE(m_script.CreateSpreader(false, 2, 3, 4, 0, 5));
    EXPECT_EQ(m_script.m_strLastError, "no such output");

    m_events.PrintWithError("", "no such marker");
    m_script.ClearTrack(false, 4);
    EXPECT_EQ(m_script.m_strLastError, "no such marker");
}

TEST_F(ProcessCommands, DoNotReadTheResult)
{
    m_events.Print("3\nmiscounted\n");
    EXPECT_TRUE(m_script.CreateGDX(false, 1, 2, 3, 4, 5, 6, 7));
    m_events.Print("3\nmiscounted\n");
    EXPECT_TRUE(m_script.CreateSpreader(false, 2, 3, 4, 0, 5));
}
