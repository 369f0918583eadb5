// Recordings of the real programs, played to the real programs.

#include "tests/apps/host/EndToEndFixture.h"
#include "tests/apps/replay/RecordingText.h"
#include "tests/apps/support/ManualPage.h"

#include <chrono>
#include <sys/stat.h>

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

namespace fs = std::filesystem;

namespace
{

std::vector<std::string> Command(const char* szProgram, std::vector<std::string> options)
{
    options.insert(options.begin(), szProgram);
    return options;
}

Ended Replay(const std::vector<std::string>& options)
{
    return RunToEnd(Command(REPLAY_PROGRAM, options));
}

Ended Link(const std::vector<std::string>& options)
{
    return RunToEnd(Command(LINK_PROGRAM, options));
}

class ReplayProgram : public EndToEnd
{
protected:
    std::string Recording() const { return folder / "take.jsonl"; }

    void WriteRecording(const std::string& strLines) const
    {
        std::ofstream(Recording()) << HeaderLine() << strLines;
    }

    // Takes the server's part until the test ends it.
    void PlayServer(std::vector<std::string> options = {"--fast"})
    {
        options.insert(options.end(), {"--as", "server", Recording()});
        player.emplace(Command(REPLAY_PROGRAM, options));
        ASSERT_TRUE(player->WaitForLine("ready", kLong)) << player->ErrorOutput();
    }

    int PlayersEnd() { return player->WaitForEnd(kLong).value_or(-1); }

    static Ended RunScript(const std::string& strScript)
    {
        return Link({"--timeout", "20", "run", strScript});
    }

    std::optional<CChildProcess> player;
};

// With a recording of one capture by the real host and server.
class RecordedCapture : public ReplayProgram
{
protected:
    RecordedCapture()
    {
        StartServer();
        EXPECT_EQ(RunHost({"--record", Recording(), One()}).nExitCode, 0);
        KillServer();
    }

    std::string Captures() const { return folder / "captures"; }

    json OnlyCapture() const { return CapturesIn(folder / "out").at(0); }
};

} // namespace

TEST_F(RecordedCapture, IsPlayedToALiveView)
{
    fs::remove_all(Captures());
    PlayServer();
    EXPECT_EQ(RunHost({One()}).nExitCode, 0);
    EXPECT_EQ(PlayersEnd(), 0) << player->Output();
    EXPECT_THAT(player->Output(), HasSubstr("events came as recorded."));
    EXPECT_EQ(OnlyCapture()["outcome"], "delivered");
    EXPECT_EQ(OnlyCapture()["ack"]["fNotDelivered"], 0);
}

TEST_F(RecordedCapture, IsPlayedToALiveServer)
{
    const std::size_t nBefore = Regions().size();
    ASSERT_EQ(nBefore, 1U);
    fs::remove(SessionFile());
    StartServer();
    const Ended played = Replay({"--as", "host", "--fast", Recording()});
    EXPECT_EQ(played.nExitCode, 0) << played.strOutput;
    EXPECT_THAT(played.strOutput, HasSubstr("events came out as recorded."));
    EXPECT_THAT(Regions(), SizeIs(1));
    // The server has that audio now: the same questions come out otherwise.
    const Ended again = Replay({"--as", "host", "--fast", Recording()});
    EXPECT_EQ(again.nExitCode, 1);
    EXPECT_THAT(again.strOutput,
                AllOf(HasSubstr(": it came out otherwise\n  'Rslt', line 1, "
                                "character 1\n    expected: 0"),
                      HasSubstr("\n    got:      1"), HasSubstr("              ^\n"),
                      HasSubstr(" events came out otherwise.\n")));
}

TEST_F(RecordedCapture, ViewThatSaysSomethingElseIsToldSoAndStillServed)
{
    fs::remove_all(Captures());
    PlayServer();
    EXPECT_EQ(RunHost({"--position", "480", One()}).nExitCode, 0);
    EXPECT_EQ(PlayersEnd(), 1);
    EXPECT_THAT(player->Output(),
                AllOf(HasSubstr(": another one came\n  '----', line 3, character "),
                      HasSubstr("96480,0,4800)"), HasSubstr("^\n"), HasSubstr("Differences: 2,")));
    EXPECT_EQ(OnlyCapture()["outcome"], "delivered");
}

