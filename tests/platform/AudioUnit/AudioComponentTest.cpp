#include "tests/platform/AudioUnit/TestUnit.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

AudioComponentDescription Wanted(OSType subType)
{
    return {kAudioUnitType_Effect, subType, 'Tarv', 0, 0};
}

AudioComponent Find(OSType subType, AudioComponent after = nullptr)
{
    const AudioComponentDescription wanted = Wanted(subType);
    return AudioComponentFindNext(after, &wanted);
}

AudioComponentPlugInInterface* NoFactory(const AudioComponentDescription*)
{
    return nullptr;
}

struct AudioComponentInstances : testing::Test
{
    void SetUp() override
    {
        TestUnit::s_fFactoryFails = false;
        TestUnit::s_nOpenStatus = noErr;
        TestUnit::s_nCloseStatus = noErr;
        ASSERT_EQ(TestUnit::CountAlive(), 0);
    }

    void TearDown() override { EXPECT_EQ(TestUnit::CountAlive(), 0); }
};

TEST(AudioComponent, IsFoundByItsDescription)
{
    const AudioComponent component = TestUnit::Register('fndA');
    ASSERT_NE(component, nullptr);
    EXPECT_EQ(Find('fndA'), component);
    EXPECT_EQ(Find('fndA', component), nullptr);
    EXPECT_EQ(Find('none'), nullptr);
}

TEST(AudioComponent, TypeAndManufacturerMustFitToo)
{
    TestUnit::Register('fndB');
    AudioComponentDescription wanted = Wanted('fndB');
    wanted.componentType = kAudioUnitType_Mixer;
    EXPECT_EQ(AudioComponentFindNext(nullptr, &wanted), nullptr);
    wanted = Wanted('fndB');
    wanted.componentManufacturer = 'othr';
    EXPECT_EQ(AudioComponentFindNext(nullptr, &wanted), nullptr);
}

TEST(AudioComponent, ZeroFitsAnyInTheOrderOfRegistration)
{
    const AudioComponent first = TestUnit::Register('ord2');
    const AudioComponent second = TestUnit::Register('ord1');
    const AudioComponentDescription any = {};
    AudioComponent found = AudioComponentFindNext(nullptr, &any);
    while (found != nullptr && found != first)
        found = AudioComponentFindNext(found, &any);
    ASSERT_EQ(found, first);
    EXPECT_EQ(AudioComponentFindNext(found, &any), second);
    EXPECT_EQ(AudioComponentFindNext(second, &any), nullptr);
}

TEST(AudioComponent, DescriptionsNeedNotDiffer)
{
    const AudioComponent first = TestUnit::Register('same');
    const AudioComponent second = TestUnit::Register('same');
    EXPECT_NE(first, second);
    EXPECT_EQ(Find('same'), first);
    EXPECT_EQ(Find('same', first), second);
}

TEST(AudioComponent, FlagsFitUnderTheMask)
{
    const AudioComponent component = TestUnit::Register('flag', 0x5);
    AudioComponentDescription wanted = Wanted('flag');
    wanted.componentFlags = 0x1;
    wanted.componentFlagsMask = 0x1;
    EXPECT_EQ(AudioComponentFindNext(nullptr, &wanted), component);
    wanted.componentFlagsMask = 0x4;
    EXPECT_EQ(AudioComponentFindNext(nullptr, &wanted), nullptr);
    wanted.componentFlagsMask = 0;
    EXPECT_EQ(AudioComponentFindNext(nullptr, &wanted), component);
}

