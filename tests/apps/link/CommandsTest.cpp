// What each command sends, prints, and ends with.

#include "tests/apps/link/LinkFixture.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include <filesystem>
#include <fstream>

using namespace TarvaneTest;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

using CommandsTest = LinkTest;

constexpr char szNoSession[] = "No Tarvane session is selected\n";

class FileCommandsTest : public LinkTest
{
protected:
    std::string Sound(const std::string& strName, size_t nFrames)
    {
        WriteSound(m_folder / strName, SF_FORMAT_WAV | SF_FORMAT_PCM_16, nFrames);
        return (m_folder / strName).string();
    }

    CTemporaryFolder m_folder;
};

} // namespace

TEST_F(CommandsTest, TracksHaveTheirPlaces)
{
    Answer("GetTrackName", "3\n1\nV\xC3\xB6x\nGuide\n");
    const Ran ran = RunLink({"tracks"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput, "0\tV\xC3\xB6x\n1\tGuide\n");
    EXPECT_EQ(ran.strError, "");
    EXPECT_THAT(m_events.Scripts(), ElementsAre(StartsWith("if(SelectScriptDocument()) then\n")));
}

TEST_F(CommandsTest, TracksAsJson)
{
    Answer("GetTrackName", "2\n1\nVox\n");
    const Ran ran = RunLink({"tracks", "--json"});
    EXPECT_EQ(ran.strOutput, "{\"command\":\"tracks\",\"outcome\":\"done\",\"exitCode\":0,"
                             "\"lastError\":\"\",\"advice\":\"\",\"tracks\":[\"Vox\"]}\n");
}

TEST_F(CommandsTest, NoDocumentIsTheServersError)
{
    Answer("GetTrackName", "1\n0\n");
    const Ran ran = RunLink({"tracks"});
    EXPECT_EQ(ran.nExitCode, 1);
    EXPECT_EQ(ran.strOutput, "");
    EXPECT_EQ(ran.strError, szNoSession);
}

TEST_F(CommandsTest, AudioSuiteChoosesTheDocument)
{
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"tracks"},
             {"offset"},
             {"send", "/a.wav", "--track", "0", "--position", "0", "--start", "0", "--end", "1"},
             {"duplicate", "/a.wav", "--track", "0", "--position", "0", "--start", "0", "--end",
              "1"},
             {"export"},
             {"render"},
             {"align", "--guide-track", "0", "--guide-start", "0", "--guide-end", "1",
              "--dub-track", "0", "--dub-start", "0", "--dub-end", "1", "--aligned-track", "0"},
             {"spread", "--track", "0", "--start", "0", "--end", "1", "--output-track", "0"},
             {"clear", "0"}})
    {
        RunLink(arguments);
        EXPECT_THAT(m_events.Scripts().back(), HasSubstr("SelectScriptDocument")) << arguments[0];
        std::vector<std::string> audioSuite = arguments;
        audioSuite.insert(audioSuite.begin(), "--audio-suite");
        RunLink(audioSuite);
        EXPECT_THAT(m_events.Scripts().back(), HasSubstr("SelectAudioSuiteDocument"))
            << arguments[0];
    }
    EXPECT_EQ(m_events.Scripts().size(), 18U);
}

TEST_F(CommandsTest, OffsetIsSeconds)
{
    Answer("GetLinkSMPTEOffset", "-3600.1\n");
    EXPECT_EQ(RunLink({"offset"}).strOutput, "-3600.1\n");
    EXPECT_EQ(RunLink({"offset", "--json"}).Json()["seconds"], -3600.1);
}

TEST_F(CommandsTest, UpdatesIsACount)
{
    Answer("print(GetUpdateCount())\n", "1234567\n");
    EXPECT_EQ(RunLink({"updates"}).strOutput, "1234567\n");
    EXPECT_EQ(RunLink({"updates", "--json"}).Json()["updates"], 1234567);
}

TEST_F(CommandsTest, AFailedQuestionPrintsNoNumber)
{
    AnswerStatus("", -600);
    for (const char* szCommand : {"offset", "updates"})
    {
        const Ran ran = RunLink({szCommand});
        EXPECT_EQ(ran.strOutput, "");
        EXPECT_EQ(ran.nExitCode, 3);
        EXPECT_FALSE(RunLink({szCommand, "--json"}).Json().contains("seconds"));
        EXPECT_FALSE(RunLink({szCommand, "--json"}).Json().contains("updates"));
    }
}

