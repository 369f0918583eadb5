// The host with another maker's plug-in: --plugin.
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

using namespace Tarvane;
using TarvaneTest::Ended;
using TarvaneTest::RunToEnd;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

constexpr std::chrono::seconds kLong(120);

class MakersPlugIn : public testing::Test
{
protected:
    MakersPlugIn() { ::setenv("TMPDIR", folder.Path().c_str(), 1); }
    ~MakersPlugIn() override
    {
        ::unsetenv("TMPDIR");
        ::unsetenv("TARVANE_MISBEHAVE");
    }

    void StartServer()
    {
        server.emplace(std::vector<std::string>{SERVER_PROGRAM, "--session",
                                                folder / "session.tarvane", "--track", "Dialogue",
                                                "--track", "ADR"});
        ASSERT_TRUE(server->WaitForLine("ready", kLong)) << server->ErrorOutput();
    }

    static Ended RunHost(const std::string& strLibrary, std::vector<std::string> options = {})
    {
        options.insert(options.begin(), {HOST_PROGRAM, "--plugin", strLibrary, "--headless"});
        return RunToEnd(options);
    }

    static std::string RegionsOn(int nTrack)
    {
        return RunToEnd({LINK_PROGRAM, "run",
                         "if SelectScriptDocument() then print(GetRegionCount(GetTrackID(" +
                             std::to_string(nTrack) + "))) end"})
            .strOutput;
    }

    TarvaneTest::CTemporaryFolder folder;
    TarvaneTests::PrivateBus bus;
    std::optional<CChildProcess> server;
};

} // namespace

TEST_F(MakersPlugIn, IsArmedCapturesOnceAndItsTakeIsPlacedOnTheTrackThatWasAskedFor)
{
    StartServer();
    const Ended ended = RunHost(SMALLEST_SIGNAL_SIDE, {"--track", "1"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.strOutput,
                AllOf(HasSubstr("  length       0.100 s, 4800 samples at 48000 Hz\n"),
                      HasSubstr("  sent to      track 1 \"ADR\"\n"),
                      HasSubstr("  outcome      delivered\n")));
    EXPECT_EQ(RegionsOn(0), "0\n");
    EXPECT_EQ(RegionsOn(1), "1\n");
}

TEST_F(MakersPlugIn, ATakeThatIsNotDeliveredIsToldWithWhatTheViewSays)
{
    const Ended ended = RunHost(SIGNAL_SIDE);
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, AllOf(HasSubstr("  outcome      not delivered\n"),
                                       HasSubstr("Error - Tarvane not running.")));
}

// Who plays writes into a folder that may be everybody's.
TEST_F(MakersPlugIn, NothingIsWrittenWhereALinkOfSomebodyElsesPoints)
{
    for (const char* szGuessed : {"played.wav", "take.wav", "take-001.wav"})
    {
        std::filesystem::create_symlink(folder / "mine", folder / szGuessed);
    }
    EXPECT_THAT(RunHost(SIGNAL_SIDE).strOutput, HasSubstr("4800 samples at 48000 Hz\n"));
    EXPECT_FALSE(std::filesystem::exists(folder / "mine"));
}

TEST_F(MakersPlugIn, OneWhoseCaptureIsNeverAcknowledgedIsGivenUp)
{
    StartServer();
    ::setenv("TARVANE_MISBEHAVE", "elements-unannounced", 1);
    const Ended ended = RunHost(SIGNAL_SIDE, {"--ack-timeout", "3"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strError, HasSubstr("no capture was acknowledged in time"));
}

TEST_F(MakersPlugIn, WhatIsNoPlugInIsWrongUse)
{
    const Ended missing = RunHost("/nowhere.so");
    EXPECT_EQ(missing.nExitCode, 2);
    EXPECT_THAT(missing.strError,
                StartsWith("tarvane-host: the library cannot be loaded: /nowhere.so"));
    const Ended other = RunHost(PLATFORM_LIBRARY);
    EXPECT_EQ(other.nExitCode, 2);
    EXPECT_THAT(other.strError, HasSubstr("exports no TarvaneLinkSignalSideFactory"));
}

TEST_F(MakersPlugIn, WhatSpeaksOfTheHostsOwnDoesNotGoWithIt)
{
    const std::vector<std::vector<std::string>> others{
        {"take.wav"},     {"--position", "1"}, {"--capture-folder", "x"},
        {"--speed", "2"}, {"--commands"},      {"--results", "x"},
        {"--stalls"},     {"--count-objects"}, {"--once"},
        {"--log", "x"},   {"--record", "x"},   {"--misbehave", "ack-ignored"}};
    for (const std::vector<std::string>& options : others)
    {
        const Ended ended = RunHost(SMALLEST_SIGNAL_SIDE, options);
        EXPECT_EQ(ended.nExitCode, 2) << options[0];
        EXPECT_THAT(ended.strError, AllOf(HasSubstr("--plugin"), HasSubstr("excludes")))
            << options[0];
    }
}