TEST_F(RecordedCapture, MapLetsAFolderLieElsewhere)
{
    const std::string strElsewhere = folder / "elsewhere";
    PlayServer({"--fast", "--map", Captures() + "=" + strElsewhere});
    EXPECT_EQ(
        RunToEnd(Host({"--headless", "--speed", "max", "--capture-folder", strElsewhere, One()}))
            .nExitCode,
        0);
    EXPECT_EQ(PlayersEnd(), 0) << player->Output();
}

TEST_F(RecordedCapture, IsDrawnAndNoForeignFileIsReplaced)
{
    const std::string strPage = folder / "take.html";
    EXPECT_EQ(Replay({"--html", strPage, Recording()}).nExitCode, 0);
    const std::string strText = FileText(strPage);
    EXPECT_THAT(strText, AllOf(HasSubstr("AddAudioRegion"), HasSubstr("64000 Elements"),
                               HasSubstr("64008 ElementDone: nElement 0"), HasSubstr("times until"),
                               HasSubstr("0 of them failed")));
    // An earlier page of its own is.
    EXPECT_EQ(Replay({"--html", strPage, Recording()}).nExitCode, 0);
    const Ended refused = Replay({"--html", Recording(), Recording()});
    EXPECT_EQ(refused.nExitCode, 2);
    EXPECT_THAT(refused.strError, HasSubstr("no page of this program"));
    // To open a pipe would wait for ever.
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(Replay({"--html", folder / "pipe", Recording()}).nExitCode, 2);
    EXPECT_THAT(FileText(Recording()), HasSubstr("tarvane-recording"));
}

TEST_F(RecordedCapture, HoldsEverythingAndIsNeverReplaced)
{
    std::map<std::string, int> kinds;
    std::ifstream file(Recording());
    for (std::string strLine; std::getline(file, strLine);)
        ++kinds[json::parse(strLine).value("kind", "header")];
    EXPECT_EQ(kinds["header"], 1);
    EXPECT_EQ(kinds["event"], kinds["reply"]);
    EXPECT_GE(kinds["event"], 4);
    EXPECT_GE(kinds["notification"], 4);
    EXPECT_GE(kinds["read"], 4);
    EXPECT_EQ(kinds["write"], 2);
    const std::string strBefore = FileText(Recording());
    for (const Ended& refused :
         {RunHost({"--record", Recording(), One()}), Link({"tracks", "--record", Recording()})})
    {
        EXPECT_EQ(refused.nExitCode, 2);
        EXPECT_THAT(refused.strError, HasSubstr("already"));
    }
    EXPECT_EQ(FileText(Recording()), strBefore);
}

TEST_F(ReplayProgram, MisbehavingPlugInIsRecordedToo)
{
    StartServer();
    EXPECT_EQ(RunHost({"--misbehave", "storm,index-never-negative", "--record", Recording(), One()})
                  .nExitCode,
              0);
    const std::string strText = FileText(Recording());
    EXPECT_THAT(strText, AllOf(HasSubstr("\"count\":"), HasSubstr("\"fNotDelivered\":0"),
                               HasSubstr("\"fNotDelivered\":1")));
    EXPECT_LT(std::count(strText.begin(), strText.end(), '\n'), 2000);
}

TEST_F(ReplayProgram, LinkRecordsItsEvents)
{
    StartServer();
    EXPECT_EQ(Link({"tracks", "--record", Recording()}).nExitCode, 0);
    KillServer();
    PlayServer();
    const Ended tracks = Link({"tracks"});
    EXPECT_EQ(tracks.nExitCode, 0);
    EXPECT_EQ(tracks.strOutput, "0\tDialogue\n1\tADR\n2\tFoley\n");
    EXPECT_EQ(PlayersEnd(), 0);
}

TEST_F(ReplayProgram, FailuresAreAnsweredAsRecorded)
{
    const json none = json::object();
    WriteRecording(EventLine(1, 0, "a()") + ReplyLine(1, 1, none, -600) + EventLine(2, 2, "b()") +
                   ReplyLine(2, 3, none, -1712, 60'000'000) + EventLine(3, 4, "c()") +
                   ReplyLine(3, 5, none) + EventLine(4, 6, "d()") +
                   ReplyLine(4, 7,
                             {{"Rslt", {{"type", "utxt"}, {"text", "?"}, {"hex", "00d8"}}},
                              {"Errr", TextParameter("no")}}));
    PlayServer({});
    EXPECT_EQ(RunScript("a()").nExitCode, 3);
    EXPECT_EQ(Link({"--timeout", "0.5", "run", "b()"}).nExitCode, 4);
    EXPECT_THAT(RunScript("c()").strError, HasSubstr("no 'Rslt'"));
    const Ended failed = RunScript("d()");
    EXPECT_EQ(failed.nExitCode, 1);
    EXPECT_THAT(failed.strError, HasSubstr("no"));
    EXPECT_EQ(PlayersEnd(), 0) << player->Output();
}

