#include "tests/platform/AppKit/ForeignWindow.h"
#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#import "platform/gnustep/AppKit/PopUpMenu.h"

#include <cstdio>
#include <sstream>

// Real clicks and keys, through the display server.
namespace
{

NSArray* Tracks() { return [NSArray arrayWithObjects:@"Dialogue", @"Foley", @"Music", nil]; }

TEST(PopUpTracking, ClickTellsTheDelegateOnce)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    window.ClickAndChoose();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ(window.delegate->m_lastMenu, [window.button menu]);
    EXPECT_NE(window.target->m_chosen, nil);
}

TEST(PopUpTracking, SpaceBarTellsTheDelegateOnce)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    window.PressSpaceAndReturn();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
}

TEST(PopUpTracking, NewItemsAreThoseToChooseFrom)
{
    MenuWindow window;
    [window.delegate setTitles:Tracks()];
    [[window.button menu] setDelegate:window.delegate];
    window.ClickAndChoose();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_TRUE([Tracks() containsObject:window.target->m_chosen])
        << [window.target->m_chosen UTF8String];
    EXPECT_EQ([window.button numberOfItems], 3);
}

TEST(PopUpTracking, EmptyMenuIsFilledByTheClickThatOpensIt)
{
    MenuWindow window;
    [window.button removeAllItems];
    [window.delegate setTitles:Tracks()];
    [[window.button menu] setDelegate:window.delegate];
    window.ClickAndChoose();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_TRUE([Tracks() containsObject:window.target->m_chosen])
        << [window.target->m_chosen UTF8String];
}

TEST(PopUpTracking, EmptyMenuIsFilledByTheSpaceBarThatOpensIt)
{
    MenuWindow window;
    [window.button removeAllItems];
    [window.delegate setTitles:Tracks()];
    [[window.button menu] setDelegate:window.delegate];
    window.PressSpaceAndReturn();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_TRUE([Tracks() containsObject:window.target->m_chosen]);
}

TEST(PopUpTracking, MenuThatStaysEmptyIsToldAtEachClick)
{
    MenuWindow window;
    [window.button removeAllItems];
    [[window.button menu] setDelegate:window.delegate];
    window.ClickOnce();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    window.ClickOnce();
    EXPECT_EQ(window.delegate->m_nOpened, 2);
    EXPECT_EQ(window.target->m_chosen, nil);
}

TEST(PopUpTracking, FullMenuAfterAnEmptyOneIsToldOnce)
{
    MenuWindow window;
    [window.button removeAllItems];
    [[window.button menu] setDelegate:window.delegate];
    window.ClickOnce();
    [window.button addItemWithTitle:@"one"];
    [window.button addItemWithTitle:@"two"];
    window.ClickAndChoose();
    EXPECT_EQ(window.delegate->m_nOpened, 2);
}

TEST(PopUpTracking, DisabledButtonTellsNobody)
{
    MenuWindow window;
    [window.button removeAllItems];
    [window.button setEnabled:NO];
    [[window.button menu] setDelegate:window.delegate];
    window.ClickOnce();
    EXPECT_EQ(window.delegate->m_nOpened, 0);
}

NSInteger Highlighted() { return [[[PlatformPopUpMenu openMenu] rows] highlightedItemIndex]; }

