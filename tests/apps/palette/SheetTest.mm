#import "apps/palette/Sheet.h"
#import "apps/palette/PaletteWindow.h"

#include "tests/apps/palette/PaletteFixture.h"
#import "tests/support/DesktopWindow.h"

#import "controls/TKToggleSwitch.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

#include <functional>
#include <set>
#include <vector>

using testing::Contains;
using testing::Each;
using testing::IsSupersetOf;
using testing::Not;

namespace
{

class Sheet : public TarvaneTest::PaletteTest
{
  protected:
    static void Walk(NSView* view, const std::function<void(NSView*)>& fnVisit)
    {
        fnVisit(view);
        for (NSUInteger n = 0; n < [[view subviews] count]; ++n)
        {
            Walk([[view subviews] objectAtIndex:n], fnVisit);
        }
    }

    static std::vector<std::string> Words(NSView* sheet)
    {
        std::vector<std::string> words;
        Walk(sheet,
             [&](NSView* view)
             {
                 if ([view isKindOfClass:[NSTextField class]])
                 {
                     words.push_back([[(NSTextField*)view stringValue] UTF8String]);
                 }
             });
        return words;
    }

    static int Count(NSView* sheet, NSString* strClass)
    {
        int nViews = 0;
        Walk(sheet, [&](NSView* view)
             { nViews += [NSStringFromClass([view class]) isEqualToString:strClass]; });
        return nViews;
    }
};

} // namespace

TEST_F(Sheet, HasEveryEntryWithNameCodeAndStops)
{
    const std::vector<std::string> words = Words(Tarvane::MakeSheet());
    for (const auto& [nKey, pEntry] : gAppColours.m_Map)
    {
        EXPECT_THAT(words, Contains(pEntry->m_strName));
    }
    EXPECT_THAT(words, IsSupersetOf({"ccLabelText   0:308", "flat  #B2B2B2",
                                     "ccTransportBtnBorderUp   0:321", "0 #525252   0.9954 #7B7B7B",
                                     "0.8073 #575757 82%   1 #444444"}));
}

TEST_F(Sheet, HasBothFillsOfEachEntryInFourDirections)
{
    EXPECT_EQ(Count(Tarvane::MakeSheet(), @"Swatch"), 12 * 2 * 4);
}

TEST_F(Sheet, HasEveryControlInAllItsLooks)
{
    NSView* sheet = Tarvane::MakeSheet();
    EXPECT_EQ(Count(sheet, @"ToggleSpecimen"), 3 * 4);
    EXPECT_EQ(Count(sheet, @"CellSpecimen"), 2 * 2 * 3 * 3);
    EXPECT_EQ(Count(sheet, @"ColoredTextField"), 2);
    EXPECT_EQ(Count(sheet, @"TKToggleSwitch"), 1);
}

TEST_F(Sheet, TogglesAreOffAndOnUpAndHeldDown)
{
    const Ivar down = class_getInstanceVariable([TKToggleSwitch class], "m_fMouseDown");
    int nToggle = 0;
    Walk(Tarvane::MakeSheet(),
         [&](NSView* view)
         {
             if (![NSStringFromClass([view class]) isEqualToString:@"ToggleSpecimen"])
             {
                 return;
             }
             const bool fDown = *((const char*)view + ivar_getOffset(down)) != 0;
             EXPECT_EQ([(TKToggleSwitch*)view state], nToggle % 4 >= 2) << nToggle;
             EXPECT_EQ(fDown, nToggle % 2 == 1) << nToggle;
             ++nToggle;
         });
}

TEST_F(Sheet, CellsAreUpHeldAndDisabledInThreeSizes)
{
    const NSControlSize sizes[] = {NSRegularControlSize, NSSmallControlSize, NSMiniControlSize};
    int nCell = 0;
    Walk(Tarvane::MakeSheet(),
         [&](NSView* view)
         {
             if (![NSStringFromClass([view class]) isEqualToString:@"CellSpecimen"])
             {
                 return;
             }
             NSCell* cell = object_getIvar(view, class_getInstanceVariable([view class], "m_cell"));
             EXPECT_EQ([cell isHighlighted], nCell % 3 == 1) << nCell;
             EXPECT_EQ([cell isEnabled], nCell % 3 != 2) << nCell;
             EXPECT_EQ([cell controlSize], sizes[nCell / 3 % 3]) << nCell;
             ++nCell;
         });
}

TEST_F(Sheet, CutsLongListsAndSaysHowManyAreLeft)
{
    gAppColours.Add(MakeGradient(CComponentCode(0, 400), "Long", 5));
    gAppColours.Add(MakeGradient(CComponentCode(0, 401), "None", 0));
    EXPECT_THAT(Words(Tarvane::MakeSheet()),
                IsSupersetOf({"0 #000000   0.1 #1A0000   0.2 #330000 and 2 more", "no stops"}));
    for (int n = 0; n < 500; ++n)
    {
        gAppColours.Add(MakeFlat(CComponentCode(1, n), "Many", 1));
    }
    NSView* sheet = Tarvane::MakeSheet();
    EXPECT_THAT(Words(sheet), Contains("and 114 more entries"));
    EXPECT_LT(NSHeight([sheet frame]), 32767) << "an X window has no more";
}

