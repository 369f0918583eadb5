#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#import "platform/gnustep/AppKit/PopUpMenu.h"

// Openings without the mouse: the menu is shown, and nothing waits for a choice.
namespace
{

void Open(NSPopUpButton* button)
{
    [[button cell] attachPopUpWithFrame:[button bounds] inView:button];
    [[button cell] dismissPopUp];
}

TEST(PopUpMenu, EachOpeningIsToldOnce)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    for (int i = 1; i <= 3; ++i)
    {
        Open(window.button);
        EXPECT_EQ(window.delegate->m_nOpened, i);
    }
}

TEST(PopUpMenu, PullDownMenuIsToldToo)
{
    MenuWindow window(true);
    [[window.button menu] setDelegate:window.delegate];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ(window.delegate->m_lastMenu, [window.button menu]);
}

TEST(PopUpMenu, ClickByTheProgramIsToldToo)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    window.WhileOpen({[] { Input("key Escape"); }});
    [window.button performClick:nil];
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ([PlatformPopUpMenu openMenu], nil);
}

TEST(PopUpMenu, MenuThatItsDelegateEmptiesIsNoHarm)
{
    MenuWindow window;
    [window.delegate setTitles:[NSArray array]];
    [[window.button menu] setDelegate:window.delegate];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ([window.button numberOfItems], 0);
    EXPECT_EQ([window.button indexOfSelectedItem], -1);
}

TEST(PopUpMenu, OtherMenusDelegateHearsNothing)
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

TEST(PopUpMenu, MenuWithoutDelegateOpens)
{
    MenuWindow window;
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 0);
    EXPECT_EQ([window.button numberOfItems], 2);
}

TEST(PopUpMenu, DelegateWithoutTheMethodIsNotSentIt)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.target];
    Open(window.button);
    [window.button removeAllItems];
    Open(window.button);
    EXPECT_EQ(window.target->m_chosen, nil);
}

TEST(PopUpMenu, DelegateTakenAwayIsNotTold)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    Open(window.button);
    [[window.button menu] setDelegate:nil];
    Open(window.button);
    EXPECT_EQ(window.delegate->m_nOpened, 1);
}

} // namespace
