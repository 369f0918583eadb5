#include "platform/gnustep/AppKit/PopUpPlacement.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using platform::PopUpMenuPlace;
using platform::PopUpMenuSize;

const NSRect kScreen = {{0, 0}, {1280, 1024}};
const NSRect kWindow = {{120, 320}, {440, 152}};
const NSRect kButton = {{360, 421}, {184, 18}};

PopUpMenuPlace Place(const PopUpMenuSize& size, NSRect button = kButton, NSRect window = kWindow)
{
    return platform::PlacePopUpMenu({button, window, kScreen}, size);
}

// From the top, in screen coordinates.
NSRect Row(const PopUpMenuPlace& place, NSInteger row, CGFloat height)
{
    return NSMakeRect(NSMinX(place.frame),
                      NSMaxY(place.frame) - platform::kPopUpBorder -
                          CGFloat(row - place.firstRow + 1) * height,
                      NSWidth(place.frame), height);
}

TEST(PopUpPlacement, SelectedRowCoversTheButton)
{
    for (NSInteger selected = 0; selected < 4; ++selected)
    {
        const PopUpMenuPlace place = Place({22, 100, 4, selected});
        EXPECT_TRUE(NSContainsRect(Row(place, selected, 22), kButton)) << selected;
        EXPECT_EQ(NSMidY(Row(place, selected, 22)), NSMidY(kButton)) << selected;
        EXPECT_EQ(place.rowsShown, 4);
        EXPECT_EQ(place.firstRow, 0);
    }
}

TEST(PopUpPlacement, WithoutASelectionTheFirstRowCoversTheButton)
{
    EXPECT_TRUE(NSContainsRect(Row(Place({22, 100, 4, -1}), 0, 22), kButton));
}

TEST(PopUpPlacement, ShortNamesLeaveItAsWideAsTheButton)
{
    const PopUpMenuPlace place = Place({22, 100, 4, 0});
    EXPECT_EQ(NSWidth(place.frame), NSWidth(kButton));
    EXPECT_EQ(NSMinX(place.frame), NSMinX(kButton));
}

TEST(PopUpPlacement, LongNamesWidenItUpToTheWindow)
{
    for (const CGFloat width : {190.0, 300.0, 440.0, 5000.0})
    {
        const PopUpMenuPlace place = Place({22, width, 4, 0});
        EXPECT_EQ(NSWidth(place.frame), std::min<CGFloat>(width, NSWidth(kWindow)));
        EXPECT_GE(NSMinX(place.frame), NSMinX(kWindow)) << width;
        EXPECT_LE(NSMaxX(place.frame), NSMaxX(kWindow)) << width;
        EXPECT_LE(NSMinX(place.frame), NSMinX(kButton)) << width;
        EXPECT_GE(NSMaxX(place.frame), NSMaxX(kButton)) << width;
    }
}

TEST(PopUpPlacement, StaysInsideTheScreenWhereverTheButtonIs)
{
    for (const CGFloat x : {-100.0, 0.0, 600.0, 1200.0, 1300.0})
        for (const CGFloat y : {-10.0, 0.0, 500.0, 1000.0, 1020.0})
            for (const NSInteger rows : {1, 4, 46, 47, 10000})
                for (const NSInteger selected : {NSInteger(0), rows / 2, rows - 1})
                {
                    const NSRect button = {{x, y}, {184, 18}};
                    const NSRect window = NSInsetRect(button, -100, -50);
                    const PopUpMenuPlace place = Place({22, 5000, rows, selected}, button, window);
                    EXPECT_TRUE(NSContainsRect(kScreen, place.frame))
                        << x << " " << y << " " << rows << " " << selected;
                    EXPECT_GE(place.firstRow, 0);
                    EXPECT_LE(place.firstRow, selected);
                    EXPECT_GT(place.firstRow + place.rowsShown, selected)
                        << "the selected one shows";
                    EXPECT_LE(place.firstRow + place.rowsShown, rows);
                    EXPECT_EQ(NSHeight(place.frame),
                              CGFloat(place.rowsShown) * 22 + 2 * platform::kPopUpBorder);
                }
}

TEST(PopUpPlacement, ScreenHighMenuStillHasTheSelectedRowOverTheButton)
{
    const PopUpMenuPlace place = Place({22, 100, 10000, 5000});
    EXPECT_EQ(place.rowsShown, 46);
    EXPECT_LE(std::abs(NSMidY(Row(place, 5000, 22)) - NSMidY(kButton)), 22);
}

TEST(PopUpPlacement, ScreenLowerThanARowShowsOne)
{
    const PopUpMenuPlace place = platform::PlacePopUpMenu(
        {NSMakeRect(0, 0, 50, 18), NSMakeRect(0, 0, 60, 20), NSMakeRect(0, 0, 40, 10)},
        {22, 100, 4, 2});
    EXPECT_EQ(place.rowsShown, 1);
    EXPECT_EQ(place.firstRow, 2);
    EXPECT_EQ(NSWidth(place.frame), 40);
}

} // namespace