TEST_F(FileCommandsTest, SendTakesTheStretchAsItIs)
{
    const Ran ran = RunLink({"send", "/no/such.wav", "--track", "2", "--position", "-1234.9",
                             "--start", "10.5", "--end", "99"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput + ran.strError, "");
    EXPECT_THAT(m_events.Scripts(),
                ElementsAre("if SelectScriptDocument() then\n"
                            "idTrack = GetTrackID(2)\n"
                            "AddAudioRegion(idTrack, \"/no/such.wav\", true, false, -1234,10,99)\n"
                            "MoveDisplayToPosition(-1223.5)\n"
                            "end\n"));
}

TEST_F(FileCommandsTest, SendTakesTheWholeFileWithoutAStretch)
{
    const std::string strFile = Sound("take.wav", 777);
    const Ran ran = RunLink({"send", strFile, "--track", "0", "--position", "48000", "--json"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_THAT(m_events.Scripts().at(0),
                HasSubstr("\"" + strFile + "\", true, false, 48000,0,777)"));
    const auto json = ran.Json();
    EXPECT_EQ(json["file"], strFile);
    EXPECT_EQ(json["track"], 0);
    EXPECT_EQ(json["position"], 48000);
    EXPECT_EQ(json["start"], 0);
    EXPECT_EQ(json["end"], 777);
}

TEST_F(FileCommandsTest, SendTakesAnIndexList)
{
    RunLink({"send", "/a.wav", "--track", "0", "--position", "0", "--start", "0", "--end", "1",
             "--index-mask", "5"});
    EXPECT_THAT(m_events.Scripts().at(0), HasSubstr(", 0,0,1,1,{0,2})\n"));
}

TEST_F(FileCommandsTest, ARelativeNameBecomesAFullPath)
{
    RunLink({"send", "./x/../take.wav", "--track", "0", "--position", "0", "--start", "0", "--end",
             "1"});
    EXPECT_THAT(m_events.Scripts().at(0),
                HasSubstr("\"" + (std::filesystem::current_path() / "take.wav").string() + "\""));
}

TEST_F(FileCommandsTest, AFileThatIsNoSoundIsWrongUse)
{
    const std::string strText = (m_folder / "text.wav").string();
    std::ofstream(strText) << "no sound";
    for (const std::string& strFile : {strText, (m_folder / "missing.wav").string()})
    {
        const Ran ran = RunLink({"send", strFile, "--track", "0", "--position", "0"});
        EXPECT_EQ(ran.nExitCode, 2);
        EXPECT_THAT(ran.strError, HasSubstr(strFile));
    }
    EXPECT_TRUE(m_events.Commands().empty());
}

TEST_F(FileCommandsTest, APathThatWouldBreakTheScriptIsWrongUse)
{
    for (const std::string strFile : {"/a\"b.wav", "/a\\b.wav", "/a\nb.wav", "/a\xFF.wav"})
    {
        const Ran ran = RunLink(
            {"send", strFile, "--track", "0", "--position", "0", "--start", "0", "--end", "1"});
        EXPECT_EQ(ran.nExitCode, 2) << strFile;
    }
    EXPECT_TRUE(m_events.Commands().empty());
}

TEST_F(FileCommandsTest, DuplicateIsAnAnswerInTheViewsWords)
{
    Answer("CheckForDuplicateRegion", "1\n");
    const std::string strFile = Sound("take.wav", 50);
    const Ran ran = RunLink({"duplicate", strFile, "--track", "1", "--position", "7"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput, "duplicate\n");
    EXPECT_EQ(ran.strError, "Same audio captured previously.\nThis capture has been cancelled\n");
    EXPECT_THAT(m_events.Scripts().at(0),
                HasSubstr("CheckForDuplicateRegion(idTrack, \"" + strFile + "\",7,0,50)\n"));
    const auto json =
        RunLink({"duplicate", strFile, "--track", "1", "--position", "7", "--json"}).Json();
    EXPECT_EQ(json["duplicate"], true);
    EXPECT_EQ(json["lastError"], "Same audio captured previously.");
    EXPECT_EQ(json["advice"], "This capture has been cancelled");
}

TEST_F(FileCommandsTest, NewAudioIsNew)
{
    Answer("CheckForDuplicateRegion", "0\n");
    const Ran ran = RunLink(
        {"duplicate", "/a.wav", "--track", "1", "--position", "7", "--start", "0", "--end", "9"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput, "new\n");
    EXPECT_EQ(ran.strError, "");
}

TEST_F(FileCommandsTest, AnErrorIsNeitherNewNorDuplicate)
{
    AnswerError("CheckForDuplicateRegion", "no track");
    const Ran ran = RunLink({"duplicate", "/a.wav", "--track", "1", "--position", "7", "--start",
                             "0", "--end", "9", "--json"});
    EXPECT_EQ(ran.nExitCode, 1);
    EXPECT_FALSE(ran.Json().contains("duplicate"));
    EXPECT_EQ(ran.strError, "no track\n");
}

TEST_F(CommandsTest, ExportNamesTheFile)
{
    Answer("ExportRegion", "2\n0\n/a/b c.wav\n");
    EXPECT_EQ(RunLink({"export"}).strOutput, "/a/b c.wav\n");
    EXPECT_EQ(RunLink({"export", "--json"}).Json()["file"], "/a/b c.wav");
}

TEST_F(CommandsTest, WhatIsMissingForAnExportIsTheServersError)
{
    Answer("ExportRegion", "1\n1\n");
    const Ran ran = RunLink({"export"});
    EXPECT_EQ(ran.nExitCode, 1);
    EXPECT_EQ(ran.strError, "No Tarvane region is selected\n");
}

TEST_F(CommandsTest, AnExportWithoutUsableLinesHasNoAnswer)
{
    for (const char* szCommand : {"export", "render"})
    {
        const Ran ran = RunLink({szCommand});
        EXPECT_EQ(ran.nExitCode, 5);
        EXPECT_THAT(ran.strError, StartsWith("tarvane-link: the server's answer does not have"));
    }
}

TEST_F(CommandsTest, RenderTellsWhereTheRegionLies)
{
    Answer("RegionRender", "4\n0\n44100.0\n100.9\n-5\n");
    const Ran ran = RunLink({"render"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput, "Start: 100 End: -5 Sample Rate: 44100\n");
    EXPECT_EQ(ran.strError, "");
    const auto json = RunLink({"render", "--json"}).Json();
    EXPECT_EQ(json["start"], 100);
    EXPECT_EQ(json["end"], -5);
    EXPECT_EQ(json["ratesDiffer"], false);
    EXPECT_EQ(json["summary"], "Start: 100 End: -5 Sample Rate: 44100");
}

TEST_F(CommandsTest, AnotherRateIsAWarningAndNoFailure)
{
    Answer("RegionRender", "4\n0\n44100\n1\n2\n");
    EXPECT_EQ(RunLink({"render", "--rate", "44100"}).strError, "");
    const Ran ran = RunLink({"render", "--rate", "48000", "--json"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strError,
              "Warning - Session Sample Rate is: 48000 Tarvane Sample rate is: 44100\n");
    EXPECT_EQ(ran.Json()["ratesDiffer"], true);
}

TEST_F(CommandsTest, AnErrorBesideARenderIsTheServersError)
{
    Rule("RegionRender",
         {noErr, Events::TextBytes("4\n0\n44100\n1\n2\n"), Events::TextBytes("no space")});
    const Ran ran = RunLink({"render"});
    EXPECT_EQ(ran.nExitCode, 1);
    EXPECT_EQ(ran.strError, "no space\n");
}

TEST_F(CommandsTest, AlignSendsEveryNumber)
{
    const Ran ran = RunLink({"align", "--guide-track", "1", "--guide-start", "1234567",
                             "--guide-end", "1234999", "--dub-track", "2", "--dub-start", "-20",
                             "--dub-end", "30", "--aligned-track", "3"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput + ran.strError, "");
    const std::string strScript = m_events.Scripts().at(0);
    EXPECT_THAT(strScript, HasSubstr("idGuide = GetTrackID(1)\nidDub = GetTrackID(2)\n"
                                     "idAligned = GetTrackID(3)\n"));
    EXPECT_THAT(strScript, HasSubstr("Track=idGuide, Start=1234567, End=1234999}"));
    EXPECT_THAT(strScript, HasSubstr("Track=idDub, Start=-20, End=30}"));
}

TEST_F(CommandsTest, SpreadSendsEveryNumber)
{
    const Ran ran =
        RunLink({"spread", "--track", "4", "--start", "5", "--end", "6", "--output-track", "7"});
    EXPECT_EQ(ran.nExitCode, 0);
    const std::string strScript = m_events.Scripts().at(0);
    EXPECT_THAT(strScript, HasSubstr("idInput = GetTrackID(4)\nidOutput = GetTrackID(7)\n"));
    EXPECT_THAT(strScript, HasSubstr("Track=idInput, Start=5, End=6}"));
}

TEST_F(CommandsTest, ClearNamesItsTrack)
{
    EXPECT_EQ(RunLink({"clear", "12"}).nExitCode, 0);
    EXPECT_THAT(m_events.Scripts().at(0), HasSubstr("idTrack = GetTrackID(12)\n"));
    EXPECT_THAT(m_events.Scripts().at(0), HasSubstr("DeleteRegion"));
}

TEST_F(CommandsTest, AnErrorOfTheServerReachesTheUser)
{
    AnswerError("", "script:1: n\xC3\xB6");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"spread", "--track", "0", "--start", "0", "--end", "1", "--output-track", "0"},
             {"clear", "0"},
             {"offset"},
             {"updates"},
             {"run", "x"}})
    {
        const Ran ran = RunLink(arguments);
        EXPECT_EQ(ran.nExitCode, 1) << arguments[0];
        EXPECT_EQ(ran.strError, "script:1: n\xC3\xB6\n") << arguments[0];
    }
}

TEST_F(CommandsTest, RunPrintsWhatTheScriptPrints)
{
    Answer("print(1)", "1\n2");
    const Ran ran = RunLink({"run", "print(1)"});
    EXPECT_EQ(ran.strOutput, "1\n2");
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_THAT(m_events.Scripts(), ElementsAre("print(1)"));
    EXPECT_EQ(RunLink({"run", "print(1)", "--json"}).Json()["result"], "1\n2");
}

TEST_F(FileCommandsTest, RunReadsAFile)
{
    const std::string strFile = (m_folder / "script.lua").string();
    std::ofstream(strFile) << "-- one\nprint(1)\n";
    EXPECT_EQ(RunLink({"run", "--file", strFile}).nExitCode, 0);
    std::ofstream(strFile).close();
    EXPECT_EQ(RunLink({"run", "--file", strFile}).nExitCode, 0);
    EXPECT_THAT(m_events.Scripts(), ElementsAre("-- one\nprint(1)\n", ""));
}

TEST_F(FileCommandsTest, AScriptThatCannotBeSentIsWrongUse)
{
    const std::string strFile = (m_folder / "script.lua").string();
    std::ofstream(strFile) << std::string("print(1)\0print(2)", 17);
    EXPECT_EQ(RunLink({"run", "--file", strFile}).nExitCode, 2);
    std::ofstream(strFile) << "print('\xE9')";
    EXPECT_THAT(RunLink({"run", "--file", strFile}).strError, EndsWith("convert it first.\n"));
    EXPECT_EQ(RunLink({"run", "--file", m_folder.Path().string()}).nExitCode, 2);
    EXPECT_EQ(RunLink({"run", "--file", (m_folder / "missing").string()}).nExitCode, 2);
    EXPECT_TRUE(m_events.Commands().empty());
}

TEST_F(CommandsTest, TheTimeoutReachesEveryOperation)
{
    RunLink({"tracks"});
    RunLink({"run", "x"});
    EXPECT_EQ(std::getenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS"), nullptr);
    RunLink({"tracks", "--timeout", "2.5"});
    RunLink({"--timeout", "0.001", "run", "x"});
    EXPECT_EQ(m_events.Commands().at(0).m_nTimeoutTicks, -1);
    EXPECT_EQ(m_events.Commands().at(1).m_nTimeoutTicks, -1);
    EXPECT_EQ(m_events.Commands().at(2).m_nTimeoutTicks, 150);
    EXPECT_EQ(m_events.Commands().at(3).m_nTimeoutTicks, 1);
    RunLink({"offset", "--timeout", "60"});
    EXPECT_STREQ(std::getenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS"), "3600");
}

TEST_F(CommandsTest, TraceIsThePlatforms)
{
    RunLink({"updates"});
    EXPECT_EQ(std::getenv("TARVANE_AE_TRACE"), nullptr);
    RunLink({"updates", "--trace"});
    EXPECT_STREQ(std::getenv("TARVANE_AE_TRACE"), "1");
}
