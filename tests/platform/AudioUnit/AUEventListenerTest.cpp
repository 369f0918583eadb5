#include <AudioToolbox/AudioToolbox.h>

#include "tests/platform/AudioUnit/TestUnit.h"

#include <gmock/gmock.h>

#include <thread>

// Listeners with an interval of 0: called at once, on the notifying thread.
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

struct Heard
{
    void* object;
    AudioUnitEventType type;
    AudioUnitParameterValue value;

    bool operator==(const Heard&) const = default;
};

using Record = std::vector<Heard>;

void Hear(void* userData, void* object, const AudioUnitEvent* event, UInt64,
          AudioUnitParameterValue value)
{
    static_cast<Record*>(userData)->push_back({object, event->mEventType, value});
}

void HearParameter(void*, void*, const AudioUnitParameter*, AudioUnitParameterValue)
{
    ADD_FAILURE() << "a parameter listener was called";
}

AudioUnitEvent Event(AudioUnitEventType type, AudioUnitParameterID id = 0, AudioUnit unit = nullptr)
{
    AudioUnitEvent event = {};
    event.mEventType = type;
    event.mArgument.mParameter = {unit, id, kAudioUnitScope_Global, 0};
    return event;
}

const AudioUnitEvent kBegin = Event(kAudioUnitEvent_BeginParameterChangeGesture);
const AudioUnitEvent kEnd = Event(kAudioUnitEvent_EndParameterChangeGesture);

struct AUEventListener : testing::Test
{
    void SetUp() override { listener = Create(record); }
    void TearDown() override { EXPECT_EQ(AUListenerDispose(listener), noErr); }

    AUEventListenerRef Create(Record& into)
    {
        AUEventListenerRef created = nullptr;
        EXPECT_EQ(AUEventListenerCreate(Hear, &into, nullptr, nullptr, 0, 0, &created), noErr);
        return created;
    }

    int object = 0;
    int other = 0;
    Record record;
    AUEventListenerRef listener = nullptr;
};

TEST_F(AUEventListener, HearsOfTheEventsAddedToItAlone)
{
    AUEventListenerAddEventType(listener, &object, &kBegin);
    AUEventListenerNotify(nullptr, nullptr, &kBegin);
    AUEventListenerNotify(nullptr, nullptr, &kEnd);
    EXPECT_THAT(record, ElementsAre(Heard{&object, kBegin.mEventType, 0}));
}

TEST_F(AUEventListener, EveryFieldOfTheArgumentCounts)
{
    const AudioUnit unit = reinterpret_cast<AudioUnit>(1);
    AudioUnitEvent event = Event(kAudioUnitEvent_BeginParameterChangeGesture, 4, unit);
    AUEventListenerAddEventType(listener, &object, &event);
    AudioUnitParameter& parameter = event.mArgument.mParameter;
    parameter.mAudioUnit = nullptr;
    AUEventListenerNotify(nullptr, nullptr, &event);
    parameter = {unit, 5, kAudioUnitScope_Global, 0};
    AUEventListenerNotify(nullptr, nullptr, &event);
    parameter = {unit, 4, kAudioUnitScope_Input, 0};
    AUEventListenerNotify(nullptr, nullptr, &event);
    parameter = {unit, 4, kAudioUnitScope_Global, 1};
    AUEventListenerNotify(nullptr, nullptr, &event);
    EXPECT_THAT(record, IsEmpty());
    parameter = {unit, 4, kAudioUnitScope_Global, 0};
    AUEventListenerNotify(nullptr, nullptr, &event);
    EXPECT_EQ(record.size(), 1u);
}

TEST_F(AUEventListener, EachObjectHears)
{
    AUEventListenerAddEventType(listener, &object, &kBegin);
    AUEventListenerAddEventType(listener, &other, &kBegin);
    AUEventListenerNotify(nullptr, nullptr, &kBegin);
    EXPECT_THAT(record, ElementsAre(Heard{&object, kBegin.mEventType, 0},
                                    Heard{&other, kBegin.mEventType, 0}));
}

TEST_F(AUEventListener, AddingTwiceChangesNothing)
{
    EXPECT_EQ(AUEventListenerAddEventType(listener, &object, &kBegin), noErr);
    EXPECT_EQ(AUEventListenerAddEventType(listener, &object, &kBegin), noErr);
    AUEventListenerNotify(nullptr, nullptr, &kBegin);
    EXPECT_EQ(record.size(), 1u);
}

TEST_F(AUEventListener, RemovedEventIsNotHeard)
{
    AUEventListenerAddEventType(listener, &object, &kBegin);
    AUEventListenerAddEventType(listener, &other, &kBegin);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener, &object, &kBegin), noErr);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener, &object, &kBegin), kAudio_ParamError);
    AUEventListenerNotify(nullptr, nullptr, &kBegin);
    EXPECT_THAT(record, ElementsAre(Heard{&other, kBegin.mEventType, 0}));
}

TEST_F(AUEventListener, SenderIsLeftOut)
{
    Record bystander;
    const AUEventListenerRef second = Create(bystander);
    for (AUEventListenerRef each : {listener, second})
    {
        AUEventListenerAddEventType(each, &object, &kBegin);
        AUEventListenerAddEventType(each, &other, &kBegin);
    }
    AUEventListenerNotify(listener, &object, &kBegin);
    EXPECT_THAT(record, ElementsAre(Heard{&other, kBegin.mEventType, 0}));
    EXPECT_EQ(bystander.size(), 2u);
    AUListenerDispose(second);
}

