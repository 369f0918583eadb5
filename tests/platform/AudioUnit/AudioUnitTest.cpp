#include "tests/platform/AudioUnit/TestUnit.h"

#include <gmock/gmock.h>

#include <thread>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

struct Notification
{
    AudioUnit unit;
    AudioUnitPropertyID id;
};

void Note(void* userData, AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope, AudioUnitElement)
{
    static_cast<std::vector<Notification>*>(userData)->push_back({unit, id});
}

AudioComponentMethod LookupNothing(SInt16)
{
    return nullptr;
}

OSStatus OpenNothing(void*, AudioComponentInstance)
{
    return noErr;
}

OSStatus CloseNothing(void*)
{
    return noErr;
}

AudioComponentPlugInInterface g_nothing = {OpenNothing, CloseNothing, LookupNothing, nullptr};

AudioComponentPlugInInterface* CreateNothing(const AudioComponentDescription*)
{
    return &g_nothing;
}

struct AudioUnitProperties : testing::Test
{
    void SetUp() override
    {
        ASSERT_EQ(AudioComponentInstanceNew(TestUnit::Register('prop'), &unit), noErr);
        TestUnit::Last()->log.clear();
    }

    void TearDown() override
    {
        AudioComponentInstanceDispose(unit);
        EXPECT_EQ(TestUnit::CountAlive(), 0);
    }

    const std::vector<std::string>& Log() const { return TestUnit::Last()->log; }

    AudioUnit unit = nullptr;
};

TEST_F(AudioUnitProperties, GetHandsEveryArgumentOver)
{
    double dValue = 0;
    UInt32 size = 20;
    EXPECT_EQ(AudioUnitGetProperty(unit, TestUnit::kValueProperty, kAudioUnitScope_Output, 3,
                                   &dValue, &size),
              noErr);
    EXPECT_THAT(Log(), ElementsAre("get 64010 2 3 20"));
    EXPECT_EQ(dValue, 1.5);
    EXPECT_EQ(size, 8u);
}

TEST_F(AudioUnitProperties, SetHandsEveryArgumentOver)
{
    const double dValue = 2.5;
    EXPECT_EQ(AudioUnitSetProperty(unit, TestUnit::kValueProperty, kAudioUnitScope_Group, 7,
                                   &dValue, sizeof dValue),
              noErr);
    EXPECT_THAT(Log(), ElementsAre("set 64010 3 7 8"));
    EXPECT_EQ(TestUnit::Last()->dValue, 2.5);
}

TEST_F(AudioUnitProperties, SetMayHandOverNoData)
{
    EXPECT_EQ(AudioUnitSetProperty(unit, TestUnit::kValueProperty, 0, 0, nullptr, 0), noErr);
    EXPECT_THAT(Log(), ElementsAre("set 64010 0 0 0"));
}

TEST_F(AudioUnitProperties, InfoTellsSizeAndWritability)
{
    UInt32 size = 0;
    Boolean writable = false;
    EXPECT_EQ(AudioUnitGetPropertyInfo(unit, TestUnit::kValueProperty, kAudioUnitScope_Input, 1,
                                       &size, &writable),
              noErr);
    EXPECT_THAT(Log(), ElementsAre("info 64010 1 1"));
    EXPECT_EQ(size, 8u);
    EXPECT_TRUE(writable);
}

TEST_F(AudioUnitProperties, InfoMayBeAskedForOneOfTheTwo)
{
    UInt32 size = 0;
    Boolean writable = false;
    const AudioUnitPropertyID id = TestUnit::kValueProperty;
    EXPECT_EQ(AudioUnitGetPropertyInfo(unit, id, 0, 0, &size, nullptr), noErr);
    EXPECT_EQ(AudioUnitGetPropertyInfo(unit, id, 0, 0, nullptr, &writable), noErr);
    EXPECT_EQ(size, 8u);
    EXPECT_TRUE(writable);
}

TEST_F(AudioUnitProperties, StatusIsTheUnits)
{
    double dValue = 0;
    UInt32 size = sizeof dValue;
    EXPECT_EQ(AudioUnitGetProperty(unit, 64001, 0, 0, &dValue, &size), -10879);
    EXPECT_EQ(AudioUnitSetProperty(unit, 64001, 0, 0, &dValue, size), -10879);
    EXPECT_EQ(AudioUnitGetPropertyInfo(unit, 64001, 0, 0, &size, nullptr), -10879);
}

TEST_F(AudioUnitProperties, ListenerHearsUntilItIsRemovedWithItsUserData)
{
    std::vector<Notification> heard;
    std::vector<Notification> heardByOther;
    const AudioUnitPropertyID id = TestUnit::kValueProperty;
    EXPECT_EQ(AudioUnitAddPropertyListener(unit, id, Note, &heard), noErr);
    EXPECT_EQ(AudioUnitAddPropertyListener(unit, id, Note, &heardByOther), noErr);
    TestUnit::Last()->RaiseValueChanged();
    EXPECT_EQ(AudioUnitRemovePropertyListenerWithUserData(unit, id, Note, &heard), noErr);
    TestUnit::Last()->RaiseValueChanged();
    EXPECT_THAT(Log(), ElementsAre("add 64010", "add 64010", "remove 64010"));
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].unit, unit);
    EXPECT_EQ(heard[0].id, id);
    EXPECT_EQ(heardByOther.size(), 2u);
}

