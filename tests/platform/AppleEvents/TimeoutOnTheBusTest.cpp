// Who keeps a sender waiting, and for how long.

#include "tests/platform/AppleEvents/EventFixture.h"
#include "tests/platform/AppleEvents/MuteBus.h"

#include <chrono>
#include <cstdlib>

using namespace AppleEventTests;
using namespace TestReceiver;
using namespace TarvaneTests;

namespace
{

constexpr SInt32 kFewTicks = 12;

using Answer = std::pair<OSErr, std::string>;
using Clock = std::chrono::steady_clock;

OSErr SendEcho(const std::string& text, SInt32 ticks)
{
    Desc event = NewEvent(kEcho);
    Put(event, keyDirectObject, typeChar, text);
    Desc reply;
    return SendAndWait(event, reply, ticks);
}

// A stopped receiver: it owns its name, and does nothing.
class StoppedReceiver : public ReceiverTest
{
protected:
    StoppedReceiver()
    {
        EXPECT_EQ(noErr, Echo("before").first);
        m_receiver->Stop();
    }
};

} // namespace

TEST_F(StoppedReceiver, IsATimeout)
{
    EXPECT_EQ(errAETimeout, SendEcho("x", kFewTicks));
}

TEST_F(StoppedReceiver, NoTicksAreATimeoutAtOnce)
{
    EXPECT_EQ(errAETimeout, SendEcho("x", 0));
}

TEST_F(StoppedReceiver, TimeoutIsNotShorterThanAsked)
{
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(errAETimeout, SendEcho("x", 30));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(500));
}

TEST_F(StoppedReceiver, VariableShortensTheDefaultTimeout)
{
    setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", "12", 1);
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(errAETimeout, SendEcho("x", kAEDefaultTimeout));
    unsetenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS");
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(50));
}

TEST_F(StoppedReceiver, LateReplyNeverAnswersALaterCommand)
{
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(errAETimeout, SendEcho("late " + std::to_string(i), 2));
    m_receiver->Continue();
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(Answer(noErr, "new"), Echo("new"));
    // Each was handled once: nothing was sent again.
    EXPECT_EQ(11, HandledEvents());
}

TEST_F(StoppedReceiver, LateLargeReplyNeverAnswersALaterCommand)
{
    EXPECT_EQ(errAETimeout, SendEcho(std::string(5'000'000, 'x'), kFewTicks));
    m_receiver->Continue();
    EXPECT_EQ(Answer(noErr, "new"), Echo("new"));
}

TEST_F(ReceiverTest, HandlerAtWorkIsATimeoutAndFinishes)
{
    Desc event = NumberEvent(kSlow, SInt32(400));
    Desc reply;
    EXPECT_EQ(errAETimeout, SendAndWait(event, reply, 2));
    EXPECT_EQ(Answer(noErr, "next"), Echo("next"));
    EXPECT_EQ(2, HandledEvents());
}

TEST_F(ReceiverTest, NoTimeOutWaitsForTheHandler)
{
    Desc event = NumberEvent(kSlow, SInt32(300));
    Put(event, 'Aaaa', typeChar, "done");
    Desc reply;
    EXPECT_EQ(noErr, SendAndWait(event, reply, kNoTimeOut));
    EXPECT_EQ("done", Text(reply, 'Aaaa'));
}

TEST(MuteBusTest, HoldsASenderForItsTimeoutAtMost)
{
    const MuteBus bus;
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(errAETimeout, SendEcho("x", kFewTicks));
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(60));
}

TEST(MuteBusTest, LeavesNothingBehindForTheNextEvent)
{
    {
        const MuteBus bus;
        EXPECT_EQ(errAETimeout, SendEcho("x", kFewTicks));
    }
    const PrivateBus bus;
    const Child receiver = StartReceiver('Tst1');
    EXPECT_EQ(Answer(noErr, "works"), Echo("works"));
}

TEST(MuteBusTest, ManySendersInTurnAreAllTimeouts)
{
    const MuteBus bus;
    for (int i = 0; i < 40; i++)
        EXPECT_EQ(errAETimeout, SendEcho("x", 1)) << i;
}

TEST(MuteBusTest, ThatTakesNoMoreConnectionsIsATimeoutToo)
{
    const MuteBus bus(0);
    // The first takes the one place at the door, and nobody lets it in.
    EXPECT_EQ(errAETimeout, SendEcho("x", kFewTicks));
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(errAETimeout, SendEcho("x", kFewTicks));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(200));
}

TEST_F(ReceiverTest, BusThatFallsMuteIsATimeoutAndRecovers)
{
    ASSERT_EQ(noErr, Echo("before").first);
    m_bus.Freeze();
    EXPECT_EQ(errAETimeout, SendEcho("during", kFewTicks));
    m_bus.Thaw();
    EXPECT_EQ(Answer(noErr, "after"), Echo("after"));
}

TEST_F(ReceiverTest, EventsThatAMuteBusDidNotTakeAreNeverDelivered)
{
    ASSERT_EQ(noErr, Echo("before").first);
    m_bus.Freeze();
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(errAETimeout, SendEcho(std::string(15'000'000, 'x'), kFewTicks));
    m_bus.Thaw();
    EXPECT_EQ(Answer(noErr, "after"), Echo("after"));
    // The socket's own buffer may hold one.
    EXPECT_LE(HandledEvents(), 3);
}

TEST_F(ReceiverTest, EventWithoutReplyThatAMuteBusDidNotTakeIsATimeout)
{
    ASSERT_EQ(noErr, Echo("before").first);
    m_bus.Freeze();
    Desc event = NewEvent(kEcho);
    EXPECT_EQ(errAETimeout,
              AESend(&event, nullptr, kAENoReply, kAENormalPriority, kFewTicks, nullptr, nullptr));
    m_bus.Thaw();
    EXPECT_EQ(1, HandledEvents());
}
