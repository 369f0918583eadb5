#import "tests/TarvaneLinkAU/LinkViewFixture.h"
#include "tests/support/DecimalComma.h"

#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

@interface SetPlugIn : NSObject
{
  @public
    TarvaneLink_CocoaView* m_pView;
}
@end

@implementation SetPlugIn

- (void)Run
{
    [m_pView setAU:TarvaneTests::ScriptedAudioUnit::Unit()];
}

@end

// Takes what a listener passes on, and is no view.
@interface PropertyChangeRecorder : NSObject
{
  @public
    std::uint32_t m_nProperty;
    std::uint32_t m_nElement;
}
@end

@implementation PropertyChangeRecorder

- (void)PropertyChanged:(std::uint32_t)nProperty Element:(std::uint32_t)nElement
{
    m_nProperty = nProperty;
    m_nElement = nElement;
}

@end

namespace
{
class LinkView : public LinkViewFixture
{
  protected:
    void Raise(AudioUnitPropertyID nProperty, int nTimes = 1)
    {
        for (int n = 0; n < nTimes; ++n)
            m_plugIn.Raise(nProperty);
    }

    // How many progress updates have reached the plug-in since.
    int ProgressReads() { return CountOf("Get", kTNProperty_CurrentCaptureLength); }

    void Arm()
    {
        m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 1);
        PlayTracks({"Vox", "Bass"});
        Raise(TNProperty_ArmCapture);
        RunQueuedCalls();
        ASSERT_EQ([[m_pView captureSwitch] state], 1);
    }

    static NSColor* Colour(double dRed, double dGreen, double dBlue)
    {
        return [NSColor colorWithCalibratedRed:dRed green:dGreen blue:dBlue alpha:1.0];
    }
};

// An event that the application has just taken from its queue.
void MakeCurrent(NSUInteger nModifiers)
{
    NSEvent* pEvent = [NSEvent keyEventWithType:NSKeyUp
                                       location:NSZeroPoint
                                  modifierFlags:nModifiers
                                      timestamp:0
                                   windowNumber:0
                                        context:nil
                                     characters:@"x"
                    charactersIgnoringModifiers:@"x"
                                      isARepeat:NO
                                        keyCode:0];
    [NSApp postEvent:pEvent atStart:YES];
    [NSApp nextEventMatchingMask:NSKeyUpMask untilDate:nil inMode:NSDefaultRunLoopMode dequeue:YES];
    ASSERT_EQ([[NSApp currentEvent] modifierFlags], nModifiers);
}

// What the run loop reports of a call that an exception ends: an assertion failure is one.
std::string ReportOf(id idReceiver, SEL selCall)
{
    testing::internal::CaptureStderr();
    [idReceiver performSelectorOnMainThread:selCall withObject:nil waitUntilDone:NO];
    RunQueuedCalls();
    return testing::internal::GetCapturedStderr();
}

#pragma mark Start

TEST_F(LinkView, SetAUGoesThroughItsStepsInOrder)
{
    std::vector<std::string> journal;
    m_plugIn.m_onCall = [&](const auto& record) { journal.push_back(record.m_line); };
    m_events.m_whileSending = [&] { journal.push_back("Command"); };
    PlayTracks({"Vox"}, 2);

    [m_pView setAU:m_plugIn.Unit()];

    EXPECT_THAT(journal, ElementsAre("CreateListener(default mode, 0.1 s)", "Listen(64000)",
                                     "Listen(64004)", "Listen(64006)", "Listen(64010)",
                                     // the armed state
                                     "Command", "Get(64009, scope 0, element 0, 4 bytes)",
                                     "Get(64004, scope 0, element 0, 1 bytes)",
                                     // the menu once more
                                     "Command", "Get(64009, scope 0, element 0, 4 bytes)"));
    for (const std::string& strScript : m_events.Scripts())
        EXPECT_THAT(strScript, testing::StartsWith("if(SelectScriptDocument()) then\n"));
}

TEST_F(LinkView, ListenersCarryTheViewAsTheirUserData)
{
    [m_pView setAU:m_plugIn.Unit(3)];
    const auto records = m_plugIn.Records();
    EXPECT_EQ(records[0].m_pCallback, reinterpret_cast<void (*)()>(ParameterListenerDispatcher));
    EXPECT_EQ(records[0].m_pUserData, m_pView);
    EXPECT_EQ(records[0].m_runLoop, CFRunLoopGetCurrent());
    for (int n = 1; n <= 4; ++n)
    {
        EXPECT_EQ(records[n].m_pUnit, m_plugIn.Unit(3));
        EXPECT_EQ(records[n].m_pCallback, reinterpret_cast<void (*)()>(ViewEventListener));
        EXPECT_EQ(records[n].m_pUserData, m_pView);
    }
}

