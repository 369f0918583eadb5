#include "apps/support/unit/SignalSide.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/support/unit/PlugInUnderTest.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

namespace
{

// A second of 48 kHz sound is played in more than a quarter of an hour: it never ends by itself.
constexpr double kCrawl = 0.001;

OSStatus Status(AudioUnit pUnit, AudioUnitPropertyID nId, UInt32 nSize,
                AudioUnitScope nScope = kAudioUnitScope_Global, AudioUnitElement nElement = 0)
{
    std::vector<char> room(4096);
    return AudioUnitGetProperty(pUnit, nId, nScope, nElement, room.data(), &nSize);
}

} // namespace

TEST(SignalSide, IsFoundAndOpenedLikeAnyComponent)
{
    AudioComponentDescription wanted{};
    wanted.componentType = kAudioUnitType_Effect;
    CSignalSide::Register();
    EXPECT_EQ(CSignalSide::Register(), AudioComponentFindNext(nullptr, &wanted));
    CPlugInUnderTest first, second;
    EXPECT_NE(&first.Side(), &second.Side());
    EXPECT_EQ(CSignalSide::Of(nullptr), nullptr);
}

TEST(SignalSide, NothingWaitsAndNothingIsArmedAtFirst)
{
    CPlugInUnderTest plugIn;
    EXPECT_LT(plugIn.Get<SInt32>(TNProperty_NextElement), 0);
    EXPECT_EQ(plugIn.Get<UInt8>(TNProperty_ArmCapture), 0);
    EXPECT_EQ(plugIn.Get<Float64>(kTNProperty_CurrentCaptureLength), 0.0);
    EXPECT_THAT(plugIn.Heard(), IsEmpty());
}

TEST(SignalSide, AFinishedCaptureIsPublishedBefore64000IsRaised)
{
    CPlugInUnderTest plugIn;
    const fs::path source = plugIn.MakeSource("hello.wav", 1300, 44100);
    TNCaptureElement record{};
    fs::path seen;
    std::promise<void> read;
    plugIn.onNotification = [&](AudioUnitPropertyID nId)
    {
        if (nId == TNProperty_Elements)
        {
            record = plugIn.Get<TNCaptureElement>(TNProperty_ElementInfo, 0);
            seen = fs::exists(record.szDubPath) ? record.szDubPath : "";
            read.set_value();
        }
    };
    plugIn.Capture(source, 96100);
    read.get_future().wait();

    EXPECT_EQ(seen, plugIn.captures / "hello-001.wav");
    EXPECT_EQ(record.tDub.dPosition, 96100.0);
    EXPECT_EQ(record.tDub.dStart, 0.0);
    EXPECT_EQ(record.tDub.dEnd, 1300.0);
    EXPECT_EQ(record.dSampleRate, 44100.0);
    EXPECT_EQ(record.fIdentical, 0);
    EXPECT_EQ(std::string(record.szGuidePath), source.string());
    EXPECT_EQ(record.tGuide.dPosition, 96100.0);
    EXPECT_EQ(record.tGuide.dEnd, 1300.0);
    EXPECT_EQ(ReadSound(record.szDubPath).samples, ReadSound(source).samples);
}

TEST(SignalSide, NotificationsComeInTheOrderThatTheViewReliesOn)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 2000));
    EXPECT_EQ(plugIn.Acknowledge(0), noErr);
    EXPECT_THAT(plugIn.HeardIds(),
                ElementsAre(TNProperty_ArmCapture, kTNProperty_CurrentCaptureLength,
                            TNProperty_ArmCapture, TNProperty_Elements, TNProperty_ArmCapture));
    std::vector<int> armed, next;
    for (const Notification& notification : plugIn.Heard())
    {
        if (notification.nId != kTNProperty_CurrentCaptureLength)
        {
            armed.push_back(notification.fArmed);
            next.push_back(notification.nNext);
        }
    }
    EXPECT_THAT(armed, ElementsAre(1, 0, 0, 0));
    // The last one is raised when the acknowledge has been taken in already.
    EXPECT_THAT(next, ElementsAre(-1, -1, 0, -1));
}

