#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#import "TarvaneLinkAU/TarvaneLinkView.h"
#import "TarvaneLinkAU/TarvaneLinkViewFactory.h"
#include "TarvaneLinkShared/CommandResult.h"
#include "bench/link/Bench.h"
#include "bench/link/BenchUnit.h"
#include "bench/link/Counted.h"
#include "bench/support/Measure.h"
#import "controls/ColoredTextField.h"
#import "controls/TKInsetFrame.h"
#import "controls/TKMessageCell.h"
#import "controls/TKPopUpButton.h"
#import "controls/TKPopUpButtonCell.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

// The throttle's state, to be chosen.
@interface TarvaneLink_CocoaView (Bench)
- (void)swallowNext:(std::int32_t)nNotifications;
- (void)passNext;
@end

@implementation TarvaneLink_CocoaView (Bench)

- (void)swallowNext:(std::int32_t)nNotifications
{
    m_nPositionUpdateTimeout = nNotifications;
}

- (void)passNext
{
    m_fTransportPositionInQueue = false;
    m_nPositionUpdateTimeout = 0;
}

@end

namespace Bench
{
namespace
{

constexpr int kHeavyRepetitions = 15;
constexpr int kSwallowed = 10000;
constexpr int kPassed = 50;

using Views = std::vector<TarvaneLink_CocoaView*>;

void InPool(const std::function<void()>& body)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    body();
    [pool drain];
}

TarvaneLink_CocoaView* NewView()
{
    // Named by the nib alone, and linked for it.
    [ColoredTextField class];
    [TKInsetFrame class];
    [TKMessageCell class];
    [TKPopUpButton class];
    [TKPopUpButtonCell class];
    [TKToggleSwitch class];
    TarvaneLink_CocoaViewFactory* factory = [[TarvaneLink_CocoaViewFactory alloc] init];
    NSView* view = [[factory uiViewForAudioUnit:Unit() withSize:NSZeroSize] retain];
    [factory release];
    if (view == nil)
        throw std::runtime_error("no view was made");
    return (TarvaneLink_CocoaView*)view;
}

TarvaneLink_CocoaView* OneView()
{
    static TarvaneLink_CocoaView* const view = NewView();
    return view;
}

void Open(Views& views, int nViews)
{
    for (int n = 0; n < nViews; ++n)
        InPool([&] { views.push_back(NewView()); });
}

void Close(Views& views)
{
    InPool(
        [&]
        {
            for (TarvaneLink_CocoaView* view : views)
                [view release];
            views.clear();
        });
}

// All that waits for the main thread.
void RunQueue()
{
    InPool(
        []
        {
            for (int n = 0; n < 2; ++n)
                [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
        });
}

void ListTracks(int nTracks)
{
    CTarvaneScript script;
    CCommandResult ignored;
    const std::string strCommand = "tracks " + std::to_string(nTracks);
    if (script.SendCommand(strCommand.c_str(), ignored.Receive(), -1) != 0)
        throw std::runtime_error(script.m_strLastError);
}

void Raise(AudioUnitPropertyID nProperty, int nTimes)
{
    for (int n = 0; n < nTimes; ++n)
        ViewEventListener(OneView(), Unit(), nProperty, kAudioUnitScope_Global, 0);
}

void Swallow() { Raise(kTNProperty_CurrentCaptureLength, kSwallowed); }

void CountSwallowed()
{
    [OneView() swallowNext:kSwallowed];
    const Counted before = CountedSoFar();
    Swallow();
    const Counted after = CountedSoFar();
    ExpectCount("allocations of 10000 swallowed notifications",
                after.nAllocations - before.nAllocations, 0);
    ExpectCount("locks of 10000 swallowed notifications", after.nLocks - before.nLocks, 0);
}

void FillMenu()
{
    InPool([] { [OneView() FillTrackMenu]; });
}

std::string MenuOf(int nTracks) { return "menu of " + std::to_string(nTracks); }

std::string TrackInMenuOf(int nTracks) { return "track in a menu of " + std::to_string(nTracks); }

void RegisterMenu(int nTracks)
{
    // As many tracks a repetition as of the middle menu at least: the first fill after others finds
    // cold caches, which is not what is asked.
    const int nFills = std::max(1, 1000 / std::max(nTracks, 10));
    Register(MenuOf(nTracks),
             {[nTracks] { ListTracks(nTracks); },
              [nFills]
              {
                  for (int n = 0; n < nFills; ++n)
                      FillMenu();
              },
              // What one repetition leaves in the menu, another would have to take out of it.
              []
              {
                  ListTracks(3);
                  FillMenu();
              }},
             nFills, nTracks <= 1000 ? 0 : kHeavyRepetitions);
}

void RegisterViewsOf(int nViews)
{
    static Views views;
    const int nRepetitions = kHeavyRepetitions + 64 / nViews;
    const std::string strViews = std::to_string(nViews) + (nViews == 1 ? " view" : " views");
    Register("open " + strViews, {{}, [nViews] { Open(views, nViews); }, [] { Close(views); }}, 1,
             nRepetitions);
    Register("arm " + strViews,
             {[nViews] { Open(views, nViews); },
              []
              {
                  for (TarvaneLink_CocoaView* view : views)
                      InPool([view] { [view TNProperty_ArmCapture]; });
              },
              [] { Close(views); }},
             1, nRepetitions);
    if (nViews == 64)
    {
        Expect("open 64 views", "open 1 view", 70);
        Expect("arm 64 views", "arm 1 view", 70);
    }
}

} // namespace

void Deliver()
{
    const int nBefore = AcknowledgedSoFar().nDelivered;
    InPool([] { [OneView() TNProperty_Elements]; });
    if (AcknowledgedSoFar().nDelivered != nBefore + 1)
        throw std::runtime_error("a capture was not delivered");
}

void RegisterNotifications()
{
    Register("swallowed notification", {[] { [OneView() swallowNext:kSwallowed]; }, Swallow, {}},
             kSwallowed);
    Register("notification that passes",
             {{},
              []
              {
                  InPool(
                      []
                      {
                          for (int n = 0; n < kPassed; ++n)
                          {
                              [OneView() passNext];
                              Raise(kTNProperty_CurrentCaptureLength, 1);
                          }
                      });
              },
              RunQueue},
             kPassed);
    ExpectWithin("swallowed notification", 25);
    CountSwallowed();
}

void RegisterMenus()
{
    RegisterMenu(1);
    for (const int nTracks : {10, 100, 1000, 10000, 100000})
    {
        RegisterMenu(nTracks);
        Derive(TrackInMenuOf(nTracks), MenuOf(nTracks), MenuOf(1), nTracks - 1);
    }
    for (const int nMany : {1000, 10000})
    {
        Expect(TrackInMenuOf(nMany), TrackInMenuOf(100), 1.2);
        Expect(TrackInMenuOf(100), TrackInMenuOf(nMany), 1.2);
    }
    // Each capture fills the menu once.
    ExpectWithin(MenuOf(10000), 1e9);
    ExpectWithin(MenuOf(100000), 60e9);
}

void RegisterViews()
{
    for (const int nViews : {1, 8, 64})
        RegisterViewsOf(nViews);
}

} // namespace Bench