TEST_F(ReplayProgram, AnswersTakeAsLongAsRecordedUnlessFast)
{
    using Clock = std::chrono::steady_clock;
    WriteRecording(EventLine(1, 0, "a()") +
                   ReplyLine(1, 1, {{"Rslt", TextParameter("1\n")}}, 0, 2'000'000));
    PlayServer({});
    const auto began = Clock::now();
    EXPECT_EQ(RunScript("a()").strOutput, "1\n");
    EXPECT_GE(Clock::now() - began, std::chrono::seconds(2));
    EXPECT_EQ(PlayersEnd(), 0);
    PlayServer({"--fast"});
    EXPECT_EQ(RunScript("a()").strOutput, "1\n");
    EXPECT_EQ(PlayersEnd(), 0);
}

TEST_F(ReplayProgram, EventsAreSentAsFarApartAsRecordedUnlessFast)
{
    using Clock = std::chrono::steady_clock;
    StartServer();
    WriteRecording(EventLine(1, 5'000'000, "print(1)") +
                   ReplyLine(1, 5'000'001, {{"Rslt", TextParameter("1\n")}}) +
                   EventLine(2, 6'000'000, "print(2)") +
                   ReplyLine(2, 6'000'001, {{"Rslt", TextParameter("2\n")}}));
    const auto began = Clock::now();
    EXPECT_EQ(Replay({"--as", "host", Recording()}).nExitCode, 0);
    EXPECT_GE(Clock::now() - began, std::chrono::seconds(1));
}

TEST_F(ReplayProgram, DeletionsAreNotPlayedUnasked)
{
    StartServer();
    const std::string strDelete = "SelectScriptDocument() DeleteRegion(99)";
    WriteRecording(EventLine(1, 0, "print(1)") + ReplyLine(1, 1, {{"Rslt", TextParameter("1\n")}}) +
                   EventLine(2, 2, strDelete) + ReplyLine(2, 3, {{"Errr", TextParameter("no")}}));
    const Ended refused = Replay({"--as", "host", "--fast", Recording()});
    EXPECT_EQ(refused.nExitCode, 2);
    EXPECT_THAT(refused.strError, HasSubstr("delete what is in the session: 1; --yes to play"));
    const Ended played = Replay({"--as", "host", "--fast", "--yes", Recording()});
    EXPECT_THAT(played.strOutput, HasSubstr("1 of 2 events came out otherwise"));
}

TEST_F(ReplayProgram, ViewThatFallsSilentIsWaitedForAsLongAsAsked)
{
    WriteRecording(ExchangeLines(1, "a()", "1\n") + ExchangeLines(2, "b()", "2\n"));
    PlayServer({"--timeout", "0.3"});
    EXPECT_EQ(PlayersEnd(), 1);
    EXPECT_THAT(player->Output(), HasSubstr("event 2, at 0.002000 s: it did not come (b)"));
}

TEST_F(ReplayProgram, UnknownEventIsRefusedAndTheRestGoesOn)
{
    WriteRecording(ExchangeLines(1, "a()", "1\n"));
    PlayServer();
    EXPECT_EQ(RunScript("x()").nExitCode, 5);
    EXPECT_EQ(RunScript("a()").strOutput, "1\n");
    EXPECT_EQ(PlayersEnd(), 1);
    EXPECT_THAT(player->Output(), HasSubstr("does not have (x)"));
}

TEST_F(ReplayProgram, SecondServerIsRefused)
{
    StartServer();
    WriteRecording(ExchangeLines(1, "a()", "1\n"));
    const Ended refused = Replay({"--as", "server", Recording()});
    EXPECT_EQ(refused.nExitCode, 1);
    EXPECT_THAT(refused.strError, HasSubstr("another server answers"));
}

