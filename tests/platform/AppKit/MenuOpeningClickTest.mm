#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

// Real clicks and keys, through the display server.
namespace
{

NSArray* Tracks() { return [NSArray arrayWithObjects:@"Dialogue", @"Foley", @"Music", nil]; }

TEST(MenuOpeningClick, ClickTellsTheDelegateOnce)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    window.ClickAndChoose();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_EQ(window.delegate->m_lastMenu, [window.button menu]);
    EXPECT_NE(window.target->m_chosen, nil);
}

TEST(MenuOpeningClick, SpaceBarTellsTheDelegateOnce)
{
    MenuWindow window;
    [[window.button menu] setDelegate:window.delegate];
    window.PressSpaceAndReturn();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
}

TEST(MenuOpeningClick, NewItemsAreThoseToChooseFrom)
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

TEST(MenuOpeningClick, EmptyMenuIsFilledByTheClickThatOpensIt)
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

TEST(MenuOpeningClick, EmptyMenuIsFilledByTheSpaceBarThatOpensIt)
{
    MenuWindow window;
    [window.button removeAllItems];
    [window.delegate setTitles:Tracks()];
    [[window.button menu] setDelegate:window.delegate];
    window.PressSpaceAndReturn();
    EXPECT_EQ(window.delegate->m_nOpened, 1);
    EXPECT_TRUE([Tracks() containsObject:window.target->m_chosen]);
}

TEST(MenuOpeningClick, MenuThatStaysEmptyIsToldAtEachClick)
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

TEST(MenuOpeningClick, FullMenuAfterAnEmptyOneIsToldOnce)
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

TEST(MenuOpeningClick, DisabledButtonTellsNobody)
{
    MenuWindow window;
    [window.button removeAllItems];
    [window.button setEnabled:NO];
    [[window.button menu] setDelegate:window.delegate];
    window.ClickOnce();
    EXPECT_EQ(window.delegate->m_nOpened, 0);
}

} // namespace
