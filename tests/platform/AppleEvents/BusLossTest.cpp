// What becomes of senders and receivers when the session bus goes, and when it comes back.

#include "tests/platform/AppleEvents/EventFixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <unistd.h>

using namespace AppleEventTests;
using namespace TestReceiver;
using namespace TarvaneTests;

namespace
{

using Answer = std::pair<OSErr, std::string>;

// Sends until somebody owns the name again: a receiver may need a second after the bus is back.
Answer EchoOnceOwned(const std::string& text)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(40);
    Answer answer = Echo(text);
    while (answer.first == procNotFound && std::chrono::steady_clock::now() < end)
    {
        usleep(20'000);
        answer = Echo(text);
    }
    return answer;
}

} // namespace

using BusLoss = ReceiverTest;

TEST_F(BusLoss, MidCallIsConnectionInvalid)
{
    Desc event = NumberEvent(kKill, SInt32(m_bus.DaemonPid()));
    Desc reply;
    EXPECT_EQ(connectionInvalid, SendAndWait(event, reply));
    EXPECT_EQ(procNotFound, Echo("x").first);
}

TEST_F(BusLoss, BetweenCallsIsProcNotFound)
{
    ASSERT_EQ(noErr, Echo("before").first);
    m_bus.Kill();
    EXPECT_EQ(procNotFound, Echo("x").first);
    EXPECT_EQ(procNotFound, Echo("x").first);
    Desc event = NewEvent(kEcho);
    EXPECT_EQ(procNotFound, AESend(&event, nullptr, kAENoReply, kAENormalPriority, kPlentyTicks,
                                   nullptr, nullptr));
}

TEST_F(BusLoss, ReceiverOwnsItsNameAgainAfterARestart)
{
    ASSERT_EQ(noErr, Echo("before").first);
    for (int i = 0; i < 3; i++)
    {
        m_bus.Kill();
        m_bus.Start();
        EXPECT_EQ(Answer(noErr, "after"), EchoOnceOwned("after"));
    }
}

TEST_F(BusLoss, NextCommandNeedsNoFailureInBetween)
{
    ASSERT_EQ(noErr, Echo("before").first);
    m_bus.Kill();
    m_bus.Start();
    // A receiver of the new bus: this process still holds its connection to the old one.
    const Child other = StartReceiver('Tst2');
    EXPECT_EQ(Answer(noErr, "after"), Echo("after", 'Tst2'));
}

TEST_F(BusLoss, ReceiverWaitsForAsLongAsTheBusIsAway)
{
    m_bus.Kill();
    usleep(400'000);
    m_bus.Start();
    EXPECT_EQ(Answer(noErr, "after"), EchoOnceOwned("after"));
}

TEST_F(BusLoss, ReceiverComesBackThoughTheClockIsSetBackMeanwhile)
{
    Desc reply;
    Desc setBack = NumberEvent(kClock, SInt32(300));
    ASSERT_EQ(noErr, SendAndWait(setBack, reply));
    m_bus.Kill();
    usleep(600'000);
    m_bus.Start();
    EXPECT_EQ(Answer(noErr, "after"), EchoOnceOwned("after"));
    // The clock was what it went by, had it gone by one.
    Desc now = NewEvent(kNow);
    ASSERT_EQ(noErr, SendAndWait(now, reply));
    EXPECT_LT(NumberIn(reply), time(nullptr) - 3000);
}

TEST_F(BusLoss, ReceiverTakesOverOnceWhoeverTookItsNameHasGone)
{
    ASSERT_EQ(noErr, Echo("before").first);
    m_receiver->Stop();
    m_bus.Kill();
    m_bus.Start();
    const Child other = StartReceiver('Tst1');
    m_receiver->Continue();
    usleep(200'000);
    EXPECT_EQ(0, HandledEvents());
    other->Kill();
    EXPECT_TRUE(other->WaitForEnd(kPlentyTime));
    EXPECT_EQ(Answer(noErr, "back"), EchoOnceOwned("back"));
    // The one before the loss, this one and the question itself.
    EXPECT_EQ(2, HandledEvents());
}

TEST_F(BusLoss, EveryThreadFindsTheNewBus)
{
    ASSERT_EQ(noErr, Echo("before").first);
    std::atomic<int> nStep = 0;
    Answer after;
    std::thread sender(
        [&]
        {
            EXPECT_EQ(noErr, Echo("thread").first);
            nStep = 1;
            nStep.notify_all();
            nStep.wait(1);
            after = EchoOnceOwned("thread after");
        });
    nStep.wait(0);
    m_bus.Kill();
    m_bus.Start();
    nStep = 2;
    nStep.notify_all();
    EXPECT_EQ(Answer(noErr, "main after"), EchoOnceOwned("main after"));
    sender.join();
    EXPECT_EQ(Answer(noErr, "thread after"), after);
}

TEST(WithoutABus, IsProcNotFound)
{
    for (const char* const address :
         {"unix:path=/nonexistent/bus", "", "nonsense", "unix:path=/dev/null"})
    {
        setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
        EXPECT_EQ(procNotFound, Echo("x").first) << address;
    }
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
    EXPECT_EQ(procNotFound, Echo("x").first);
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(procNotFound, Echo("x").first);
}
