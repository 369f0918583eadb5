// Both ends of the connection under load, for the sanitizers too: takes come 16 a second, and the
// process that delivers them is killed and started again.
#include "plugin/view/ViewSupervisor.h"
#include "tests/signal/CoreUnderTest.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <map>
#include <mutex>
#include <thread>

using namespace Tarvane;
using namespace TarvaneTest;
using namespace testing;

namespace
{

constexpr int kTakes = 48;
constexpr std::chrono::microseconds kTakeDistance{62'500};
constexpr std::uint32_t kFrames = 2048;
constexpr int kTakesToAKill = 5;
constexpr const char* kInstance = "01234567-89ab-4cde-8f01-23456789abcd";

template <typename Condition> bool Comes(Condition&& fnThere)
{
    for (int n = 0; n < 6000 && !fnThere(); ++n)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return fnThere();
}

} // namespace

TEST(ViewProcessesComeAndGo, EveryTakeIsAcknowledgedOnceWhoeverHasItInHand)
{
    std::mutex mutex;
    std::map<std::uint32_t, int> acknowledges; // by take
    std::vector<std::string> log;
    CCoreUnderTest host(2, kInstance);
    host.core->SetObserver(
        [&](const CTake& take)
        {
            const std::lock_guard lock(mutex);
            acknowledges[take.nNumber] += take.state == TakeState::Acknowledged;
        });
    ::setenv("FAKE_VIEW", "serve", 1);
    ::setenv("FAKE_VIEW_LOG", (host.captures / "view.log").c_str(), 1);
    int nKills = 0;
    int nKilled = 0; // the last of them
    {
        CViewSupervisor supervisor(*host.core, FAKE_VIEW_PROGRAM,
                                   [&](const std::string& strLine)
                                   {
                                       const std::lock_guard lock(mutex);
                                       log.push_back(strLine);
                                   });
        std::atomic<int> nPlayed = 0;
        std::thread audio(
            [&]
            {
                auto due = std::chrono::steady_clock::now();
                for (int n = 0; n < kTakes; ++n)
                {
                    host.core->ArmFromPort(true);
                    // Freewheeling, so that nothing is lost however slow the disk is.
                    host.Play(n * 10'000.0, kFrames, 512, 1, true);
                    host.core->ArmFromPort(false);
                    host.Process({true, true, 1, n * 10'000.0 + kFrames}, 64);
                    ++nPlayed;
                    std::this_thread::sleep_until(due += kTakeDistance);
                }
            });
        for (int nNext = kTakesToAKill; nNext < kTakes; nNext += kTakesToAKill)
        {
            int nProcess = 0;
            const bool fComes = Comes(
                [&]
                {
                    nProcess = supervisor.ProcessId();
                    return nPlayed >= nNext && nProcess > 0 && nProcess != nKilled;
                });
            EXPECT_TRUE(fComes);
            if (!fComes)
                break;
            nKills += ::kill(nProcess, SIGKILL) == 0;
            nKilled = nProcess;
            supervisor.Open(77); // as a user does, and gets another view
        }
        audio.join();
        host.core->WaitUntilWritten();
        EXPECT_TRUE(Comes([&] { return host.core->Waiting() == 0; }));
    }
    ::unsetenv("FAKE_VIEW");
    ::unsetenv("FAKE_VIEW_LOG");
    EXPECT_GT(nKills, 0);
    EXPECT_EQ(host.core->LostFrames(), 0U);
    const std::lock_guard lock(mutex);
    EXPECT_EQ(acknowledges.size(), static_cast<std::size_t>(kTakes));
    EXPECT_THAT(acknowledges, Each(Pair(_, 1)));
    // It ended in no other way, as by what a sanitizer finds.
    EXPECT_THAT(log, Each(HasSubstr("signal 9")));
}
