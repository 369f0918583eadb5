#import "tests/TarvaneLinkAU/LinkViewFixture.h"

#include <atomic>
#include <latch>
#include <thread>

// Notifications on threads of the plug-in's own. These tests say as much under the thread
// sanitizer as by what they expect.

namespace
{
std::atomic<int> nLeftBehind = 0;
std::atomic<int> nHandedOn = 0;
}

// What a platform may leave behind when it is handed a call.
@interface LeftBehind : NSObject
@end

@implementation LeftBehind
- (id)init
{
    self = [super init];
    ++nLeftBehind;
    return self;
}
- (void)dealloc
{
    --nLeftBehind;
    [super dealloc];
}
@end

@interface LeavingView : TarvaneLink_CocoaView
@end

@implementation LeavingView
- (void)performSelectorOnMainThread:(SEL)selector withObject:(id)object waitUntilDone:(BOOL)fWait
{
    (void)selector, (void)object, (void)fWait;
    [[[LeftBehind alloc] init] autorelease];
    EXPECT_EQ(nLeftBehind, 1);
    ++nHandedOn;
}
@end

namespace
{
class NotificationThreads : public LinkViewFixture
{
  protected:
    // Threads that raise what they are told, all at once and so many times each.
    class CRaisers
    {
      public:
        CRaisers(TarvaneTests::ScriptedAudioUnit& plugIn,
                 const std::vector<AudioUnitPropertyID>& ids, int nTimes)
            : m_start(static_cast<std::ptrdiff_t>(ids.size()) + 1)
        {
            for (AudioUnitPropertyID nProperty : ids)
                m_threads.emplace_back(&CRaisers::Run, this, std::ref(plugIn), nProperty, nTimes);
            m_start.arrive_and_wait();
        }
        ~CRaisers()
        {
            for (std::thread& thread : m_threads)
                thread.join();
        }
        bool Done() const { return m_nDone == static_cast<int>(m_threads.size()); }

      private:
        void Run(TarvaneTests::ScriptedAudioUnit& plugIn, AudioUnitPropertyID nProperty, int nTimes)
        {
            m_start.arrive_and_wait();
            for (int n = 0; n < nTimes; ++n)
                plugIn.Raise(nProperty);
            ++m_nDone;
        }

        std::latch m_start;
        std::atomic<int> m_nDone{0};
        std::vector<std::thread> m_threads;
    };

    int ProgressReads() { return CountOf("Get", kTNProperty_CurrentCaptureLength); }
};

TEST_F(NotificationThreads, StormOfFourThreadsLeavesOneUpdateWaiting)
{
    Attach();
    {
        CRaisers raisers(m_plugIn,
                         {kTNProperty_CurrentCaptureLength, kTNProperty_CurrentCaptureLength,
                          kTNProperty_CurrentCaptureLength, kTNProperty_CurrentCaptureLength},
                         5000);
    }
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1);
}

TEST_F(NotificationThreads, SixteenThreadsRaiseEverythingThatAViewHears)
{
    Attach();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    std::vector<AudioUnitPropertyID> ids(14, kTNProperty_CurrentCaptureLength);
    ids.insert(ids.end(), {TNProperty_Elements, TNProperty_ArmCapture});
    {
        CRaisers raisers(m_plugIn, ids, 50);
        while (!raisers.Done())
            RunQueuedCalls();
    }
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_NextElement), 50);
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 50);
    EXPECT_GE(ProgressReads(), 1);
    EXPECT_LT(ProgressReads(), 14 * 50);
}

TEST_F(NotificationThreads, ViewGoesWhileSixteenThreadsNotify)
{
    [m_pView release];
    m_pView = nil;
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    TestLinkView* pView = [[TestLinkView alloc] initWithFrame:NSMakeRect(0, 0, 300, 100)];
    [pView setAU:m_plugIn.Unit()];
    {
        CRaisers raisers(
            m_plugIn, std::vector<AudioUnitPropertyID>(16, kTNProperty_CurrentCaptureLength), 200);
        RunQueuedCalls();
        [pView release];
    }
    RunQueuedCalls();
    [pPool drain];
    EXPECT_EQ([TestLinkView liveViews], 0);
    EXPECT_EQ(m_plugIn.ListenerCount(), 0u);
}

