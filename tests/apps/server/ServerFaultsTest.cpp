// Faults on request, at the events that they are planned for.
#include "apps/server/database/SessionStore.h"
#include "tests/apps/server/ServerFixture.h"

#include <csignal>
#include <cstdio>
#include <fstream>

namespace TarvaneTest
{
namespace
{

using namespace Tarvane::Server;

constexpr int kExitByFault = 70;
constexpr SInt32 kShortTicks = 30;

class ServerFaults : public ServerFixture
{
protected:
    std::size_t StoredRegions() const
    {
        return CSessionStore(m_strSession).Load()->GetDocument(DocumentKind::Script).regions.size();
    }

    Child StartWith(const std::string& strFault) const
    {
        return Start({"--session", m_strSession, "--track", "Vox", "--misbehave", strFault});
    }
};

TEST_F(ServerFaults, ExitBeforeTheEffectLeavesNone)
{
    const Child server = StartWith("exit-before-effect@2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000)).nStatus, connectionInvalid);
    EXPECT_EQ(server->WaitForEnd(kAnyTime), kExitByFault);
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(ServerFaults, ExitAfterTheEffectLeavesIt)
{
    const Child server = StartWith("exit-after-effect@2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000)).nStatus, connectionInvalid);
    EXPECT_EQ(server->WaitForEnd(kAnyTime), kExitByFault);
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(ServerFaults, AHangNeverAnswersAndKeepsTheName)
{
    const Child server = StartWith("hang@2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000), kShortTicks).nStatus, errAETimeout);
    EXPECT_EQ(SendScript("print(1)", kShortTicks).nStatus, errAETimeout);
    EXPECT_TRUE(server->IsRunning());
    EXPECT_EQ(StoredRegions(), 1u);
    server->Terminate();
    EXPECT_EQ(server->WaitForEnd(kAnyTime), 0) << server->ErrorOutput();
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(ServerFaults, ASlowStartIsOnTheBusWhenTheDelayIsOver)
{
    const auto begin = std::chrono::steady_clock::now();
    const Child server = Start({"--misbehave", "slow-start", "--delay", "0.3"});
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_EQ(SendScript("print(1)").result, "1\n");
}

TEST_F(ServerFaults, ASlowStartCanBeBrokenOff)
{
    const Child server = StartAnyway({"--misbehave", "slow-start", "--delay", "100000"});
    EXPECT_EQ(SendScript("print(1)").nStatus, procNotFound);
    server->Terminate();
    // It may not have begun to listen for signals yet.
    EXPECT_THAT(server->WaitForEnd(kAnyTime), testing::AnyOf(0, 128 + SIGTERM));
}

TEST_F(ServerFaults, NoReplyIsAnEffectThatNobodyHearsOf)
{
    const Child server = StartWith("no-reply@2-2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000), kShortTicks).nStatus, errAETimeout);
    EXPECT_EQ(SendScript("print(1)").result, "1\n") << "the others are served";
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(ServerFaults, ALateReplyIsDroppedAndTheNextOneIsTheNextCommands)
{
    const Child server = Start({"--misbehave", "late-reply@1-1", "--delay", "1"});
    EXPECT_EQ(SendScript("print('late')", kShortTicks).nStatus, errAETimeout);
    EXPECT_EQ(SendScript("print('next')").result, "next\n");
}

TEST_F(ServerFaults, RepliesCanBeWrongInManyWays)
{
    const Child server =
        Start({"--misbehave", "no-result@1-1", "--misbehave", "empty-result@2-2", "--misbehave",
               "error-beside-result@3-3", "--misbehave", "lone-surrogates@4-4", "--misbehave",
               "huge-reply@5-5", "--misbehave", "wrong-type@6-6"});
    EXPECT_EQ(SendScript("print(1)").result, std::nullopt);
    EXPECT_EQ(SendScript("print(1)").result, "");
    const CScriptAnswer beside = SendScript("print(1)");
    EXPECT_EQ(beside.result, "1\n");
    EXPECT_EQ(beside.error, "this error was planned");
    EXPECT_EQ(SendScript("print(1)").result, "1\n\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(SendScript("print(1)").result->size(), 8'000'000u);
    EXPECT_EQ(SendScript("print(1)").result, std::nullopt);
    EXPECT_EQ(SendScript("print(1)").result, "1\n");
}

TEST_F(ServerFaults, ADocumentVanishesBetweenTwoCommandsAndComesBack)
{
    const Child server = StartWith("document-vanishes@2-2");
    const std::string strAsk = "print(SelectScriptDocument())";
    EXPECT_EQ(SendScript(strAsk).result, "true\n");
    EXPECT_EQ(SendScript(strAsk).result, "false\n");
    EXPECT_EQ(SendScript(strAsk).result, "true\n");
}

TEST_F(ServerFaults, TracksVanishAndMoveBetweenTwoCommands)
{
    const Child server =
        Start({"--session", m_strSession, "--track", "Vox", "--track", "Bass", "--track", "Drums",
               "--misbehave", "track-vanishes@2", "--misbehave", "tracks-move@3"});
    const std::string strList = "SelectScriptDocument() for n = 0, GetTrackCount() - 1 do "
                                "print(GetTrackName(GetTrackID(n))) end";
    EXPECT_EQ(SendScript(strList).result, "Vox\nBass\nDrums\n");
    EXPECT_EQ(SendScript(strList).result, "Vox\nBass\n");
    EXPECT_EQ(SendScript(strList).result, "Bass (renamed)\nVox (renamed)\n");
    EXPECT_EQ(SendScript(strList).result, "Bass (renamed)\nVox (renamed)\n");
}

TEST_F(ServerFaults, TheUpdateCounterStandsStill)
{
    const Child server = StartWith("frozen-counter@2");
    EXPECT_EQ(SendScript("print(GetUpdateCount())").result, "0\n");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript("print(GetUpdateCount())").result, "0\n");
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(ServerFaults, AFloodOfItsOwnEventsLeavesRoomForItsClients)
{
    const Child server = StartWith("event-flood");
    for (int n = 0; n < 20; ++n)
        EXPECT_EQ(SendScript(Add(n * 1000)).nStatus, noErr);
    EXPECT_EQ(StoredRegions(), 20u);
    server->Terminate();
    EXPECT_EQ(server->WaitForEnd(kAnyTime), 0) << server->ErrorOutput();
}

TEST_F(ServerFaults, ASeedDrawsTheSameOnesAgain)
{
    const auto drawn = [this](const std::string& strSeed)
    {
        const std::string strLog = Path("log-" + strSeed);
        std::remove(strLog.c_str());
        const Child server = Start(
            {"--misbehave", "no-result,error-beside-result", "--seed", strSeed, "--log", strLog});
        for (int n = 0; n < 40; ++n)
            SendScript("print(1)");
        std::ifstream log(strLog);
        std::vector<std::string> faults;
        for (std::string strLine; std::getline(log, strLine);)
        {
            if (const auto nAt = strLine.find(" event "); strLine.find(" faults ") != strLine.npos)
                faults.push_back(strLine.substr(nAt));
        }
        return faults;
    };
    const std::vector<std::string> one = drawn("1");
    EXPECT_FALSE(one.empty());
    EXPECT_LT(one.size(), 40u);
    EXPECT_EQ(drawn("1"), one);
    EXPECT_NE(drawn("2"), one);
}

TEST_F(ServerFaults, TheNextRunIsFreeOfThem)
{
    {
        const Child server = StartWith("exit-after-effect@1");
        EXPECT_EQ(SendScript(Add(0)).nStatus, connectionInvalid);
        EXPECT_EQ(server->WaitForEnd(kAnyTime), kExitByFault);
    }
    const Child server = Start({"--session", m_strSession});
    EXPECT_EQ(SendScript("SelectScriptDocument() print(CheckForDuplicateRegion(GetTrackID(0), \"" +
                         m_strTake + "\",0,0,100))")
                  .result,
              "1\n");
}

} // namespace
} // namespace TarvaneTest