TEST(AudioComponent, TellsItsDescriptionNameAndVersion)
{
    const AudioComponent component = TestUnit::Register('desc', 0x7);
    AudioComponentDescription description = {};
    EXPECT_EQ(AudioComponentGetDescription(component, &description), noErr);
    EXPECT_EQ(description.componentType, OSType('aufx'));
    EXPECT_EQ(description.componentSubType, OSType('desc'));
    EXPECT_EQ(description.componentManufacturer, OSType('Tarv'));
    EXPECT_EQ(description.componentFlags, 0x7u);
    EXPECT_EQ(description.componentFlagsMask, 0u);

    CFStringRef name = nullptr;
    EXPECT_EQ(AudioComponentCopyName(component, &name), noErr);
    char text[32];
    CFStringGetCString(name, text, sizeof text, kCFStringEncodingUTF8);
    EXPECT_STREQ(text, "Tarvane: Test unit");
    EXPECT_EQ(CFGetRetainCount(name), 2); // the component's and ours
    CFRelease(name);

    UInt32 version = 0;
    EXPECT_EQ(AudioComponentGetVersion(component, &version), noErr);
    EXPECT_EQ(version, 0x10203u);
}

TEST(AudioComponent, BadArgumentsAreRefused)
{
    const AudioComponentDescription description = Wanted('bad!');
    CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "name", kCFStringEncodingUTF8);
    EXPECT_EQ(AudioComponentRegister(nullptr, name, 0, NoFactory), nullptr);
    EXPECT_EQ(AudioComponentRegister(&description, nullptr, 0, NoFactory), nullptr);
    EXPECT_EQ(AudioComponentRegister(&description, name, 0, nullptr), nullptr);
    EXPECT_EQ(CFGetRetainCount(name), 1);
    EXPECT_EQ(Find('bad!'), nullptr);
    EXPECT_EQ(AudioComponentFindNext(nullptr, nullptr), nullptr);

    const AudioComponent component = TestUnit::Register('bad?');
    AudioComponentDescription result;
    UInt32 version;
    EXPECT_EQ(AudioComponentGetDescription(nullptr, &result), kAudio_ParamError);
    EXPECT_EQ(AudioComponentGetDescription(component, nullptr), kAudio_ParamError);
    EXPECT_EQ(AudioComponentCopyName(nullptr, &name), kAudio_ParamError);
    EXPECT_EQ(AudioComponentCopyName(component, nullptr), kAudio_ParamError);
    EXPECT_EQ(AudioComponentGetVersion(nullptr, &version), kAudio_ParamError);
    EXPECT_EQ(AudioComponentGetVersion(component, nullptr), kAudio_ParamError);
    CFRelease(name);
}