TEST_F(LinkView, SetAUMakesTheViewTheDelegateOfMenuAndSwitch)
{
    Attach();
    EXPECT_EQ([[[m_pView trackButton] menu] delegate], m_pView);

    TKToggleSwitch* pSwitch = [m_pView captureSwitch];
    const NSPoint ptInside = [pSwitch convertPoint:NSMakePoint(5, 5) toView:nil];
    for (NSEventType nType : {NSLeftMouseDown, NSLeftMouseUp})
    {
        NSEvent* pEvent = [NSEvent mouseEventWithType:nType
                                             location:ptInside
                                        modifierFlags:0
                                            timestamp:0
                                         windowNumber:0
                                              context:nil
                                          eventNumber:0
                                           clickCount:1
                                             pressure:0];
        if (nType == NSLeftMouseDown)
            [pSwitch mouseDown:pEvent];
        else
            [pSwitch mouseUp:pEvent];
    }
    EXPECT_EQ(CountOf("Set", TNProperty_SetArmCapture), 1);
}

TEST_F(LinkView, SetAUShowsTheArmedStateOfThePlugIn)
{
    m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 1);
    Attach();
    EXPECT_EQ([[m_pView captureSwitch] state], 1);
}

TEST_F(LinkView, SetAUShowsThatTheServerIsNotRunning)
{
    m_events.FailSend(-600);
    m_events.FailSend(-600);
    [m_pView setAU:m_plugIn.Unit()];
    EXPECT_EQ(ErrorLine(), "Error - Tarvane not running.");
    EXPECT_EQ(AdviceLine(), "Locate and launch Tarvane.");
}

TEST_F(LinkView, SecondSetAUMovesTheListenersOver)
{
    Attach();
    PlayTracks({"Vox"}, 2);
    [m_pView setAU:m_plugIn.Unit(2)];
    const auto records = m_plugIn.Records();
    const auto lines = m_plugIn.Lines();
    const std::vector<std::string> first(lines.begin(), lines.begin() + 10);
    EXPECT_THAT(first, ElementsAre("DisposeListener", "Unlisten(64000)", "Unlisten(64004)",
                                   "Unlisten(64006)", "Unlisten(64010)",
                                   "CreateListener(default mode, 0.1 s)", "Listen(64000)",
                                   "Listen(64004)", "Listen(64006)", "Listen(64010)"));
    EXPECT_EQ(records[1].m_pUnit, m_plugIn.Unit(1));
    EXPECT_EQ(records[6].m_pUnit, m_plugIn.Unit(2));
    EXPECT_NE(records[0].m_pListener, records[5].m_pListener);
    EXPECT_EQ(m_plugIn.ListenerCount(), 4u);
}

TEST_F(LinkView, SetAUTakesNothingBackWithoutAPlugIn)
{
    [m_pView addListeners];
    m_plugIn.ForgetRecords();
    [m_pView setAU:m_plugIn.Unit()];
    EXPECT_EQ(m_plugIn.Lines().front(), "CreateListener(default mode, 0.1 s)");
    for (AudioUnitPropertyID nProperty : {64000u, 64004u, 64006u, 64010u})
        AudioUnitRemovePropertyListenerWithUserData(nullptr, nProperty, ViewEventListener, m_pView);
}

TEST_F(LinkView, RemoveListenersWithoutAPlugInDoesNothing)
{
    [m_pView removeListeners];
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
}

TEST_F(LinkView, SetAUInitialisesTheMutexEachTime)
{
    for (int nPlugIn : {1, 2})
    {
        [m_pView lockTransportPosition];
        ASSERT_FALSE([m_pView transportPositionIsFree]);
        [m_pView setAU:m_plugIn.Unit(nPlugIn)];
        EXPECT_TRUE([m_pView transportPositionIsFree]) << nPlugIn;
    }
}

TEST_F(LinkView, SecondSetAUEndsTheAudioSuiteForm)
{
    Attach();
    [m_pView setAudioSuite:true];
    [m_pView setAU:m_plugIn.Unit(2)];
    ASSERT_EQ(m_events.Scripts().size(), 4u);
    EXPECT_THAT(m_events.Scripts()[2], testing::StartsWith("if(SelectScriptDocument()) then\n"));
    EXPECT_THAT(m_events.Scripts()[3], testing::StartsWith("if(SelectScriptDocument()) then\n"));
}