TEST(SignalSide, ProgressRisesBlockByBlockOnAThreadOfItsOwn)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 1200));
    std::vector<double> lengths;
    for (const Notification& notification : plugIn.Heard())
    {
        if (notification.nId == kTNProperty_CurrentCaptureLength)
        {
            EXPECT_NE(notification.thread, std::this_thread::get_id());
            EXPECT_EQ(notification.fArmed, 1);
            lengths.push_back(notification.dLength);
        }
    }
    EXPECT_THAT(lengths, ElementsAre(512 / 48000.0, 1024 / 48000.0, 1200 / 48000.0));
    EXPECT_EQ(plugIn.Count(TNProperty_CurrentSampleInTimeLine), 0U);
}

TEST(SignalSide, TheTimelinesSampleCanBeRead)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 1200), 1000);
    EXPECT_EQ(plugIn.Get<Float64>(TNProperty_CurrentSampleInTimeLine), 2200.0);
}

TEST(SignalSide, SeveralElementsWaitInOrderEachWithItsOwn64000)
{
    CPlugInUnderTest plugIn;
    for (int n = 0; n < 3; ++n)
    {
        plugIn.Capture(plugIn.MakeSource("a.wav", 600 + static_cast<size_t>(n)), n * 1000.0);
    }
    EXPECT_EQ(plugIn.Count(TNProperty_Elements), 3U);
    for (SInt32 n = 0; n < 3; ++n)
    {
        EXPECT_EQ(plugIn.Get<SInt32>(TNProperty_NextElement), n);
        EXPECT_EQ(plugIn.Get<SInt32>(TNProperty_NextElement), n) << "until it is acknowledged";
        const auto record =
            plugIn.Get<TNCaptureElement>(TNProperty_ElementInfo, static_cast<UInt32>(n));
        EXPECT_EQ(record.tDub.dPosition, n * 1000.0);
        EXPECT_EQ(record.tDub.dEnd, 600.0 + n);
        EXPECT_EQ(plugIn.Acknowledge(n), noErr);
    }
    EXPECT_LT(plugIn.Get<SInt32>(TNProperty_NextElement), 0);
}

TEST(SignalSide, EveryWaitingElementsRecordCanBeRead)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 100));
    plugIn.Capture(plugIn.MakeSource("b.wav", 200));
    EXPECT_EQ(plugIn.Get<TNCaptureElement>(TNProperty_ElementInfo, 1).tDub.dEnd, 200.0);
    EXPECT_EQ(plugIn.Get<TNCaptureElement>(TNProperty_ElementInfo, 0).tDub.dEnd, 100.0);
    EXPECT_EQ(Status(plugIn.Unit(), TNProperty_ElementInfo, 4096, kAudioUnitScope_Global, 2),
              kAudioUnitErr_InvalidElement);
}

TEST(SignalSide, OneAcknowledgeIsTakenForAnElementAndNoOther)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 100));
    plugIn.Capture(plugIn.MakeSource("b.wav", 100));
    const size_t nBefore = plugIn.Count(TNProperty_ArmCapture);
    EXPECT_EQ(plugIn.Acknowledge(1), kAudioUnitErr_InvalidPropertyValue) << "not its turn";
    EXPECT_EQ(plugIn.Acknowledge(7), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(plugIn.Acknowledge(0, 1), noErr);
    EXPECT_EQ(plugIn.Acknowledge(0, 0), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(plugIn.Count(TNProperty_ArmCapture), nBefore + 1) << "only for the one taken in";
    const CCaptureReport acknowledged = plugIn.Report(0);
    ASSERT_TRUE(acknowledged.pAck);
    EXPECT_EQ(acknowledged.pAck->fNotDelivered, 1);
    EXPECT_FALSE(acknowledged.IsDelivered());
    EXPECT_FALSE(plugIn.Side().IsWaiting(0));
    EXPECT_TRUE(plugIn.Side().IsWaiting(1));
}

TEST(SignalSide, ForgetsACaptureOnceItIsAcknowledged)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 100));
    plugIn.Capture(plugIn.MakeSource("b.wav", 200));
    plugIn.Acknowledge(0);
    EXPECT_EQ(Status(plugIn.Unit(), TNProperty_ElementInfo, 4096), kAudioUnitErr_InvalidElement);
    EXPECT_EQ(plugIn.Get<TNCaptureElement>(TNProperty_ElementInfo, 1).tDub.dEnd, 200.0);
    EXPECT_EQ(plugIn.Side().CapturesBegun(), 2U) << "the number goes on";
}