TEST_F(Sheet, ShowsNamesThatAreNoText)
{
    gAppColours.Add(MakeFlat(CComponentCode(0, 400), "\xff\xfe", 1));
    EXPECT_THAT(Words(Tarvane::MakeSheet()), Contains("(a text that is not UTF-8)"));
}

TEST_F(Sheet, TogglesOfTheLooksKeepStillAndTheLiveOneDoesNot)
{
    NSView* sheet = Tarvane::MakeSheet();
    std::set<std::string> hit;
    Walk(sheet,
         [&](NSView* view)
         {
             if (![view isKindOfClass:[TKToggleSwitch class]])
             {
                 return;
             }
             const NSPoint middle = NSMakePoint(NSMidX([view bounds]), NSMidY([view bounds]));
             NSView* found = [sheet hitTest:[view convertPoint:middle toView:sheet]];
             if (found == view)
             {
                 hit.insert([NSStringFromClass([view class]) UTF8String]);
             }
         });
    EXPECT_EQ(hit, std::set<std::string>{"TKToggleSwitch"});
}

TEST_F(Sheet, NothingOverlapsAndNothingStandsOutside)
{
    NSView* sheet = Tarvane::MakeSheet();
    NSArray* groups = [sheet subviews];
    for (NSUInteger i = 0; i < [groups count]; ++i)
    {
        const NSRect frame = [[groups objectAtIndex:i] frame];
        EXPECT_TRUE(NSContainsRect([sheet bounds], frame));
        for (NSUInteger j = 0; j < i; ++j)
        {
            const NSRect other = [[groups objectAtIndex:j] frame];
            EXPECT_TRUE(NSIsEmptyRect(NSIntersectionRect(frame, other)))
                << [NSStringFromRect(frame) UTF8String] << [NSStringFromRect(other) UTF8String];
        }
    }
}

TEST_F(Sheet, LivePopUpButtonShowsAtOnceWhatIsChosen)
{
    NSView* sheet = Tarvane::MakeSheet();
    NSPopUpButton* live = nil;
    Walk(sheet,
         [&](NSView* view)
         {
             if ([view isKindOfClass:[NSPopUpButton class]])
             {
                 live = (NSPopUpButton*)view;
             }
         });
    ASSERT_NE(live, nil);
    CDesktopWindow window([live superview]);
    const std::string before = window.Look(live);
    window.Choose(live, 1);
    window.PointAway();
    EXPECT_TRUE(window.IsUpToDate(live));
    EXPECT_NE(window.Look(live), before);
    window.ChooseByKeys(live, "Up Return");
    EXPECT_EQ([live indexOfSelectedItem], 0);
    EXPECT_TRUE(window.IsUpToDate(live));
}

TEST_F(Sheet, OpensWholeOnASmallScreen)
{
    // 1280 by 1024 less the title bar and the edges that window managers put around.
    const NSSize size = [Tarvane::MakeSheet() frame].size;
    EXPECT_LE(size.width, 1264);
    EXPECT_LE(size.height, 940);
}

TEST_F(Sheet, OpensWithoutScrollersWhereTheScreenHasRoom)
{
    NSView* sheet = Tarvane::MakeSheet();
    NSWindow* window = Tarvane::MakeSheetWindow(sheet);
    [window orderFront:nil];
    NSScrollView* scroll = (NSScrollView*)[window contentView];
    EXPECT_TRUE(NSEqualSizes([scroll contentSize], [sheet frame].size))
        << [NSStringFromSize([scroll contentSize]) UTF8String];
    // With less room they are there.
    [window setContentSize:NSMakeSize(600, 400)];
    EXPECT_LT([scroll contentSize].width, 600);
    EXPECT_LT([scroll contentSize].height, 400);
    [window close];
    [window release];
}

TEST_F(Sheet, WordsAreWholeAndTouchNoOthers)
{
    std::vector<NSTextField*> words;
    NSView* sheet = Tarvane::MakeSheet();
    Walk(sheet,
         [&](NSView* view)
         {
             if ([view isMemberOfClass:[NSTextField class]])
             {
                 words.push_back((NSTextField*)view);
             }
         });
    ASSERT_GT(words.size(), 80u);
    const auto onSheet = [&](NSTextField* field)
    {
        NSRect rect = [field frame];
        // All of them are flipped.
        for (NSView* view = [field superview]; view != sheet; view = [view superview])
        {
            rect = NSOffsetRect(rect, NSMinX([view frame]), NSMinY([view frame]));
        }
        rect.size.width = [[field attributedStringValue] size].width;
        return rect;
    };
    for (NSTextField* one : words)
    {
        EXPECT_LE(NSWidth(onSheet(one)) + 4, NSWidth([one frame]))
            << [[one stringValue] UTF8String];
        for (NSTextField* other : words)
        {
            const NSRect apart = NSInsetRect(onSheet(one), -3, 3);
            EXPECT_TRUE(one == other || !NSIntersectsRect(apart, onSheet(other)))
                << [[one stringValue] UTF8String] << " and " << [[other stringValue] UTF8String];
        }
    }
}