TEST_F(LinkView, MenuGetsItsDelegateBehindTheFills)
{
    int nFills = 0;
    m_events.m_whileSending = [&]
    {
        ++nFills;
        EXPECT_EQ([[[m_pView trackButton] menu] delegate], nil);
    };
    Attach();
    EXPECT_EQ(nFills, 2);
    EXPECT_EQ([[[m_pView trackButton] menu] delegate], m_pView);
}

TEST_F(LinkView, SecondSetAUStartsTheThrottleAfresh)
{
    Attach();
    Raise(kTNProperty_CurrentCaptureLength, 5);
    RunQueuedCalls();
    PlayTracks({"Vox"}, 2);
    [m_pView setAU:m_plugIn.Unit()];
    m_plugIn.ForgetRecords();
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1);
}

TEST_F(LinkView, FailedCreationOfTheListenerIsAnAssertionFailure)
{
    m_plugIn.FailListenerCreate(-50);
    const std::string strReport = ReportOf(m_pView, @selector(addListeners));
    EXPECT_THAT(strReport, HasSubstr("NSInternalInconsistencyException"));
    EXPECT_THAT(strReport, HasSubstr("TarvaneLinkView:419 "));
    EXPECT_THAT(strReport,
                HasSubstr("method addListeners.  [TarvaneLinkAU_CocoaView _addListeners] "
                          "AUListenerCreate()"));
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("CreateListener(default mode, 0.1 s)"));
}

TEST_F(LinkView, FailedDisposalOfTheListenerIsAnAssertionFailure)
{
    Attach();
    m_plugIn.FailListenerDispose(-50);
    const std::string strReport = ReportOf(m_pView, @selector(removeListeners));
    m_plugIn.FailListenerDispose(0);
    EXPECT_THAT(strReport, HasSubstr("NSInternalInconsistencyException"));
    EXPECT_THAT(strReport, HasSubstr("TarvaneLinkView:448 "));
    EXPECT_THAT(strReport, HasSubstr("method removeListeners.  [TarvaneLink_CocoaView "
                                     "_removeListeners] AUListenerDispose()"));
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("DisposeListener"));
}

TEST_F(LinkView, ListenerThatCouldNotBeMadeIsNotDisposedOf)
{
    m_plugIn.FailListenerCreate(-50);
    SetPlugIn* pCall = [[[SetPlugIn alloc] init] autorelease];
    pCall->m_pView = m_pView;
    EXPECT_THAT(ReportOf(pCall, @selector(Run)), HasSubstr("TarvaneLinkView:419 "));
    m_plugIn.ForgetRecords();
    [m_pView release];
    m_pView = nil;
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Unlisten(64000)", "Unlisten(64004)",
                                              "Unlisten(64006)", "Unlisten(64010)"));
}

TEST_F(LinkView, NullPlugInIsTakenBackLikeAnyOther)
{
    [m_pView setAU:nullptr];
    m_plugIn.ForgetRecords();
    [m_pView release];
    m_pView = nil;
    EXPECT_THAT(m_plugIn.Lines(),
                ElementsAre("DisposeListener", "Unlisten(64000)", "Unlisten(64004)",
                            "Unlisten(64006)", "Unlisten(64010)"));
}

TEST_F(LinkView, ParameterListenerReachesTheViewAndDoesNothing)
{
    Attach();
    const AudioUnitParameter tParameter = {};
    ParameterListenerDispatcher(m_pView, nullptr, &tParameter, 1.0F);
    [m_pView synchronizeUIWithParameterValues];
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
    EXPECT_EQ(m_events.Commands().size(), 2u);
}

#pragma mark End

TEST_F(LinkView, DeallocRemovesTheListenersInTheirOrder)
{
    Attach();
    void* pView = m_pView;
    [m_pView release];
    m_pView = nil;
    EXPECT_THAT(m_plugIn.Lines(),
                ElementsAre("DisposeListener", "Unlisten(64000)", "Unlisten(64004)",
                            "Unlisten(64006)", "Unlisten(64010)"));
    for (const auto& record : m_plugIn.Records())
    {
        if (record.m_nProperty != 0)
        {
            EXPECT_EQ(record.m_pUserData, pView);
        }
    }
    EXPECT_EQ([TestLinkView liveViews], 0);
}

