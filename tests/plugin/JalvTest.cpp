// The plug-in in jalv, with its window: real clicks and a real transport.
#include "tests/plugin/RealHosts.h"

#include <csignal>
#include <fstream>
#include <sstream>

using namespace TarvaneTest;
using namespace testing;
using Tarvane::CChildProcess;

namespace
{

// A host with its window and, in it, the view.
class CJalv
{
public:
    // strName: what it is called among the clients of JACK.
    CJalv(const std::string& strProgram, std::vector<std::string> options,
          const std::string& strName = "Tarvane Link")
        : m_strName(strName)
    {
        options.insert(options.begin(), strProgram);
        options.push_back("https://tarvane.org/lv2/link#stereo");
        process.emplace(options);
    }

    // Once what plays is connected and the view takes clicks.
    void Open()
    {
        for (const char* szChannel : {"1", "2"})
        {
            const std::string strOut = std::string("player:out_") + szChannel;
            const std::string strIn = m_strName + ":input_" + szChannel;
            ASSERT_TRUE(Comes(
                [&]
                {
                    CChildProcess connect({"jack_connect", strOut, strIn});
                    return connect.WaitForEnd(kLong) == 0;
                }))
                << process->ErrorOutput();
        }
        ASSERT_TRUE(Comes([&] { return FindView() && StandsStill(); })) << process->ErrorOutput();
        Pause(300); // a new window takes a moment until it takes clicks
    }
    // Whether the view is where it was a moment ago: host and window manager have done with it.
    bool StandsStill()
    {
        const int nLeftBefore = m_nLeft;
        const int nTopBefore = m_nTop;
        Pause(200);
        return FindView() && m_nLeft == nLeftBefore && m_nTop == nTopBefore;
    }
    bool FindView()
    {
        const int nWindow = Window();
        if (nWindow == 0)
            return false;
        std::istringstream lines(WhatSays({"xwininfo", "-tree", "-id", std::to_string(nWindow)}));
        for (std::string strLine; std::getline(lines, strLine);)
        {
            if (strLine.find("\"tarvane-link-view\"") == std::string::npos ||
                strLine.find(" 440x152+") == std::string::npos)
                continue;
            // The last two numbers are the place on the display.
            const std::size_t nY = strLine.rfind('+');
            const std::size_t nX = strLine.rfind('+', nY - 1);
            m_nLeft = std::atoi(strLine.c_str() + nX + 1);
            m_nTop = std::atoi(strLine.c_str() + nY + 1);
            return true;
        }
        return false;
    }
    // The host's own; 0 while there is none.
    int Window() const
    {
        return std::atoi(WhatSays({"xdotool", "search", "--onlyvisible", "--all", "--pid",
                                   std::to_string(process->Pid()), "--name", "^Tarvane Link"})
                             .c_str());
    }
    void MoveWindow(int nX, int nY)
    {
        const int nLeftBefore = m_nLeft;
        const int nTopBefore = m_nTop;
        OutputOf({"xdotool", "windowmove", std::to_string(Window()), std::to_string(nX),
                  std::to_string(nY)});
        ASSERT_TRUE(
            Comes([&] { return FindView() && (m_nLeft != nLeftBefore || m_nTop != nTopBefore); }));
        Pause(400); // the view looks for its place ten times a second
    }

    void PointAt(int nX, int nY, int nMilliseconds = 250) const
    {
        OutputOf(
            {"xdotool", "mousemove", std::to_string(m_nLeft + nX), std::to_string(m_nTop + nY)});
        Pause(nMilliseconds);
    }
    void ClickToggle() const
    {
        PointAt(40, 33);
        Click();
    }
    // By one press, from the item that is chosen.
    void ChooseTrack(int nItemsBelow) const
    {
        const auto nBefore = ViewWindows();
        PointAt(340, 42);
        Press();
        EXPECT_TRUE(Comes([&] { return ViewWindows() > nBefore; })) << "the menu opens";
        Pause(300);
        // As a hand does: there and to and fro, not in one jump.
        for (const int nY : {10, 18, 22, 20})
            PointAt(340, 42 + nY * nItemsBelow, 150);
        Release();
        EXPECT_TRUE(Comes([&] { return ViewWindows() == nBefore; })) << "and closes";
        Pause(300);
    }
    void OpenMenu() const
    {
        const auto nBefore = ViewWindows();
        PointAt(340, 42);
        Click();
        EXPECT_TRUE(Comes([&] { return ViewWindows() > nBefore; })) << "the menu opens";
    }
    static void Click()
    {
        Press();
        Release();
        Pause(300);
    }

