#pragma once

#import <Foundation/Foundation.h>

namespace platform
{

/// What is known of a pop-up button when its menu opens. Rectangles in screen coordinates.
struct PopUpButtonPlace
{
    NSRect button;
    NSRect window; ///< the content of the button's window
    NSRect screen;
};

struct PopUpMenuSize
{
    CGFloat rowHeight;    ///< at least the button's height, so that a row covers the button
    CGFloat naturalWidth; ///< at which every name is whole
    NSInteger rows;       ///< 1 at least
    NSInteger selected;   ///< -1 for none
};

struct PopUpMenuPlace
{
    NSRect frame;
    NSInteger firstRow;  ///< at the top
    NSInteger rowsShown; ///< fewer than there are, if the screen has no room for all
};

constexpr CGFloat kPopUpBorder = 1; ///< points, on each side of the rows

/// The selected row covers the button as far as the screen has room for that. As wide as the button
/// or wider, up to the width of the window's content, for the sake of long names.
PopUpMenuPlace PlacePopUpMenu(const PopUpButtonPlace& place, const PopUpMenuSize& size);

} // namespace platform