// Nibs may make it by either of the two.
TEST_F(LinkView, ViewFromAnArchiveHearsItsPlugInLikeAnyOther)
{
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    NSView* pPlain = [[[TarvaneLink_CocoaView alloc] initWithFrame:NSZeroRect] autorelease];
    NSData* pData = [NSKeyedArchiver archivedDataWithRootObject:pPlain];
    TarvaneLink_CocoaView* pView = [NSKeyedUnarchiver unarchiveObjectWithData:pData];
    ASSERT_TRUE([pView isMemberOfClass:[TarvaneLink_CocoaView class]]);
    PlayTracks({"Vox"}, 3);
    [pView setAU:m_plugIn.Unit()];
    m_plugIn.ForgetRecords();
    Raise(TNProperty_ArmCapture);
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 1);
    EXPECT_EQ(ProgressReads(), 1);
    [pPool drain];
    EXPECT_EQ(m_plugIn.ListenerCount(), 0u);
}

TEST_F(LinkView, ViewThatNeverHadAPlugInGoesQuietly)
{
    [m_pView release];
    m_pView = nil;
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
    EXPECT_EQ([TestLinkView liveViews], 0);
}

TEST_F(LinkView, QueuedCallsHoldTheViewUntilTheyHaveRun)
{
    Attach();
    PlayTracks({"Vox"});
    Raise(TNProperty_ArmCapture);
    Raise(kTNProperty_CurrentCaptureLength);
    [m_pView release];
    m_pView = nil;
    EXPECT_EQ([TestLinkView liveViews], 1);
    EXPECT_EQ(m_plugIn.ListenerCount(), 4u);
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 1);
    EXPECT_EQ(ProgressReads(), 1);
    EXPECT_EQ([TestLinkView liveViews], 0);
    EXPECT_EQ(m_plugIn.ListenerCount(), 0u);
}

TEST_F(LinkView, NotificationsAreTakenInWhileOnlyTheQueueHoldsTheView)
{
    Attach();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    Raise(TNProperty_Elements);
    [m_pView release];
    m_pView = nil;
    Raise(TNProperty_Elements, 3);
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_NextElement), 4) << "no capture is lost";
    EXPECT_EQ([TestLinkView liveViews], 0);
}

TEST_F(LinkView, NotificationDuringDeallocIsNotTakenIn)
{
    Attach();
    TarvaneLink_CocoaView* pDying = m_pView;
    m_plugIn.m_onCall = [&](const auto& record)
    {
        if (record.m_line == "DisposeListener")
            ViewEventListener(pDying, m_plugIn.Unit(), TNProperty_Elements, 0, 0);
    };
    [m_pView release];
    m_pView = nil;
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_NextElement), 0);
    EXPECT_EQ([TestLinkView liveViews], 0);
}

TEST_F(LinkView, ReleaseByOneOfTwoOwnersLeavesTheNotificationsOn)
{
    Attach();
    [m_pView retain];
    [m_pView release];
    PlayTracks({"Vox"});
    Raise(TNProperty_ArmCapture);
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 1);
}

TEST_F(LinkView, MenuAndSwitchForgetTheViewWhenItGoes)
{
    Attach();
    NSPopUpButton* pButton = [[m_pView trackButton] retain];
    TKToggleSwitch* pSwitch = [[m_pView captureSwitch] retain];
    [m_pView release];
    m_pView = nil;
    EXPECT_EQ([[pButton menu] delegate], nil);
    EXPECT_EQ([pButton target], nil);
    [pSwitch mouseUp:[NSEvent mouseEventWithType:NSLeftMouseUp
                                        location:NSMakePoint(5, 5)
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:0]];
    EXPECT_EQ(CountOf("Set", TNProperty_SetArmCapture), 0);
    [pButton release];
    [pSwitch release];
}

TEST_F(LinkView, WhatOthersHaveSetStaysTheirs)
{
    Attach();
    NSPopUpButton* pButton = [[m_pView trackButton] retain];
    TKToggleSwitch* pSwitch = [[m_pView captureSwitch] retain];
    TestLinkView* pOther = [[TestLinkView alloc] initWithFrame:NSZeroRect];
    [[pButton menu] setDelegate:pOther];
    [pButton setTarget:pOther];
    [pSwitch SetDelegate:pOther];
    [m_pView release];
    m_pView = nil;
    EXPECT_EQ([[pButton menu] delegate], pOther);
    EXPECT_EQ([pButton target], pOther);
    EXPECT_EQ([pSwitch Delegate], pOther);
    [[pButton menu] setDelegate:nil];
    [pButton release];
    [pSwitch release];
    [pOther release];
}

