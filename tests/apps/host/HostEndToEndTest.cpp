#include "tests/apps/host/DeliveryFixture.h"

#include <gmock/gmock.h>

#include <csignal>

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{

json Ack(int nElement, int nNotDelivered)
{
    return {
        {"nElement", nElement}, {"fHandled", 1}, {"fNotDelivered", nNotDelivered}, {"fFinal", 1}};
}

// The lines of a kind in a log, without the rest.
std::vector<std::string> LinesWith(const std::filesystem::path& log, const std::string& strPart)
{
    std::istringstream text(FileText(log));
    std::vector<std::string> lines;
    for (std::string strLine; std::getline(text, strLine);)
    {
        if (strLine.find(strPart) != std::string::npos)
        {
            lines.push_back(strLine);
        }
    }
    return lines;
}

} // namespace

TEST_F(EndToEnd, EachFileBecomesARegionOfTheChosenTrackBehindTheOffset)
{
    StartServer();
    const Ended outcome = RunHost({One(), Two(), "--track", "1", "--position", "100"});
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strError;

    const auto regions = Regions();
    ASSERT_EQ(regions.size(), 2U);
    EXPECT_EQ(regions[0].strPath, folder / "captures/one-001.wav");
    EXPECT_EQ(regions[0].nPosition, 96100);
    EXPECT_EQ(regions[0].nStart, 0);
    EXPECT_EQ(regions[0].nEnd, 4800);
    EXPECT_EQ(regions[1].strPath, folder / "captures/two-001.wav");
    EXPECT_EQ(regions[1].nPosition, 96000 + 100 + 4800);
    EXPECT_EQ(regions[1].nEnd, 9600);
    EXPECT_EQ(TrackOf(regions[0]), "ADR");
    EXPECT_EQ(TrackOf(regions[1]), "ADR");
    EXPECT_EQ(ReadSound(regions[1].strPath).samples, ReadSound(Two()).samples);
    EXPECT_EQ(ReadSound(regions[1].strPath).info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
}

TEST_F(EndToEnd, TheResultsTellEachCaptureAndShowTheWindow)
{
    StartServer();
    const Ended outcome = RunHost({One(), "--track", "2", "--position", "100"});
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strError;
    const json captures = CapturesIn(folder / "out");
    ASSERT_EQ(captures.size(), 1U);
    const json expected = {{"source", One()},        {"dub", folder / "captures/one-001.wav"},
                           {"frames", 4800.0},       {"sampleRate", 48000.0},
                           {"start", 0.0},           {"end", 4800.0},
                           {"position", 100.0},      {"track", 2},
                           {"trackName", "Foley"},   {"element", 0},
                           {"ack", Ack(0, 0)},       {"outcome", "delivered"},
                           {"failure", ""},          {"message", ""},
                           {"advice", ""},           {"refusal", ""},
                           {"withoutOffset", false}, {"placeMissed", nullptr},
                           {"fate", "delivered"},    {"silence", nullptr},
                           {"late", false},          {"lost", 0}};
    EXPECT_EQ(captures[0], expected);
    EXPECT_THAT(FileText(folder / "out/link-view.png"), StartsWith("\x89PNG"));
    EXPECT_THAT(outcome.strOutput, HasSubstr("Capture 1: one.wav\n"));
    EXPECT_THAT(outcome.strOutput, HasSubstr("  outcome      delivered\n"));
}

TEST_F(EndToEnd, TheSameFileAtTheSamePlaceIsADuplicate)
{
    StartServer();
    const Ended outcome = RunHost({One(), One(), "--position", "0", "--position", "0"});
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strError;
    const json captures = CapturesIn(folder / "out");
    ASSERT_EQ(captures.size(), 2U);
    EXPECT_EQ(captures[0]["outcome"], "delivered");
    EXPECT_EQ(captures[1]["outcome"], "duplicate");
    EXPECT_EQ(captures[1]["ack"], Ack(1, 1));
    EXPECT_EQ(captures[1]["message"], "Same audio captured previously.");
    EXPECT_EQ(captures[1]["advice"], "This capture has been cancelled");
    EXPECT_EQ(Regions().size(), 1U);
}

TEST_F(EndToEnd, TheLogShowsWhatTheViewWrites)
{
    StartServer();
    EXPECT_EQ(RunHost({One()}).nExitCode, 0);
    EXPECT_EQ(FileText(folder / "host.log"),
              "64005 TNProperty_SetArmCapture: fArm 1, fShift 0\n"
              "64008 TNProperty_ElementDone: nElement 0, fHandled 1, fNotDelivered 0, fFinal 1\n");
}

TEST_F(EndToEnd, WithoutAServerTheCaptureIsNotDeliveredAndItsFileStays)
{
    const Ended outcome = RunHost({One()});
    EXPECT_EQ(outcome.nExitCode, 1);
    const json captures = CapturesIn(folder / "out");
    ASSERT_EQ(captures.size(), 1U);
    EXPECT_EQ(captures[0]["outcome"], "not delivered");
    EXPECT_EQ(captures[0]["ack"], Ack(0, 1));
    EXPECT_EQ(captures[0]["message"], kNotRunning);
    EXPECT_EQ(captures[0]["advice"], kLaunch);
    EXPECT_TRUE(std::filesystem::exists(folder / "captures/one-001.wav"));
    EXPECT_THAT(outcome.strOutput, HasSubstr("no track is chosen"));
}

TEST_F(EndToEnd, TheServerDiesAndComesBackAndTheHostGoesOn)
{
    StartServer();
    CHostClient host(HostCommand({"--speed", "max"}));
    EXPECT_THAT(host.Ready()["tracks"], ElementsAre("Dialogue", "ADR", "Foley"));
    EXPECT_EQ(host.Capture(One(), 0, kLong)["outcome"], "delivered");

    KillServer();
    const json lost = host.Capture(Two(), 4800, kLong);
    EXPECT_EQ(lost["outcome"], "not delivered");
    EXPECT_EQ(lost["ack"], Ack(1, 1));
    EXPECT_EQ(lost["message"], kNotRunning);
    const json empty = host.Ask("open-menu", kLong);
    EXPECT_THAT(empty["tracks"], IsEmpty());
    EXPECT_EQ(empty["advice"], kLaunch);

    StartServer();
    const json late = NextLate(host);
    EXPECT_EQ(late["outcome"], "delivered");
    EXPECT_EQ(late["dub"], lost["dub"]);
    EXPECT_EQ(late["ack"], Ack(2, 0)) << "an index is acknowledged once";
    EXPECT_THAT(host.Ask("open-menu", kLong)["tracks"], ElementsAre("Dialogue", "ADR", "Foley"));
    const json again = host.Capture(Two(), 9600, kLong);
    EXPECT_EQ(again["outcome"], "delivered");
    EXPECT_EQ(again["ack"], Ack(3, 0));
    const auto regions = Regions();
    ASSERT_EQ(regions.size(), 3U);
    EXPECT_EQ(regions[0].nPosition, 96000);
    EXPECT_EQ(regions[1].nPosition, 96000 + 4800);
    EXPECT_EQ(regions[2].nPosition, 96000 + 9600);
    host.Ask("quit", kLong);
    EXPECT_EQ(host.Process().WaitForEnd(kLong), 0) << "every capture is delivered";
}

TEST_F(EndToEnd, WhatNoServerGotIsSentByTheNextRunAndOnlyOnce)
{
    {
        CHostClient host(HostCommand({"--speed", "max"}));
        EXPECT_EQ(host.Capture(One(), 100, kLong)["fate"], "unreachable");
        host.Process().Kill();
        host.Process().WaitForEnd(kLong);
    }
    StartServer();
    CHostClient host(HostCommand({"--speed", "max"}));
    const json late = NextLate(host);
    EXPECT_EQ(late["outcome"], "delivered");
    EXPECT_EQ(late["position"], 100);
    ASSERT_EQ(Regions().size(), 1U);
    EXPECT_EQ(Regions()[0].nPosition, 96100);
    host.Ask("quit", kLong);
    EXPECT_EQ(host.Process().WaitForEnd(kLong), 0);
    EXPECT_THAT(LinesWith(folder / "host.log", "64008").size(), 2U) << "in vain, and later";
    CHostClient next(HostCommand({"--speed", "max"}));
    EXPECT_EQ(next.Capture(Two(), 9600, kLong)["ack"], Ack(0, 0)) << "nothing else waits";
}

TEST_F(EndToEnd, AnotherTrackCanBeChosenAndThePlugInKeepsIt)
{
    StartServer();
    CHostClient host(HostCommand({"--speed", "max"}));
    EXPECT_EQ(host.Ask("track 2", kLong)["selected"], 2);
    EXPECT_EQ(host.Capture(One(), 0, kLong)["trackName"], "Foley");
    EXPECT_EQ(TrackOf(Regions().at(0)), "Foley");
    EXPECT_THROW(host.Ask("track 3", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("track -1", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("track", kLong), CHostRefusal);
    EXPECT_THAT(LinesWith(folder / "host.log", "64009"),
                ElementsAre("64009 TNProperty_SelectedTrack: track 2"));
}

TEST_F(EndToEnd, TheToggleCapturesTheNextFileByHandAndTheFilesComeRoundAgain)
{
    StartServer();
    CHostClient host(HostCommand({One(), Two(), "--speed", "max"}));
    // The first answer says that the press has been taken in; the captures come as events.
    for (int nPress = 0; nPress < 3; ++nPress)
    {
        host.Ask("arm", kLong);
        ASSERT_TRUE(host.Process().WaitForLine("\"event\":\"capture\"", kLong));
    }
    const auto regions = Regions();
    ASSERT_EQ(regions.size(), 3U);
    EXPECT_EQ(regions[0].nPosition, 96000);
    EXPECT_EQ(regions[1].nPosition, 96000 + 4800);
    EXPECT_EQ(regions[2].strPath, folder / "captures/one-002.wav");
    EXPECT_EQ(regions[2].nPosition, 96000 + 4800 + 9600);
}

TEST_F(EndToEnd, DisarmingEndsACaptureEarly)
{
    StartServer();
    WriteSound(folder / "long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000 * 600);
    CHostClient host(HostCommand({folder / "long.wav"}));
    EXPECT_EQ(host.Ask("arm", kLong)["armed"], true);
    // The progress in the window says that sound has been captured.
    while (host.Ask("state", kLong)["message"] == "")
    {
    }
    EXPECT_EQ(host.Ask("disarm", kLong)["armed"], false);
    const auto strEvent = host.Process().WaitForLine("\"event\":\"capture\"", kLong);
    ASSERT_TRUE(strEvent);
    const json event = json::parse(*strEvent);
    EXPECT_EQ(event["outcome"], "delivered");
    EXPECT_GT(event["frames"].get<double>(), 0);
    EXPECT_LT(event["frames"].get<double>(), 48000.0 * 600);
    EXPECT_EQ(static_cast<double>(Regions().at(0).nEnd), event["frames"].get<double>());
}

TEST_F(EndToEnd, ACaptureOfAHostThatIsEndedIsKeptToldAndSentByTheNextRun)
{
    for (const int nSignal : {SIGTERM, SIGINT, SIGKILL})
    {
        SCOPED_TRACE(nSignal);
        StartServer();
        WriteSound(folder / "long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000 * 600);
        {
            CHostClient host(HostCommand({folder / "long.wav"}));
            host.Ask("arm", kLong);
            while (host.Ask("state", kLong)["message"] == "")
            {
            }
            ::kill(host.Process().Pid(), nSignal);
            const std::optional<int> nExitCode = host.Process().WaitForEnd(kLong);
            if (nSignal != SIGKILL)
            {
                EXPECT_EQ(nExitCode, 1) << host.Process().ErrorOutput();
                EXPECT_THAT(host.Process().ErrorOutput(),
                            HasSubstr("The capture under way is kept: " +
                                      (folder / "captures/long-001.wav").string()));
            }
        }
        EXPECT_THAT(Regions(), IsEmpty());
        CHostClient next(HostCommand({"--speed", "max"}));
        const json late = NextLate(next);
        EXPECT_EQ(late["outcome"], "delivered");
        EXPECT_EQ(late["dub"], (folder / "captures/long-001.wav").string());
        const Sound kept = ReadSound(folder / "captures/long-001.wav");
        const std::vector<double> all = ReadSound(folder / "long.wav").samples;
        EXPECT_GE(kept.samples.size(), 512U);
        EXPECT_EQ(static_cast<double>(kept.samples.size()), late["frames"]);
        EXPECT_EQ(
            kept.samples,
            std::vector<double>(all.begin(), all.begin() + static_cast<long>(kept.samples.size())));
        EXPECT_EQ(Regions().size(), 1U);
        next.Ask("quit", kLong);
        next.Process().WaitForEnd(kLong);
        EXPECT_THAT(
            next.Process().ErrorOutput(),
            HasSubstr("Left by an earlier run: " + (folder / "captures/long-001.wav").string()));
        KillServer();
        std::filesystem::remove_all(folder / "captures");
        std::filesystem::remove(SessionFile());
    }
}

TEST_F(EndToEnd, CommandsThatMakeNoSenseAreRefusedAndTheNextOneWorks)
{
    StartServer();
    CHostClient host(HostCommand({"--speed", "max"}));
    EXPECT_THROW(host.Ask("dance", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("capture", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("capture /nowhere.wav", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("capture \"" + One() + "\" soon", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("screenshot", kLong), CHostRefusal);
    EXPECT_THROW(host.Ask("screenshot /nowhere/at/all.png", kLong), CHostRefusal);
    EXPECT_EQ(host.Ask("state", kLong)["armed"], false);
    host.Ask("screenshot \"" + (folder / "now.png").string() + "\"", kLong);
    EXPECT_THAT(FileText(folder / "now.png"), StartsWith("\x89PNG"));
    EXPECT_EQ(host.Capture(One(), 0, kLong)["outcome"], "delivered");
    host.Process().CloseInput();
    EXPECT_EQ(host.Process().WaitForEnd(kLong), 0) << "the end of the commands ends the host";
}

TEST_F(EndToEnd, AcknowledgeThatComesTooLateIsNotWaitedForAndChangesNothing)
{
    const Ended outcome =
        RunHost({One(), Two(), "--bundle", MUTE_VIEW_BUNDLE, "--ack-timeout", "0.1"});
    EXPECT_EQ(outcome.nExitCode, 1) << outcome.strError;
    const json captures = CapturesIn(folder / "out");
    ASSERT_EQ(captures.size(), 2U);
    for (int nElement : {0, 1})
    {
        EXPECT_EQ(captures[nElement]["element"], nElement);
        EXPECT_EQ(captures[nElement]["outcome"], "not acknowledged");
        EXPECT_TRUE(captures[nElement]["ack"].is_null());
    }
    EXPECT_THAT(FileText(folder / "host.log"), HasSubstr("nElement 0, fHandled 1"));
}