// What the screen shows where the window is, as a number that stands for it.
std::string Look(NSWindow* window)
{
    const NSRect frame = [window frame];
    std::ostringstream command;
    command << "import -silent -window root -crop " << NSWidth(frame) << 'x' << NSHeight(frame)
            << '+' << NSMinX(frame) << '+' << NSMaxY([[NSScreen mainScreen] frame]) - NSMaxY(frame)
            << " rgb:- | cksum";
    std::string look;
    FILE* pipe = popen(command.str().c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        look += char(c);
    EXPECT_EQ(pclose(pipe), 0);
    return look;
}

class OpenPopUp : public testing::Test
{
  protected:
    OpenPopUp()
    {
        [m_window.button removeAllItems];
        AddItems({"Dialogue", "ADR", "Foley", "Ambience"});
        [m_window.button selectItemAtIndex:0];
    }

    void AddItems(const std::vector<const char*>& titles)
    {
        for (const char* title : titles)
            [[m_window.button menu] addItemWithTitle:[NSString stringWithUTF8String:title]
                                              action:NULL
                                       keyEquivalent:@""];
    }

    // Opens it with the space bar, and returns when the steps are done and the menu is closed.
    void OpenByKey(const std::vector<std::function<void()>>& steps)
    {
        m_window.WhileOpen(steps);
        Input("key space");
        EXPECT_TRUE(m_window.RunUntil([&] { return m_window.AllDone(); }));
    }

    void OpenByClick(std::vector<std::function<void()>> steps)
    {
        steps.insert(steps.begin(), [] { Input("mouseup 1"); });
        m_window.WhileOpen(steps);
        m_window.Press();
        EXPECT_TRUE(m_window.RunUntil([&] { return m_window.AllDone(); }));
    }

    std::string Chosen()
    {
        NSString* chosen = m_window.target->m_chosen;
        return chosen == nil ? "" : [chosen UTF8String];
    }

    MenuWindow m_window;
};

TEST_F(OpenPopUp, ClickLeavesTheMenuOpenUntilTheNextClick)
{
    std::vector<std::function<void()>> steps(3, [] {}); // looks, long after the release
    steps.push_back([] { MenuWindow::PointAtRow(2); });
    steps.push_back([] { Input("click 1"); });
    OpenByClick(steps);
    EXPECT_EQ(Chosen(), "Foley");
    EXPECT_EQ(m_window.target->m_nChoices, 1);
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
}

TEST_F(OpenPopUp, IsSeenAtOnceThoughThePointerRests)
{
    std::string shown, drawnAnew;
    std::vector<std::function<void()>> steps(3, [] {}); // the display server has shown it by then
    steps.push_back([&] { shown = Look([PlatformPopUpMenu openMenu]); });
    steps.push_back([] { [[PlatformPopUpMenu openMenu] display]; });
    steps.push_back([] { [[PlatformPopUpMenu openMenu] flushWindow]; });
    steps.push_back([&] { drawnAnew = Look([PlatformPopUpMenu openMenu]); });
    steps.push_back([] { Input("key Escape"); });
    OpenByClick(steps);
    EXPECT_EQ(shown, drawnAnew);
}

TEST_F(OpenPopUp, ClickOfNoLengthAtAllLeavesItOpenToo)
{
    m_window.WhileOpen({[] {}, [] {}, [] { MenuWindow::PointAtRow(2); }, [] { Input("click 1"); }});
    m_window.ClickAtOnce();
    EXPECT_TRUE(m_window.RunUntil([&] { return m_window.AllDone(); }));
    EXPECT_EQ(Chosen(), "Foley");
}

TEST_F(OpenPopUp, PressDragAndReleaseChoose)
{
    m_window.ClickAndChoose();
    EXPECT_EQ(Chosen(), "ADR");
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
}

TEST_F(OpenPopUp, ClickBesideItChoosesNothing)
{
    OpenByClick({[] { MenuWindow::PointBeside(); }, [] { Input("click 1"); }});
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    EXPECT_EQ(m_window.target->m_nChoices, 0);
    EXPECT_EQ([m_window.button indexOfSelectedItem], 0);
}

void PointAt(const TarvaneTest::CForeignWindow&)
{
    const std::string middle = std::to_string(TarvaneTest::CForeignWindow::kMiddle);
    Input("mousemove " + middle + " " + middle);
}

TEST_F(OpenPopUp, ClickInAnotherProgramsWindowClosesItAndReachesThatWindow)
{
    TarvaneTest::CForeignWindow other;
    OpenByClick({[&] { PointAt(other); }, [] { Input("click 1"); }});
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    EXPECT_EQ(m_window.target->m_nChoices, 0);
    EXPECT_EQ(other.TakePresses(), 1);
}

TEST_F(OpenPopUp, ScrollingElsewhereAndAPressInItThatIsDraggedThereLeaveItOpen)
{
    TarvaneTest::CForeignWindow other;
    OpenByClick({[&] { PointAt(other); }, [] { Input("click 4 click 5"); }, [] {}, [] {},
                 [] { MenuWindow::PointAtRow(1); }, [] { Input("mousedown 1"); },
                 [&] { PointAt(other); }, [] {}, [] {}, [] { MenuWindow::PointAtRow(2); },
                 [] { Input("mouseup 1"); }});
    EXPECT_EQ(Chosen(), "Foley");
    EXPECT_EQ(other.TakePresses(), 2);
}

TEST_F(OpenPopUp, ClickOnARowThatLiesOutsideTheButtonsWindowChooses)
{
    for (int n = 0; n < 12; ++n)
        AddItems({("Track " + std::to_string(n)).c_str()});
    OpenByClick({[] { MenuWindow::PointAtRow(14); },
                 [&]
                 {
                     const NSPoint point = [NSEvent mouseLocation];
                     EXPECT_FALSE(NSPointInRect(point, [m_window.window frame]));
                     Input("mousedown 1");
                 },
                 [] {}, [] {}, [] { Input("mouseup 1"); }});
    EXPECT_EQ(Chosen(), "Track 10");
}

TEST_F(OpenPopUp, ReleaseBesideItChoosesNothing)
{
    m_window.WhileOpen({[] { MenuWindow::PointBeside(); }, [] { Input("mouseup 1"); }});
    m_window.Press();
    EXPECT_TRUE(m_window.RunUntil([&] { return m_window.AllDone(); }));
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    EXPECT_EQ(m_window.target->m_nChoices, 0);
}

TEST_F(OpenPopUp, RowUnderThePointerIsHighlighted)
{
    NSInteger over = -2, beside = -2;
    OpenByClick({[] { MenuWindow::PointAtRow(3); }, [&] { over = Highlighted(); },
                 [] { MenuWindow::PointBeside(); }, [&] { beside = Highlighted(); },
                 [] { Input("key Escape"); }});
    EXPECT_EQ(over, 3);
    EXPECT_EQ(beside, -1);
}

TEST_F(OpenPopUp, ArrowsMoveAndReturnChooses)
{
    OpenByKey({[] { Input("key Down key Down key Up key Return"); }});
    EXPECT_EQ(Chosen(), "ADR");
}

TEST_F(OpenPopUp, HomeAndEndGoToTheEnds)
{
    OpenByKey({[] { Input("key End key space"); }});
    EXPECT_EQ(Chosen(), "Ambience");
    OpenByKey({[] { Input("key Home key Return"); }});
    EXPECT_EQ(Chosen(), "Dialogue");
}

TEST_F(OpenPopUp, EscapeAndTabChooseNothing)
{
    for (const char* key : {"key Down key Escape", "key Down key Tab"})
    {
        OpenByKey({[key] { Input(key); }});
        EXPECT_EQ([PlatformPopUpMenu openMenu], nil) << key;
        EXPECT_EQ(m_window.target->m_nChoices, 0) << key;
    }
}

TEST_F(OpenPopUp, ArrowKeysOpenItToo)
{
    m_window.WhileOpen({[] { Input("key Down key Return"); }});
    Input("key Down");
    EXPECT_TRUE(m_window.RunUntil([&] { return m_window.AllDone(); }));
    EXPECT_EQ(Chosen(), "ADR");
}

TEST_F(OpenPopUp, CoversTheButtonAndStaysInTheWindow)
{
    AddItems({"A track with a name that is far longer than any button could ever be, to be sure"});
    NSRect frame = NSZeroRect;
    OpenByKey({[&] { frame = [[PlatformPopUpMenu openMenu] frame]; }, [] { Input("key Escape"); }});
    NSRect button = [m_window.button convertRect:[m_window.button bounds] toView:nil];
    button.origin = [m_window.window convertBaseToScreen:button.origin];
    EXPECT_TRUE(NSContainsRect(frame, button));
    EXPECT_EQ(NSWidth(frame), NSWidth([[m_window.window contentView] frame]));
}

TEST_F(OpenPopUp, ItemThatIsDisabledIsNotChosen)
{
    [[m_window.button menu] setAutoenablesItems:NO];
    [(NSMenuItem*)[[m_window.button menu] itemAtIndex:1] setEnabled:NO];
    OpenByKey({[] { Input("key Down key Return"); }});
    EXPECT_EQ(Chosen(), "Foley") << "passed over";
    OpenByClick({[] { MenuWindow::PointAtRow(1); }, [] { Input("click 1"); }});
    EXPECT_EQ(m_window.target->m_nChoices, 1);
    EXPECT_EQ([m_window.button indexOfSelectedItem], 2);
}

TEST_F(OpenPopUp, MoreThanTheScreenHoldsIsScrolled)
{
    for (int n = 0; n < 300; ++n)
        AddItems({("Track " + std::to_string(n)).c_str()});
    NSRect frame = NSZeroRect;
    OpenByKey({[&] { frame = [[PlatformPopUpMenu openMenu] frame]; },
               [] { Input("key End key Return"); }});
    EXPECT_TRUE(NSContainsRect([[NSScreen mainScreen] frame], frame));
    EXPECT_EQ(Chosen(), "Track 299");
}

// A choice must not hit what nobody aimed at.
TEST_F(OpenPopUp, ItemInAnothersPlaceIsNotChosenInItsStead)
{
    OpenByKey({[] { Input("key Down"); },
               [&]
               {
                   EXPECT_EQ(Highlighted(), 1);
                   [[m_window.button menu] removeItemAtIndex:0];
                   EXPECT_EQ(Highlighted(), -1);
                   Input("key Return");
               }});
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    EXPECT_EQ(m_window.target->m_nChoices, 0);
}

TEST_F(OpenPopUp, SameItemsAgainKeepTheHighlight)
{
    OpenByKey({[] { Input("key Down"); },
               [&]
               {
                   AddItems({"Music"});
                   EXPECT_EQ(Highlighted(), 1);
                   Input("key Return");
               }});
    EXPECT_EQ(Chosen(), "ADR");
}

TEST_F(OpenPopUp, ClosesWhenItsItemsOrItsWindowGo)
{
    OpenByKey({[&] { [m_window.button removeAllItems]; }});
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    AddItems({"Dialogue"});
    OpenByKey({[&] { [m_window.window orderOut:nil]; }});
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    EXPECT_EQ(m_window.target->m_nChoices, 0);
}

TEST_F(OpenPopUp, DoesNotKeepAProgramFromEnding)
{
    OpenByKey({[]
               {
                   [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                                       location:NSZeroPoint
                                                  modifierFlags:0
                                                      timestamp:0
                                                   windowNumber:0
                                                        context:nil
                                                        subtype:7
                                                          data1:0
                                                          data2:0]
                            atStart:YES];
               }});
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
    EXPECT_EQ(m_window.target->m_nChoices, 0);
}

} // namespace
