#import <Foundation/Foundation.h>

#include <AudioToolbox/AudioToolbox.h>

#include "tests/platform/AudioUnit/RunLoopThread.h"
#include "tests/support/LiveObjects.h"

#include <gmock/gmock.h>

#include <mutex>
#include <set>
#include <thread>
#include <vector>

// Listeners with an interval: called by their run loop.
namespace
{

using testing::ElementsAre;

struct Record
{
    struct Call
    {
        AudioUnitEventType type;
        AudioUnitParameterID id;
        UInt64 hostTime;
        std::thread::id thread;
    };

    size_t Count() const
    {
        std::lock_guard lock(mutex);
        return calls.size();
    }

    std::vector<AudioUnitEventType> Types() const
    {
        std::lock_guard lock(mutex);
        std::vector<AudioUnitEventType> types;
        for (const Call& call : calls)
            types.push_back(call.type);
        return types;
    }

    mutable std::mutex mutex;
    std::vector<Call> calls;
    // Done in the course of the first call.
    std::function<void()> onFirst;
};

void Hear(void* userData, void*, const AudioUnitEvent* event, UInt64 hostTime,
          AudioUnitParameterValue)
{
    auto& record = *static_cast<Record*>(userData);
    std::function<void()> onFirst;
    {
        std::lock_guard lock(record.mutex);
        record.calls.push_back({event->mEventType, event->mArgument.mParameter.mParameterID,
                                hostTime, std::this_thread::get_id()});
        std::swap(onFirst, record.onFirst);
    }
    if (onFirst)
        onFirst();
}

AudioUnitEvent Event(AudioUnitEventType type, AudioUnitParameterID id = 0)
{
    AudioUnitEvent event = {};
    event.mEventType = type;
    event.mArgument.mParameter.mParameterID = id;
    return event;
}

const AudioUnitEvent kChange = Event(kAudioUnitEvent_ParameterValueChange);
const AudioUnitEvent kChangeOther = Event(kAudioUnitEvent_ParameterValueChange, 1);
const AudioUnitEvent kBegin = Event(kAudioUnitEvent_BeginParameterChangeGesture);
const AudioUnitEvent kEnd = Event(kAudioUnitEvent_EndParameterChangeGesture);

class Listener
{
  public:
    Listener(Record& record, CFRunLoopRef runLoop, float fInterval, float fGranularity = 0,
             CFStringRef mode = nullptr)
    {
        EXPECT_EQ(AUEventListenerCreate(Hear, &record, runLoop, mode, fInterval, fGranularity,
                                        &m_listener),
                  noErr);
        for (const AudioUnitEvent& event : {kChange, kChangeOther, kBegin, kEnd})
            EXPECT_EQ(AUEventListenerAddEventType(m_listener, this, &event), noErr);
    }

    ~Listener() { Dispose(); }

    void Dispose() { AUListenerDispose(m_listener); }

    void Remove(const AudioUnitEvent& event)
    {
        EXPECT_EQ(AUEventListenerRemoveEventType(m_listener, this, &event), noErr);
    }

  private:
    AUEventListenerRef m_listener = nullptr;
};

void Notify(const AudioUnitEvent& event)
{
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &event), noErr);
}

// Long enough for the run loop to deliver what it has to. Only for what must not come.
void RunOn()
{
    int nPasses = 0;
    RunUntil([&] { return ++nPasses > 3; });
}

TEST(AUEventListenerDelivery, WaitsForTheRunLoop)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    Notify(kBegin);
    EXPECT_EQ(record.Count(), 0u);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 1; }));
    EXPECT_EQ(record.calls[0].thread, std::this_thread::get_id());
}

TEST(AUEventListenerDelivery, KeepsTheOrder)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    for (const AudioUnitEvent& event : {kBegin, kChange, kChange, kEnd, kBegin})
        Notify(event);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 5; }));
    EXPECT_THAT(record.Types(), ElementsAre(1, 0, 0, 2, 1));
}

TEST(AUEventListenerDelivery, ComesOnTheListenersThread)
{
    RunLoopThread thread;
    Record record;
    Listener listener(record, thread.RunLoop(), 0.001f);
    Notify(kBegin);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 1; }));
    EXPECT_EQ(record.calls[0].thread, thread.Id());
}

TEST(AUEventListenerDelivery, MayBeNotifiedByManyThreads)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    std::thread threads[4];
    for (std::thread& thread : threads)
    {
        thread = std::thread(
            []
            {
                for (int i = 0; i < 100; ++i)
                    Notify(kBegin);
            });
    }
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 400; }));
    for (std::thread& thread : threads)
        thread.join();
    for (const Record::Call& call : record.calls)
        EXPECT_EQ(call.thread, std::this_thread::get_id());
}

TEST(AUEventListenerDelivery, KeepsItsInterval)
{
    Record record;
    Listener listener(record, nullptr, 0.3f);
    std::chrono::steady_clock::time_point first;
    record.onFirst = [&]
    {
        first = std::chrono::steady_clock::now();
        Notify(kEnd);
    };
    Notify(kBegin);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 2; }));
    EXPECT_GE(std::chrono::steady_clock::now() - first, std::chrono::milliseconds(290));
}

