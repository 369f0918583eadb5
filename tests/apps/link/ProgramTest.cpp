// Command line to session, with the real server.

#include "tests/apps/link/ProgramFixture.h"

using namespace TarvaneTest;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(RealServerTest, ListsTracks)
{
    const Ended ended = RunLink({"tracks"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput, "0\tVox\n1\tV\xC3\xB6x \xE5\xA3\xB0\n");
    EXPECT_EQ(ended.strError, "");
}

TEST_F(RealServerTest, SendsAFileToTheSession)
{
    const Ended sent = RunLink({"send", m_strTake, "--track", "1", "--position", "48000"});
    EXPECT_EQ(sent.nExitCode, 0) << sent.strError;
    const auto regions = Track(1)["regions"];
    ASSERT_EQ(regions.size(), 1U);
    EXPECT_EQ(regions[0]["file"], m_strTake);
    EXPECT_EQ(regions[0]["start"], 0);
    EXPECT_EQ(regions[0]["end"], 4800);
    EXPECT_EQ(regions[0]["position"], 48000);
    EXPECT_EQ(regions[0]["channels"], nlohmann::json::array());
    EXPECT_EQ(Track(0)["regions"].size(), 0U);
}

TEST_F(RealServerTest, SendsAnIndexListAndAStretch)
{
    const Ended sent = RunLink({"send", m_strTake, "--track", "0", "--position", "-5", "--start",
                                "10", "--end", "20", "--index-mask", "1"});
    EXPECT_EQ(sent.nExitCode, 0) << sent.strError;
    const auto region = Track(0)["regions"][0];
    EXPECT_EQ(region["start"], 10);
    EXPECT_EQ(region["end"], 20);
    EXPECT_EQ(region["position"], -5);
    EXPECT_EQ(region["channels"], nlohmann::json::array({0}));
}

TEST_F(RealServerTest, AudioSuiteSendsToTheOtherDocument)
{
    EXPECT_EQ(
        RunLink({"--audio-suite", "send", m_strTake, "--track", "0", "--position", "0"}).nExitCode,
        0);
    EXPECT_EQ(Track(0)["regions"].size(), 0U);
    EXPECT_EQ(Track(0, kAudioSuiteDocument)["regions"].size(), 1U);
}

TEST_F(RealServerTest, FindsADuplicateOfWhatWasSent)
{
    const std::vector<std::string> place{m_strTake, "--track", "1",    "--start",
                                         "10",      "--end",   "4000", "--position"};
    auto command = [&](const std::string& strName, const std::string& strPosition)
    {
        std::vector<std::string> arguments{strName};
        arguments.insert(arguments.end(), place.begin(), place.end());
        arguments.push_back(strPosition);
        return RunLink(arguments);
    };
    EXPECT_EQ(command("duplicate", "0").strOutput, "new\n");
    // The host's position 0, a second and a quarter on.
    EXPECT_EQ(command("send", "60000").nExitCode, 0);
    EXPECT_EQ(command("duplicate", "0").strOutput, "duplicate\n");
    EXPECT_EQ(command("duplicate", "1").strOutput, "new\n");
}

TEST_F(RealServerTest, TellsOffsetAndUpdates)
{
    EXPECT_EQ(RunLink({"offset"}).strOutput, "1.25\n");
    EXPECT_EQ(RunLink({"updates"}).strOutput, "0\n");
    RunLink({"send", m_strTake, "--track", "0", "--position", "0"});
    EXPECT_NE(RunLink({"updates"}).strOutput, "0\n");
}

TEST_F(RealServerTest, ReportsWhatTheServerRefuses)
{
    const Ended ended = RunLink({"send", m_strTake, "--track", "7", "--position", "0", "--json"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strError, HasSubstr("there is no track 7"));
    EXPECT_THAT(ended.Json()["refusal"].get<std::string>(), HasSubstr("there is no track 7"));
}

TEST_F(RealServerTest, RunsAScriptFromStandardInput)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"run"}, {"run", "-"}})
    {
        const Child link = StartLink(arguments);
        link->WriteLine("print(\"one\")");
        link->WriteLine("print(\"two\")");
        link->CloseInput();
        const Ended ended = ToItsEnd(link);
        EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
        EXPECT_EQ(ended.strOutput, "one\ntwo\n");
    }
}