    // What views show: their windows and, while it is open, a menu.
    static std::ptrdiff_t ViewWindows()
    {
        const std::string strFound =
            WhatSays({"xdotool", "search", "--onlyvisible", "--classname", "tarvane-link-view"});
        return std::count(strFound.begin(), strFound.end(), '\n');
    }

    // 0 while there is none.
    int ViewProcess() const
    {
        return std::atoi(
            WhatSays({"pgrep", "-P", std::to_string(process->Pid()), "-f", "tarvane-link-view"})
                .c_str());
    }

    std::optional<CChildProcess> process;

private:
    static void Press() { OutputOf({"xdotool", "mousedown", "1"}); }
    static void Release()
    {
        Pause(150);
        OutputOf({"xdotool", "mouseup", "1"});
    }

    const std::string m_strName;
    int m_nLeft = 0, m_nTop = 0;
};

// Starts a server of JACK and what plays the timeline.
class Jalv : public Test
{
protected:
    void SetUp() override
    {
        // One name for all: of a server that was killed the library keeps the entry, in a table of
        // eight, until one of the same name comes.
        ::setenv("JACK_DEFAULT_SERVER", "tarvane-test", 1);
        ::setenv("JACK_NO_START_SERVER", "1", 1);
        ::setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
        jack.emplace(std::vector<std::string>{"jackd", "-n", "tarvane-test", "-S", "-r", "-t",
                                              "10000", "-d", "dummy", "-r", "48000", "-p", "1024"});
        // The player does not wait for a server that is not there yet.
        Comes(
            [&]
            {
                player.emplace(std::vector<std::string>{PLAYER_PROGRAM, "player", "2"});
                if (!player->WaitForLine("ready", kLong))
                    player.reset();
                return player || !jack->IsRunning();
            });
        ASSERT_TRUE(player) << "JACK does not start: " << jack->Output() << jack->ErrorOutput();
    }
    void TearDown() override
    {
        host.reset();
        // JACK does not end while it waits for a client that has gone without a word.
        if (player)
        {
            player->CloseInput();
            EXPECT_TRUE(player->WaitForEnd(kLong));
        }
        jack.reset();
    }

    void Open(const std::string& strProgram, const std::vector<std::string>& options = {})
    {
        host.emplace(strProgram, options);
        host->Open();
    }
    std::string Tell(const std::string& strCommand)
    {
        player->WriteLine(strCommand);
        const auto strAnswer = player->WaitForLine(" ", kLong);
        EXPECT_TRUE(strAnswer) << strCommand;
        return strAnswer.value_or("");
    }
    void Start(std::int64_t nPosition)
    {
        Tell("locate " + std::to_string(nPosition));
        EXPECT_TRUE(Comes([&] { return Tell("where") == "stopped " + std::to_string(nPosition); }));
        Pause(100); // the host looks once a cycle
        Tell("start");
    }
    void Stop() { Tell("stop"); }
    // So much of the timeline, however long a busy machine takes for it.
    void Roll(std::int64_t nPosition, int nMilliseconds = 300)
    {
        Start(nPosition);
        const std::int64_t nEnd = nPosition + std::int64_t{nMilliseconds} * 48;
        EXPECT_TRUE(Comes([&] { return std::stoll(Tell("where").substr(8)) >= nEnd; }));
        Stop();
    }

    // Every region of the session from that one on is right and on this track; the first begins at
    // the position. There is one unless the machine was too slow and cycles were left out.
    void ExpectRegions(std::size_t nFirst, std::int64_t nPosition, const std::string& strTrack)
    {
        ASSERT_TRUE(surroundings.RegionsCome(nFirst + 1));
        const auto document = surroundings.Session();
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
        const auto fnSettled = [&]
        {
            return surroundings.HiddenFiles().empty() &&
                   surroundings.Regions().size() == surroundings.TakeFiles().size();
        };
        EXPECT_TRUE(Comes(fnSettled));
        return surroundings.Regions().size();
    }

    CHostSurroundings surroundings;
    std::optional<CChildProcess> jack, player;
    std::optional<CJalv> host;
};

struct CProgramName
{
    std::string operator()(const TestParamInfo<const char*>& info) const
    {
        return std::string(info.param).substr(std::string("jalv.").size());
    }
};

class JalvWindow : public Jalv, public WithParamInterface<const char*>
{
};

} // namespace

