#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

// The same openings without the mouse: GNUstep shows the menu and returns.
namespace
{

void Open(NSPopUpButton* button)
{
    [[button cell] attachPopUpWithFrame:[button bounds] inView:button];
    [[button cell] dismissPopUp];
}

TEST(MenuOpening, EachOpeningIsToldOnce)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    for (int i = 1; i <= 3; ++i)
    {
        Open(window.button);
        EXPECT_EQ(window.delegate->m_nOpened, i);
    }
}

TEST(MenuOpening, PullDownMenuIsToldToo)
{
    MenuWindow window(true);
    [[window.button menu] setDelegate:window.delegate];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ(window.delegate->m_lastMenu, [window.button menu]);
}

TEST(MenuOpening, ClickByTheProgramIsToldToo)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    [window.button performClick:nil];
    [[window.button cell] dismissPopUp];
    EXPECT_EQ(window.delegate->m_nOpened, 1);
}

TEST(MenuOpening, MenuThatItsDelegateEmptiesIsNoHarm)
{
    MenuWindow window;
    [window.delegate setTitles:[NSArray array]];
    [[window.button menu] setDelegate:window.delegate];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ([window.button numberOfItems], 0);
    EXPECT_EQ([window.button indexOfSelectedItem], -1);
}

TEST(MenuOpening, OtherMenusDelegateHearsNothing)
{
    MenuWindow window;
    NSPopUpButton* other = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(20, 20, 200, 26)
                                                       pullsDown:NO] autorelease];
    [other addItemWithTitle:@"other"];
    [[window.window contentView] addSubview:other];
    [[other menu] setDelegate:window.delegate];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 0);
    Open(other);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ(window.delegate->m_lastMenu, [other menu]);
    [[other menu] setDelegate:nil];
}

TEST(MenuOpening, MenuWithoutDelegateOpens)
{
    MenuWindow window;
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 0);
    EXPECT_EQ([window.button numberOfItems], 2);
}

TEST(MenuOpening, DelegateWithoutTheMethodIsNotSentIt)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.target];
    Open(window.button);
    [window.button removeAllItems];
    Open(window.button);
    EXPECT_EQ(window.target->m_chosen, nil);
}

TEST(MenuOpening, DelegateTakenAwayIsNotTold)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    Open(window.button);
    [[window.button menu] setDelegate:nil];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
}

} // namespace
