// The plug-in in hosts that nobody here wrote, with a real server, real clicks and a real
// transport. The audio of it all tells where on the timeline it belongs.
#include "apps/server/SessionStore.h"
#include "apps/support/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/plugin/TimelineAudio.h"
#include "tests/support/PrivateBus.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sndfile.h>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace TarvaneTest;
using namespace testing;
using Tarvane::CChildProcess;

namespace
{

constexpr std::chrono::minutes kLong{1};

struct CTakeFile
{
    std::filesystem::path file;
    std::int64_t nPosition = 0;
    int nChannels = 0;
    std::vector<float> samples;

    std::int64_t Frames() const
    {
        return static_cast<std::int64_t>(samples.size()) / std::max(nChannels, 1);
    }
    // How many of the frames from nFrom up to nTo are not those of the timeline.
    std::int64_t FlawedFrames(std::int64_t nFrom, std::int64_t nTo) const
    {
        std::int64_t nFlawed = 0;
        for (std::int64_t n = nFrom; n < nTo; ++n)
        {
            bool fFlawed = false;
            for (int nChannel = 0; nChannel < nChannels; ++nChannel)
                fFlawed =
                    fFlawed || samples[static_cast<std::size_t>(n * nChannels + nChannel)] !=
                                   TimelineFloat(nPosition + n, static_cast<unsigned>(nChannel));
            nFlawed += fFlawed;
        }
        return nFlawed;
    }
};

// With the position that the file itself tells.
CTakeFile ReadTake(const std::filesystem::path& file)
{
    CTakeFile take;
    take.file = file;
    SF_INFO info{};
    SNDFILE* pFile = sf_open(file.c_str(), SFM_READ, &info);
    EXPECT_NE(pFile, nullptr) << file;
    if (pFile == nullptr)
        return take;
    SF_BROADCAST_INFO broadcast{};
    EXPECT_TRUE(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast));
    take.nPosition = broadcast.time_reference_low | std::int64_t{broadcast.time_reference_high}
                                                        << 32;
    take.nChannels = info.channels;
    take.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_float(pFile, take.samples.data(), info.frames), info.frames);
    sf_close(pFile);
    return take;
}

std::string OutputOf(const std::vector<std::string>& command, int nExpected = 0)
{
    CChildProcess process(command);
    process.CloseInput();
    EXPECT_EQ(process.WaitForEnd(kLong), nExpected) << command[0] << process.ErrorOutput();
    return process.Output();
}

