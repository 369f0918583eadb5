#import "tests/TarvaneLinkAU/LinkBundleFixture.h"

#include <AudioUnit/AUCocoaUIView.h>

#include <objc/runtime.h>

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#import "tests/support/DesktopWindow.h"

using testing::ElementsAre;

namespace
{
using Value = std::vector<std::uint8_t>;

TEST_F(LinkBundle, PrincipalClassIsTheFactory)
{
    Class principal = [LoadedBundle() principalClass];
    EXPECT_EQ(Utf8(NSStringFromClass(principal)), "TarvaneLink_CocoaViewFactory");
    EXPECT_TRUE([principal conformsToProtocol:NSProtocolFromString(@"AUCocoaUIBase")]);
    EXPECT_EQ([m_pFactory interfaceVersion], 0u);
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

TEST_F(LinkBundle, TrackThatAClickChoosesIsShownAtOnce)
{
    CDesktopWindow window(m_pView);
    const std::string strFoley = window.Look(Tracks());
    PlayTracks(1);
    window.Choose(Tracks(), 2);
    ASSERT_EQ(Utf8([Tracks() titleOfSelectedItem]), "Music");
    window.PointAway();
    EXPECT_TRUE(window.IsUpToDate(Tracks()));
    EXPECT_NE(window.Look(Tracks()), strFoley);
}

TEST_F(LinkBundle, TrackThatKeysChooseIsShownAtOnce)
{
    CDesktopWindow window(m_pView);
    window.PointAway();
    const std::string strFoley = window.Look(Tracks());
    PlayTracks(1);
    window.ChooseByKeys(Tracks(), "Down Return");
    ASSERT_EQ(Utf8([Tracks() titleOfSelectedItem]), "Music");
    EXPECT_TRUE(window.IsUpToDate(Tracks()));
    EXPECT_NE(window.Look(Tracks()), strFoley);
}

TEST_F(LinkBundle, TracksThatTheServerRenamesAreShownAtOnce)
{
    CDesktopWindow window(m_pView);
    window.PointAway();
    const std::string strFoley = window.Look(Tracks());
    m_events.Print("3\n1\nVox\nBirds\n");
    m_plugIn.Raise(TNProperty_ArmCapture);
    EXPECT_TRUE(window.RunUntil([&] { return Utf8([Tracks() titleOfSelectedItem]) == "Birds"; }));
    EXPECT_TRUE(window.IsUpToDate(Tracks()));
    EXPECT_NE(window.Look(Tracks()), strFoley);
}

TEST_F(LinkBundle, WithoutAServerTheButtonSaysSoAndNothingCanBeChosen)
{
    CDesktopWindow window(m_pView);
    window.PointAway();
    m_events.FailSend(-600);
    m_plugIn.Raise(TNProperty_ArmCapture);
    ASSERT_TRUE(window.RunUntil([&] { return [Tracks() numberOfItems] == 0; }));
    EXPECT_EQ([Tracks() indexOfSelectedItem], -1);
    [[m_pView window] makeFirstResponder:nil]; // a ring around the button is not what is looked at
    EXPECT_TRUE(window.IsUpToDate(Tracks()));
    const std::string strPlaceholder = window.Look(Tracks());

    m_events.FailSend(-600);
    const std::size_t nCommands = m_events.Commands().size();
    window.Click(Tracks());
    ASSERT_TRUE(window.RunUntil([&] { return m_events.Commands().size() > nCommands; }));
    window.PointAway();
    EXPECT_EQ([Tracks() indexOfSelectedItem], -1);
    EXPECT_TRUE(Written(TNProperty_SelectedTrack).empty());

    // Beside a button that says nothing.
    [Tracks() addItemWithTitle:@""];
    [Tracks() selectItemAtIndex:0];
    [[m_pView window] makeFirstResponder:nil];
    EXPECT_NE(window.Look(Tracks()), strPlaceholder);
}

TEST_F(LinkBundle, ButtonThatHasTheKeyboardShowsIt)
{
    CDesktopWindow window(m_pView);
    window.PointAway();
    [[m_pView window] makeFirstResponder:nil];
    const std::string strWithout = window.Look(Tracks());
    [[m_pView window] makeFirstResponder:Tracks()];
    EXPECT_TRUE(window.IsUpToDate(Tracks()));
    EXPECT_NE(window.Look(Tracks()), strWithout);
    [[m_pView window] makeFirstResponder:nil];
    EXPECT_EQ(window.Look(Tracks()), strWithout);
}

TEST_F(LinkBundle, EachOfTwoViewsInOneWindowShowsItsOwnChoice)
{
    NSView* pOther = MakeView(NSZeroSize);
    NSPopUpButton* pOtherTracks =
        object_getIvar(pOther, class_getInstanceVariable([pOther class], "m_btnTracks"));
    const NSSize size = [m_pView frame].size;
    NSView* pBoth =
        [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, size.width, 2 * size.height)] autorelease];
    [pOther setFrameOrigin:NSMakePoint(0, size.height)];
    [pBoth addSubview:m_pView];
    [pBoth addSubview:pOther];
    {
        CDesktopWindow window(pBoth);
        window.PointAway();
        const std::string strBefore = window.Look(Tracks());
        PlayTracks(1);
        window.Choose(pOtherTracks, 0);
        window.PointAway();
        EXPECT_TRUE(window.IsUpToDate(pBoth));
        EXPECT_EQ(window.Look(Tracks()), strBefore) << "the other one's choice";
        EXPECT_NE(window.Look(pOtherTracks), strBefore);
        PlayTracks(1);
        window.ChooseByKeys(Tracks(), "Up Return");
        EXPECT_EQ(Utf8([Tracks() titleOfSelectedItem]), "Dialogue");
        EXPECT_TRUE(window.IsUpToDate(pBoth));
    }
    [m_pView removeFromSuperview];
    [pOther removeFromSuperview];
    [pOther release];
}

TEST_F(LinkBundle, ClickChoosesOneOfTwoHundredTracksInManyScripts)
{
    const char* kNames[] = {"Vox", "Größe", "Гитара", "ギター", "吉他", "기타", "קול", "گیتار"};
    std::string strList = "201\n1\n";
    for (int n = 0; n < 200; ++n)
    {
        // Tracks 150 and 151 have one name.
        const int nName = n == 151 ? 150 : n;
        strList += std::string(kNames[nName % 8]) + " " + std::to_string(nName) + "\n";
    }
    CDesktopWindow window(m_pView);
    m_plugIn.SetValue<std::int32_t>(TNProperty_SelectedTrack, 150);
    m_events.Print(strList);
    window.Choose(Tracks(), 151);
    EXPECT_TRUE(window.RunUntil([&] { return !Written(TNProperty_SelectedTrack).empty(); }));
    EXPECT_THAT(Written(TNProperty_SelectedTrack), ElementsAre(Value{151, 0, 0, 0}));
    EXPECT_EQ([Tracks() numberOfItems], 200);
    EXPECT_EQ(Utf8([Tracks() titleOfSelectedItem]), "קול 150");
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
