// Real servers on a bus of the test program's own.
#pragma once

#include "apps/support/process/ChildProcess.h"
#include "tests/apps/server/ScriptClient.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace TarvaneTest
{

constexpr std::chrono::seconds kAnyTime{60};

/// The bus of all tests of the program.
TarvaneTests::PrivateBus& Bus();

class ServerFixture : public testing::Test
{
protected:
    using Child = std::unique_ptr<Tarvane::CChildProcess>;

    ServerFixture() { Bus(); }

    /// A server that need not come up. prefix: a program that becomes the server, with its options.
    static Child StartAnyway(const std::vector<std::string>& options,
                             std::vector<std::string> prefix = {})
    {
        prefix.push_back(SERVER_PROGRAM);
        prefix.insert(prefix.end(), options.begin(), options.end());
        return std::make_unique<Tarvane::CChildProcess>(prefix);
    }

    /// A server that answers.
    static Child Start(const std::vector<std::string>& options,
                       const std::vector<std::string>& prefix = {})
    {
        Child server = StartAnyway(options, prefix);
        EXPECT_TRUE(server->WaitForLine("ready", kAnyTime)) << server->ErrorOutput();
        return server;
    }

    /// Runs a server that ends by itself.
    static Ended RunToEnd(const std::vector<std::string>& options,
                          const std::vector<std::string>& prefix = {})
    {
        Child server = StartAnyway(options, prefix);
        return ToItsEnd(*server);
    }

    std::string Path(const std::string& strName) const { return (m_folder / strName).string(); }

    /// A script that adds the take to the first track.
    std::string Add(std::int64_t nPosition) const
    {
        return "if SelectScriptDocument() then\nidTrack = GetTrackID(0)\nAddAudioRegion(idTrack, "
               "\"" +
               m_strTake + "\", true, false, " + std::to_string(nPosition) + ",0,100)\nend\n";
    }

    CTemporaryFolder m_folder;
    const std::string m_strTake = MakeSound(m_folder / "take.wav", Noise(100));
    const std::string m_strSession = Path("session");
};

} // namespace TarvaneTest