TEST(AUEventListenerDelivery, ComesInTheListenersModeOnly)
{
    CFStringRef mode =
        CFStringCreateWithCString(kCFAllocatorDefault, "other mode", kCFStringEncodingUTF8);
    Record record;
    Listener listener(record, nullptr, 0.001f, 0, mode);
    Notify(kBegin);
    RunOn();
    EXPECT_EQ(record.Count(), 0u);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 1; }, mode));
    CFRelease(mode);
}

TEST(AUEventListenerDelivery, ComesInAnotherThreadsModeToo)
{
    CFStringRef mode =
        CFStringCreateWithCString(kCFAllocatorDefault, "other mode", kCFStringEncodingUTF8);
    {
        RunLoopThread thread(mode);
        Record record;
        Listener listener(record, thread.RunLoop(), 0.001f, 0, mode);
        Notify(kBegin);
        EXPECT_TRUE(RunUntil([&] { return record.Count() == 1; }));
    }
    CFRelease(mode);
}

TEST(AUEventListenerDelivery, NewerChangeTakesTheOlderOnesPlace)
{
    Record record;
    Listener listener(record, nullptr, 0.001f, 1000.0f);
    for (const AudioUnitEvent& event : {kBegin, kChange, kChange, kChange, kEnd})
        Notify(event);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 3; }));
    RunOn();
    EXPECT_THAT(record.Types(), ElementsAre(1, 0, 2));
    EXPECT_LE(record.calls[0].hostTime, record.calls[1].hostTime);
    EXPECT_LE(record.calls[1].hostTime, record.calls[2].hostTime);
}

TEST(AUEventListenerDelivery, ChangesOfOthersAndAcrossGesturesStay)
{
    Record record;
    Listener listener(record, nullptr, 0.001f, 1000.0f);
    for (const AudioUnitEvent& event : {kChange, kChangeOther, kChange, kEnd, kChange})
        Notify(event);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 5; }));
}

TEST(AUEventListenerDelivery, GesturesNeverTakeAPlace)
{
    Record record;
    Listener listener(record, nullptr, 0.001f, 1000.0f);
    Notify(kBegin);
    Notify(kBegin);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 2; }));
}

TEST(AUEventListenerDelivery, DisposedListenerIsNotCalled)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    Notify(kBegin);
    listener.Dispose();
    RunOn();
    EXPECT_EQ(record.Count(), 0u);
}

TEST(AUEventListenerDelivery, ListenerMayBeDisposedOfInItsOwnCall)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    record.onFirst = [&] { listener.Dispose(); };
    Notify(kBegin);
    Notify(kEnd);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 1; }));
    RunOn();
    EXPECT_EQ(record.Count(), 1u);
}

TEST(AUEventListenerDelivery, RemovedEventNoLongerWaits)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    Notify(kBegin);
    Notify(kEnd);
    listener.Remove(kBegin);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 1; }));
    RunOn();
    EXPECT_THAT(record.Types(), ElementsAre(2));
}

TEST(AUEventListenerDelivery, FunctionMayRunTheLoopAndNotify)
{
    Record record;
    Listener listener(record, nullptr, 0.001f);
    record.onFirst = [&]
    {
        Notify(kBegin);
        EXPECT_TRUE(RunUntil([&] { return record.Count() == 3; }));
    };
    Notify(kBegin);
    Notify(kEnd);
    EXPECT_TRUE(RunUntil([&] { return record.Count() == 3; }));
    EXPECT_THAT(record.Types(), ElementsAre(1, 2, 1));
}

TEST(AUEventListenerDelivery, EndedThreadIsNoHarm)
{
    Record record;
    auto thread = std::make_unique<RunLoopThread>();
    Listener listener(record, thread->RunLoop(), 0.001f);
    thread.reset();
    for (int i = 0; i < 1000; ++i)
        Notify(kBegin);
    EXPECT_EQ(record.Count(), 0u);
}

TEST(AUEventListenerDelivery, ListenerLetsGoOfItsRunLoopAndMode)
{
    CFStringRef mode =
        CFStringCreateWithCString(kCFAllocatorDefault, "some other mode", kCFStringEncodingUTF8);
    CFRunLoopRef runLoop = CFRunLoopGetCurrent();
    const CFIndex nBefore = CFGetRetainCount(runLoop);
    {
        Record record;
        Listener listener(record, nullptr, 0.001f, 0, mode);
        EXPECT_GT(CFGetRetainCount(mode), 1);
        EXPECT_GT(CFGetRetainCount(runLoop), nBefore);
    }
    EXPECT_EQ(CFGetRetainCount(mode), 1);
    EXPECT_EQ(CFGetRetainCount(runLoop), nBefore);
    CFRelease(mode);
}

TEST(AUEventListenerDelivery, NothingIsLeftBehind)
{
    const auto work = []
    {
        Record delivered;
        Record late;
        Listener listener(delivered, nullptr, 0.001f);
        Listener disposed(late, nullptr, 0.001f);
        Notify(kBegin);
        disposed.Dispose();
        EXPECT_TRUE(RunUntil([&] { return delivered.Count() == 1; }));
    };
    LiveObjects();
    work();
    const long before = LiveObjects();
    for (int i = 0; i < 20; ++i)
        work();
    EXPECT_EQ(LiveObjects(), before);
}

} // namespace