TEST_F(LinkView, CallsThatComeWhenTheViewIsGoneAreDropped)
{
    Attach();
    TarvaneLink_CocoaView* pGone = m_pView;
    [m_pView release];
    m_pView = nil;
    ASSERT_EQ([TestLinkView liveViews], 0);
    m_plugIn.ForgetRecords();
    for (AudioUnitPropertyID nProperty : {64000u, 64004u, 64006u, 64010u, 64001u})
        ViewEventListener(pGone, m_plugIn.Unit(), nProperty, 0, 0);
    RunQueuedCalls();
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
}

TEST_F(LinkView, ViewThatIsDestroyedOutrightHearsNothingAnyMore)
{
    Attach();
    TarvaneLink_CocoaView* pGone = m_pView;
    [m_pView dealloc];
    m_pView = nil;
    m_plugIn.ForgetRecords();
    ViewEventListener(pGone, m_plugIn.Unit(), TNProperty_Elements, 0, 0);
    RunQueuedCalls();
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
}

#pragma mark Notifications

TEST(ViewEventListener, SendsIdAndElementToWhateverItIsGiven)
{
    PropertyChangeRecorder* pRecorder = [PropertyChangeRecorder new];
    ViewEventListener(pRecorder, nullptr, TNProperty_SelectedTrack, kAudioUnitScope_Output, 3);
    EXPECT_EQ(pRecorder->m_nProperty, 64009u);
    EXPECT_EQ(pRecorder->m_nElement, 3u);
    [pRecorder release];
}

TEST_F(LinkView, DispatchPassesTheViewAndNeitherWaitsNorHoldsTheLock)
{
    Attach();
    std::vector<std::string> selectors;
    HooksOf(m_pView).beforeQueueing = [&](const QueuedCall& call)
    {
        selectors.push_back(call.strSelector);
        EXPECT_EQ(call.idObject, m_pView) << call.strSelector;
        EXPECT_FALSE(call.fWaits) << call.strSelector;
        EXPECT_TRUE([m_pView transportPositionIsFree]) << call.strSelector;
    };
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    Raise(TNProperty_Elements);
    Raise(TNProperty_ArmCapture);
    Raise(kTNProperty_CurrentCaptureLength);
    EXPECT_THAT(selectors, ElementsAre("TNProperty_Elements", "TNProperty_ArmCapture",
                                       "kTNProperty_CurrentCaptureLength"));
    RunQueuedCalls();
    HooksOf(m_pView).beforeQueueing = nullptr;
}

TEST_F(LinkView, EachNotificationOf64004QueuesItsOwnCall)
{
    Attach();
    PlayTracks({"Vox"}, 3);
    Raise(TNProperty_ArmCapture, 3);
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty()) << "a notification never does the work itself";
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 3);
}

TEST_F(LinkView, EachNotificationOf64000QueuesItsOwnCall)
{
    Attach();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, -1);
    Raise(TNProperty_Elements, 3);
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_NextElement), 3);
}

TEST_F(LinkView, OtherIdsHaveNoEffect)
{
    Attach();
    for (AudioUnitPropertyID nProperty :
         {0u, 63999u, 64001u, 64002u, 64003u, 64005u, 64007u, 64008u, 64009u, 64011u, 0xFFFFFFFFu})
        ViewEventListener(m_pView, m_plugIn.Unit(), nProperty, 0, 0);
    RunQueuedCalls();
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
    EXPECT_EQ(m_events.Commands().size(), 2u);
    EXPECT_EQ([m_pView throttle], 0);
}

TEST_F(LinkView, ElementOfANotificationIsIgnored)
{
    Attach();
    PlayTracks({"Vox"});
    m_plugIn.Raise(TNProperty_ArmCapture, 9);
    RunQueuedCalls();
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Get(64009, scope 0, element 0, 4 bytes)",
                                              "Get(64004, scope 0, element 0, 1 bytes)"));
}

TEST_F(LinkView, ScopeOfANotificationIsIgnored)
{
    Attach();
    PlayTracks({"Vox"});
    ViewEventListener(m_pView, nullptr, TNProperty_ArmCapture, kAudioUnitScope_Output, 0);
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 1);
}

#pragma mark Throttle

