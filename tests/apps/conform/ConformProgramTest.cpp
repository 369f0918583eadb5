// The program as it is run, on a bus of the test's own, with a server beside it.

#include "apps/conform/server/ServerPeer.h"
#include "apps/support/process/ChildProcess.h"
#include "apps/support/program/ProgramVersion.h"
#include "tests/apps/conform/ConformFixture.h"
#include "tests/apps/link/ScriptedServer.h"
#include "tests/apps/support/ManualPage.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace TarvaneTest;
using testing::Contains;
using testing::HasSubstr;

namespace
{

constexpr std::chrono::seconds kUntilItWaits{2};
constexpr SInt32 kAnyTicks = 12000;

class ConformProgram : public testing::Test
{
protected:
    static ConformEnded Examine(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"server", "--json"});
        return RunConform(arguments);
    }

    static std::vector<std::string> ReferenceServer(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {SERVER_PROGRAM, "--track", "Vox", "--track",
                                             "V\xC3\xB6x", "--link-offset", "1.25"});
        return arguments;
    }

    void StartServer(std::vector<std::string> arguments = {})
    {
        Start(ReferenceServer(std::move(arguments)));
    }

    // The reference server, which is started once the examination waits for it.
    ConformEnded ExamineFromItsStart(std::vector<std::string> arguments = {})
    {
        Tarvane::CChildProcess conform({CONFORM_PROGRAM, "server", "--json", "--wait", "100"});
        std::this_thread::sleep_for(kUntilItWaits);
        m_server = std::make_unique<Tarvane::CChildProcess>(ReferenceServer(std::move(arguments)));
        return {ToItsEnd(conform)};
    }

    // A server that answers by rules, each a part of a script and what comes of it.
    void StartScripted(std::vector<std::string> rules)
    {
        rules.insert(rules.begin(), SCRIPTED_SERVER_PROGRAM);
        Start(rules);
    }

    void Start(const std::vector<std::string>& arguments)
    {
        m_server.reset();
        m_server = std::make_unique<Tarvane::CChildProcess>(arguments);
        ASSERT_TRUE(m_server->WaitForLine("ready", kAnyTime)) << m_server->ErrorOutput();
    }

    TarvaneTests::PrivateBus m_bus;
    CTemporaryFolder m_folder;
    std::unique_ptr<Tarvane::CChildProcess> m_server;
};

} // namespace

TEST_F(ConformProgram, ReferenceServerKeepsEveryRule)
{
    const ConformEnded ended = ExamineFromItsStart();
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.Rules("broken"), testing::IsEmpty()) << ended.strOutput;
    EXPECT_THAT(ended.Rules("not examined"), testing::IsEmpty()) << ended.strOutput;
    EXPECT_EQ(ended.Rules("kept").size(), 43U);
}

TEST_F(ConformProgram, LeavesATrackWithoutRegions)
{
    StartServer();
    EXPECT_EQ(Examine().nExitCode, 0);
    // A track that held regions would be refused.
    EXPECT_EQ(Examine().nExitCode, 0);
}

TEST_F(ConformProgram, TrackWithRegionsIsRefusedUnlessTheyMayGo)
{
    StartScripted({"GetTrackCount=>2\n", "GetRegionCount=>3\n", "print=>1\n"});
    const ConformEnded refused = Examine();
    EXPECT_EQ(refused.nExitCode, 2);
    EXPECT_THAT(refused.strError, HasSubstr("track 1 has regions"));
    EXPECT_EQ(Examine({"--clear"}).nExitCode, 1);
}

TEST_F(ConformProgram, ControlCharactersOfAServerAreToldAsPoints)
{
    StartScripted({"GetLinkVersion=>a\x1b[2Jb\n", "GetTrackCount=>2\n", "GetRegionCount=>0\n",
                   "=>1\x1b[31m\n"});
    const std::string strOutput = RunConform({"server", "--timeout", "5"}).strOutput;
    EXPECT_THAT(strOutput, HasSubstr("1.[31m"));
    EXPECT_EQ(strOutput.find('\x1b'), std::string::npos) << strOutput;
}