TEST_P(JalvWindow, RealClicksArmChooseTracksAndDisarm)
{
    surroundings.StartServer();
    Open(GetParam());
    host->ClickToggle();
    Roll(123457);
    ExpectRegions(0, 123457, "Dialogue");

    host->ChooseTrack(1);
    std::size_t nThere = SettledRegions();
    Roll(500001);
    ExpectRegions(nThere, 500001, "ADR");

    // The menu opens where the window is now.
    host->MoveWindow(100, 100);
    host->ChooseTrack(1);
    nThere = SettledRegions();
    Roll(700000);
    ExpectRegions(nThere, 700000, "Foley");

    nThere = SettledRegions();
    host->ClickToggle();
    Roll(900000);
    Pause(500);
    EXPECT_EQ(surroundings.TakeFiles().size(), nThere) << "not armed any more";
    EXPECT_TRUE(surroundings.HiddenFiles().empty());

    const int nView = host->ViewProcess();
    ASSERT_GT(nView, 0);
    host.reset();
    EXPECT_TRUE(Comes([&] { return ::kill(nView, 0) != 0; })) << "the view ends with its host";
}

INSTANTIATE_TEST_SUITE_P(, JalvWindow, Values("jalv.gtk3", "jalv.qt5"), CProgramName());

TEST_F(Jalv, AMenuIsLeftByAClickInTheHostAndByEscapeAndTheNextClickCounts)
{
    surroundings.StartServer();
    Open("jalv.gtk3");
    const auto nWindows = CJalv::ViewWindows();
    host->OpenMenu();
    host->PointAt(300, -12); // where the host's own menus stand
    CJalv::Click();
    EXPECT_TRUE(Comes([&] { return CJalv::ViewWindows() == nWindows; }));
    host->ClickToggle();
    Roll(123457);
    ExpectRegions(0, 123457, "Dialogue");

    const std::size_t nThere = SettledRegions();
    host->OpenMenu();
    OutputOf({"xdotool", "key", "Escape"}); // the host has the keyboard
    EXPECT_TRUE(Comes([&] { return CJalv::ViewWindows() == nWindows; }));
    host->ClickToggle();
    Roll(500001);
    Pause(500);
    EXPECT_EQ(surroundings.TakeFiles().size(), nThere) << "not armed any more";

    host->OpenMenu();
    host->ClickToggle(); // in the view a click closes the menu, and nothing else
    EXPECT_TRUE(Comes([&] { return CJalv::ViewWindows() == nWindows; }));
    Roll(700000);
    Pause(500);
    EXPECT_EQ(surroundings.TakeFiles().size(), nThere);
}

TEST_F(Jalv, TwoInstancesHaveAWindowATrackAndATakeOfTheirOwn)
{
    surroundings.StartServer();
    Open("jalv.gtk3");
    CJalv other("jalv.gtk3", {"-n", "other"}, "other");
    other.Open();
    host->MoveWindow(20, 60);
    other.MoveWindow(640, 500);
    other.ChooseTrack(1);

    host->ClickToggle();
    Roll(60001);
    ExpectRegions(0, 60001, "Dialogue");
    const std::size_t nThere = SettledRegions();
    host->ClickToggle();
    other.ClickToggle();
    Roll(160001);
    ExpectRegions(nThere, 160001, "ADR");
}

TEST_F(Jalv, TheFolderThatIsInstalledNeedsNothingOfOursFromElsewhere)
{
    const std::filesystem::path installed = surroundings.folder / "installed";
    OutputOf({"cmake", "--install", BUILD_FOLDER, "--prefix", installed, "--component", "lv2"});
    ::setenv("LV2_PATH", ((installed / "lib/lv2").string() + ":/usr/lib/lv2").c_str(), 1);
    surroundings.StartServer();
    Open("jalv.gtk3");
    host->ClickToggle();
    Roll(77777);
    ExpectRegions(0, 77777, "Dialogue");

    const std::string strFolder = installed / "lib/lv2/tarvane-link.lv2";
    for (const int nProcess : {static_cast<int>(host->process->Pid()), host->ViewProcess()})
    {
        std::ifstream maps("/proc/" + std::to_string(nProcess) + "/maps");
        std::stringstream text;
        text << maps.rdbuf();
        EXPECT_THAT(text.str(), HasSubstr(strFolder));
        EXPECT_THAT(text.str(), Not(HasSubstr(BUILD_FOLDER)));
    }
}