TEST(SignalSide, TheDubStaysAfterItsAcknowledge)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 100));
    plugIn.Acknowledge(0);
    plugIn.Dispose();
    EXPECT_THAT(plugIn.captures.Files(), ElementsAre("a-001.wav"));
}

TEST(SignalSide, AnArmedStateThatDoesNotChangeIsNotReported)
{
    CPlugInUnderTest plugIn;
    plugIn.Arm(false);
    EXPECT_EQ(plugIn.Count(TNProperty_ArmCapture), 0U);
    plugIn.Arm(true);
    plugIn.Arm(true);
    EXPECT_EQ(plugIn.Count(TNProperty_ArmCapture), 1U);
    EXPECT_EQ(plugIn.Get<UInt8>(TNProperty_ArmCapture), 1);
    plugIn.Arm(false);
    EXPECT_EQ(plugIn.Count(TNProperty_ArmCapture), 2U);
    EXPECT_EQ(plugIn.Get<UInt8>(TNProperty_ArmCapture), 0);
}

TEST(SignalSide, ShiftChangesNothing)
{
    CPlugInUnderTest plugIn;
    EXPECT_EQ(plugIn.Set(TNProperty_SetArmCapture, TNArmRequest{1, 1}), noErr);
    EXPECT_TRUE(plugIn.Side().IsArmed());
}

TEST(SignalSide, KeepsTheTrackThatWasWrittenLast)
{
    CPlugInUnderTest plugIn;
    EXPECT_EQ(plugIn.Get<SInt32>(TNProperty_SelectedTrack), 0);
    CSignalSettings settings;
    settings.captureFolder = plugIn.captures.Path();
    settings.nTrack = 3;
    plugIn.Side().Configure(settings);
    EXPECT_EQ(plugIn.Get<SInt32>(TNProperty_SelectedTrack), 3);
    EXPECT_EQ(plugIn.Set(TNProperty_SelectedTrack, SInt32(5)), noErr);
    EXPECT_EQ(plugIn.Get<SInt32>(TNProperty_SelectedTrack), 5);
    EXPECT_EQ(plugIn.Set(TNProperty_SelectedTrack, SInt32(-2)), noErr);
    EXPECT_EQ(plugIn.Get<SInt32>(TNProperty_SelectedTrack), -2);
}

TEST(SignalSide, AReportHoldsTheTrackOfItsAcknowledge)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 100));
    plugIn.Set(TNProperty_SelectedTrack, SInt32(2));
    plugIn.Acknowledge(0);
    plugIn.Set(TNProperty_SelectedTrack, SInt32(1));
    EXPECT_EQ(plugIn.Report(0).nTrack, 2);
}

TEST(SignalSide, ArmedWithoutASourceItWaitsForOne)
{
    CPlugInUnderTest plugIn;
    const fs::path source = plugIn.MakeSource("a.wav", 100);
    plugIn.Arm(true);
    EXPECT_EQ(plugIn.Side().CapturesBegun(), 0U);
    plugIn.Side().SetSource({source, 0});
    plugIn.WaitForFirst(TNProperty_Elements);
    EXPECT_EQ(plugIn.Get<UInt8>(TNProperty_ArmCapture), 0);
}

TEST(SignalSide, ASourceWaitsUntilItIsArmed)
{
    CPlugInUnderTest plugIn;
    plugIn.Side().SetSource({plugIn.MakeSource("a.wav", 100), 0});
    plugIn.Side().SetSource({plugIn.MakeSource("b.wav", 100), 7});
    EXPECT_EQ(plugIn.Side().CapturesBegun(), 0U);
    EXPECT_THAT(plugIn.captures.Files(), IsEmpty());
    plugIn.Arm(true);
    plugIn.WaitForFirst(TNProperty_Elements);
    EXPECT_EQ(plugIn.Side().CapturesBegun(), 1U);
    EXPECT_EQ(plugIn.Report(0).times.dPosition, 7.0);
}

