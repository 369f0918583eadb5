// The program as it is run, on a bus of the test's own, with a server beside it.

#include "apps/conform/ServerPeer.h"
#include "apps/support/ChildProcess.h"
#include "tests/apps/conform/ConformFixture.h"
#include "tests/apps/link/ScriptedServer.h"
#include "tests/apps/support/ManualPage.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>

#include <map>
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

struct Misbehaviour
{
    const char* szRule;      // the first that it breaks
    const char* szFrom = ""; // the event from which on
};

// The 56th command comes between two looks at the list of tracks.
const std::map<std::string, Misbehaviour> kMisbehaviours{
    {"no-reply", {"S1"}},
    {"late-reply", {"S1"}},
    {"exit-before-effect", {"S1"}},
    {"exit-after-effect", {"S1"}},
    {"hang", {"S1"}},
    {"no-result", {"S1"}},
    {"wrong-type", {"S1"}},
    {"empty-result", {"S1"}},
    {"lone-surrogates", {"S1"}},
    {"huge-reply", {"S1"}},
    {"error-beside-result", {"S7"}},
    {"refusal-with-result", {"S33"}},
    {"document-vanishes", {"S14", "@56"}},
    {"track-vanishes", {"S14", "@56"}},
    {"tracks-move", {"S14", "@56"}},
    {"frozen-counter", {"S24"}},
    {"event-flood", {"S31"}},
};

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
        const int nExitCode = conform.WaitForEnd(kAnyTime).value_or(-1);
        return {nExitCode, conform.Output(), conform.ErrorOutput()};
    }

    // The first broken rule of the reference server when it misbehaves.
    std::string FirstBroken(const std::string& strFault)
    {
        StartServer({"--misbehave", strFault, "--delay", "60"});
        const std::vector<std::string> rules = Examine({"--timeout", "1"}).Rules("broken");
        return rules.empty() ? "none" : rules.front();
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
    EXPECT_EQ(ended.Rules("kept").size(), 34U);
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
    EXPECT_THAT(ended.strError, HasSubstr("no server"));
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
              34U);
    EXPECT_THAT(ended.Rules("not examined"), Contains("S32"));
}

TEST_F(ConformProgram, EachMisbehaviourBreaksItsRule)
{
    for (const auto& [strFault, misbehaviour] : kMisbehaviours)
        EXPECT_EQ(FirstBroken(strFault + misbehaviour.szFrom), misbehaviour.szRule) << strFault;
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
    EXPECT_THAT(ended.strOutput, HasSubstr("its first answer came 10."));
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

TEST_F(ConformProgram, NoMisbehaviourIsForgotten)
{
    std::set<std::string> held{"slow-start"};
    for (const auto& [strFault, misbehaviour] : kMisbehaviours)
        held.insert(strFault);
    Tarvane::CChildProcess server({SERVER_PROGRAM, "--misbehave", "nothing-like-it"});
    server.WaitForEnd(kAnyTime);
    const std::string strError = server.ErrorOutput();
    const std::string strBefore = "the names are ";
    std::istringstream names(strError.substr(strError.find(strBefore) + strBefore.size()));
    std::set<std::string> known;
    for (std::string strName; names >> strName && known.size() < held.size();)
        known.insert(strName.substr(0, strName.find_first_not_of("abcdefghijklmnopqrstuvwxyz-")));
    EXPECT_EQ(known, held) << strError;
}

TEST_F(ConformProgram, SmallestServerKeepsEveryMust)
{
    Start({SMALLEST_SERVER});
    const ConformEnded ended = Examine();
    EXPECT_EQ(ended.nExitCode, 0) << ended.strOutput;
    // As its page says.
    EXPECT_THAT(ended.Rules("broken"), testing::ElementsAre("S12", "S24", "S25", "S26", "S27"));
    EXPECT_THAT(ended.Rules("not examined"), testing::ElementsAre("S28", "S29", "S32"));
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
    EXPECT_THAT(ended.strOutput, HasSubstr("was answered with \"1\\n\""));
    EXPECT_THAT(ended.strOutput, HasSubstr("Why it matters: a command without a readable 'Rslt'"));
    EXPECT_THAT(ended.strOutput,
                HasSubstr("S2 not examined: The server MUST end what each print writes with a line "
                          "end.\n    no rule can be examined without the first\nS3 "));
    EXPECT_THAT(ended.strOutput, HasSubstr("\nMUST: "));
}

TEST_F(ConformProgram, ManualPageHasEveryOption)
{
    const std::string strPage = ManualPage(MAN_PAGE);
    std::set<std::string> options = OptionsIn(RunConform({"--help"}).strOutput);
    options.merge(OptionsIn(RunConform({"server", "--help"}).strOutput));
    options.merge(OptionsIn(RunConform({"plugin", "--help"}).strOutput));
    EXPECT_EQ(OptionsIn(strPage), options);
}
