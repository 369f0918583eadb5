#include "platform/gnustep/AppKit/PopUpPlacement.h"

#include <algorithm>
#include <cmath>

namespace platform
{
namespace
{

CGFloat Between(CGFloat low, CGFloat value, CGFloat high)
{
    return std::max(low, std::min(value, high));
}

CGFloat LeftEdge(const PopUpButtonPlace& place, CGFloat width)
{
    CGFloat left = NSMinX(place.button);
    if (left + width > NSMaxX(place.window))
        left = std::max(NSMinX(place.window), NSMaxX(place.button) - width);
    return Between(NSMinX(place.screen), left, NSMaxX(place.screen) - width);
}

} // namespace

PopUpMenuPlace PlacePopUpMenu(const PopUpButtonPlace& place, const PopUpMenuSize& size)
{
    const CGFloat widest =
        std::min(std::max(NSWidth(place.button), NSWidth(place.window)), NSWidth(place.screen));
    const CGFloat width =
        Between(std::min(NSWidth(place.button), widest), size.naturalWidth, widest);

    const auto room = NSInteger((NSHeight(place.screen) - 2 * kPopUpBorder) / size.rowHeight);
    const NSInteger shown = std::clamp<NSInteger>(room, 1, size.rows);
    const CGFloat height = CGFloat(shown) * size.rowHeight + 2 * kPopUpBorder;

    // In rows, from the top of the menu to the one that is to lie over the button.
    const NSInteger selected = std::clamp<NSInteger>(size.selected, 0, size.rows - 1);
    const CGFloat above = NSMaxY(place.screen) - NSMidY(place.button) - size.rowHeight / 2;
    const NSInteger roomAbove = std::clamp<NSInteger>(
        NSInteger(std::floor((above - kPopUpBorder) / size.rowHeight)), 0, shown - 1);
    const NSInteger first = std::clamp<NSInteger>(selected - roomAbove, 0, size.rows - shown);
    const CGFloat top = NSMidY(place.button) + size.rowHeight / 2 + kPopUpBorder +
                        CGFloat(selected - first) * size.rowHeight;
    const CGFloat bottom =
        Between(NSMinY(place.screen), top - height, NSMaxY(place.screen) - height);

    return {NSMakeRect(LeftEdge(place, width), bottom, width, height), first, shown};
}

} // namespace platform