TEST_F(NotificationThreads, MainThreadGetsThroughItsQueueDuringAStorm)
{
    Attach();
    std::atomic<bool> fStop{false};
    auto storm = [&]
    {
        while (!fStop)
            m_plugIn.Raise(kTNProperty_CurrentCaptureLength);
    };
    std::thread one(storm);
    std::thread other(storm);
    // Each turn ends only if nothing piles up in front of it.
    for (int nTurn = 0; nTurn < 50; ++nTurn)
        RunQueuedCalls();
    fStop = true;
    one.join();
    other.join();
    m_plugIn.ForgetRecords();
    RunQueuedCalls();
    EXPECT_LE(ProgressReads(), 1);
    // And the display has not been lost on the way.
    m_plugIn.ForgetRecords();
    for (int n = 0; n < 21; ++n)
        m_plugIn.Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1);
}

TEST_F(NotificationThreads, FourThreadsRaiseBothProgressIdsTogether)
{
    Attach();
    testing::internal::CaptureStderr();
    {
        CRaisers raisers(m_plugIn,
                         {TNProperty_CurrentSampleInTimeLine, kTNProperty_CurrentCaptureLength,
                          TNProperty_CurrentSampleInTimeLine, kTNProperty_CurrentCaptureLength},
                         3000);
        while (!raisers.Done())
            RunQueuedCalls();
    }
    RunQueuedCalls();
    // One that passes is the last: no handler ends it.
    for (int n = 0; n < 100; ++n)
        m_plugIn.Raise(TNProperty_CurrentSampleInTimeLine);
    RunQueuedCalls();
    const std::string strLog = testing::internal::GetCapturedStderr();
    std::size_t nReports = 0;
    for (std::size_t nAt = strLog.find("*** NSRunLoop ignoring exception");
         nAt != std::string::npos; nAt = strLog.find("*** NSRunLoop ignoring exception", nAt + 1))
        ++nReports;
    EXPECT_EQ(nReports, 1u) << strLog;

    PlayTracks({"Vox"}, 2);
    [m_pView setAU:m_plugIn.Unit()];
    m_plugIn.ForgetRecords();
    m_plugIn.Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1);
}

TEST_F(NotificationThreads, EveryCaptureAndEveryArmChangeGetsItsOwnCall)
{
    Attach();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    {
        CRaisers raisers(m_plugIn,
                         {TNProperty_Elements, TNProperty_ArmCapture, TNProperty_Elements,
                          kTNProperty_CurrentCaptureLength},
                         100);
        while (!raisers.Done())
            RunQueuedCalls();
    }
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_NextElement), 200);
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 100);
}

TEST_F(NotificationThreads, ViewsAreGivenUpWhileNotificationsComeIn)
{
    [m_pView release];
    m_pView = nil;
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    for (int nRound = 0; nRound < 100; ++nRound)
    {
        NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
        TestLinkView* pView = [[TestLinkView alloc] initWithFrame:NSMakeRect(0, 0, 300, 100)];
        [pView setAU:m_plugIn.Unit()];
        {
            CRaisers raisers(
                m_plugIn,
                {TNProperty_Elements, TNProperty_ArmCapture, kTNProperty_CurrentCaptureLength}, 20);
            if (nRound % 2 == 0)
                RunQueuedCalls();
            [pView release];
        }
        RunQueuedCalls();
        [pPool drain];
        ASSERT_EQ([TestLinkView liveViews], 0) << "round " << nRound;
        ASSERT_EQ(m_plugIn.ListenerCount(), 0u);
    }
}

// What follows is of plug-ins whose removal of a listener does not wait for calls under way.

