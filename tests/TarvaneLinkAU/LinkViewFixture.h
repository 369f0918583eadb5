#pragma once

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#import "TarvaneLinkAU/TarvaneLinkGestureSlider.h"
#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#import "TarvaneLinkAU/TarvaneLinkView.h"
#include "tests/support/ScriptedAppleEvents.h"
#include "tests/support/ScriptedAudioUnit.h"

/// A call that a view has queued on the main thread.
struct QueuedCall
{
    std::string strSelector;
    id idObject;
    bool fWaits;
};

/// What a test does while a view works.
struct ViewHooks
{
    std::function<void(const QueuedCall&)> beforeQueueing; ///< on the notifier's thread
    std::function<void()> inUpdateCapture;
    std::function<void()> inSetAU;
};

/// The view with controls of its own, as a nib would fill it, and a look inside.
@interface TestLinkView : TarvaneLink_CocoaView
{
  @public
    void* m_pHooks;                     ///< ViewHooks, owned
    std::atomic<int> m_nCountsOfOwners; ///< how often it was asked how many own it
    bool m_fFlipped;
}

- (NSTextField*)errorLine;
- (NSTextField*)adviceLine;
- (TKToggleSwitch*)captureSwitch;
- (void)setCaptureSwitch:(TKToggleSwitch*)pSwitch;
- (NSPopUpButton*)trackButton;
- (TarvaneLink_GestureSlider*)slider;
- (CTarvaneScript*)script;
- (std::int32_t)throttle;
- (void)setThrottle:(std::int32_t)nTimeout;
- (void)setAudioSuite:(bool)fAudioSuite;
- (bool)progressInQueue;
- (void)lockTransportPosition;
/// Whether the lock is free, on this thread too.
- (bool)transportPositionIsFree;

/// Views that have not been deallocated.
+ (int)liveViews;

@end

ViewHooks& HooksOf(TestLinkView* pView);

/// Runs what is waiting in the main thread's queue at this moment.
void RunQueuedCalls();

/// A view, a plug-in and a server. The server has the tracks "Vox" and "Bass" until a test says
/// otherwise, the plug-in has the first one chosen and is not armed.
class LinkViewFixture : public testing::Test
{
  protected:
    LinkViewFixture();
    ~LinkViewFixture() override;

    /// `setAU:`, with the replies that it takes; forgets what was recorded meanwhile.
    void Attach();

    /// What the server lists at the next count of track lists.
    void PlayTracks(std::initializer_list<const char*> names, int nTimes = 1);

    std::string ErrorLine() const;
    std::string AdviceLine() const;
    std::vector<std::string> MenuTitles() const;
    int CountOf(const char* szKind, AudioUnitPropertyID nProperty) const;

    TarvaneTests::ScriptedAudioUnit m_plugIn;
    TarvaneTests::ScriptedAppleEvents m_events;
    TestLinkView* m_pView;
};

std::string Utf8(NSString* pText);

/// The text of a reply that lists tracks.
std::string TrackList(const std::vector<std::string>& names);
