#include "signal/CaptureCore.h"

#include "tests/signal/CoreUnderTest.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <future>
#include <thread>
#include <utility>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

namespace
{

constexpr std::uint32_t kSecond = 48000;

void ExpectTake(const CTake& take, double dPosition, std::uint64_t nFrames,
                std::uint32_t nChannels = 2)
{
    EXPECT_EQ(take.dPosition, dPosition);
    EXPECT_EQ(take.nFrames, nFrames);
    EXPECT_EQ(SamplesThatAreRight(take.file, dPosition), nFrames * nChannels) << take.file;
}

} // namespace

TEST(CaptureCore, ATakeIsWhatWasPlayedWhileArmedAtSpeed1)
{
    CCoreUnderTest host;
    host.Play(1000, 5000);
    host.core->SetArmed(true);
    host.Play(6000, 9999);
    host.core->SetArmed(false);
    host.Play(15999, 5000);
    const auto takes = host.Published(1);
    ASSERT_THAT(takes, SizeIs(1));
    ExpectTake(takes[0], 6000, 9999);
    EXPECT_EQ(host.core->LostFrames(), 0U);
}

TEST(CaptureCore, NoTakeBeginsBeforeItIsToldThatItIsArmed)
{
    CCoreUnderTest host;
    host.onNotification = [&](std::uint32_t nId)
    {
        if (nId == TNProperty_ArmCapture && host.core->IsArmed())
        {
            host.Process({true, false, 1, 1000}, 512);
        }
    };
    host.core->SetArmed(true);
    host.Play(1512, 1000);
    host.core->SetArmed(false);
    host.StopTransport();
    const auto takes = host.Published(1);
    ASSERT_THAT(takes, SizeIs(1));
    ExpectTake(takes[0], 1512, 1000);
}

TEST(CaptureCore, NoOtherSpeedIsATake)
{
    CCoreUnderTest host;
    host.core->SetArmed(true);
    for (const double dSpeed : {0.0, 0.5, 2.0, -1.0, 0.999, std::nan("")})
    {
        host.Play(1000, 4096, 512, dSpeed);
    }
    host.core->WaitUntilWritten();
    EXPECT_THAT(host.Seen(), IsEmpty());
    EXPECT_THAT(host.captures.Files(), IsEmpty());
}

