// What an observer is shown of the events that a process sends.

#include "tests/platform/AppleEvents/EventFixture.h"

#include <TarvanePlatform/EventObserver.h>

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using namespace AppleEventTests;
using namespace TestReceiver;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

struct Seen
{
    TarvaneSeenEvent event;
    std::vector<std::string> parameters; // the bytes
    std::thread::id thread;
};

class EventObserverTest : public ReceiverTest
{
protected:
    EventObserverTest() { TarvaneSetEventObserver(Keep, this); }
    ~EventObserverTest() override { TarvaneSetEventObserver(nullptr, nullptr); }

    static void Keep(const TarvaneSeenEvent* event, void* test)
    {
        Seen seen{*event, {}, std::this_thread::get_id()};
        for (UInt32 i = 0; i < event->parameterCount; i++)
        {
            const TarvaneSeenParameter& parameter = event->parameters[i];
            seen.parameters.emplace_back(static_cast<const char*>(parameter.data),
                                         std::size_t(parameter.size));
        }
        static_cast<EventObserverTest*>(test)->m_seen.push_back(seen);
    }

    std::vector<Seen> m_seen;
};

} // namespace

TEST_F(EventObserverTest, SeesTheEventBeforeItGoesOutAndTheReplyBeforeTheSenderDoes)
{
    EXPECT_EQ(noErr, Echo("hello").first);
    ASSERT_EQ(m_seen.size(), 2U);
    const Seen& out = m_seen[0];
    EXPECT_FALSE(out.event.ended);
    EXPECT_EQ(out.event.target, OSType('Tst1'));
    EXPECT_EQ(out.event.eventClass, AEEventClass('Test'));
    EXPECT_EQ(out.event.eventID, AEEventID('Echo'));
    EXPECT_EQ(out.event.microseconds, 0U);
    EXPECT_THAT(out.parameters, ElementsAre("hello"));
    EXPECT_EQ(out.thread, std::this_thread::get_id());
    const Seen& in = m_seen[1];
    EXPECT_TRUE(in.event.ended);
    EXPECT_EQ(in.event.number, out.event.number);
    EXPECT_EQ(in.event.target, OSType('Tst1'));
    EXPECT_EQ(in.event.status, noErr);
    EXPECT_GT(in.event.microseconds, 0U);
    EXPECT_THAT(in.parameters, ElementsAre("hello"));
}

TEST_F(EventObserverTest, SeesFailuresAndThatNumbersRise)
{
    Desc event = NewEvent(kEcho, 'None');
    Desc reply;
    EXPECT_EQ(procNotFound, SendAndWait(event, reply));
    EXPECT_EQ(noErr, Echo("x").first);
    ASSERT_EQ(m_seen.size(), 4U);
    EXPECT_EQ(m_seen[1].event.status, procNotFound);
    EXPECT_THAT(m_seen[1].parameters, IsEmpty());
    EXPECT_EQ(m_seen[0].event.target, OSType('None'));
    EXPECT_EQ(m_seen[2].event.number, m_seen[0].event.number + 1);
}

TEST_F(EventObserverTest, SeesNothingOnceAnotherHasTakenItsPlace)
{
    EventObserverTest* const pThis = this;
    TarvaneSetEventObserver(nullptr, pThis);
    EXPECT_EQ(noErr, Echo("x").first);
    EXPECT_THAT(m_seen, IsEmpty());
}

TEST_F(EventObserverTest, StandsBesideTheTrace)
{
    setenv("TARVANE_AE_TRACE", "1", 1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(noErr, Echo("x").first);
    unsetenv("TARVANE_AE_TRACE");
    ASSERT_EQ(m_seen.size(), 2U);
    const std::string number = std::to_string(m_seen[0].event.number);
    const std::string trace = testing::internal::GetCapturedStderr();
    EXPECT_THAT(trace, HasSubstr(" event " + number + " out to 'Tst1'"));
    EXPECT_THAT(trace, HasSubstr(" event " + number + " in status 0"));
}

TEST_F(EventObserverTest, IsNoLongerCalledWhenItHasBeenTakenAway)
{
    std::atomic<bool> fGone{false}, fCalledAfterwards{false}, fEnd{false};
    std::pair<std::atomic<bool>*, std::atomic<bool>*> flags{&fGone, &fCalledAfterwards};
    const auto note = [](const TarvaneSeenEvent*, void* refcon)
    {
        const auto& [pGone, pCalled] = *static_cast<decltype(flags)*>(refcon);
        std::this_thread::sleep_for(std::chrono::microseconds(300));
        *pCalled = *pCalled || *pGone;
    };
    std::thread sender(
        [&]
        {
            while (!fEnd)
                Echo("x", 'None');
        });
    for (int i = 0; i < 25; i++)
    {
        fGone = false;
        TarvaneSetEventObserver(note, &flags);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        TarvaneSetEventObserver(nullptr, nullptr);
        fGone = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    fEnd = true;
    sender.join();
    EXPECT_FALSE(fCalledAfterwards);
}