TEST_F(ConformProgram, TrackThatIsNotThereIsRefused)
{
    StartServer();
    const ConformEnded ended = Examine({"--track", "2"});
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("2 tracks"));
}

TEST_F(ConformProgram, RegionsOfAServerThatDoesNotCountThemAreNotPutAtRisk)
{
    StartScripted({"AddAudioRegion(=>die", "DeleteRegion(=>die", "GetTrackCount=>2\n",
                   "GetRegionCount=>error:what is that?", "print=>1\n"});
    const ConformEnded ended = Examine();
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_TRUE(m_server->IsRunning());
    EXPECT_THAT(ended.Rules("not examined"), Contains("S19"));
}

TEST_F(ConformProgram, WithoutAServerNothingIsExamined)
{
    const ConformEnded ended = Examine();
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("no server receives events as "
                                          "org.tarvane.AppleEvent._546b4e65 on the session bus"));
    EXPECT_THAT(ended.strError, HasSubstr("TARVANE_AE_TRACE=1"));
    EXPECT_EQ(ended.strOutput, "");
}

TEST_F(ConformProgram, OnceAServerIsGoneTheOtherRulesAreNotExamined)
{
    StartScripted({"'a'=>die", "GetTrackCount=>1\n", "GetRegionCount=>0\n", "print(0)=>0\n",
                   "print(1)=>1\n", "print(2)=>2\n", "print(3)=>3\n", "print(4)=>4\n"});
    const ConformEnded ended = Examine();
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.Rules("kept"), testing::ElementsAre("S1"));
    EXPECT_THAT(ended.Rules("broken"), testing::ElementsAre("S2"));
    EXPECT_EQ(ended.Rules("broken").size() + ended.Rules("not examined").size() +
                  ended.Rules("kept").size(),
              43U);
    EXPECT_THAT(ended.Rules("not examined"), Contains("S32"));
}

TEST_F(ConformProgram, EventsOfOthersAreNotTheServers)
{
    StartServer();
    std::jthread other(
        [](const std::stop_token& stop)
        {
            const Tarvane::Conform::CServerPeer peer(kAnyTicks);
            while (!stop.stop_requested())
                peer.Send("print(1)\n");
        });
    const ConformEnded ended = Examine();
    EXPECT_THAT(ended.Rules("kept"), Contains("S31")) << ended.strOutput;
}

TEST_F(ConformProgram, ServerThatStartsSlowlyBreaksItsRule)
{
    const ConformEnded ended = ExamineFromItsStart({"--misbehave", "slow-start", "--delay", "10"});
    EXPECT_THAT(ended.Rules("broken"), testing::ElementsAre("S32")) << ended.strOutput;
    EXPECT_THAT(ended.strOutput, testing::ContainsRegex("its first answer came [1-9][0-9]+\\."));
    EXPECT_EQ(ended.nExitCode, 0); // It is a SHOULD.
}

TEST_F(ConformProgram, StartThatWasNotSeenIsNotExamined)
{
    StartServer();
    EXPECT_THAT(Examine({"--wait", "60"}).Rules("not examined"), testing::ElementsAre("S32"));
}

TEST_F(ConformProgram, ServerThatIsWaitedForInVainIsNone)
{
    m_server = std::make_unique<Tarvane::CChildProcess>(
        std::vector<std::string>{SERVER_PROGRAM, "--misbehave", "slow-start", "--delay", "60"});
    const ConformEnded ended = Examine({"--wait", "0.5"});
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("--wait"));
}

TEST_F(ConformProgram, WithoutAnOffsetTheRateThatItCountsAtIsNotExamined)
{
    Start({SERVER_PROGRAM, "--track", "Vox", "--track", "ADR"});
    const ConformEnded ended = Examine();
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.Rules("not examined"), testing::ElementsAre("S42", "S32"));
    EXPECT_THAT(ended.strOutput, HasSubstr("the offset between the timelines is 0"));
    EXPECT_EQ(Examine({"--no-offset"}).nExitCode, 0);
}

