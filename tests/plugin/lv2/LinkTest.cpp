// The plug-in as a host loads it, driven cycle by cycle.
#include "tests/plugin/lv2/HostOfOne.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace TarvaneTest;
using namespace testing;

namespace
{

class Lv2Link : public Test
{
protected:
    Lv2Link()
    {
        ::setenv("TARVANE_LINK_CAPTURES", captures.Path().c_str(), 1);
        // No view is wanted here; one that is started says so and ends.
        ::unsetenv("DISPLAY");
    }
    void Open(const std::string& strVariant = "stereo", std::uint32_t nChannels = 2,
              double dRate = 48000)
    {
        host.emplace(urids, strVariant, nChannels, dRate);
    }
    // The port is looked at once before it changes.
    void OpenArmed(const std::string& strVariant = "stereo", std::uint32_t nChannels = 2)
    {
        Open(strVariant, nChannels);
        host->Run(0);
        host->Arm(true);
    }
    // The takes, once the host is gone: position, and how many frames are right and in order.
    std::vector<std::pair<std::int64_t, std::int64_t>> Takes()
    {
        host.reset();
        std::vector<std::pair<std::int64_t, std::int64_t>> takes;
        for (const std::string& strFile : captures.Files())
        {
            if (!strFile.ends_with(".wav"))
                continue;
            SF_INFO info{};
            SF_BROADCAST_INFO broadcast{};
            SNDFILE* pFile = sf_open((captures / strFile).c_str(), SFM_READ, &info);
            EXPECT_NE(pFile, nullptr);
            EXPECT_TRUE(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast));
            sf_close(pFile);
            const std::int64_t nPosition =
                broadcast.time_reference_low | std::int64_t{broadcast.time_reference_high} << 32;
            EXPECT_EQ(SamplesThatAreRight(captures / strFile, static_cast<double>(nPosition)),
                      static_cast<std::size_t>(info.frames * info.channels));
            takes.emplace_back(nPosition, info.frames);
            nRate = info.samplerate;
        }
        std::sort(takes.begin(), takes.end());
        return takes;
    }

    CTemporaryFolder captures;
    CUrids urids;
    std::optional<CHostOfOne> host;
    int nRate = 0;
};

using TakeList = std::vector<std::pair<std::int64_t, std::int64_t>>;

} // namespace

TEST_F(Lv2Link, ATakeLiesWhereTheTransportWas)
{
    OpenArmed();
    host->Tell(0, 123457, 1);
    for (int n = 0; n < 10; ++n)
        host->Run(123457 + n * kCycle);
    EXPECT_EQ(Takes(), (TakeList{{123457, 10 * kCycle}}));
}

TEST_F(Lv2Link, AnEventHoldsFromItsOwnFrameOn)
{
    OpenArmed();
    host->Tell(0, 1000, 1);
    host->Run(1000);
    host->Tell(100, 50000, 1);
    host->Run(1000 + kCycle, 100, 50000);
    host->Tell(77, 0, 0);
    host->Run(50000 + kCycle - 100);
    EXPECT_EQ(Takes(), (TakeList{{1000, kCycle + 100}, {50000, kCycle - 100 + 77}}));
}

TEST_F(Lv2Link, SeveralEventsOfACycleAreTakenOneAfterAnother)
{
    OpenArmed();
    host->Tell(0, 300, 0);
    host->Tell(10, 300, 1);
    host->Tell(200, 700, 0);
    host->Run(290);
    EXPECT_EQ(Takes(), (TakeList{{300, 190}}));
}