template <typename Condition> bool Comes(Condition&& fCondition)
{
    const auto deadline = std::chrono::steady_clock::now() + kLong;
    while (!fCondition())
    {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

void Pause(int nMilliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
}

class RealHosts : public Test
{
protected:
    RealHosts()
    {
        ::setenv("LV2_PATH", LV2_FOLDER ":/usr/lib/lv2", 1);
        ::setenv("TARVANE_LINK_CAPTURES", (folder / "captures").c_str(), 1);
        ::setenv("XDG_STATE_HOME", (folder / "state").c_str(), 1);
    }

    std::filesystem::path SessionFile() const { return folder / "session.tarvane"; }
    void StartServer()
    {
        std::vector<std::string> command{SERVER_PROGRAM, "--session", SessionFile()};
        if (!std::filesystem::exists(SessionFile()))
            for (const char* szTrack : {"Dialogue", "ADR", "Foley"})
                command.insert(command.end(), {"--track", szTrack});
        server.emplace(command);
        ASSERT_TRUE(server->WaitForLine("ready", kLong)) << server->ErrorOutput();
    }
    std::vector<Tarvane::Server::Region> Regions() const
    {
        const auto session = Tarvane::Server::CSessionStore(SessionFile()).Load();
        return session ? session->GetDocument(Tarvane::Server::DocumentKind::Script).regions
                       : std::vector<Tarvane::Server::Region>();
    }
    bool RegionsCome(std::size_t nCount) const
    {
        return Comes([&] { return Regions().size() >= nCount; });
    }
    // By position.
    std::vector<CTakeFile> Takes() const
    {
        std::vector<CTakeFile> takes;
        if (std::filesystem::exists(folder / "captures"))
            for (const auto& entry : std::filesystem::directory_iterator(folder / "captures"))
                if (entry.path().filename().string().starts_with("take-"))
                    takes.push_back(ReadTake(entry.path()));
        std::sort(takes.begin(), takes.end(),
                  [](const CTakeFile& a, const CTakeFile& b) { return a.file < b.file; });
        return takes;
    }

    CTemporaryFolder folder;
    TarvaneTests::PrivateBus bus;
    std::optional<CChildProcess> server;
};

} // namespace

// ---- What needs no host

class Lv2Tools : public RealHosts
{
};

TEST_F(Lv2Tools, TheDescriptionIsValid)
{
    EXPECT_THAT(OutputOf({"lv2_validate", LV2_FOLDER "/tarvane-link.lv2/manifest.ttl",
                          LV2_FOLDER "/tarvane-link.lv2/link.ttl"}),
                HasSubstr("Found 0 errors"));
}

TEST_F(Lv2Tools, EachPlugInIsListedWithItsPortsAndItsWindow)
{
    for (const auto& [strName, nPorts] :
         std::vector<std::pair<std::string, int>>{{"mono", 6}, {"stereo", 8}, {"eight", 20}})
    {
        const std::string strInfo =
            OutputOf({"lv2info", "https://tarvane.org/lv2/link#" + strName});
        EXPECT_THAT(strInfo, HasSubstr("Port " + std::to_string(nPorts - 1) + ":"));
        EXPECT_THAT(strInfo, Not(HasSubstr("Port " + std::to_string(nPorts) + ":")));
        EXPECT_THAT(strInfo, HasSubstr("ui#X11UI"));
        EXPECT_THAT(strInfo, HasSubstr("reported by port 3"));
    }
}

TEST_F(Lv2Tools, ABenchRunsEachOfThem)
{
    const std::string strResult = OutputOf({"lv2bench", "-n", "65536"});
    for (const char* szName : {"link#mono", "link#stereo", "link#eight"})
        EXPECT_THAT(strResult, HasSubstr(szName));
}

// ---- A host without a window

class Ardour : public RealHosts
{
protected:
    static constexpr std::int64_t kFadeIn = 5120; // the host's own, at most

    void Configure(int nRate, int nPeriod, int nChannels, const std::string& strVariant,
                   double dSeconds)
    {
        nFrames = static_cast<std::int64_t>(dSeconds * nRate);
        std::filesystem::create_directory(folder / "host");
        WriteTimeline(nRate, nChannels);
        Set("FOLDER", folder / "host");
        Set("AUDIO", folder / "known.wav");
        Set("FRAMES", std::to_string(nFrames));
        Set("RATE", std::to_string(nRate));
        Set("PERIOD", std::to_string(nPeriod));
        Set("CHANNELS", std::to_string(nChannels));
        Set("PLUGIN", "https://tarvane.org/lv2/link#" + strVariant);
        Set("STATE", "");
    }
    void Set(const std::string& strName, const std::string& strValue)
    {
        ::setenv(("LINK_" + strName).c_str(), strValue.c_str(), 1);
    }
    // Its exit code says nothing: it crashes at times when all is done.
    void Play(const std::string& strScenario)
    {
        Set("SCENARIO", strScenario);
        CChildProcess host({"ardour7-lua", ARDOUR_SCRIPT});
        host.CloseInput();
        ASSERT_TRUE(host.WaitForEnd(kLong).has_value());
        ASSERT_THAT(host.Output(), HasSubstr("done\n")) << host.ErrorOutput();
    }
    void WriteTimeline(int nRate, int nChannels) const
    {
        SF_INFO info{};
        info.samplerate = nRate;
        info.channels = nChannels;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
        SNDFILE* pFile = sf_open((folder / "known.wav").c_str(), SFM_WRITE, &info);
        // Whole numbers: floats are written a little smaller than they are.
        std::vector<int> samples(static_cast<std::size_t>(nFrames * nChannels));
        for (std::size_t n = 0; n < samples.size(); ++n)
            samples[n] =
                TimelineSample(static_cast<std::int64_t>(n) / nChannels,
                               static_cast<unsigned>(n) % static_cast<unsigned>(nChannels)) *
                256;
        sf_writef_int(pFile, samples.data(), nFrames);
        sf_close(pFile);
    }

    std::int64_t nFrames = 0;
};

struct CExport
{
    int nRate, nPeriod, nChannels;
    const char* szVariant;
};

class ArdourExport : public Ardour, public WithParamInterface<CExport>
{
};

TEST_P(ArdourExport, EverySampleOfAnExportIsCaptured)
{
    const CExport& parameters = GetParam();
    Configure(parameters.nRate, parameters.nPeriod, parameters.nChannels, parameters.szVariant, 20);
    Play("export");
    const auto takes = Takes();
    ASSERT_EQ(takes.size(), 1U);
    EXPECT_EQ(takes[0].nPosition, 0);
    EXPECT_EQ(takes[0].nChannels, parameters.nChannels);
    // The host ends with a whole period.
    EXPECT_GE(takes[0].Frames(), nFrames);
    EXPECT_LT(takes[0].Frames(), nFrames + parameters.nPeriod);
    EXPECT_EQ(takes[0].FlawedFrames(0, nFrames), 0);
}

INSTANTIATE_TEST_SUITE_P(, ArdourExport,
                         Values(CExport{44100, 64, 1, "mono"}, CExport{48000, 1024, 2, "stereo"},
                                CExport{96000, 256, 8, "eight"}));

TEST_F(Ardour, EachStretchOfTheTimelineIsATakeAtItsOwnPosition)
{
    StartServer();
    Configure(48000, 256, 2, "stereo", 8);
    Play("transport");
    const auto takes = Takes();
    ASSERT_EQ(takes.size(), 3U) << "from 12345, on from where it stopped, from 180001";
    EXPECT_EQ(takes[0].nPosition, 12345);
    // It goes on where it was stopped: nothing is missing, nothing twice.
    EXPECT_EQ(takes[1].nPosition, 12345 + takes[0].Frames());
    EXPECT_EQ(takes[2].nPosition, 180001);
    for (const CTakeFile& take : takes)
        EXPECT_EQ(take.FlawedFrames(kFadeIn, take.Frames()), 0) << take.nPosition;
    ASSERT_TRUE(RegionsCome(3));
    std::vector<std::int64_t> positions;
    for (const auto& region : Regions())
        positions.push_back(region.nPosition);
    EXPECT_THAT(positions, ElementsAre(12345, takes[1].nPosition, 180001));
}

TEST_F(Ardour, EachPassOfALoopIsATakeOfItsLength)
{
    Configure(48000, 1024, 2, "stereo", 8);
    Play("loop");
    const auto takes = Takes();
    ASSERT_GE(takes.size(), 11U);
    constexpr std::int64_t kFadeOut = 1536; // the host's own, at a loop's end
    for (std::size_t n = 0; n < 10; ++n)
    {
        EXPECT_EQ(takes[n].nPosition, 48000);
        EXPECT_EQ(takes[n].Frames(), 24000);
        EXPECT_EQ(takes[n].FlawedFrames(n == 0 ? kFadeIn * 2 : 0, 24000 - kFadeOut), 0) << n;
    }
}

TEST_F(Ardour, ASessionThatIsOpenedAgainHasItsTakesButIsNotArmed)
{
    // While no server is there, a host is killed in the middle of its second take.
    Configure(48000, 1024, 2, "stereo", 8);
    Set("SCENARIO", "roll");
    {
        CChildProcess host({"ardour7-lua", ARDOUR_SCRIPT});
        ASSERT_TRUE(Comes([&] { return !Takes().empty(); }));
        const auto fnHidden = [&]
        {
            std::size_t nBytes = 0;
            for (const auto& entry : std::filesystem::directory_iterator(folder / "captures"))
                if (entry.path().filename().string().starts_with(".capture"))
                    nBytes = static_cast<std::size_t>(entry.file_size());
            return nBytes;
        };
        ASSERT_TRUE(Comes([&] { return fnHidden() > 300000; }));
        host.Kill();
        host.WaitForEnd(kLong);
    }
    StartServer();
    Set("STATE", "load");
    Play("idle");

    ASSERT_TRUE(RegionsCome(2));
    const auto regions = Regions();
    ASSERT_EQ(regions.size(), 2U) << "each once; what was rolled unarmed is no take";
    EXPECT_EQ(regions[0].nPosition, 12345);
    EXPECT_EQ(regions[1].nPosition, 100001);
    for (const auto& region : regions)
    {
        const CTakeFile take = ReadTake(region.strPath);
        EXPECT_GT(take.Frames(), kFadeIn);
        EXPECT_EQ(region.Length(), take.Frames());
        EXPECT_EQ(take.FlawedFrames(kFadeIn, take.Frames()), 0);
    }
}

// ---- A host with a window

class Jalv : public RealHosts
{
protected:
    Jalv()
    {
        // One name for all: of a server that was killed the library keeps the entry, in a table of
        // eight, until one of the same name comes.
        strJack = "tarvane-test";
        ::setenv("JACK_DEFAULT_SERVER", strJack.c_str(), 1);
        ::setenv("JACK_NO_START_SERVER", "1", 1);
        ::setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
        jack.emplace(std::vector<std::string>{"jackd", "-n", strJack, "-S", "-r", "-t", "10000",
                                              "-d", "dummy", "-r", "48000", "-p", "1024"});
        for (int n = 0; n < 100 && !player; ++n)
        {
            Pause(200);
            player.emplace(std::vector<std::string>{PLAYER_PROGRAM, "player", "2"});
            if (!player->WaitForLine("ready", std::chrono::seconds(10)))
                player.reset();
        }
        EXPECT_TRUE(player);
    }
    ~Jalv() override
    {
        host.reset();
        player.reset();
        jack.reset();
    }

    // Opens the host with its window, and connects what plays.
    void Open(const std::string& strHost)
    {
        host.emplace(std::vector<std::string>{strHost, "https://tarvane.org/lv2/link#stereo"});
        for (const char* szChannel : {"1", "2"})
        {
            const std::string strOut = std::string("player:out_") + szChannel;
            const std::string strIn = std::string("Tarvane Link:input_") + szChannel;
            ASSERT_TRUE(Comes(
                [&]
                {
                    CChildProcess connect({"jack_connect", strOut, strIn});
                    return connect.WaitForEnd(kLong) == 0;
                }));
        }
        ASSERT_TRUE(Comes([&] { return FindView(); }));
        Pause(1500); // a new window takes a moment until it takes clicks
    }
    bool FindView()
    {
        CChildProcess tree({"xwininfo", "-root", "-tree"});
        tree.CloseInput();
        tree.WaitForEnd(kLong);
        std::istringstream lines(tree.Output());
        for (std::string strLine; std::getline(lines, strLine);)
        {
            if (strLine.find("\"tarvane-link-view\"") == std::string::npos ||
                strLine.find(" 440x152+") == std::string::npos)
                continue;
            // The last two numbers are the place on the display.
            const std::size_t nY = strLine.rfind('+');
            const std::size_t nX = strLine.rfind('+', nY - 1);
            nLeft = std::atoi(strLine.c_str() + nX + 1);
            nTop = std::atoi(strLine.c_str() + nY + 1);
            return true;
        }
        return false;
    }
    void PointAt(int nX, int nY)
    {
        OutputOf({"xdotool", "mousemove", std::to_string(nLeft + nX), std::to_string(nTop + nY)});
        Pause(400);
    }
    void Press() { OutputOf({"xdotool", "mousedown", "1"}); }
    void Release()
    {
        Pause(200);
        OutputOf({"xdotool", "mouseup", "1"});
        Pause(400);
    }
    void ClickToggle()
    {
        PointAt(40, 33);
        Press();
        Release();
    }
    // What the view shows: its window and, while it is open, its menu.
    static auto ViewWindows()
    {
        CChildProcess search(
            {"xdotool", "search", "--onlyvisible", "--classname", "tarvane-link-view"});
        search.CloseInput();
        search.WaitForEnd(kLong);
        const std::string strFound = search.Output();
        return std::count(strFound.begin(), strFound.end(), '\n');
    }
    // By one press, from the item that is chosen.
    void ChooseTrack(int nItemsBelow)
    {
        const auto nBefore = ViewWindows();
        PointAt(340, 42);
        Press();
        ASSERT_TRUE(Comes([&] { return ViewWindows() > nBefore; })) << "the menu opens";
        Pause(500);
        // As a hand does: there and to and fro, not in one jump.
        for (const int nY : {10, 18, 22, 20})
            PointAt(340, 42 + nY * nItemsBelow);
        Release();
        ASSERT_TRUE(Comes([&] { return ViewWindows() == nBefore; })) << "and closes";
        Pause(300);
    }
    void Tell(const std::string& strCommand)
    {
        player->WriteLine(strCommand);
        ASSERT_TRUE(player->WaitForLine(" ", kLong));
    }
    void Start(std::int64_t nPosition)
    {
        Tell("locate " + std::to_string(nPosition));
        Pause(300);
        Tell("start");
    }
    void Stop() { Tell("stop"); }
    void Roll(std::int64_t nPosition, int nMilliseconds)
    {
        Start(nPosition);
        Pause(nMilliseconds);
        Stop();
    }

    // Every region of the session from that one on is right and on this track; the first begins at
    // the position. There is one unless the machine was too slow and cycles were left out.
    void ExpectRegions(std::size_t nFirst, std::int64_t nPosition, const std::string& strTrack)
    {
        ASSERT_TRUE(RegionsCome(nFirst + 1));
        const auto session = Tarvane::Server::CSessionStore(SessionFile()).Load().value();
        const auto& document = session.GetDocument(Tarvane::Server::DocumentKind::Script);
        EXPECT_EQ(document.regions[nFirst].nPosition, nPosition);
        for (std::size_t n = nFirst; n < document.regions.size(); ++n)
        {
            const auto& region = document.regions[n];
            EXPECT_EQ(document.FindTrack(region.nTrackId)->strName, strTrack);
            const CTakeFile take = ReadTake(region.strPath);
            EXPECT_EQ(take.nPosition, region.nPosition);
            EXPECT_EQ(take.Frames(), region.Length());
            EXPECT_GT(take.Frames(), 0);
            EXPECT_EQ(take.FlawedFrames(0, take.Frames()), 0) << region.nPosition;
        }
    }
    // Once all that was captured is there.
    std::size_t SettledRegions() const
    {
        EXPECT_TRUE(Comes([&] { return Regions().size() == Takes().size(); }));
        return Regions().size();
    }
    int ViewProcess() const
    {
        const std::string strFound = [&]
        {
            CChildProcess find(
                {"pgrep", "-P", std::to_string(host->Pid()), "-f", "tarvane-link-view"});
            find.CloseInput();
            find.WaitForEnd(kLong);
            return find.Output();
        }();
        return std::atoi(strFound.c_str());
    }

    std::string strJack;
    std::optional<CChildProcess> jack, player, host;
    int nLeft = 0, nTop = 0;
};

class JalvWindow : public Jalv, public WithParamInterface<const char*>
{
};

TEST_P(JalvWindow, RealClicksArmChooseTracksAndDisarm)
{
    StartServer();
    Open(GetParam());
    ClickToggle();
    Roll(123457, 1500);
    ExpectRegions(0, 123457, "Dialogue");

    ChooseTrack(1);
    std::size_t nThere = SettledRegions();
    Roll(500001, 1000);
    ExpectRegions(nThere, 500001, "ADR");

    // The menu opens where the window is now.
    const int nLeftBefore = nLeft;
    OutputOf({"xdotool", "search", "--onlyvisible", "--name", "^Tarvane Link$", "windowmove",
              "--sync", "100", "100"});
    Pause(1000);
    ASSERT_TRUE(FindView());
    ASSERT_NE(nLeft, nLeftBefore);
    ChooseTrack(1);
    nThere = SettledRegions();
    Roll(700000, 1000);
    ExpectRegions(nThere, 700000, "Foley");

    nThere = SettledRegions();
    ClickToggle();
    Roll(900000, 800);
    Pause(1000);
    EXPECT_EQ(Takes().size(), nThere) << "not armed any more";

    const int nView = ViewProcess();
    ASSERT_GT(nView, 0);
    host.reset();
    EXPECT_TRUE(Comes([&] { return ::kill(nView, 0) != 0; })) << "the view ends with its host";
}

INSTANTIATE_TEST_SUITE_P(, JalvWindow, Values("jalv.gtk3", "jalv.qt5"));

TEST_F(Jalv, AViewThatIsKilledCostsNoTakeAndDoublesNone)
{
    StartServer();
    Open("jalv.gtk3");
    ClickToggle();
    // While it captures.
    Start(200000);
    Pause(600);
    const int nFirst = ViewProcess();
    ::kill(nFirst, SIGKILL);
    Pause(600);
    Stop();
    ExpectRegions(0, 200000, "Dialogue");
    const std::size_t nThere = SettledRegions();
    ASSERT_TRUE(Comes([&] { return ViewProcess() > 0 && ViewProcess() != nFirst; }));
    ASSERT_TRUE(Comes([&] { return FindView(); })) << "it is back in its window";

    // While it delivers: it waits for a server that does not answer.
    server->Stop();
    Roll(400000, 800);
    Pause(1500);
    ::kill(ViewProcess(), SIGKILL);
    Pause(500);
    server->Continue();
    ExpectRegions(nThere, 400000, "Dialogue");
    SettledRegions();
    Pause(1500);
    EXPECT_EQ(Regions().size(), Takes().size()) << "none twice";
}

TEST_F(Jalv, TakesThatNoServerGotStandThereOnceOneAppears)
{
    Open("jalv.gtk3");
    ClickToggle();
    Roll(31000, 700);
    Roll(91000, 700);
    ASSERT_TRUE(Comes([&] { return Takes().size() >= 2; }));
    Pause(1000);
    StartServer();
    ExpectRegions(0, 31000, "Dialogue");
    SettledRegions();
}

TEST_F(Jalv, AServerThatStandsStillHoldsNeitherTheHostNorTheCapture)
{
    StartServer();
    Open("jalv.gtk3");
    ClickToggle();
    server->Stop();
    // The view asks the server for its tracks, and waits.
    ClickToggle();
    ClickToggle();
    // The host's own menu opens meanwhile: a window more is shown.
    const auto fnWindows = []
    {
        const std::string strShown =
            OutputOf({"xdotool", "search", "--onlyvisible", "--class", "Jalv.gtk3"});
        return std::count(strShown.begin(), strShown.end(), '\n');
    };
    const auto nBefore = fnWindows();
    PointAt(20, -12);
    Press();
    Release();
    EXPECT_TRUE(Comes([&] { return fnWindows() > nBefore; }));
    OutputOf({"xdotool", "key", "Escape"});
    server->Continue();
    Pause(1500);
    SettledRegions();
}