TEST_F(LinkView, OneProgressNotificationIn21GetsThrough)
{
    Attach();
    std::vector<int> passed;
    for (int n = 0; n < 64; ++n)
    {
        const int nBefore = ProgressReads();
        Raise(kTNProperty_CurrentCaptureLength);
        RunQueuedCalls();
        if (ProgressReads() > nBefore)
            passed.push_back(n);
    }
    EXPECT_THAT(passed, ElementsAre(0, 21, 42, 63));
}

TEST_F(LinkView, ThrottleOf20HoldsBeforeThereIsAPlugIn)
{
    std::vector<int> passed;
    for (int n = 0; n < 43; ++n)
    {
        const int nBefore = ProgressReads();
        [m_pView PropertyChanged:kTNProperty_CurrentCaptureLength Element:0];
        RunQueuedCalls();
        if (ProgressReads() > nBefore)
            passed.push_back(n);
    }
    EXPECT_THAT(passed, ElementsAre(0, 21, 42));
}

TEST_F(LinkView, UpdateIsInTheQueueUntilItHasBeenShown)
{
    Attach();
    int nShown = 0;
    HooksOf(m_pView).inUpdateCapture = [&]
    {
        ++nShown;
        EXPECT_TRUE([m_pView progressInQueue]);
        EXPECT_TRUE([m_pView transportPositionIsFree]);
    };
    Raise(kTNProperty_CurrentCaptureLength);
    EXPECT_TRUE([m_pView progressInQueue]);
    RunQueuedCalls();
    EXPECT_EQ(nShown, 1);
    EXPECT_FALSE([m_pView progressInQueue]);
    HooksOf(m_pView).inUpdateCapture = nullptr;
}

TEST_F(LinkView, ProgressIsReadInEightBytes)
{
    Attach();
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Get(64010, scope 0, element 0, 8 bytes)"));
}

TEST_F(LinkView, StormLeavesOneUpdateWaiting)
{
    Attach();
    Raise(kTNProperty_CurrentCaptureLength, 100000);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1);
}

TEST_F(LinkView, CounterFallsWhileAnUpdateWaitsAndTheNextOnePassesAtOnce)
{
    Attach();
    Raise(kTNProperty_CurrentCaptureLength, 31);
    EXPECT_EQ([m_pView throttle], -10) << "not reloaded while the update waits";
    RunQueuedCalls();
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 2);
    EXPECT_EQ([m_pView throttle], 20);
}

TEST_F(LinkView, CounterStopsAtItsLowestValue)
{
    Attach();
    [m_pView setThrottle:std::numeric_limits<std::int32_t>::min()];
    Raise(kTNProperty_CurrentCaptureLength, 2);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1);
}

TEST_F(LinkView, BothProgressIdsShareOneCounter)
{
    Attach();
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    Raise(TNProperty_CurrentSampleInTimeLine, 20); // all swallowed
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 2);
}

TEST_F(LinkView, Passing64006EndsTheProgressDisplay)
{
    Attach();
    testing::internal::CaptureStderr();
    Raise(TNProperty_CurrentSampleInTimeLine);
    RunQueuedCalls();
    const std::string strLog = testing::internal::GetCapturedStderr();
    EXPECT_THAT(strLog, HasSubstr("_TNProperty_CurrentSampleInTimeLine"));
    EXPECT_EQ(CountOf("Get", TNProperty_CurrentSampleInTimeLine), 0) << "its handler never runs";

    Raise(kTNProperty_CurrentCaptureLength, 100);
    Raise(TNProperty_CurrentSampleInTimeLine, 100);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 0);

    PlayTracks({"Vox"}, 2);
    [m_pView setAU:m_plugIn.Unit()];
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ProgressReads(), 1) << "until the next plug-in comes";
}

TEST_F(LinkView, View64006WasRaisedOnGoesAllTheSame)
{
    Attach();
    testing::internal::CaptureStderr();
    Raise(TNProperty_CurrentSampleInTimeLine);
    RunQueuedCalls();
    testing::internal::GetCapturedStderr();
    [m_pView release];
    m_pView = nil;
    EXPECT_EQ([TestLinkView liveViews], 0);
}

TEST_F(LinkView, HandlerOf64006IsThereAndReads64006)
{
    Attach();
    Arm();
    m_plugIn.ForgetRecords();
    m_plugIn.SetValue(TNProperty_CurrentSampleInTimeLine, 2.5);
    [m_pView TNProperty_CurrentSampleInTimeLine];
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Get(64006, scope 0, element 0, 8 bytes)"));
    EXPECT_EQ(ErrorLine(), "Capturing Audio: 2.5 sec");
}

