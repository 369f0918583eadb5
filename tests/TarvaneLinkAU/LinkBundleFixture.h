// The bundle as a host sees it: loaded from disk, with no class of it known beforehand. The
// scripted frameworks of this program stand in front of those that the bundle brings.
#pragma once

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

#import "controls/TKToggleSwitch.h"
#include "tests/support/ScriptedAppleEvents.h"
#include "tests/support/ScriptedAudioUnit.h"

std::string Utf8(NSString* pText);
NSBundle* LoadedBundle();

/// A view of the bundle, joined to a plug-in that is not armed and has the second track chosen, and
/// to a server with the tracks "Dialogue", "Foley" and "Music".
class LinkBundle : public testing::Test
{
  protected:
    LinkBundle();
    ~LinkBundle() override;

    /// The caller is its only owner.
    NSView* MakeView(NSSize sizePreferred);

    /// What the server answers to as many lists of its tracks.
    void PlayTracks(int nTimes);

    /// What the nib has connected.
    id Outlet(const char* szName);
    NSView* MessageFrame() { return Outlet("m_viewFrame"); }
    NSPopUpButton* Tracks() { return Outlet("m_btnTracks"); }
    NSTextField* ErrorLine() { return Outlet("m_textError"); }
    NSTextField* AdviceLine() { return Outlet("m_textAdvice"); }
    TKToggleSwitch* Toggle() { return Outlet("m_switchCapture"); }

    /// Every value that the view has given to this property.
    std::vector<std::vector<std::uint8_t>> Written(AudioUnitPropertyID nProperty);

    TarvaneTests::ScriptedAudioUnit m_plugIn;
    TarvaneTests::ScriptedAppleEvents m_events;
    NSAutoreleasePool* m_pPool;
    id m_pFactory;
    NSView* m_pView;
};
