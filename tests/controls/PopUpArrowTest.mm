// The arrow is loaded once a process, so this is a program of its own, in one test.
#import "controls/TKPopUpButtonCell.h"

#include "colours/ComponentsColors.h"
#include "tests/controls/RecordedDrawing.h"
#include "tests/support/RecordingCoreGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using TarvaneTests::CallsThatBegin;
using TarvaneTests::RecordedDrawing;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PopUpArrow, IsTriedAgainUntilItLoadsAndThenSharedAndFlippedOnce)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    AppCreateDefaultColoursDesigner();
    NSView* view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 200, 50)] autorelease];
    TKPopUpButtonCell* first = [[[TKPopUpButtonCell alloc] init] autorelease];
    TKPopUpButtonCell* second = [[[TKPopUpButtonCell alloc] init] autorelease];
    for (TKPopUpButtonCell* cell : {first, second})
    {
        [cell addItemWithTitle:@"Dialogue"];
        [cell selectItemAtIndex:0];
    }
    const std::vector<std::string> watched = {"BundleOf",   "Resource",  "LoadImage",
                                              "SetFlipped", "DrawImage", "DrawText"};
    {
        RecordedDrawing drawing;
        drawing.LoseResource("PopupArrow");
        [first drawWithFrame:NSMakeRect(5, 7, 100, 22) inView:view];
        EXPECT_THAT(CallsThatBegin(watched),
                    ElementsAre("BundleOf TKPopUpButtonCell", "Resource PopupArrow.png",
                                "LoadImage none", "DrawText Dialogue in 5 8 96 20"));
    }
    RecordedDrawing drawing;
    [first drawWithFrame:NSMakeRect(5, 7, 100, 22) inView:view];
    EXPECT_THAT(CallsThatBegin({"Resource", "LoadImage", "SetFlipped"}),
                ElementsAre("Resource PopupArrow.png", "LoadImage /images/PopupArrow.png",
                            "SetFlipped PopupArrow 1"));
    TarvaneTests::ResetGraphicsCalls();
    [second drawWithFrame:NSMakeRect(5, 7, 100, 22) inView:view];
    EXPECT_THAT(CallsThatBegin({"Resource", "LoadImage", "SetFlipped"}), IsEmpty());
    gAppColours.Clear();
    [pool drain];
}
