#import <AppKit/AppKit.h>

#include "tests/support/ReplacedMethod.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#import "tests/platform/AppKit/MenuWindow.h"

// Counts, and not times: what is done once for each item, or once for each of them and for each
// item again.
namespace
{

constexpr NSInteger kItems = 500;

using IndexMethod = NSUInteger (*)(id, SEL, id);

int g_nLayouts;
int g_nSearches;
IndexMethod g_search;
std::vector<NSInteger> g_removed;

class MenuLayout : public testing::Test
{
  protected:
    MenuLayout()
    {
        [m_window.button setTarget:m_window.target];
        [m_window.button setAction:@selector(choose:)];
        g_nLayouts = g_nSearches = 0;
        g_removed.clear();
    }

    NSPopUpButton* Button() const { return m_window.button; }
    NSMenu* Menu() const { return [Button() menu]; }
    NSMenuView* View() const { return (NSMenuView*)[Menu() menuRepresentation]; }

    // As the window of the link does it.
    void Fill(NSInteger nItems = kItems) const
    {
        [Button() removeAllItems];
        for (NSInteger n = 0; n < nItems; ++n)
        {
            NSMenuItem* item =
                [[NSMenuItem alloc] initWithTitle:[NSString stringWithFormat:@"Track %ld", long(n)]
                                           action:nullptr
                                    keyEquivalent:@""];
            [Menu() addItem:item];
            [item release];
        }
        [Button() selectItemAtIndex:nItems / 2];
    }

    void ChangeAll() const
    {
        for (NSInteger n = 0; n < kItems; ++n)
            [[Menu() itemAtIndex:n] setTitle:@"changed"];
        [Button() setTarget:nil];
        [Button() setAction:nullptr];
    }

    MenuWindow m_window;
    // Not in the menu.
    NSMenuItem* const m_foreign = [[[NSMenuItem alloc] initWithTitle:@"x"
                                                              action:nullptr
                                                       keyEquivalent:@""] autorelease];
};

TEST_F(MenuLayout, NothingIsLaidOutWhileItemsChange)
{
    const TarvaneTests::ReplacedMethod counted([NSMenuView class], @selector(sizeToFit),
                                               [](id, SEL) { ++g_nLayouts; });
    Fill();
    Fill();
    ChangeAll();
    EXPECT_EQ(g_nLayouts, 0);
    [Menu() sizeToFit];
    EXPECT_EQ(g_nLayouts, 1);
}

TEST_F(MenuLayout, NoItemIsSearchedForWhileItemsChange)
{
    Fill();
    const SEL search = @selector(indexOfObjectIdenticalTo:);
    Class list = object_getClass([Menu() itemArray]);
    g_search = (IndexMethod)(void (*)())[list instanceMethodForSelector:search];
    const TarvaneTests::ReplacedMethod counted(list, search,
                                               [](id self, SEL selector, id object) -> NSUInteger
                                               {
                                                   g_nSearches += [self count] > kItems / 2;
                                                   return g_search(self, selector, object);
                                               });
    Fill();
    ChangeAll();
    // By the way from the last item back to the first, and to the one that is selected.
    EXPECT_LE(g_nSearches, 8);
}

TEST_F(MenuLayout, EachItemIsFoundWhereItIs)
{
    Fill();
    std::vector<NSInteger> indexes(kItems);
    std::iota(indexes.begin(), indexes.end(), 0);
    std::shuffle(indexes.begin(), indexes.end(), std::mt19937(1));
    for (const NSInteger nIndex : indexes)
        EXPECT_EQ([Menu() indexOfItem:[Menu() itemAtIndex:nIndex]], nIndex);
    id<NSMenuItem> first = [Menu() itemAtIndex:0];
    id<NSMenuItem> last = [Menu() itemAtIndex:kItems - 1];
    EXPECT_EQ([Menu() indexOfItem:last], kItems - 1);
    [Menu() insertItem:m_foreign atIndex:0];
    EXPECT_EQ([Menu() indexOfItem:last], kItems);
    EXPECT_EQ([Menu() indexOfItem:first], 1);
    [Menu() removeItemAtIndex:0];
    EXPECT_EQ([Menu() indexOfItem:last], kItems - 1);
    EXPECT_EQ([Menu() indexOfItem:m_foreign], -1);
    EXPECT_EQ([Menu() indexOfItem:nil], -1);
}

TEST_F(MenuLayout, MenuIsEmptiedFromItsEnd)
{
    Fill();
    const TarvaneTests::ReplacedMethod noted([NSMenuView class], @selector(itemRemoved:),
                                             [](id, SEL, NSNotification* notification)
                                             {
                                                 NSNumber* index = [[notification userInfo]
                                                     objectForKey:@"NSMenuItemIndex"];
                                                 g_removed.push_back([index integerValue]);
                                             });
    [Button() removeAllItems];
    ASSERT_EQ(g_removed.size(), std::size_t(kItems));
    EXPECT_TRUE(std::is_sorted(g_removed.rbegin(), g_removed.rend(), std::less_equal<>()));
    EXPECT_EQ([Button() numberOfItems], 0);
    EXPECT_EQ([Button() indexOfSelectedItem], -1);
    EXPECT_EQ([[Button() titleOfSelectedItem] length], 0u);
}

TEST_F(MenuLayout, PullDownMenuIsEmptiedToo)
{
    MenuWindow window(true);
    [window.button removeAllItems];
    EXPECT_EQ([window.button numberOfItems], 0);
    [window.button removeAllItems];
    [window.button addItemWithTitle:@"again"];
    EXPECT_EQ([window.button numberOfItems], 1);
}

TEST_F(MenuLayout, LaidOutMenuHasAPlaceForEachItem)
{
    Fill(3);
    [Menu() sizeToFit];
    EXPECT_FALSE([View() needsSizing]);
    const NSRect first = [View() rectOfItemAtIndex:0], last = [View() rectOfItemAtIndex:2];
    EXPECT_GT(NSWidth(last), 0);
    EXPECT_FALSE(NSIntersectsRect(first, last));
    [[Menu() itemAtIndex:1] setTitle:@"a name that is very much longer than the others are"];
    EXPECT_GT(NSWidth([View() rectOfItemAtIndex:2]), NSWidth(last));
}

} // namespace