TEST_F(Lv2Link, PositionsComeInEveryTypeOfNumber)
{
    OpenArmed();
    LV2_Atom_Forge& forge = host->Forge();
    const auto fnFloat = [&] { lv2_atom_forge_float(&forge, 1); };
    host->TellTyped(
        0, [&] { lv2_atom_forge_int(&forge, 10000); }, fnFloat);
    host->Run(10000);
    host->TellTyped(
        0, [&] { lv2_atom_forge_double(&forge, 20000); },
        [&] { lv2_atom_forge_double(&forge, 1); });
    host->Run(20000);
    host->TellTyped(
        0, [&] { lv2_atom_forge_float(&forge, 30000); }, [&] { lv2_atom_forge_int(&forge, 1); });
    host->Run(30000);
    host->TellTyped(
        0, [&] { lv2_atom_forge_long(&forge, 40000); }, fnFloat, true);
    host->Run(40000);
    EXPECT_EQ(Takes(),
              (TakeList{{10000, kCycle}, {20000, kCycle}, {30000, kCycle}, {40000, kCycle}}));
}

TEST_F(Lv2Link, APositionThatIsNoNumberCountsAsLeftOut)
{
    OpenArmed();
    LV2_Atom_Forge& forge = host->Forge();
    host->TellTyped(
        0, [&] { lv2_atom_forge_string(&forge, "1000", 4); },
        [&] { lv2_atom_forge_float(&forge, 1); });
    host->Run(0);
    EXPECT_EQ(Takes(), TakeList{}) << "no position is known";
}

TEST_F(Lv2Link, ShuttleAndVarispeedAreNoTake)
{
    OpenArmed();
    for (const float fSpeed : {2.F, 0.5F, -1.F})
    {
        host->Tell(0, 5000, fSpeed);
        host->Run(5000);
    }
    host->Tell(0, 9000, 1);
    host->Run(9000);
    EXPECT_EQ(Takes(), (TakeList{{9000, kCycle}}));
}

TEST_F(Lv2Link, WithoutAPositionNothingIsCaptured)
{
    OpenArmed();
    for (int n = 0; n < 10; ++n)
        host->Run(0);
    EXPECT_EQ(Takes(), TakeList{});
}

TEST_F(Lv2Link, ThePortArmsWhenItChangesAndNotByWhereItStandsAtFirst)
{
    Open();
    host->Arm(true); // as the host's session left it
    host->Tell(0, 0, 1);
    host->Run(0);
    host->Run(kCycle);
    host->Arm(false);
    host->Run(2 * kCycle);
    host->Arm(true);
    host->Run(3 * kCycle);
    host->Arm(false);
    host->Run(4 * kCycle);
    EXPECT_EQ(Takes(), (TakeList{{3 * kCycle, kCycle}}));
}

TEST_F(Lv2Link, LatencyIsNone)
{
    Open();
    host->Run(0);
    EXPECT_EQ(host->Latency(), 0);
}

TEST_F(Lv2Link, OneChannelAndEightAreCapturedAsTheyAre)
{
    for (const auto& [strVariant, nChannels] :
         std::vector<std::pair<std::string, std::uint32_t>>{{"mono", 1}, {"eight", 8}})
    {
        OpenArmed(strVariant, nChannels);
        host->Tell(0, 640 * nChannels, 1);
        host->Run(640 * nChannels);
        host.reset();
    }
    EXPECT_EQ(Takes(), (TakeList{{640, kCycle}, {640 * 8, kCycle}}));
}

TEST_F(Lv2Link, ATakesRateIsTheHosts)
{
    Open("stereo", 2, 96000);
    host->Run(0);
    host->Arm(true);
    host->Tell(0, 1, 1);
    host->Run(1);
    EXPECT_EQ(Takes().size(), 1U);
    EXPECT_EQ(nRate, 96000);
}