TEST_F(ConformProgram, WithOneTrackItsApartnessIsNotExamined)
{
    Start({SERVER_PROGRAM, "--track", "Vox", "--link-offset", "1"});
    const ConformEnded ended = Examine();
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.Rules("not examined"), testing::ElementsAre("S37", "S32"));
}

TEST_F(ConformProgram, ReportIsAPageWithVersionsWhatWasTriedAndEachRule)
{
    StartServer();
    const std::string strFile = m_folder.Path() / "report.html";
    const ConformEnded ended = RunConform({"server", "--report", strFile});
    EXPECT_THAT(ended.strOutput, HasSubstr(std::string("\nVersion: ") + Tarvane::ProgramVersion()));
    const std::string strPage = FileText(strFile.c_str());
    EXPECT_THAT(strPage, testing::StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(strPage, HasSubstr("<h1>The server conforms</h1>"));
    EXPECT_THAT(strPage, HasSubstr(std::string("version ") + Tarvane::ProgramVersion()));
    EXPECT_THAT(strPage, HasSubstr("<p class=\"line\">Tried: 4 regions side by side</p>"));
    EXPECT_THAT(strPage, HasSubstr("<td>S43</td><td class=\"kept\">kept</td>"));
}

TEST_F(ConformProgram, ReportThatCannotBeWrittenIsRefusedBeforeAnythingIsExamined)
{
    const ConformEnded ended = RunConform({"server", "--report", "/there/is/none/report.html"});
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("no report can be written to /there/is/none"));
}

TEST_F(ConformProgram, MarkupInWhatAServerSaysIsNoneInTheReport)
{
    StartScripted({"GetTrackCount=>2\n", "GetRegionCount=>0\n", "print=><b>&\n"});
    const std::string strFile = m_folder.Path() / "report.html";
    RunConform({"server", "--report", strFile});
    EXPECT_THAT(FileText(strFile.c_str()), HasSubstr("&lt;b&gt;&amp;"));
    EXPECT_THAT(FileText(strFile.c_str()), testing::Not(HasSubstr("<b>")));
}

TEST_F(ConformProgram, TellsWhatItTried)
{
    StartServer();
    const ConformEnded ended = RunConform({"server"});
    for (const char* szTried :
         {"    Tried: 4 regions side by side\n", "    Tried: tracks 1 and 0\n",
          "a path of 1023 bytes", "24 bits, 32-bit float, 2 channels, 8 channels",
          "an offset of 1.25 s", "44100, 88200, 96000, 176400, 192000", "-96000, 3000000000"})
        EXPECT_THAT(ended.strOutput, HasSubstr(szTried));
}

TEST_F(ConformProgram, SmallestServersKeepEveryMust)
{
    for (const std::vector<std::string>& program :
         {std::vector<std::string>{SMALLEST_SERVER}, {PYTHON, SMALLEST_PYTHON_SERVER}})
    {
        Start(program);
        const ConformEnded ended = Examine();
        EXPECT_EQ(ended.nExitCode, 0) << ended.strOutput;
        // As their page says.
        EXPECT_THAT(ended.Rules("broken"), testing::ElementsAre("S12", "S24", "S25", "S26", "S27"));
        EXPECT_THAT(ended.Rules("not examined"), testing::ElementsAre("S28", "S29", "S32"));
        // The exchange of each names what is missing, also where the link has sent it.
        EXPECT_THAT(ended.Told("S12"), HasSubstr("\\nGetSampleRate nil\\nRegionRender nil\\n"));
        EXPECT_THAT(ended.Told("S27"), HasSubstr("idProcess = CreateProcess("));
        EXPECT_THAT(ended.Told("S27"), HasSubstr("'Errr' \"script:10: attempt to call"));
    }
}

