#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

// Draws by itself, and so never lets GNUstep tell it of its control.
@interface TestOwnDrawingCell : NSPopUpButtonCell
@end

@implementation TestOwnDrawingCell
- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    (void)frame;
    (void)view;
}
@end

namespace
{

class CellControlView : public testing::Test
{
  protected:
    CellControlView()
    {
        [m_cell addItemWithTitle:@"one"];
        [m_cell addItemWithTitle:@"two"];
        [m_window.button setCell:m_cell];
        [m_window.button setTarget:m_window.target];
        [m_window.button setAction:@selector(choose:)];
    }

    MenuWindow m_window;
    TestOwnDrawingCell* m_cell = [[[TestOwnDrawingCell alloc] init] autorelease];
};

TEST_F(CellControlView, IsKnownBeforeAnythingIsDrawn)
{
    EXPECT_EQ([m_cell controlView], m_window.button);
}

TEST_F(CellControlView, ChoiceHasTheControlRedrawn)
{
    [m_window.window display];
    ASSERT_FALSE([m_window.button needsDisplay]);
    [[m_window.button menu] performActionForItemAtIndex:1];
    EXPECT_TRUE([m_window.button needsDisplay]);
}

TEST_F(CellControlView, SelectionByTheProgramHasTheControlRedrawn)
{
    [m_window.window display];
    [m_window.button selectItemAtIndex:1];
    EXPECT_TRUE([m_window.button needsDisplay]);
}

TEST_F(CellControlView, EmptiedMenuHasTheControlRedrawn)
{
    [m_window.window display];
    [m_window.button removeAllItems];
    EXPECT_TRUE([m_window.button needsDisplay]);
}

TEST_F(CellControlView, ActionIsSentInTheNameOfTheControl)
{
    [[m_window.button menu] performActionForItemAtIndex:1];
    EXPECT_EQ(m_window.target->m_sender, m_window.button);
}

TEST_F(CellControlView, IsTheNewOneOfTwo)
{
    NSPopUpButton* other = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 90, 26)
                                                       pullsDown:NO] autorelease];
    NSCell* cell = [[[NSPopUpButtonCell alloc] init] autorelease];
    [other setCell:m_cell];
    EXPECT_EQ([m_cell controlView], other);
    [m_window.button setCell:cell];
    EXPECT_EQ([m_cell controlView], other) << "taken from it by the one before";
    EXPECT_EQ([cell controlView], m_window.button);
}

TEST_F(CellControlView, IsGoneWithTheControl)
{
    NSCell* cell = [[[TestOwnDrawingCell alloc] init] autorelease];
    NSPopUpButton* button = [[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 90, 26)
                                                       pullsDown:NO];
    [button setCell:cell];
    ASSERT_EQ([cell controlView], button);
    [button release];
    EXPECT_EQ([cell controlView], nil);
}

} // namespace