TEST(SignalSide, DisarmingEarlyDeliversTheSamplesSoFar)
{
    CPlugInUnderTest plugIn;
    const fs::path source = plugIn.MakeSource("a.wav", 5000);
    plugIn.onNotification = [&](AudioUnitPropertyID nId)
    {
        if (nId == kTNProperty_CurrentCaptureLength &&
            plugIn.Count(kTNProperty_CurrentCaptureLength) == 2)
        {
            plugIn.Arm(false);
        }
    };
    plugIn.Capture(source);
    const CCaptureReport report = plugIn.Report(0);
    EXPECT_EQ(report.times.dEnd, 1024.0);
    const std::vector<double> all = ReadSound(source).samples;
    EXPECT_EQ(ReadSound(report.dub).samples, std::vector<double>(all.begin(), all.begin() + 1024));
    EXPECT_EQ(plugIn.Count(TNProperty_ArmCapture), 2U) << "armed and disarmed once each";
}

TEST(SignalSide, DisarmingBeforeTheFirstSampleDeliversNothing)
{
    CPlugInUnderTest plugIn;
    plugIn.SetSpeed(kCrawl);
    plugIn.Side().SetSource({plugIn.MakeSource("a.wav", 48000), 0});
    plugIn.Arm(true);
    while (!plugIn.Side().IsCapturing())
    {
        std::this_thread::yield();
    }
    plugIn.Arm(false);
    EXPECT_EQ(plugIn.Report(0).state, CaptureState::Empty);
    EXPECT_EQ(plugIn.Count(TNProperty_Elements), 0U);
    EXPECT_THAT(plugIn.captures.Files(), IsEmpty());
}

TEST(SignalSide, AFailedCaptureDisarmsAndSaysWhy)
{
    CPlugInUnderTest plugIn;
    plugIn.Side().SetSource({plugIn.MakeSource("a.wav", 100), 0});
    fs::remove_all(plugIn.captures.Path());
    plugIn.Arm(true);
    const CCaptureReport report = plugIn.Report(0);
    EXPECT_EQ(report.state, CaptureState::Failed);
    EXPECT_THAT(report.strFailure, testing::HasSubstr("there is no capture folder"));
    EXPECT_EQ(plugIn.Get<UInt8>(TNProperty_ArmCapture), 0);
    EXPECT_THAT(plugIn.HeardIds(), ElementsAre(TNProperty_ArmCapture, TNProperty_ArmCapture));
}

TEST(SignalSide, ASourceThatCannotBeUsedIsRefusedAndTheEarlierOneStays)
{
    CPlugInUnderTest plugIn;
    plugIn.Side().SetSource({plugIn.MakeSource("a.wav", 100), 0});
    EXPECT_THROW(plugIn.Side().SetSource({"/nowhere.wav", 0}), CUsageError);
    plugIn.Arm(true);
    plugIn.WaitForFirst(TNProperty_Elements);
    EXPECT_EQ(plugIn.Report(0).source.filename(), "a.wav");
}

TEST(SignalSide, TheObserverIsToldWhatAChangeWasAfterTheListeners)
{
    CPlugInUnderTest plugIn;
    std::mutex mutex;
    std::vector<std::string> order;
    const auto note = [&](const std::string& strWhat)
    {
        std::lock_guard lock(mutex);
        order.push_back(strWhat);
    };
    plugIn.onReport = [&](const CCaptureReport& report)
    {
        note(report.state == CaptureState::Waiting ? "waiting" : "acknowledged");
        EXPECT_EQ(report.nNumber, 0U);
    };
    plugIn.onNotification = [&](AudioUnitPropertyID nId)
    {
        if (nId != kTNProperty_CurrentCaptureLength)
        {
            note(std::to_string(nId));
        }
    };
    plugIn.Capture(plugIn.MakeSource("a.wav", 100));
    plugIn.Report(0);
    plugIn.Acknowledge(0);
    EXPECT_THAT(order, ElementsAre("64004", "64004", "64000", "waiting", "64004", "acknowledged"));
}

TEST(SignalSide, IsPlayedNoFasterThanItsSpeed)
{
    CPlugInUnderTest plugIn;
    plugIn.SetSpeed(10);
    const auto start = std::chrono::steady_clock::now();
    plugIn.Capture(plugIn.MakeSource("a.wav", 9600));
    // The last block begins after 18 of 19 blocks.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(18));
}