TEST_F(AudioUnitProperties, ParameterIsRead)
{
    AudioUnitParameterValue value = 0;
    EXPECT_EQ(AudioUnitGetParameter(unit, 5, kAudioUnitScope_Global, 6, &value), noErr);
    EXPECT_THAT(Log(), ElementsAre("parameter 5 0 6"));
    EXPECT_EQ(value, 0.25f);
}

TEST_F(AudioUnitProperties, BadArgumentsDoNotReachTheUnit)
{
    double dValue = 0;
    EXPECT_EQ(AudioUnitGetProperty(unit, TestUnit::kValueProperty, 0, 0, &dValue, nullptr),
              kAudio_ParamError);
    EXPECT_EQ(AudioUnitAddPropertyListener(unit, TestUnit::kValueProperty, nullptr, nullptr),
              kAudio_ParamError);
    EXPECT_EQ(AudioUnitGetParameter(unit, 0, 0, 0, nullptr), kAudio_ParamError);
    EXPECT_THAT(Log(), IsEmpty());
}

void ExpectFromEveryCall(AudioUnit unit, OSStatus status)
{
    double dValue = 0;
    UInt32 size = sizeof dValue;
    AudioUnitParameterValue value = 0;
    const AudioUnitPropertyID id = TestUnit::kValueProperty;
    EXPECT_EQ(AudioUnitGetPropertyInfo(unit, id, 0, 0, &size, nullptr), status);
    EXPECT_EQ(AudioUnitGetProperty(unit, id, 0, 0, &dValue, &size), status);
    EXPECT_EQ(AudioUnitSetProperty(unit, id, 0, 0, &dValue, size), status);
    EXPECT_EQ(AudioUnitAddPropertyListener(unit, id, Note, nullptr), status);
    EXPECT_EQ(AudioUnitRemovePropertyListenerWithUserData(unit, id, Note, nullptr), status);
    EXPECT_EQ(AudioUnitGetParameter(unit, 0, 0, 0, &value), status);
}

TEST(AudioUnit, NoneIsABadInstance)
{
    ExpectFromEveryCall(nullptr, badComponentInstance);
}

TEST(AudioUnit, DisposedOfIsABadInstance)
{
    AudioUnit unit = nullptr;
    AudioComponentInstanceNew(TestUnit::Register('disp'), &unit);
    AudioComponentInstanceDispose(unit);
    ExpectFromEveryCall(unit, badComponentInstance);
}

TEST(AudioUnit, SelectorThatIsNotServedIsUnimplemented)
{
    const AudioComponentDescription description = {kAudioUnitType_Effect, 'none', 'Tarv', 0, 0};
    CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "name", kCFStringEncodingUTF8);
    AudioUnit unit = nullptr;
    AudioComponentInstanceNew(AudioComponentRegister(&description, name, 0, CreateNothing), &unit);
    CFRelease(name);
    ExpectFromEveryCall(unit, kAudio_UnimplementedError);
    AudioComponentInstanceDispose(unit);
}

TEST(AudioUnit, ThreadsMayMakeAskAndDispose)
{
    const AudioComponentDescription description = {kAudioUnitType_Effect, 'mthr', 'Tarv', 0, 0};
    CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "name", kCFStringEncodingUTF8);
    const AudioComponent component = AudioComponentRegister(&description, name, 0, CreateNothing);
    CFRelease(name);
    std::thread threads[4];
    for (std::thread& thread : threads)
    {
        thread = std::thread(
            [component]
            {
                for (int i = 0; i < 200; ++i)
                {
                    AudioUnit unit = nullptr;
                    ASSERT_EQ(AudioComponentInstanceNew(component, &unit), noErr);
                    EXPECT_EQ(AudioUnitSetProperty(unit, 1, 0, 0, nullptr, 0),
                              kAudio_UnimplementedError);
                    ASSERT_EQ(AudioComponentInstanceDispose(unit), noErr);
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST(AudioUnit, NumbersAreThePublishedOnes)
{
    EXPECT_EQ(kAudioUnitGetPropertyInfoSelect, 3);
    EXPECT_EQ(kAudioUnitGetPropertySelect, 4);
    EXPECT_EQ(kAudioUnitSetPropertySelect, 5);
    EXPECT_EQ(kAudioUnitGetParameterSelect, 6);
    EXPECT_EQ(kAudioUnitAddPropertyListenerSelect, 10);
    EXPECT_EQ(kAudioUnitRemovePropertyListenerWithUserDataSelect, 18);
    EXPECT_EQ(kAudioUnitErr_InvalidProperty, -10879);
    EXPECT_EQ(kAudioUnitErr_InvalidElement, -10877);
    EXPECT_EQ(kAudioUnitErr_InvalidScope, -10866);
    EXPECT_EQ(kAudioUnitErr_PropertyNotWritable, -10865);
    EXPECT_EQ(kAudioUnitErr_InvalidPropertyValue, -10851);
    EXPECT_EQ(kAudio_ParamError, -50);
    EXPECT_EQ(kAudio_UnimplementedError, -4);
    EXPECT_EQ(kAudioUnitProperty_CocoaUI, 31u);
    EXPECT_EQ(kAudioUnitScope_Global, 0u);
    EXPECT_EQ(sizeof(AudioUnitParameter), 24u);
    EXPECT_EQ(sizeof(AudioUnitCocoaViewInfo), 16u);
}

} // namespace