// The writer stands still where it opens the index of the journals: the lease makes it wait.
TEST_F(Lv2Link, AHostThatFreewheelsIsHeldUntilTheDiskTakesMore)
{
    const CTemporaryFolder state;
    std::filesystem::create_directory(state / "tarvane-link");
    const std::string strIndex = state / "tarvane-link/capture-folders";
    const int nIndex = ::open(strIndex.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    ASSERT_GE(nIndex, 0);
    std::signal(SIGIO, SIG_IGN); // tells the owner of the lease that somebody waits
    ASSERT_EQ(::fcntl(nIndex, F_SETLEASE, F_WRLCK), 0);
    const std::string strStateBefore = ::getenv("XDG_STATE_HOME");
    ::setenv("XDG_STATE_HOME", state.Path().c_str(), 1);
    OpenArmed();
    host->SetFreeWheeling();
    host->Tell(0, 0, 1);
    constexpr std::uint32_t kCycles = 5000; // more than fits between the audio thread and the disk
    std::atomic<std::uint32_t> nDone = 0;
    std::thread player([&] { host->RunThrough(kCycles, nDone); });
    // Until it is held, or has not been.
    for (std::uint32_t nBefore = 0; nDone == 0 || nBefore != nDone;)
    {
        nBefore = nDone;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_LT(nDone, kCycles);
    ::close(nIndex);
    player.join();
    EXPECT_EQ(Takes(), (TakeList{{0, kCycles * kCycle}}));
    ::setenv("XDG_STATE_HOME", strStateBefore.c_str(), 1);
}

TEST_F(Lv2Link, TheAudioThreadWaitsForNobodyThoughTheViewStandsStill)
{
    CTemporaryFolder bundle;
    std::filesystem::create_symlink(FAKE_VIEW_PROGRAM, bundle / "tarvane-link-view");
    ::setenv("FAKE_VIEW", "mute", 1);
    ::setenv("FAKE_VIEW_LOG", (bundle / "log").c_str(), 1);
    host.emplace(urids, "stereo", 2, 48000, bundle.Path());
    host->Run(0);
    // Armed and not, from jump to jump: takes begin and end, and the view is told of each.
    constexpr int kStretches = 100;
    constexpr int kCycles = 10;
    for (int n = 0; n < kStretches; ++n)
    {
        host->Arm(n % 4 != 3);
        host->Tell(0, n * 100000, 1);
        for (int nCycle = 0; nCycle < kCycles; ++nCycle)
            host->Run(n * 100000 + nCycle * kCycle);
    }
    // The system may let it wait for a page of memory, now and then.
    EXPECT_LT(host->Waits(), kStretches / 10);
    EXPECT_EQ(Takes().size(), static_cast<std::size_t>(kStretches * 3 / 4));
    ::unsetenv("FAKE_VIEW");
    ::unsetenv("FAKE_VIEW_LOG");
}

TEST_F(Lv2Link, TheStateKeepsUuidAndTrackAndNeverThatItWasArmed)
{
    OpenArmed();
    host->Run(0);
    State state = host->Save();
    ASSERT_EQ(state.size(), 2U);
    const LV2_URID nTrack = urids("https://tarvane.org/lv2/link#track");
    const std::int32_t nChosen = 3;
    state[nTrack].bytes.assign(reinterpret_cast<const char*>(&nChosen), sizeof nChosen);
    host.reset();

    Open();
    EXPECT_NE(host->Save(), state) << "an instance of its own";
    host->Restore(state);
    const State restored = host->Save();
    for (const auto& [nKey, value] : state)
    {
        ASSERT_EQ(restored.count(nKey), 1U);
        EXPECT_EQ(restored.at(nKey).bytes, value.bytes);
    }
    host->Tell(0, 100, 1);
    host->Run(100);
    EXPECT_EQ(Takes(), TakeList{});
}

TEST_F(Lv2Link, AStateOfAnotherShapeIsIgnored)
{
    Open();
    const State before = host->Save();
    State flawed;
    flawed[urids("https://tarvane.org/lv2/link#uuid")] = {"x", urids(LV2_ATOM__Int)};
    flawed[urids("https://tarvane.org/lv2/link#track")] = {"x", urids(LV2_ATOM__Int)};
    host->Restore(flawed);
    for (const auto& [nKey, value] : host->Save())
        EXPECT_EQ(value.bytes, before.at(nKey).bytes);
}

TEST_F(Lv2Link, TwoInstancesHaveAStateOfTheirOwn)
{
    OpenArmed();
    CHostOfOne other(urids, "stereo", 2);
    other.Run(0);
    host->Tell(0, 700, 1);
    other.Tell(0, 900, 1);
    host->Run(700);
    other.Run(900);
    EXPECT_EQ(Takes(), (TakeList{{700, kCycle}}));
}
