#import <AppKit/AppKit.h>

#include <AudioUnit/AUCocoaUIView.h>

#include <gmock/gmock.h>

#include <objc/runtime.h>

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#import "controls/TKToggleSwitch.h"
#import "tests/TarvaneLinkAU/DesktopWindow.h"
#include "tests/support/ScriptedAppleEvents.h"
#include "tests/support/ScriptedAudioUnit.h"

using testing::ElementsAre;

// The bundle as a host sees it: loaded from disk, with no class of it known beforehand. The
// scripted frameworks of this program stand in front of those that the bundle brings.

namespace
{
std::string Utf8(NSString* pText) { return pText == nil ? "(nil)" : [pText UTF8String]; }

NSBundle* LoadedBundle()
{
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:TARVANE_LINK_BUNDLE]];
}

class LinkBundle : public testing::Test
{
  protected:
    LinkBundle()
        : m_pPool([[NSAutoreleasePool alloc] init]),
          m_pFactory([[[LoadedBundle() principalClass] alloc] init])
    {
        m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 0);
        m_plugIn.SetValue<std::int32_t>(TNProperty_SelectedTrack, 1);
        m_pView = MakeView(NSMakeSize(9, 9));
    }

    ~LinkBundle() override
    {
        [m_pFactory release];
        [m_pView release];
        [m_pPool drain];
        EXPECT_EQ(m_plugIn.ListenerCount(), 0u) << "the view is still alive";
    }

    // The caller is its only owner.
    NSView* MakeView(NSSize sizePreferred)
    {
        PlayTracks(2);
        NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
        NSView* pView = [[m_pFactory uiViewForAudioUnit:m_plugIn.Unit()
                                               withSize:sizePreferred] retain];
        [pPool drain];
        return pView;
    }

    void PlayTracks(int nTimes)
    {
        for (int n = 0; n < nTimes; ++n)
            m_events.Print("4\n1\nDialogue\nFoley\nMusic\n");
    }

    // What the nib has connected.
    id Outlet(const char* szName)
    {
        Ivar pVariable = class_getInstanceVariable([m_pView class], szName);
        EXPECT_NE(pVariable, nullptr) << szName;
        return object_getIvar(m_pView, pVariable);
    }

    NSPopUpButton* Tracks() { return Outlet("m_btnTracks"); }
    NSTextField* ErrorLine() { return Outlet("m_textError"); }
    NSTextField* AdviceLine() { return Outlet("m_textAdvice"); }
    TKToggleSwitch* Toggle() { return Outlet("m_switchCapture"); }

    std::vector<std::vector<std::uint8_t>> Written(AudioUnitPropertyID nProperty)
    {
        std::vector<std::vector<std::uint8_t>> values;
        for (const auto& record : m_plugIn.Of("Set", nProperty))
            values.push_back(record.m_bytes);
        return values;
    }

    TarvaneTests::ScriptedAudioUnit m_plugIn;
    TarvaneTests::ScriptedAppleEvents m_events;
    NSAutoreleasePool* m_pPool;
    id m_pFactory;
    NSView* m_pView;
};

using Value = std::vector<std::uint8_t>;

TEST_F(LinkBundle, PrincipalClassIsTheFactory)
{
    Class principal = [LoadedBundle() principalClass];
    EXPECT_EQ(Utf8(NSStringFromClass(principal)), "TarvaneLink_CocoaViewFactory");
    EXPECT_TRUE([principal conformsToProtocol:NSProtocolFromString(@"AUCocoaUIBase")]);
    EXPECT_EQ([m_pFactory interfaceVersion], 0u);
}