#pragma mark Progress and messages

TEST_F(LinkView, ProgressIsShownInGreyWhileArmed)
{
    Attach();
    Arm();
    [[m_pView adviceLine] setStringValue:@"old advice"];
    m_plugIn.SetValue(kTNProperty_CurrentCaptureLength, 12.34);
    Raise(kTNProperty_CurrentCaptureLength);
    RunQueuedCalls();
    EXPECT_EQ(ErrorLine(), "Capturing Audio: 12.3 sec");
    EXPECT_EQ(AdviceLine(), "");
    EXPECT_TRUE([[[m_pView errorLine] textColor] isEqual:Colour(0.8, 0.8, 0.8)]);
}

TEST_F(LinkView, ProgressHasADecimalPointInEveryLocale)
{
    Attach();
    Arm();
    for (const char* szLocale : {"de_DE.UTF-8", "tr_TR.UTF-8"})
    {
        TarvaneTests::DecimalComma locale(szLocale);
        [m_pView UpdateCapture:12345.67];
        EXPECT_EQ(ErrorLine(), "Capturing Audio: 12345.7 sec");
    }
}

TEST_F(LinkView, ProgressIsAsLongAsItsNumber)
{
    Attach();
    Arm();
    [m_pView UpdateCapture:-std::numeric_limits<double>::max()];
    EXPECT_EQ(ErrorLine().size(), std::string("Capturing Audio: - sec").size() + 309 + 2);
    [m_pView UpdateCapture:std::numeric_limits<double>::infinity()];
    EXPECT_EQ(ErrorLine(), "Capturing Audio: inf sec");
    [m_pView UpdateCapture:std::numeric_limits<double>::quiet_NaN()];
    EXPECT_EQ(ErrorLine(), "Capturing Audio: nan sec");
    [m_pView UpdateCapture:0.25];
    EXPECT_EQ(ErrorLine(), "Capturing Audio: 0.2 sec")
        << "to the nearest, and then to the even one";
}

TEST_F(LinkView, ProgressIsNotShownWhileTheSwitchIsOff)
{
    Attach();
    [[m_pView errorLine] setStringValue:@"error"];
    [[m_pView adviceLine] setStringValue:@"advice"];
    [[m_pView errorLine] setTextColor:Colour(0, 0, 1)];
    [m_pView UpdateCapture:1.0];
    EXPECT_EQ(ErrorLine(), "error");
    EXPECT_EQ(AdviceLine(), "advice");
    EXPECT_TRUE([[[m_pView errorLine] textColor] isEqual:Colour(0, 0, 1)]);
}

TEST_F(LinkView, ProgressIsNotShownInAStateThatIsNeitherOnNorOff)
{
    Attach();
    [[m_pView captureSwitch] setState:2];
    [[m_pView errorLine] setStringValue:@"error"];
    [m_pView UpdateCapture:1.0];
    EXPECT_EQ(ErrorLine(), "error");
}

TEST_F(LinkView, MessagesAreRedEvenWhenTheyAreEmpty)
{
    Attach();
    Arm();
    [m_pView UpdateCapture:1.0];
    [[m_pView adviceLine] setTextColor:Colour(0, 1, 0)];
    PlayTracks({"Vox"});
    Raise(TNProperty_ArmCapture);
    RunQueuedCalls();
    EXPECT_EQ(ErrorLine(), "");
    EXPECT_EQ(AdviceLine(), "");
    EXPECT_TRUE([[[m_pView errorLine] textColor] isEqual:Colour(0.8, 0, 0)]);
    EXPECT_TRUE([[[m_pView adviceLine] textColor] isEqual:Colour(0, 1, 0)]);
}

TEST_F(LinkView, MessagesAreTheWordsOfTheScriptLinkInUtf8)
{
    Attach();
    [m_pView script]->m_strLastError = "Größe 音";
    [m_pView script]->m_strAdvice = "подсказка";
    [m_pView UpdateScriptMessages];
    EXPECT_EQ(ErrorLine(), "Größe 音");
    EXPECT_EQ(AdviceLine(), "подсказка");
}

TEST_F(LinkView, MessageThatIsNotUtf8IsShownByteByByte)
{
    Attach();
    [m_pView script]->m_strLastError = "caf\xE9";
    [m_pView UpdateScriptMessages];
    EXPECT_EQ(ErrorLine(), "café");
}