TEST_F(ConformProgram, RulesAreListedWithTheirReasonsAndNothingIsExamined)
{
    const ConformEnded ended = RunConform({"server", "--list"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_THAT(ended.strOutput, HasSubstr("S1 The server MUST answer"));
    EXPECT_THAT(ended.strOutput, HasSubstr("\n    Why: "));
    EXPECT_THAT(ended.strOutput, HasSubstr("S32 "));
}

TEST_F(ConformProgram, TellsInWordsWhatIsBrokenAndWhy)
{
    StartScripted({"GetTrackCount=>2\n", "GetRegionCount=>0\n", "print=>1\n"});
    const ConformEnded ended = RunConform({"server"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, HasSubstr("S1 broken: The server MUST answer every event"));
    EXPECT_THAT(ended.strOutput, HasSubstr("was answered with \"1\\n\"\n"
                                           "    Sent: \"print(0)\\n\"\n"
                                           "    Came back: 'Rslt' \"1\\n\", 'Errr' none\n"));
    EXPECT_THAT(ended.strOutput, HasSubstr("Why it matters: a command without a readable 'Rslt'"));
    EXPECT_THAT(ended.strOutput, HasSubstr("\nMUST: "));
}

TEST_F(ConformProgram, ReportCountsOnALineEachAndTellsWhyABrokenRuleMatters)
{
    StartScripted({"GetTrackCount=>2\n", "GetRegionCount=>0\n", "print=>1\n"});
    const std::string strFile = m_folder.Path() / "report.html";
    RunConform({"server", "--report", strFile});
    const std::string strPage = FileText(strFile.c_str());
    EXPECT_THAT(strPage, HasSubstr("p.summary { white-space: pre-line; }"));
    EXPECT_THAT(strPage,
                testing::ContainsRegex("<p class=\"summary\">MUST: 0 kept, 1 broken, [0-9]+ "
                                       "not examined\nSHOULD: 0 kept"));
    EXPECT_THAT(strPage, HasSubstr("<p class=\"line\">Why it matters: a command without a "
                                   "readable 'Rslt' has failed"));
}

TEST_F(ConformProgram, WhatStandsInTheWayOfAllOthersStandsLastAndAlone)
{
    StartScripted({"GetTrackCount=>2\n", "GetRegionCount=>0\n", "print=>1\n"});
    const std::string strText = RunConform({"server"}).strOutput;
    const std::size_t nNotExamined = strText.find(" not examined: no rule can be examined without");
    EXPECT_THAT(strText, HasSubstr("S2, S3, S4"));
    EXPECT_LT(nNotExamined, strText.find("S1 broken"));
    EXPECT_EQ(std::count(strText.begin(), strText.end(), '\n'), 8) << strText;
}

TEST_F(ConformProgram, AnErrorOfTheBusIsToldWithItsNameItsTextAndItsLikelyCause)
{
    // Owns the name, and has neither the object nor the method.
    m_server = std::make_unique<Tarvane::CChildProcess>(
        std::vector<std::string>{PYTHON, "-c",
                                 "import asyncio\n"
                                 "from dbus_next.aio import MessageBus\n"
                                 "async def main():\n"
                                 "    bus = await MessageBus().connect()\n"
                                 "    await bus.request_name('org.tarvane.AppleEvent._546b4e65')\n"
                                 "    print('ready', flush=True)\n"
                                 "    await bus.wait_for_disconnect()\n"
                                 "asyncio.run(main())\n"});
    ASSERT_TRUE(m_server->WaitForLine("ready", kAnyTime)) << m_server->ErrorOutput();
    const std::string strText = RunConform({"server"}).strOutput;
    EXPECT_THAT(strText, HasSubstr("    Came back: status -1708. The server's name is there"));
    EXPECT_THAT(strText, HasSubstr("    The bus says: org.freedesktop.DBus.Error.UnknownMethod: "));
}

TEST_F(ConformProgram, ManualPageHasEveryOption)
{
    const std::string strPage = ManualPage(MAN_PAGE);
    std::set<std::string> options = OptionsIn(RunConform({"--help"}).strOutput);
    options.merge(OptionsIn(RunConform({"server", "--help"}).strOutput));
    options.merge(OptionsIn(RunConform({"plugin", "--help"}).strOutput));
    EXPECT_EQ(OptionsIn(strPage), options);
}
