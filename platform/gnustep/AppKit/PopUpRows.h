#pragma once

#import <AppKit/AppKit.h>

/// The rows of an open pop-up menu, in a window of their own. They show what the menu holds at each
/// moment: it may be filled anew while it is open. Main thread.
@interface PlatformPopUpRows : NSView
{
    NSPopUpButtonCell* m_cell; ///< retained; its menu is the one that is shown
    CGFloat m_rowHeight;
    NSInteger m_first; ///< at the top
    NSInteger m_shown;
    NSInteger m_highlighted; ///< -1 for none
    NSString* m_highlightedTitle;
}

- (id)initWithCell:(NSPopUpButtonCell*)cell;

/// The height of a row in a menu of a button of this height, and the width at which every name of
/// the menu is whole.
- (CGFloat)rowHeightForButton:(CGFloat)height;
- (CGFloat)naturalWidth;

- (void)setRowHeight:(CGFloat)height firstRow:(NSInteger)first rowsShown:(NSInteger)shown;

/// -1 where there is none.
- (NSInteger)highlightedItemIndex;
- (NSInteger)indexOfItemAtPoint:(NSPoint)point; ///< in this view's coordinates
- (NSRect)rectOfItemAtIndex:(NSInteger)index;   ///< empty if it is scrolled out of sight
- (NSInteger)numberOfItems;
- (BOOL)canChooseItemAtIndex:(NSInteger)index;

/// An item that cannot be chosen is not highlighted; -1 takes the highlight away.
- (void)setHighlightedItemIndex:(NSInteger)index;
/// To the next item that can be chosen, in steps of one or many; scrolls there.
- (void)moveHighlightBy:(NSInteger)step;
/// By rows, as far as there are any; true if there were.
- (BOOL)scrollBy:(NSInteger)rows;
/// How many rows to scroll while the pointer rests at this point: -1, 0 or 1.
- (NSInteger)scrollAtPoint:(NSPoint)point;

@end