TEST_F(LinkBundle, NibFillsTheViewsOutlets)
{
    const struct
    {
        const char* szOutlet;
        const char* szClass;
    } outlets[] = {{"uiParam1Slider", "TarvaneLink_GestureSlider"},
                   {"m_textError", "NSTextField"},
                   {"m_textAdvice", "NSTextField"},
                   {"m_switchCapture", "TKToggleSwitch"},
                   {"m_btnTracks", "NSPopUpButton"},
                   {"m_viewFrame", "NSView"}};
    EXPECT_EQ(Utf8(NSStringFromClass([m_pView class])), "TarvaneLink_CocoaView");
    for (const auto& tOutlet : outlets)
    {
        id idOutlet = Outlet(tOutlet.szOutlet);
        ASSERT_NE(idOutlet, nil) << tOutlet.szOutlet;
        EXPECT_TRUE([idOutlet
            isKindOfClass:NSClassFromString([NSString stringWithUTF8String:tOutlet.szClass])])
            << tOutlet.szOutlet;
        EXPECT_TRUE([idOutlet isDescendantOf:m_pView]) << tOutlet.szOutlet;
    }
}

TEST_F(LinkBundle, TrackMenuSendsOnTrackToTheView)
{
    EXPECT_EQ([Tracks() target], m_pView);
    EXPECT_EQ(Utf8(NSStringFromSelector([Tracks() action])), "OnTrack:");
}

TEST_F(LinkBundle, ViewComesJoinedToItsPlugIn)
{
    EXPECT_EQ(m_plugIn.Lines().front(), "CreateListener(default mode, 0.1 s)");
    EXPECT_EQ(m_plugIn.ListenerCount(), 4u);
    EXPECT_EQ([Tracks() numberOfItems], 3);
    EXPECT_EQ([Tracks() indexOfSelectedItem], 1);
}

TEST_F(LinkBundle, EachCallMakesAFreshViewThatTheFactoryDoesNotKeep)
{
    NSView* pSecond = MakeView(NSMakeSize(1, 1));
    EXPECT_NE(pSecond, m_pView);
    EXPECT_EQ(m_plugIn.ListenerCount(), 8u);
    Ivar pVariable = class_getInstanceVariable([m_pFactory class], "uiFreshlyLoadedView");
    ASSERT_NE(pVariable, nullptr);
    EXPECT_EQ(object_getIvar(m_pFactory, pVariable), nil);
    [pSecond release];
    EXPECT_EQ(m_plugIn.ListenerCount(), 4u) << "its one owner has let go";
}

TEST_F(LinkBundle, PreferredSizeHasNoEffect)
{
    NSView* pSecond = MakeView(NSMakeSize(1000, 1000));
    EXPECT_TRUE(NSEqualSizes([pSecond frame].size, [m_pView frame].size));
    [pSecond release];
}

TEST_F(LinkBundle, TextsAreNotForEditing)
{
    int nTexts = 0;
    for (NSUInteger n = 0; n < [[m_pView subviews] count]; ++n)
    {
        NSTextField* pText = [[m_pView subviews] objectAtIndex:n];
        if (![pText isKindOfClass:[NSTextField class]])
            continue;
        ++nTexts;
        EXPECT_FALSE([pText isEditable]) << Utf8([pText stringValue]);
        EXPECT_FALSE([pText isSelectable]) << Utf8([pText stringValue]);
        EXPECT_EQ([[pText font] pointSize], 13) << Utf8([pText stringValue]);
    }
    EXPECT_EQ(nTexts, 5) << "two labels, the frame of the messages and the two messages";
    EXPECT_EQ([[Tracks() font] pointSize], 13);
}

TEST_F(LinkBundle, NothingOverlapsOrLeavesTheView)
{
    NSView* controls[] = {Toggle(), Tracks(), Outlet("m_viewFrame")};
    for (NSView* pOne : controls)
    {
        EXPECT_TRUE(NSContainsRect([m_pView bounds], [pOne frame]));
        for (NSView* pOther : controls)
            EXPECT_TRUE(pOne == pOther || !NSIntersectsRect([pOne frame], [pOther frame]));
    }
    for (NSView* pLine : {(NSView*)ErrorLine(), (NSView*)AdviceLine()})
        EXPECT_TRUE(NSContainsRect([controls[2] frame], [pLine frame]));
    EXPECT_FALSE(NSIntersectsRect([ErrorLine() frame], [AdviceLine() frame]));
    EXPECT_TRUE([Outlet("uiParam1Slider") isHidden]) << "it stands for no parameter";
}