TEST_F(Jalv, ASessionThatIsLoadedHasItsTrackAndItsTakesButIsNotArmed)
{
    surroundings.StartServer();
    Open("jalv.gtk3");
    host->ChooseTrack(1);
    host->ClickToggle();
    const std::filesystem::path saved = surroundings.folder / "saved";
    std::filesystem::create_directory(saved);
    OutputOf({"xdotool", "key", "ctrl+s"});
    ASSERT_TRUE(Comes(
        [] {
            return !WhatSays({"xdotool", "search", "--onlyvisible", "--name", "^Save State$"})
                        .empty();
        }));
    OutputOf({"xdotool", "type", "--delay", "20", saved.string() + "/"});
    Pause(500);
    OutputOf({"xdotool", "key", "Return"});
    ASSERT_TRUE(Comes([&] { return std::filesystem::exists(saved / "state.ttl"); }));
    // What it captured when no server was there waits for the instance that is loaded.
    surroundings.server.reset();
    Roll(40000);
    ASSERT_TRUE(Comes([&] { return surroundings.TakeFiles().size() == 1; }));
    host.reset();

    surroundings.StartServer();
    Open("jalv.gtk3", {"-l", saved});
    ExpectRegions(0, 40000, "ADR");
    const std::size_t nThere = SettledRegions();
    Roll(240000);
    Pause(300);
    EXPECT_EQ(surroundings.TakeFiles().size(), nThere) << "not armed";
    host->ClickToggle();
    Roll(440000);
    ExpectRegions(nThere, 440000, "ADR");
}

TEST_F(Jalv, AViewThatIsKilledCostsNoTakeAndDoublesNone)
{
    surroundings.StartServer();
    Open("jalv.gtk3");
    host->ClickToggle();
    // While it captures.
    Start(200000);
    Pause(400);
    const int nFirst = host->ViewProcess();
    ::kill(nFirst, SIGKILL);
    Pause(400);
    Stop();
    ExpectRegions(0, 200000, "Dialogue");
    const std::size_t nThere = SettledRegions();
    ASSERT_TRUE(Comes([&] { return host->ViewProcess() > 0 && host->ViewProcess() != nFirst; }));
    ASSERT_TRUE(Comes([&] { return host->FindView(); })) << "it is back in its window";

    // While it delivers: it waits for a server that does not answer.
    surroundings.server->Stop();
    Roll(400000);
    ASSERT_TRUE(Comes([&] { return surroundings.TakeFiles().size() > nThere; }));
    Pause(500);
    ::kill(host->ViewProcess(), SIGKILL);
    Pause(300);
    surroundings.server->Continue();
    ExpectRegions(nThere, 400000, "Dialogue");
    SettledRegions();
    Pause(1000);
    EXPECT_EQ(surroundings.Regions().size(), surroundings.TakeFiles().size()) << "none twice";
}

TEST_F(Jalv, TakesThatNoServerGotStandThereOnceOneAppears)
{
    Open("jalv.gtk3");
    host->ClickToggle();
    Roll(31000);
    Roll(91000);
    ASSERT_TRUE(Comes([&] { return surroundings.TakeFiles().size() >= 2; }));
    Pause(500);
    surroundings.StartServer();
    ExpectRegions(0, 31000, "Dialogue");
    SettledRegions();
}

TEST_F(Jalv, AServerThatStandsStillHoldsNeitherTheHostNorTheCapture)
{
    surroundings.StartServer();
    Open("jalv.gtk3");
    surroundings.server->Stop();
    // The longest time from one cycle of the audio to the next. Whatever held it would do so each
    // time; a machine that is busy with something else does not.
    int nLongestGap = 0;
    const bool fShort = Comes(
        [&]
        {
            const std::size_t nTakes = surroundings.TakeFiles().size();
            Tell("gap");
            host->ClickToggle(); // the view asks the server for its tracks, and waits
            Roll(static_cast<std::int64_t>(50000 * (nTakes + 1)), 600);
            EXPECT_TRUE(Comes([&] { return surroundings.TakeFiles().size() > nTakes; }));
            host->ClickToggle();
            nLongestGap = std::stoi(Tell("gap").substr(std::string("gap ").size()));
            return nLongestGap < 50;
        });
    EXPECT_TRUE(fShort) << nLongestGap << " ms, always";
    RecordProperty("LongestGapInMilliseconds", nLongestGap);

    // The host's own menu opens meanwhile: a window more is shown.
    const auto fnWindows = []
    {
        const std::string strShown =
            OutputOf({"xdotool", "search", "--onlyvisible", "--class", "Jalv.gtk3"});
        return std::count(strShown.begin(), strShown.end(), '\n');
    };
    const auto nBefore = fnWindows();
    EXPECT_TRUE(Comes(
        [&]
        {
            host->PointAt(20, -12);
            CJalv::Click();
            const bool fOpened = fnWindows() > nBefore;
            OutputOf({"xdotool", "key", "Escape"});
            return fOpened;
        }));
    surroundings.server->Continue();
    EXPECT_TRUE(Comes([&] { return !surroundings.Regions().empty(); }));
}