TEST_F(ReplayProgram, WithoutAServerTheFirstEventIsTheLast)
{
    WriteRecording(EventLine(1, 0, "a()") + ReplyLine(1, 1, json::object(), -600) +
                   ExchangeLines(2, "b()", "1\n") + ExchangeLines(3, "c()", "1\n"));
    const Ended ended = Replay({"--as", "host", "--fast", Recording()});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput,
                AllOf(HasSubstr("event 1, at 0.000000 s: it found no server then, and is not sent"),
                      HasSubstr("event 2, at 0.002000 s: it came out otherwise\n"
                                "  the status is -600, and 0 was recorded\n"),
                      HasSubstr("There is no server"), Not(HasSubstr("event 3"))));
}

TEST_F(ReplayProgram, TheGoodLinesOfADamagedRecordingArePlayed)
{
    StartServer();
    const std::string strLines = ExchangeLines(1, "print(1)", "1\n") + "{\"time\":nonsense\n" +
                                 ExchangeLines(2, "print(2)", "2\n");
    WriteRecording(strLines.substr(0, strLines.size() - 9));
    const Ended played = Replay({"--as", "host", "--fast", Recording()});
    EXPECT_EQ(played.nExitCode, 0);
    EXPECT_EQ(played.strOutput, "All 1 events came out as recorded.\n");
    EXPECT_THAT(played.strError, AllOf(HasSubstr("damaged, line 4: it is no whole line"),
                                       HasSubstr("lines left out: 2"),
                                       HasSubstr("without a reply in the recording: 1")));
}

TEST_F(ReplayProgram, WrongUseIsRefusedWithWords)
{
    WriteRecording(ExchangeLines(1, "a()", "1\n"));
    const std::string strMany = folder / "many.jsonl";
    std::string strOther = ExchangeLines(2, "b()", "2\n");
    strOther.replace(strOther.find("TkNe"), 4, "Othr");
    std::ofstream(strMany) << HeaderLine() << ExchangeLines(1, "a()", "1\n") << strOther;
    std::ofstream(folder / "empty.jsonl") << HeaderLine();
    struct Case
    {
        std::vector<std::string> options;
        const char* szWords;
    };
    for (const auto& [options, szWords] :
         {Case{{Recording()}, "one of --as and --html"},
          Case{{"--as", "host", "--html", folder / "x", Recording()}, "one of --as and --html"},
          Case{{"--as", "view", Recording()}, "server"}, Case{{"--as", "host"}, "FILE"},
          Case{{"--html", folder / "x", "--fast", Recording()}, "--as"},
          Case{{"--as", "host", "--map", "x", Recording()}, "write FROM=TO"},
          Case{{"--as", "host", "--map", "=x", Recording()}, "write FROM=TO"},
          Case{{"--as", "host", "--timeout", "0", Recording()}, "--timeout"},
          Case{{"--as", "host", folder / "none"}, "cannot read"},
          Case{{"--as", "host", folder.Path()}, "cannot read"},
          Case{{"--as", "host", One()}, "is no recording"},
          Case{{"--as", "host", strMany}, "more than one application"},
          Case{{"--as", "host", folder / "empty.jsonl"}, "nothing to play"}})
    {
        const Ended refused = Replay(options);
        EXPECT_EQ(refused.nExitCode, 2) << szWords;
        EXPECT_THAT(refused.strError,
                    AllOf(testing::StartsWith("tarvane-replay: "), HasSubstr(szWords)));
        EXPECT_EQ(refused.strOutput, "");
    }
}

TEST_F(ReplayProgram, ManualPageAndHelpHaveEveryOption)
{
    const std::string strHelp = Replay({"--help"}).strOutput;
    EXPECT_EQ(OptionsIn(strHelp),
              (std::set<std::string>{"--as", "--fast", "--help", "--html", "--map", "--record",
                                     "--timeout", "--version", "--yes"}));
    const std::string strPage = ManualPage(MAN_PAGE);
    std::set<std::string> options = OptionsIn(strPage);
    // What the text says of --record belongs to the programs that record.
    for (const std::string& strOption : OptionsIn(strHelp))
    {
        EXPECT_TRUE(options.count(strOption) == 1 || strOption == "--record") << strOption;
    }
    for (const char* szCode : {"0", "1", "2"})
        EXPECT_THAT(strPage, HasSubstr("\n.TP\n.B " + std::string(szCode) + "\n"));
    EXPECT_THAT(Replay({"--version"}).strOutput, testing::StartsWith("tarvane-replay "));
}