TEST(SignalSide, DisposedWhileCapturingItKeepsWhatThereIsAndTellsTheObserverAlone)
{
    CPlugInUnderTest plugIn;
    const fs::path source = plugIn.MakeSource("a.wav", 480000);
    plugIn.SetSpeed(1);
    plugIn.Side().SetSource({source, 0});
    plugIn.Arm(true);
    plugIn.WaitForFirst(kTNProperty_CurrentCaptureLength);
    plugIn.Dispose();
    EXPECT_EQ(plugIn.Count(TNProperty_Elements), 0U);
    EXPECT_EQ(plugIn.Count(TNProperty_ArmCapture), 1U);
    const CCaptureReport kept = plugIn.Report(0);
    EXPECT_EQ(kept.state, CaptureState::Waiting);
    EXPECT_EQ(kept.dub, plugIn.captures / "a-001.wav");
    const std::vector<double> all = ReadSound(source).samples;
    const std::vector<double> samples = ReadSound(kept.dub).samples;
    EXPECT_GE(samples.size(), 512U);
    EXPECT_EQ(samples,
              std::vector<double>(all.begin(), all.begin() + static_cast<long>(samples.size())));
}

TEST(SignalSide, TheNextOneInTheFolderPublishesWhatWasNotDelivered)
{
    CPlugInUnderTest plugIn;
    plugIn.Capture(plugIn.MakeSource("a.wav", 700), 4800);
    plugIn.Dispose();
    CPlugInUnderTest next;
    next.captureFolder = plugIn.captures.Path();
    next.SetSpeed(0);
    next.WaitForFirst(TNProperty_Elements);
    const auto record = next.Get<TNCaptureElement>(TNProperty_ElementInfo, 0);
    EXPECT_EQ(record.szDubPath, (plugIn.captures / "a-001.wav").string());
    EXPECT_EQ(record.tDub.dPosition, 4800.0);
    EXPECT_EQ(record.tDub.dEnd, 700.0);
    EXPECT_EQ(next.Side().CapturesBegun(), 0U);
    EXPECT_EQ(next.Acknowledge(0), noErr);
}

TEST(SignalSide, DisposalWaitsForTheNotificationUnderWay)
{
    CPlugInUnderTest plugIn;
    std::promise<void> inside, release;
    std::atomic<bool> fLeft = false;
    plugIn.Side().SetSource({plugIn.MakeSource("a.wav", 512), 0});
    plugIn.onNotification = [&](AudioUnitPropertyID nId)
    {
        if (nId == kTNProperty_CurrentCaptureLength)
        {
            inside.set_value();
            release.get_future().wait();
            fLeft = true;
        }
    };
    plugIn.Arm(true);
    inside.get_future().wait();
    std::thread releaser([&] { release.set_value(); });
    plugIn.Dispose();
    EXPECT_TRUE(fLeft);
    releaser.join();
}

TEST(SignalSide, AListenerMayArmAgainFromTheCaptureThread)
{
    CPlugInUnderTest plugIn;
    const fs::path source = plugIn.MakeSource("a.wav", 600);
    plugIn.onNotification = [&](AudioUnitPropertyID nId)
    {
        if (nId == TNProperty_Elements && plugIn.Count(TNProperty_Elements) < 3)
        {
            plugIn.Side().SetSource({source, 0});
            plugIn.Arm(true);
        }
    };
    plugIn.Side().SetSource({source, 0});
    plugIn.Arm(true);
    plugIn.WaitFor([&] { return plugIn.CountLocked(TNProperty_Elements) == 3; });
    EXPECT_THAT(plugIn.captures.Files(),
                testing::IsSupersetOf({"a-001.wav", "a-002.wav", "a-003.wav"}));
}

TEST(SignalSide, AddingAndRemovingListenersDuringACaptureIsSafe)
{
    CPlugInUnderTest plugIn;
    plugIn.Side().SetSource({plugIn.MakeSource("a.wav", 200000), 0});
    std::atomic<int> nInside = 0;
    const AudioUnitPropertyListenerProc pListener =
        [](void* pUserData, AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement)
    {
        auto& nNow = *static_cast<std::atomic<int>*>(pUserData);
        ++nNow;
        std::this_thread::yield();
        --nNow;
    };
    plugIn.Arm(true);
    while (plugIn.Count(TNProperty_Elements) == 0)
    {
        AudioUnitAddPropertyListener(plugIn.Unit(), kTNProperty_CurrentCaptureLength, pListener,
                                     &nInside);
        EXPECT_EQ(AudioUnitRemovePropertyListenerWithUserData(
                      plugIn.Unit(), kTNProperty_CurrentCaptureLength, pListener, &nInside),
                  noErr);
        EXPECT_EQ(nInside, 0) << "no call of it is running any more";
    }
}