TEST_F(NotificationThreads, LateCallsOfAPlugInThatDoesNotWaitTouchNothing)
{
    m_plugIn.RemoveWithoutWaiting();
    [m_pView release];
    m_pView = nil;
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    for (int nRound = 0; nRound < 30; ++nRound)
    {
        NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
        TestLinkView* pView = [[TestLinkView alloc] initWithFrame:NSMakeRect(0, 0, 300, 100)];
        [pView setAU:m_plugIn.Unit()];
        std::atomic<bool> fGone{false};
        std::vector<std::thread> threads;
        for (AudioUnitPropertyID nProperty :
             {TNProperty_Elements, TNProperty_ArmCapture, kTNProperty_CurrentCaptureLength})
        {
            threads.emplace_back(
                [&, nProperty]
                {
                    for (int n = 0; n < 10; ++n)
                        m_plugIn.Raise(nProperty);
                    // One that still has the address when the view has long gone.
                    for (int n = 0; n < 10; n += fGone)
                        ViewEventListener(pView, m_plugIn.Unit(), kTNProperty_CurrentCaptureLength,
                                          0, 0);
                });
        }
        if (nRound % 2 == 0)
            RunQueuedCalls();
        [pView release];
        // What was queued owns the view until it has run.
        while ([TestLinkView liveViews] > 0)
            RunQueuedCalls();
        fGone = true;
        for (std::thread& thread : threads)
            thread.join();
        [pPool drain];
        ASSERT_EQ(m_plugIn.ListenerCount(), 0u);
    }
    RunQueuedCalls();
    EXPECT_EQ([TestLinkView liveViews], 0);
}

TEST_F(NotificationThreads, AnotherPlugInComesWhileTheFirstGoesOnCalling)
{
    m_plugIn.RemoveWithoutWaiting();
    Attach();
    {
        std::atomic<bool> fStop{false};
        std::vector<std::thread> threads;
        for (int n = 0; n < 3; ++n)
        {
            threads.emplace_back(
                [&]
                {
                    while (!fStop)
                        ViewEventListener(m_pView, m_plugIn.Unit(),
                                          kTNProperty_CurrentCaptureLength, 0, 0);
                });
        }
        for (int n = 0; n < 50; ++n)
        {
            PlayTracks({"Vox"}, 2);
            [m_pView setAU:m_plugIn.Unit(1 + n % 2)];
            RunQueuedCalls();
        }
        fStop = true;
        for (std::thread& thread : threads)
            thread.join();
    }
    RunQueuedCalls();
    EXPECT_TRUE([m_pView transportPositionIsFree]);
    EXPECT_GE(ProgressReads(), 1);
}

// The last owner lets go while a notifier is inside and has not queued its call yet. The call owns
// the view from then on, and what is raised behind it arrives too.
TEST_F(NotificationThreads, NothingIsLostWhenTheLastOwnerLetsGoBeforeACallIsQueued)
{
    Attach();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, 7);
    TestLinkView* pView = m_pView;
    m_pView = nil;
    std::latch inside(1);
    int nCountsBefore = 0;
    HooksOf(pView).beforeQueueing = [&, pView](const QueuedCall&)
    {
        if (pView->m_nCountsOfOwners != nCountsBefore)
            return; // the later ones
        inside.count_down();
        // Until the owner has found that it is the last.
        while (pView->m_nCountsOfOwners == nCountsBefore)
            std::this_thread::yield();
        for (int n = 0; n < 100; ++n)
            std::this_thread::yield();
    };
    nCountsBefore = pView->m_nCountsOfOwners;
    std::thread notifier([&] { m_plugIn.Raise(TNProperty_Elements); });
    inside.wait();
    [pView release];
    notifier.join();
    ASSERT_EQ([TestLinkView liveViews], 1) << "the queued call owns the view";

    std::thread(
        [&]
        {
            m_plugIn.Raise(TNProperty_Elements);
            m_plugIn.Raise(TNProperty_Elements);
            m_plugIn.Raise(kTNProperty_CurrentCaptureLength);
        })
        .join();
    testing::internal::CaptureStderr();
    RunQueuedCalls();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(CountOf("Set", TNProperty_ElementDone), 3) << "an acknowledge for each";
    EXPECT_EQ(ProgressReads(), 1);
    EXPECT_EQ([TestLinkView liveViews], 0);
}

TEST_F(NotificationThreads, NothingIsLeftBehindOnAThreadWithoutAPool)
{
    LeavingView* pView = [[LeavingView alloc] initWithFrame:NSZeroRect];
    std::thread(
        [pView]
        {
            [pView PropertyChanged:TNProperty_Elements Element:0];
            EXPECT_EQ(nLeftBehind, 0);
        })
        .join();
    EXPECT_EQ(nHandedOn, 1);
    [pView release];
}
} // namespace