TEST_F(LinkView, ArmCaptureRefillsTheMenuBeforeTheMessages)
{
    Attach();
    std::string strShownDuringCommand;
    m_events.m_whileSending = [&] { strShownDuringCommand = ErrorLine(); };
    m_events.FailSend(-1712);
    Raise(TNProperty_ArmCapture);
    RunQueuedCalls();
    EXPECT_EQ(strShownDuringCommand, "");
    EXPECT_EQ(ErrorLine(), "AEError ID:-1712");
}

TEST_F(LinkView, ArmedByteIsTakenAsItIs)
{
    Attach();
    m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 0xFF);
    Raise(TNProperty_ArmCapture);
    RunQueuedCalls();
    EXPECT_EQ([[m_pView captureSwitch] state], 255);
}

TEST_F(LinkView, FailedReadOfTheArmedStateTurnsTheSwitchOff)
{
    Attach();
    Arm();
    m_plugIn.ClearValue(TNProperty_ArmCapture);
    Raise(TNProperty_ArmCapture);
    RunQueuedCalls();
    EXPECT_EQ([[m_pView captureSwitch] state], 0);
}

#pragma mark Toggle

TEST_F(LinkView, SwitchAsksForTheOppositeOfThePlugInsState)
{
    Attach();
    MakeCurrent(0);
    struct
    {
        std::uint8_t nArmed, nAsked;
    } cases[] = {{0, 1}, {1, 0}, {2, 3}, {0xFF, 0xFE}};
    for (const auto& tCase : cases)
    {
        m_plugIn.ForgetRecords();
        m_plugIn.SetValue(TNProperty_ArmCapture, tCase.nArmed);
        [[m_pView captureSwitch] setState:tCase.nAsked & 1];
        [m_pView TKSwitchChange:[m_pView captureSwitch] ModifierFlags:0];
        EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Get(64004, scope 0, element 0, 1 bytes)",
                                                  "Set(64005, scope 0, element 0, 2 bytes)"));
        EXPECT_THAT(m_plugIn.Of("Set", TNProperty_SetArmCapture)[0].m_bytes,
                    ElementsAre(tCase.nAsked, 0));
    }
}

TEST_F(LinkView, StateThatTheSwitchGaveItselfIsNotConsulted)
{
    Attach();
    MakeCurrent(0);
    for (NSInteger nState : {0, 1})
    {
        m_plugIn.ForgetRecords();
        [[m_pView captureSwitch] setState:nState];
        [m_pView TKSwitchChange:[m_pView captureSwitch] ModifierFlags:0];
        EXPECT_THAT(m_plugIn.Of("Set", TNProperty_SetArmCapture)[0].m_bytes, ElementsAre(1, 0));
    }
}

TEST_F(LinkView, ShiftOfTheCurrentEventIsTold)
{
    Attach();
    for (std::uint8_t nArmed : {0, 1})
    {
        m_plugIn.SetValue(TNProperty_ArmCapture, nArmed);
        MakeCurrent(NSShiftKeyMask);
        m_plugIn.ForgetRecords();
        [m_pView TKSwitchChange:[m_pView captureSwitch] ModifierFlags:0];
        EXPECT_THAT(m_plugIn.Of("Set", TNProperty_SetArmCapture)[0].m_bytes,
                    ElementsAre(nArmed ^ 1, 1));
    }
}

TEST_F(LinkView, OtherModifiersAndTheArgumentAreNotLookedAt)
{
    Attach();
    MakeCurrent(NSControlKeyMask | NSAlternateKeyMask | NSCommandKeyMask | NSAlphaShiftKeyMask);
    [m_pView TKSwitchChange:[m_pView captureSwitch] ModifierFlags:0x20000];
    EXPECT_THAT(m_plugIn.Of("Set", TNProperty_SetArmCapture)[0].m_bytes, ElementsAre(1, 0));
}

TEST_F(LinkView, AnotherSwitchHasNoEffect)
{
    Attach();
    TKToggleSwitch* pOther = [[[TKToggleSwitch alloc] initWithFrame:NSZeroRect] autorelease];
    [m_pView TKSwitchChange:pOther ModifierFlags:0];
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
}

TEST_F(LinkView, StatusOfAWriteIsNotLookedAt)
{
    Attach();
    MakeCurrent(0);
    m_plugIn.FailSet(-10879);
    [m_pView TKSwitchChange:[m_pView captureSwitch] ModifierFlags:0];
    EXPECT_EQ(CountOf("Set", TNProperty_SetArmCapture), 1);
    EXPECT_EQ(ErrorLine(), "");
}
} // namespace