TEST(SignalSide, ReadsAreCheckedForIdScopeElementAndSize)
{
    CPlugInUnderTest plugIn;
    const AudioUnit pUnit = plugIn.Unit();
    for (const AudioUnitPropertyID nId : {64000U, 64001U, 64003U, 64005U, 64008U, 64011U, 0U})
    {
        EXPECT_EQ(Status(pUnit, nId, 4096), kAudioUnitErr_InvalidProperty) << nId;
    }
    EXPECT_EQ(Status(pUnit, 64007, 4, kAudioUnitScope_Input), kAudioUnitErr_InvalidScope);
    EXPECT_EQ(Status(pUnit, 64007, 4, kAudioUnitScope_Global, 1), kAudioUnitErr_InvalidElement);
    EXPECT_EQ(Status(pUnit, 64007, 3), kAudioUnitErr_InvalidParameter);
    EXPECT_EQ(Status(pUnit, 64007, 4), noErr);
    EXPECT_EQ(Status(pUnit, 64007, 4096), noErr);
}

TEST(SignalSide, WritesAreCheckedForIdScopeElementAndSize)
{
    CPlugInUnderTest plugIn;
    const char room[16] = {};
    const auto nStatus =
        [&](AudioUnitPropertyID nId, UInt32 nSize, AudioUnitScope nScope = kAudioUnitScope_Global)
    { return AudioUnitSetProperty(plugIn.Unit(), nId, nScope, 0, room, nSize); };
    for (const AudioUnitPropertyID nId : {64002U, 64004U, 64006U, 64007U, 64010U})
    {
        EXPECT_EQ(nStatus(nId, 8), kAudioUnitErr_PropertyNotWritable) << nId;
    }
    EXPECT_EQ(nStatus(64001, 8), kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(nStatus(64009, 8), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(nStatus(64005, 1), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(nStatus(64008, 7), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(nStatus(64009, 4, kAudioUnitScope_Output), kAudioUnitErr_InvalidScope);
    EXPECT_EQ(nStatus(64009, 4), noErr);
}

TEST(SignalSide, TellsSizesAndWhatIsWritable)
{
    CPlugInUnderTest plugIn;
    const std::map<AudioUnitPropertyID, std::pair<UInt32, bool>> expected = {
        {64002, {3248, false}}, {64004, {1, false}}, {64005, {2, true}}, {64006, {8, false}},
        {64007, {4, false}},    {64008, {8, true}},  {64009, {4, true}}, {64010, {8, false}}};
    for (const auto& [nId, expectation] : expected)
    {
        UInt32 nSize = 0;
        Boolean fWritable = 2;
        EXPECT_EQ(AudioUnitGetPropertyInfo(plugIn.Unit(), nId, kAudioUnitScope_Global, 0, &nSize,
                                           &fWritable),
                  noErr);
        EXPECT_EQ(nSize, expectation.first) << nId;
        EXPECT_EQ(fWritable != 0, expectation.second) << nId;
    }
}

TEST(SignalSide, LogsEveryWriteBeforeWhatFollowsFromIt)
{
    CPlugInUnderTest plugIn;
    std::vector<std::string> lines;
    plugIn.Side().SetLog([&](const std::string& strLine) { lines.push_back(strLine); });
    plugIn.onNotification = [&](AudioUnitPropertyID) { lines.push_back("notified"); };
    plugIn.Set(TNProperty_SelectedTrack, SInt32(2));
    plugIn.Arm(true);
    plugIn.Acknowledge(0);
    EXPECT_THAT(lines, ElementsAre("64009 TNProperty_SelectedTrack: track 2",
                                   "64005 TNProperty_SetArmCapture: fArm 1, fShift 0", "notified",
                                   "64008 TNProperty_ElementDone: nElement 0, fHandled 1, "
                                   "fNotDelivered 0, fFinal 1",
                                   "64008 TNProperty_ElementDone: nElement 0, fHandled 1, "
                                   "fNotDelivered 0, fFinal 1 - refused with -10851"));
}
