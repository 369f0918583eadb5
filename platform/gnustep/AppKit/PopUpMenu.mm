#import "platform/gnustep/AppKit/PopUpMenu.h"

#include "platform/gnustep/AppKit/PopUpPlacement.h"

namespace
{

PlatformPopUpMenu* g_open;

void TellOpening(NSPopUpButtonCell* cell, NSView* view)
{
    NSMenu* menu = [cell menu];
    id delegate = [menu delegate];
    if ([delegate respondsToSelector:@selector(menuWillOpen:)])
        [delegate menuWillOpen:menu];
    NSNotificationCenter* centre = [NSNotificationCenter defaultCenter];
    [centre postNotificationName:NSPopUpButtonCellWillPopUpNotification object:cell];
    [centre postNotificationName:NSPopUpButtonWillPopUpNotification object:view];
}

NSRect OnScreen(NSView* view, NSRect rect)
{
    rect = [view convertRect:rect toView:nil];
    rect.origin = [[view window] convertBaseToScreen:rect.origin];
    return rect;
}

} // namespace

@interface PlatformPopUpMenu ()
- (id)initWithCell:(NSPopUpButtonCell*)cell frame:(NSRect)frame ofView:(NSView*)view;
@end

@implementation PlatformPopUpMenu

+ (PlatformPopUpMenu*)openForCell:(NSPopUpButtonCell*)cell frame:(NSRect)frame ofView:(NSView*)view
{
    [self close];
    TellOpening(cell, view);
    if ([[cell menu] numberOfItems] == 0 || [view window] == nil)
        return nil;
    g_open = [[self alloc] initWithCell:cell frame:frame ofView:view];
    [g_open orderFrontRegardless];
    [g_open display];
    return g_open;
}

+ (PlatformPopUpMenu*)openMenu
{
    return g_open;
}

+ (void)close
{
    [g_open orderOut:nil];
    [g_open autorelease];
    g_open = nil;
}

- (id)initWithCell:(NSPopUpButtonCell*)cell frame:(NSRect)frame ofView:(NSView*)view
{
    PlatformPopUpRows* rows = [[[PlatformPopUpRows alloc] initWithCell:cell] autorelease];
    NSWindow* parent = [view window];
    const platform::PopUpButtonPlace place = {
        OnScreen(view, frame), OnScreen([parent contentView], [[parent contentView] bounds]),
        [[parent screen] visibleFrame]};
    const CGFloat rowHeight = [rows rowHeightForButton:NSHeight(frame)];
    const NSInteger selected = [cell pullsDown] ? 0 : [cell indexOfSelectedItem];
    const platform::PopUpMenuPlace menu = platform::PlacePopUpMenu(
        place, {rowHeight, [rows naturalWidth], [[cell menu] numberOfItems], selected});

    self = [super initWithContentRect:menu.frame
                            styleMask:NSBorderlessWindowMask
                              backing:NSBackingStoreBuffered
                                defer:NO];
    if (self == nil)
        return nil;
    m_rows = rows;
    [self setReleasedWhenClosed:NO];
    [self setExcludedFromWindowsMenu:YES];
    [self setLevel:NSPopUpMenuWindowLevel];
    [self setContentView:rows];
    [rows setRowHeight:rowHeight firstRow:menu.firstRow rowsShown:menu.rowsShown];
    [rows setHighlightedItemIndex:selected];
    return self;
}

- (BOOL)canBecomeKeyWindow
{
    return NO;
}

- (PlatformPopUpRows*)rows
{
    return m_rows;
}

- (NSPoint)inRows:(NSPoint)point
{
    return [m_rows convertPoint:[self convertScreenToBase:point] fromView:nil];
}

- (NSInteger)pointAt:(NSPoint)point
{
    const NSInteger index = [m_rows indexOfItemAtPoint:[self inRows:point]];
    [m_rows setHighlightedItemIndex:index];
    return index;
}

- (NSInteger)scrollAt:(NSPoint)point
{
    return [m_rows scrollAtPoint:[self inRows:point]];
}

@end