TEST_F(RealServerTest, WatchesTheSessionChange)
{
    const Child watch = StartLink({"watch", "--interval", "0.05", "--count", "2", "--json"});
    const auto first = watch->WaitForLine("\"updates\":0", kAnyTime);
    ASSERT_TRUE(first) << watch->ErrorOutput();
    EXPECT_EQ(nlohmann::json::parse(*first)["tracks"].size(), 2U);
    EXPECT_EQ(
        RunLink({"run", "if SelectScriptDocument() then MoveDisplayToPosition(5) end"}).nExitCode,
        0);
    EXPECT_TRUE(watch->WaitForLine("\"updates\":1", kAnyTime)) << watch->ErrorOutput();
    EXPECT_EQ(ToItsEnd(watch).nExitCode, 0);
}

TEST_F(RealServerTest, WatchOutlivesTheServer)
{
    const Child watch = StartLink({"watch", "--interval", "0.05"});
    ASSERT_TRUE(watch->WaitForLine("1\t", kAnyTime)) << watch->ErrorOutput();
    m_server.reset();
    m_server = StartServer({"--track", "Other"});
    ASSERT_TRUE(watch->WaitForLine("0\tOther", kAnyTime)) << watch->ErrorOutput();
    watch->Terminate();
    const Ended ended = ToItsEnd(watch);
    EXPECT_THAT(ended.strError, testing::AnyOf("", StartsWith("Error - Tarvane not running.\n"),
                                               StartsWith("AEError ID:-609\n")));
}

