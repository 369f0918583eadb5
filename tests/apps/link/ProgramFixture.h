// The program as it is run, on a bus of the test's own, with a server beside it.
#pragma once

#include "apps/support/process/ChildProcess.h"
#include "tests/apps/link/ScriptedServer.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"
#include "tests/apps/support/sound/SoundFixture.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace TarvaneTest
{

constexpr std::chrono::seconds kAnyTime{100};

class ProgramTest : public testing::Test
{
protected:
    using Child = std::unique_ptr<Tarvane::CChildProcess>;

    /// The takes that wait are those of the test, not those that another program leaves.
    ProgramTest() { ::setenv("XDG_STATE_HOME", (m_folder / "state").c_str(), 1); }

    struct Ended : TarvaneTest::Ended
    {
        nlohmann::json Json() const { return nlohmann::json::parse(strOutput); }
        nlohmann::json Findings() const { return Json()["findings"]; }
    };

    static Child StartLink(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), LINK_PROGRAM);
        return std::make_unique<Tarvane::CChildProcess>(arguments);
    }

    static Ended ToItsEnd(const Child& link) { return {TarvaneTest::ToItsEnd(*link)}; }

    static Ended RunLink(const std::vector<std::string>& arguments)
    {
        return ToItsEnd(StartLink(arguments));
    }

    static Child StartServer(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), SERVER_PROGRAM);
        return Ready(std::make_unique<Tarvane::CChildProcess>(arguments));
    }

    static Child StartScripted(std::vector<std::string> rules)
    {
        rules.insert(rules.begin(), SCRIPTED_SERVER_PROGRAM);
        return Ready(std::make_unique<Tarvane::CChildProcess>(rules));
    }

    TarvaneTests::PrivateBus m_bus;
    CTemporaryFolder m_folder;

private:
    static Child Ready(Child server)
    {
        EXPECT_TRUE(server->WaitForLine("ready", kAnyTime)) << server->ErrorOutput();
        return server;
    }
};

/// The real server with two tracks and a session that can be looked into, and a take to send.
class RealServerTest : public ProgramTest
{
protected:
    static constexpr int kScriptDocument = 0;
    static constexpr int kAudioSuiteDocument = 1;

    RealServerTest()
    {
        WriteSound(m_strTake, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 4800);
        m_server = StartServer({"--session", m_strSession, "--track", "Vox", "--track",
                                "V\xC3\xB6x \xE5\xA3\xB0", "--link-offset", "1.25"});
    }

    void SendTake(int nTrack, const std::string& strPosition, const std::string& strFlag = "--json")
    {
        EXPECT_EQ(RunLink({strFlag, "send", m_strTake, "--track", std::to_string(nTrack),
                           "--position", strPosition})
                      .nExitCode,
                  0);
    }

    nlohmann::json Session() const
    {
        Tarvane::CChildProcess listing({SERVER_PROGRAM, "--list-session", m_strSession, "--json"});
        EXPECT_EQ(listing.WaitForEnd(kAnyTime), 0) << listing.ErrorOutput();
        return nlohmann::json::parse(listing.Output());
    }

    nlohmann::json Track(int nTrack, int nDocument = kScriptDocument) const
    {
        return Session()["documents"][nDocument]["tracks"][nTrack];
    }

    const std::string m_strSession = (m_folder / "session").string();
    const std::string m_strTake = (m_folder / "take 1.wav").string();
    Child m_server;
};

} // namespace TarvaneTest