TEST(AudioComponent, ThreadsMayRegisterAndFind)
{
    std::thread threads[4];
    for (std::thread& thread : threads)
    {
        thread = std::thread(
            []
            {
                for (int i = 0; i < 100; ++i)
                {
                    const AudioComponent component = TestUnit::Register('thrd');
                    AudioComponent found = Find('thrd');
                    while (found != nullptr && found != component)
                        found = Find('thrd', found);
                    EXPECT_EQ(found, component);
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(AudioComponentInstances, OpenAndCloseAreTheFirstAndTheLastCall)
{
    const AudioComponent component = TestUnit::Register('inst');
    AudioComponentInstance instance = nullptr;
    ASSERT_EQ(AudioComponentInstanceNew(component, &instance), noErr);
    EXPECT_EQ(TestUnit::CountAlive(), 1);
    EXPECT_EQ(TestUnit::Last()->instance, instance);
    EXPECT_EQ(AudioComponentInstanceGetComponent(instance), component);
    EXPECT_EQ(AudioComponentInstanceDispose(instance), noErr);
    EXPECT_EQ(TestUnit::CountAlive(), 0);
    EXPECT_EQ(AudioComponentInstanceGetComponent(instance), nullptr);
}

TEST_F(AudioComponentInstances, AreDistinct)
{
    const AudioComponent component = TestUnit::Register('two!');
    AudioComponentInstance first = nullptr;
    AudioComponentInstance second = nullptr;
    ASSERT_EQ(AudioComponentInstanceNew(component, &first), noErr);
    ASSERT_EQ(AudioComponentInstanceNew(component, &second), noErr);
    EXPECT_NE(first, second);
    EXPECT_EQ(AudioComponentInstanceDispose(first), noErr);
    EXPECT_EQ(TestUnit::CountAlive(), 1);
    EXPECT_EQ(AudioComponentInstanceDispose(second), noErr);
}

TEST_F(AudioComponentInstances, PlugInMayCallItselfWhileItOpens)
{
    AudioComponentInstance instance = nullptr;
    TestUnit::s_nStatusWhileOpening = kAudio_ParamError;
    AudioComponentInstanceNew(TestUnit::Register('self'), &instance);
    EXPECT_EQ(TestUnit::s_nStatusWhileOpening, noErr);
    AudioComponentInstanceDispose(instance);
}

TEST_F(AudioComponentInstances, AreGoneForOthersWhileTheyClose)
{
    AudioComponentInstance instance = nullptr;
    AudioComponentInstanceNew(TestUnit::Register('clos'), &instance);
    AudioComponentInstanceDispose(instance);
    EXPECT_EQ(TestUnit::s_nStatusWhileClosing, badComponentInstance);
}

TEST_F(AudioComponentInstances, FailedOpenIsAnsweredAndNotClosed)
{
    TestUnit::s_nOpenStatus = kAudioUnitErr_FailedInitialization;
    TestUnit::s_nStatusWhileClosing = noErr;
    AudioComponentInstance instance = reinterpret_cast<AudioComponentInstance>(1);
    EXPECT_EQ(AudioComponentInstanceNew(TestUnit::Register('fopn'), &instance),
              kAudioUnitErr_FailedInitialization);
    EXPECT_EQ(instance, nullptr);
    EXPECT_EQ(TestUnit::s_nStatusWhileClosing, noErr);
}

TEST_F(AudioComponentInstances, FactoryWithoutResultIsAnError)
{
    TestUnit::s_fFactoryFails = true;
    AudioComponentInstance instance = reinterpret_cast<AudioComponentInstance>(1);
    EXPECT_EQ(AudioComponentInstanceNew(TestUnit::Register('ffac'), &instance),
              kAudio_MemFullError);
    EXPECT_EQ(instance, nullptr);
}

TEST_F(AudioComponentInstances, StatusOfCloseIsAnsweredAndTheInstanceIsGone)
{
    AudioComponentInstance instance = nullptr;
    AudioComponentInstanceNew(TestUnit::Register('fcls'), &instance);
    TestUnit::s_nCloseStatus = -1;
    EXPECT_EQ(AudioComponentInstanceDispose(instance), -1);
    EXPECT_EQ(AudioComponentInstanceDispose(instance), badComponentInstance);
}

TEST_F(AudioComponentInstances, HandleIsNeverUsedTwice)
{
    const AudioComponent component = TestUnit::Register('hndl');
    AudioComponentInstance disposed = nullptr;
    AudioComponentInstanceNew(component, &disposed);
    AudioComponentInstanceDispose(disposed);
    for (int i = 0; i < 100; ++i)
    {
        AudioComponentInstance instance = nullptr;
        AudioComponentInstanceNew(component, &instance);
        EXPECT_NE(instance, disposed);
        AudioComponentInstanceDispose(instance);
    }
}

TEST_F(AudioComponentInstances, BadArgumentsAreRefused)
{
    AudioComponentInstance instance = reinterpret_cast<AudioComponentInstance>(1);
    EXPECT_EQ(AudioComponentInstanceNew(nullptr, &instance), kAudio_ParamError);
    EXPECT_EQ(instance, nullptr);
    EXPECT_EQ(AudioComponentInstanceNew(TestUnit::Register('badi'), nullptr), kAudio_ParamError);
    EXPECT_EQ(AudioComponentInstanceDispose(nullptr), badComponentInstance);
    EXPECT_EQ(AudioComponentInstanceGetComponent(nullptr), nullptr);
}

} // namespace