TEST(CaptureCore, EveryJumpEndsATakeAndBeginsTheNextAtItsOwnPosition)
{
    CCoreUnderTest host;
    host.core->SetArmed(true);
    host.Play(1000, 3000);
    host.Play(500'000, 2000); // locate
    host.Play(502'512, 700);  // a cycle left out
    host.Play(502'512, 700);  // a loop's second round
    host.Play(503'211, 100);  // a sample back
    host.StopTransport();
    const auto takes = host.Published(5);
    ASSERT_THAT(takes, SizeIs(5));
    ExpectTake(takes[0], 1000, 3000);
    ExpectTake(takes[1], 500'000, 2000);
    ExpectTake(takes[2], 502'512, 700);
    ExpectTake(takes[3], 502'512, 700);
    ExpectTake(takes[4], 503'211, 100);
}

TEST(CaptureCore, WithoutAPositionNothingIsCaptured)
{
    CCoreUnderTest host;
    host.core->SetArmed(true);
    host.Process({false, false, 1, 0}, 512);
    host.Process({true, false, 1, std::nan("")}, 512);
    host.core->WaitUntilWritten();
    EXPECT_THAT(host.Seen(), IsEmpty());
    EXPECT_THAT(host.core->StatusText(), HasSubstr("tells no position"));
}

TEST(CaptureCore, BlocksOfAnySizeMakeOneTake)
{
    CCoreUnderTest host(1);
    host.core->SetArmed(true);
    double dPosition = 77;
    for (const std::uint32_t nBlock : {1U, 64U, 1023U, 4096U, 4097U, 20000U, 0U, 3U})
    {
        host.Process({true, false, 1, dPosition}, nBlock);
        dPosition += nBlock;
    }
    host.StopTransport();
    const auto takes = host.Published(1);
    ExpectTake(takes[0], 77, static_cast<std::uint64_t>(dPosition) - 77, 1);
    EXPECT_THAT(takes, SizeIs(1));
}

TEST(CaptureCore, FreewheelingIsCapturedWholeHoweverFast)
{
    CCoreUnderTest host(8);
    host.core->SetArmed(true);
    // Several times what the ring holds.
    constexpr std::uint32_t kFrames = 20 * kSecond;
    host.Play(96'000, kFrames, 1024, 1, true);
    host.StopTransport();
    const auto takes = host.Published(1);
    ASSERT_THAT(takes, SizeIs(1));
    ExpectTake(takes[0], 96'000, kFrames, 8);
    EXPECT_EQ(host.core->LostFrames(), 0U);
}

TEST(CaptureCore, AWriterThatStandsStillHoldsAHostThatFreewheelsAndCostsNoSample)
{
    std::promise<void> release;
    bool fBegun = false; // the writer's
    CCoreUnderTest host;
    // The writer stands still as soon as the take has begun.
    host.core->SetObserver(
        [&](const CTake&)
        {
            if (!std::exchange(fBegun, true))
            {
                release.get_future().wait();
            }
        });
    host.core->SetArmed(true);
    constexpr std::uint32_t kBlocks = 4000; // several times what the ring holds
    std::atomic<std::uint32_t> nPlayed = 0;
    std::thread player(
        [&]
        {
            for (std::uint32_t n = 0; n < kBlocks; ++n)
            {
                host.Process({true, true, 1, n * 512.0}, 512);
                ++nPlayed;
            }
        });
    // Until it is held, or has not been.
    for (std::uint32_t nBefore = kBlocks; nBefore != nPlayed;)
    {
        nBefore = nPlayed;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_LT(nPlayed, kBlocks);
    release.set_value();
    player.join();
    host.core->EndTake();
    host.core->WaitUntilWritten();
    EXPECT_EQ(host.core->LostFrames(), 0U);
    ASSERT_EQ(host.core->Waiting(), 1U);
    const auto record = host.Get<TNCaptureElement>(TNProperty_ElementInfo);
    EXPECT_EQ(record.tDub.dEnd, kBlocks * 512.0);
}

TEST(CaptureCore, DisarmingBetweenTwoBlocksEndsTheTakeEvenWhenArmedAgainAtOnce)
{
    CCoreUnderTest host;
    host.core->SetArmed(true);
    host.Play(0, 512);
    host.core->SetArmed(false);
    host.core->SetArmed(true);
    host.Play(512, 512);
    host.core->SetArmed(false);
    host.Play(1024, 512);
    const auto takes = host.Published(2);
    ASSERT_THAT(takes, SizeIs(2));
    ExpectTake(takes[0], 0, 512);
    ExpectTake(takes[1], 512, 512);
}

TEST(CaptureCore, ThePortArmsFromItsBlockOnAndTheWriterTellsSo)
{
    CCoreUnderTest host;
    host.core->ArmFromPort(true);
    host.Play(4800, 512);
    host.core->ArmFromPort(false);
    host.Play(5312, 512);
    const auto takes = host.Published(1);
    ExpectTake(takes[0], 4800, 512);
    EXPECT_THAT(host.Ids(), testing::Contains(TNProperty_ArmCapture));
    EXPECT_FALSE(host.core->IsArmed());
}

TEST(CaptureCore, ATakeOfAHostThatStopsCallingEndsAllTheSame)
{
    CCoreUnderTest host;
    host.core->SetArmed(true);
    host.Play(0, 4096);
    host.core->SetArmed(false);
    ExpectTake(host.Published(1)[0], 0, 4096);
}

TEST(CaptureCore, TheObserverIsToldOfEachChangeBehindTheListeners)
{
    std::vector<std::string> told; // by the writer, which has nothing to do when we acknowledge
    CCoreUnderTest host;
    host.onNotification = [&](std::uint32_t nId) { told.push_back(std::to_string(nId)); };
    host.core->SetArmed(true);
    told.clear();
    host.core->SetObserver(
        [&](const CTake& take)
        {
            constexpr const char* kStates[] = {"running", "waiting", "acknowledged", "failed"};
            told.push_back(kStates[static_cast<int>(take.state)]);
        });
    host.Play(0, 512);
    host.StopTransport();
    host.core->WaitUntilWritten();
    EXPECT_THAT(told, ElementsAre("running", "64010", "64000", "waiting"));
    told.clear();
    host.Acknowledge(0);
    EXPECT_THAT(told, ElementsAre("64004", "acknowledged"));
}

TEST(CaptureCore, TheFileIsBroadcastWavWithItsPosition)
{
    CCoreUnderTest host;
    host.core->SetArmed(true);
    host.Play(5'000'000'123, 1000);
    host.StopTransport();
    const CTake take = host.Published(1)[0];
    EXPECT_EQ(take.file, host.captures / "take-001.wav");
    SF_INFO info{};
    SNDFILE* pFile = sf_open(take.file.c_str(), SFM_READ, &info);
    ASSERT_NE(pFile, nullptr);
    SF_BROADCAST_INFO broadcast{};
    EXPECT_EQ(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast), SF_TRUE);
    sf_close(pFile);
    EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24);
    EXPECT_EQ((static_cast<std::uint64_t>(broadcast.time_reference_high) << 32) +
                  broadcast.time_reference_low,
              5'000'000'123U);
    EXPECT_STREQ(broadcast.originator, "Tarvane Link");
    EXPECT_EQ(std::string(broadcast.origination_date, 2), "20");
    std::ifstream file(take.file, std::ios::binary);
    std::string strMagic(4, ' ');
    file.read(strMagic.data(), 4);
    EXPECT_EQ(strMagic, "RIFF");
}