TEST_F(LinkBundle, ClickChoosesATrackAndTellsThePlugIn)
{
    CDesktopWindow window(m_pView);
    PlayTracks(1);
    window.Choose(Tracks(), 2);
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SelectedTrack).empty(); }));
    EXPECT_THAT(Written(TNProperty_SelectedTrack), ElementsAre(Value{2, 0, 0, 0}));
    EXPECT_EQ(Utf8([Tracks() titleOfSelectedItem]), "Music");
    EXPECT_EQ(m_events.Commands().size(), 3u) << "one list for one opening";
}

TEST_F(LinkBundle, OpeningTheMenuShowsTheTracksOfThisMoment)
{
    CDesktopWindow window(m_pView);
    m_events.Print("5\n1\nFoley\nFoley\nVox\nVox\n");
    window.Choose(Tracks(), 3);
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SelectedTrack).empty(); }));
    EXPECT_THAT(Written(TNProperty_SelectedTrack), ElementsAre(Value{3, 0, 0, 0}))
        << "the second of two with one name";
    EXPECT_EQ([Tracks() numberOfItems], 4);
}

TEST_F(LinkBundle, ClickOnTheToggleAsksThePlugInToArm)
{
    CDesktopWindow window(m_pView);
    window.Click(Toggle());
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SetArmCapture).empty(); }));
    EXPECT_THAT(Written(TNProperty_SetArmCapture), ElementsAre(Value{1, 0}));
    EXPECT_EQ([Toggle() state], 1);
}

TEST_F(LinkBundle, ShiftHeldDuringTheClickIsTold)
{
    CDesktopWindow window(m_pView);
    window.Click(Toggle(), "shift");
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SetArmCapture).empty(); }));
    EXPECT_THAT(Written(TNProperty_SetArmCapture), ElementsAre(Value{1, 1}));
}

TEST_F(LinkBundle, ControlHeldDuringTheClickIsNotTold)
{
    CDesktopWindow window(m_pView);
    window.Click(Toggle(), "ctrl");
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SetArmCapture).empty(); }));
    EXPECT_THAT(Written(TNProperty_SetArmCapture), ElementsAre(Value{1, 0}));
}

TEST_F(LinkBundle, PlugInThatRefusesBringsTheToggleBack)
{
    CDesktopWindow window(m_pView);
    window.Click(Toggle());
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SetArmCapture).empty(); }));
    ASSERT_EQ([Toggle() state], 1);
    PlayTracks(1);
    m_plugIn.Raise(TNProperty_ArmCapture);
    EXPECT_TRUE(window.RunUntil([&] { return [Toggle() state] == 0; }));
}

TEST_F(LinkBundle, BackgroundIsThePalettesGradientFromLeftToRight)
{
    CDesktopWindow window(m_pView);
    const NSSize size = [m_pView bounds].size;
    const auto shade = [&](double dX, double dY)
    { return [window.ColourAt(m_pView, NSMakePoint(dX, dY)) redComponent]; };
    EXPECT_TRUE(window.RunUntil([&] { return shade(size.width - 4, 6) > 0.2; }));
    EXPECT_NEAR(shade(4, 6), 0.099, 0.02);
    EXPECT_NEAR(shade(size.width / 2, 6), 0.168, 0.02);
    EXPECT_NEAR(shade(size.width - 4, 6), 0.236, 0.02);
    EXPECT_NEAR(shade(size.width - 4, size.height - 4), 0.236, 0.02);
}

TEST_F(LinkBundle, ToggleShowsItsImages)
{
    for (const char* szName : {"m_imageOnUp", "m_imageOnDown", "m_imageOffUp", "m_imageOffDown"})
    {
        Ivar pVariable = class_getInstanceVariable([Toggle() class], szName);
        ASSERT_NE(pVariable, nullptr);
        NSImage* pImage = object_getIvar(Toggle(), pVariable);
        EXPECT_NE(pImage, nil) << szName;
        EXPECT_EQ([pImage size].height, 17) << szName;
    }
    EXPECT_EQ(Utf8([Toggle() toolTip]), "Capture audio");
}
} // namespace