TEST_F(AUEventListener, SenderWithoutObjectIsLeftOutWhole)
{
    AUEventListenerAddEventType(listener, &object, &kBegin);
    AUEventListenerAddEventType(listener, nullptr, &kBegin);
    AUEventListenerNotify(listener, nullptr, &kBegin);
    EXPECT_THAT(record, IsEmpty());
}

TEST_F(AUEventListener, ObjectAloneLeavesNothingOut)
{
    AUEventListenerAddEventType(listener, &object, &kBegin);
    AUEventListenerNotify(nullptr, &object, &kBegin);
    EXPECT_EQ(record.size(), 1u);
}

TEST_F(AUEventListener, ChangeCarriesTheParametersValue)
{
    AudioUnit unit = nullptr;
    AudioComponentInstanceNew(TestUnit::Register('valu'), &unit);
    const AudioUnitEvent change = Event(kAudioUnitEvent_ParameterValueChange, 2, unit);
    const AudioUnitEvent begin = Event(kAudioUnitEvent_BeginParameterChangeGesture, 2, unit);
    AUEventListenerAddEventType(listener, &object, &change);
    AUEventListenerAddEventType(listener, &object, &begin);
    AUEventListenerNotify(nullptr, nullptr, &change);
    AUEventListenerNotify(nullptr, nullptr, &begin);
    EXPECT_THAT(record, ElementsAre(Heard{&object, change.mEventType, 0.25f},
                                    Heard{&object, begin.mEventType, 0}));
    AudioComponentInstanceDispose(unit);
}

TEST_F(AUEventListener, IsCalledOnTheNotifyingThread)
{
    AUEventListenerAddEventType(listener, &object, &kBegin);
    std::thread thread([] { AUEventListenerNotify(nullptr, nullptr, &kBegin); });
    thread.join();
    EXPECT_EQ(record.size(), 1u);
}

TEST_F(AUEventListener, DisposedOfHearsNothing)
{
    Record gone;
    const AUEventListenerRef disposed = Create(gone);
    AUEventListenerAddEventType(disposed, &object, &kBegin);
    EXPECT_EQ(AUListenerDispose(disposed), noErr);
    AUEventListenerNotify(nullptr, nullptr, &kBegin);
    EXPECT_THAT(gone, IsEmpty());
    EXPECT_EQ(AUListenerDispose(disposed), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(disposed, &object, &kBegin), kAudio_ParamError);
}

TEST_F(AUEventListener, PropertyChangesAreTheUnitsBusiness)
{
    const AudioUnitEvent change = Event(kAudioUnitEvent_PropertyChange);
    EXPECT_EQ(AUEventListenerAddEventType(listener, &object, &change), kAudio_UnimplementedError);
}

TEST_F(AUEventListener, BadArgumentsAreRefused)
{
    AUEventListenerRef created = listener;
    EXPECT_EQ(AUEventListenerCreate(nullptr, nullptr, nullptr, nullptr, 0, 0, &created),
              kAudio_ParamError);
    EXPECT_EQ(created, nullptr);
    EXPECT_EQ(AUEventListenerCreate(Hear, nullptr, nullptr, nullptr, 0, 0, nullptr),
              kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(nullptr, &object, &kBegin), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(listener, &object, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerRemoveEventType(nullptr, &object, &kBegin), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener, &object, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerNotify(nullptr, &object, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUListenerDispose(nullptr), kAudio_ParamError);
}

TEST(AUListener, IsMadeAndDisposedOf)
{
    AUParameterListenerRef listener = nullptr;
    int view = 0;
    EXPECT_EQ(AUListenerCreate(HearParameter, &view, CFRunLoopGetCurrent(), kCFRunLoopDefaultMode,
                               0.1f, &listener),
              noErr);
    ASSERT_NE(listener, nullptr);
    AUEventListenerNotify(nullptr, &view, &kBegin);
    EXPECT_EQ(AUListenerDispose(listener), noErr);
    EXPECT_EQ(AUListenerDispose(listener), kAudio_ParamError);
}

TEST(AUListener, TakesNoEvents)
{
    AUParameterListenerRef listener = nullptr;
    AUListenerCreate(HearParameter, nullptr, nullptr, nullptr, 0.1f, &listener);
    EXPECT_EQ(AUEventListenerAddEventType(listener, nullptr, &kBegin), kAudio_ParamError);
    AUListenerDispose(listener);
}

TEST(AUListener, BadArgumentsAreRefused)
{
    int anything = 0;
    auto listener = reinterpret_cast<AUParameterListenerRef>(&anything);
    EXPECT_EQ(AUListenerCreate(nullptr, nullptr, nullptr, nullptr, 0.1f, &listener),
              kAudio_ParamError);
    EXPECT_EQ(listener, nullptr);
    EXPECT_EQ(AUListenerCreate(HearParameter, nullptr, nullptr, nullptr, 0.1f, nullptr),
              kAudio_ParamError);
}

TEST(AUListener, EventsHaveThePublishedNumbers)
{
    EXPECT_EQ(kAudioUnitEvent_ParameterValueChange, 0u);
    EXPECT_EQ(kAudioUnitEvent_BeginParameterChangeGesture, 1u);
    EXPECT_EQ(kAudioUnitEvent_EndParameterChangeGesture, 2u);
    EXPECT_EQ(kAudioUnitEvent_PropertyChange, 3u);
    EXPECT_EQ(sizeof(AudioUnitEvent), 32u);
}

} // namespace