TEST_F(RealServerTest, TraceShowsEveryEventOutAndIn)
{
    const Ended ended = RunLink({"--trace", "run", "print(\"V\xC3\xB6x\")"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput, "V\xC3\xB6x\n");
    EXPECT_THAT(ended.strError,
                ContainsRegex("^[0-9T:.-]+Z event 1 out to 'TkNe', 'TKNE' 'LCmd', 24 bytes\n"
                              "  '----' 'utxt' 24 bytes\n"
                              "    print\\(\"V\xC3\xB6x\"\\)\n"
                              "[0-9T:.-]+Z event 1 in status 0, 8 bytes, after [0-9.]+ ms\n"
                              "  'Rslt' 'utxt' 8 bytes\n"
                              "    V\xC3\xB6x\n$"));
}

TEST_F(RealServerTest, ExportsTheSelectedRegion)
{
    const Ended none = RunLink({"export"});
    EXPECT_EQ(none.nExitCode, 1);
    EXPECT_EQ(none.strError, "No Tarvane region is selected\n");

    SendTake(0, "0");
    const Ended ended = RunLink({"export", "--json"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_EQ(ReadSound(ended.Json()["file"].get<std::string>()).samples,
              ReadSound(m_strTake).samples);
}

TEST_F(RealServerTest, RendersTheSelectedRegion)
{
    SendTake(0, "48000");
    EXPECT_EQ(RunLink({"render", "--rate", "48000"}).strOutput,
              "Start: 48000 End: 52800 Sample Rate: 48000\n");
    const Ended ended = RunLink({"render", "--rate", "44100"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strError,
              "Warning - Session Sample Rate is: 44100 Tarvane Sample rate is: 48000\n");
    EXPECT_NE(Track(0)["regions"][0]["file"], m_strTake);
}

TEST_F(RealServerTest, AlignsADubWithItsGuideAndExportsTheLastProcess)
{
    for (const char* szFlag : {"--json", "--audio-suite"})
    {
        SendTake(0, "48000", szFlag);
        const Ended ended =
            RunLink({szFlag, "align", "--guide-track", "1", "--guide-start", "96000", "--guide-end",
                     "96010", "--dub-track", "0", "--dub-start", "48000", "--dub-end", "48100",
                     "--aligned-track", "1"});
        EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    }
    const auto aligned = Track(1)["regions"][0];
    EXPECT_EQ(aligned["timelineStart"], 96000);
    EXPECT_EQ(aligned["end"], 100);
    EXPECT_EQ(RunLink({"--audio-suite", "render"}).strOutput,
              "Start: 96000 End: 96100 Sample Rate: 48000\n");
    EXPECT_EQ(RunLink({"--audio-suite", "export"}).nExitCode, 0);
}

TEST_F(RealServerTest, WithoutAProcessThereIsNothingToExport)
{
    const Ended ended = RunLink({"--audio-suite", "export"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_EQ(ended.strError, "No Tarvane Process exists\n");
}

TEST_F(RealServerTest, SpreadsAndClears)
{
    SendTake(0, "0");
    const Ended spread = RunLink(
        {"spread", "--track", "0", "--start", "100", "--end", "200", "--output-track", "1"});
    EXPECT_EQ(spread.nExitCode, 0) << spread.strError;
    EXPECT_EQ(Track(1)["regions"][0]["timelineStart"], 100);
    EXPECT_EQ(Track(0)["markerAreas"].size(), 1U);

    EXPECT_EQ(RunLink({"clear", "0"}).nExitCode, 0);
    EXPECT_EQ(Track(0)["markerAreas"].size(), 0U);
    EXPECT_EQ(Track(0)["regions"].size(), 0U);
    EXPECT_EQ(Track(1)["regions"].size(), 1U);
}

TEST_F(RealServerTest, DoctorFindsTheServerWell)
{
    SendTake(0, "0");
    const auto before = Session();
    const Ended ended = RunLink({"doctor", "--capture-folder", m_folder.Path().string(), "--json"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strOutput;
    EXPECT_EQ(ended.Findings().size(), 12U);
    EXPECT_EQ(ended.Findings()[2]["text"], "the server's version is \"" PROJECT_VERSION "\"");
    for (const auto& finding : ended.Findings())
    {
        // A busy machine may be slow.
        EXPECT_TRUE(finding["verdict"] == "ok" || finding["check"] == "speed") << finding;
    }
    EXPECT_THAT(m_folder.Files(), testing::Not(testing::Contains(StartsWith("tarvane-link"))));
    EXPECT_EQ(Session(), before);
}

TEST_F(ProgramTest, NoDocumentIsToldByTracksAndDoctor)
{
    const Child server = StartServer({"--no-document"});
    const Ended tracks = RunLink({"tracks"});
    EXPECT_EQ(tracks.nExitCode, 1);
    EXPECT_EQ(tracks.strError, "No Tarvane session is selected\n");
    const Ended doctor = RunLink({"doctor"});
    EXPECT_EQ(doctor.nExitCode, 1);
    EXPECT_THAT(doctor.strOutput, HasSubstr("problem  document"));
}

TEST_F(ProgramTest, WordsOfARefusalAreToldAndTheExitCodeIsTheServersError)
{
    const Child server = StartServer({"--track", "Vox"});
    const std::string strScript = "if SelectScriptDocument() then AddAudioRegion(GetTrackID(0), "
                                  "'/missing.wav', true, false, 0,0,9) end";
    const Ended ended = RunLink({"run", strScript});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strError,
                HasSubstr("AEError ID:-1701\ntarvane-link: the server did not do it: "));
    EXPECT_THAT(ended.strError, HasSubstr("the file /missing.wav does not exist"));
    const nlohmann::json json =
        nlohmann::json::parse(RunLink({"run", "--json", strScript}).strOutput);
    EXPECT_EQ(json["outcome"], "server-error");
    EXPECT_THAT(json["refusal"].get<std::string>(), HasSubstr("/missing.wav"));
}

TEST_F(ProgramTest, ControlCharactersOfOthersAreShownAsPoints)
{
    const Child server = StartServer({"--track", "Vox"});
    EXPECT_EQ(RunLink({"run", "print('a\\27[2Jb\\u{9b}c')"}).strOutput, "a.[2Jb.c\n");
    EXPECT_EQ(RunLink({"run", "error('a\\27[2Jb', 0)"}).strError, "a.[2Jb\n");
    EXPECT_THAT(RunLink({"run", "SelectScriptDocument() AddAudioRegion(GetTrackID(0), "
                                "'/a\\27[2Jb.wav', true, false, 0,0,9)"})
                    .strError,
                AllOf(HasSubstr("/a.[2Jb.wav does not exist"), Not(HasSubstr("\033"))));
    EXPECT_EQ(
        nlohmann::json::parse(RunLink({"run", "--json", "print('a\\27b')"}).strOutput)["result"],
        "a\033b\n");
}

TEST_F(ProgramTest, HelpAndVersionNeedNoBus)
{
    m_bus.Kill();
    EXPECT_EQ(RunLink({"--help"}).nExitCode, 0);
    EXPECT_THAT(RunLink({"--version"}).strOutput, StartsWith("tarvane-link "));
}
