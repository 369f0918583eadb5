#import "platform/gnustep/AppKit/PopUpRows.h"

#import "platform/gnustep/AppKit/PopUpMenuLook.h"
#include "platform/gnustep/AppKit/PopUpPlacement.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

constexpr CGFloat kMarkWidth = 22;  // points, in front of the name
constexpr CGFloat kRightMargin = 8; // behind it
constexpr CGFloat kLeastRowHeight = 22;
constexpr std::size_t kNamesMeasured = 64; // the longest ones; to measure 10,000 would be felt

bool HasLook(NSPopUpButtonCell* cell)
{
    return [cell respondsToSelector:@selector(drawMenuWithFrame:inView:)];
}

id<PlatformPopUpMenuLook> LookOf(NSPopUpButtonCell* cell)
{
    return (id<PlatformPopUpMenuLook>)cell;
}

NSDictionary* AttributesOf(NSPopUpButtonCell* cell, bool fHighlighted)
{
    if (HasLook(cell))
        return [LookOf(cell) menuTextAttributesHighlighted:fHighlighted];
    NSMutableParagraphStyle* style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setLineBreakMode:NSLineBreakByTruncatingMiddle];
    NSColor* colour =
        fHighlighted ? [NSColor selectedMenuItemTextColor] : [NSColor controlTextColor];
    return
        [NSDictionary dictionaryWithObjectsAndKeys:[NSFont menuFontOfSize:0], NSFontAttributeName,
                                                   colour, NSForegroundColorAttributeName, style,
                                                   NSParagraphStyleAttributeName, nil];
}

void DrawGround(NSPopUpButtonCell* cell, NSRect frame, NSView* view)
{
    if (HasLook(cell))
    {
        [LookOf(cell) drawMenuWithFrame:frame inView:view];
        return;
    }
    [[NSColor controlDarkShadowColor] set];
    NSRectFill(frame);
    [[NSColor controlBackgroundColor] set];
    NSRectFill(NSInsetRect(frame, platform::kPopUpBorder, platform::kPopUpBorder));
}

void DrawHighlight(NSPopUpButtonCell* cell, NSRect frame, NSView* view)
{
    if (HasLook(cell))
    {
        [LookOf(cell) drawHighlightWithFrame:frame inView:view];
        return;
    }
    [[NSColor selectedMenuItemColor] set];
    NSRectFill(frame);
}

// A tick in front of the name of the item that is selected.
void DrawTick(NSRect row)
{
    NSBezierPath* tick = [NSBezierPath bezierPath];
    const CGFloat x = NSMinX(row) + 7, y = NSMidY(row);
    [tick moveToPoint:NSMakePoint(x, y)];
    [tick lineToPoint:NSMakePoint(x + 3, y + 3.5)];
    [tick lineToPoint:NSMakePoint(x + 9, y - 4)];
    [tick setLineWidth:1.6];
    [tick stroke];
}

// At the end of the rows that has more of them beyond.
void DrawMore(NSRect row, bool fUp)
{
    NSBezierPath* arrow = [NSBezierPath bezierPath];
    const CGFloat x = NSMaxX(row) - kRightMargin - 4, y = NSMidY(row), half = fUp ? -2.5 : 2.5;
    [arrow moveToPoint:NSMakePoint(x - 4, y - half)];
    [arrow lineToPoint:NSMakePoint(x + 4, y - half)];
    [arrow lineToPoint:NSMakePoint(x, y + half)];
    [arrow closePath];
    [arrow fill];
}

} // namespace

@implementation PlatformPopUpRows

- (id)initWithCell:(NSPopUpButtonCell*)cell
{
    self = [super initWithFrame:NSZeroRect];
    if (self == nil)
        return nil;
    m_cell = [cell retain];
    m_highlighted = -1;
    NSString* const names[] = {NSMenuDidAddItemNotification, NSMenuDidRemoveItemNotification,
                               NSMenuDidChangeItemNotification};
    for (NSString* name : names)
        [[NSNotificationCenter defaultCenter] addObserver:self
                                                 selector:@selector(itemsChanged:)
                                                     name:name
                                                   object:[cell menu]];
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [m_highlightedTitle release];
    [m_cell release];
    [super dealloc];
}

- (BOOL)isFlipped
{
    return YES;
}

- (BOOL)isOpaque
{
    return YES;
}

#pragma mark Size

- (CGFloat)rowHeightForButton:(CGFloat)height
{
    const CGFloat text = [@"Ag" sizeWithAttributes:AttributesOf(m_cell, false)].height;
    return std::max({height, std::ceil(text) + 2, kLeastRowHeight});
}

- (CGFloat)naturalWidth
{
    NSMenu* menu = [m_cell menu];
    std::vector<NSString*> names;
    for (NSInteger n = 0; n < [menu numberOfItems]; ++n)
        names.push_back([[menu itemAtIndex:n] title]);
    const auto measured = names.begin() + NSInteger(std::min(names.size(), kNamesMeasured));
    std::partial_sort(names.begin(), measured, names.end(),
                      [](NSString* one, NSString* other) { return [one length] > [other length]; });
    NSDictionary* attributes = AttributesOf(m_cell, false);
    CGFloat width = 0;
    for (auto name = names.begin(); name != measured; ++name)
        width = std::max(width, [*name sizeWithAttributes:attributes].width);
    return std::ceil(width) + 1 + kMarkWidth + kRightMargin + 2 * platform::kPopUpBorder;
}

- (void)setRowHeight:(CGFloat)height firstRow:(NSInteger)first rowsShown:(NSInteger)shown
{
    m_rowHeight = height;
    m_first = first;
    m_shown = shown;
}

#pragma mark Items

- (NSInteger)numberOfItems
{
    return [[m_cell menu] numberOfItems];
}

- (NSInteger)highlightedItemIndex
{
    return m_highlighted;
}

- (NSRect)rectOfItemAtIndex:(NSInteger)index
{
    if (index < m_first || index >= std::min(m_first + m_shown, [self numberOfItems]))
        return NSZeroRect;
    return NSMakeRect(platform::kPopUpBorder,
                      platform::kPopUpBorder + CGFloat(index - m_first) * m_rowHeight,
                      NSWidth([self bounds]) - 2 * platform::kPopUpBorder, m_rowHeight);
}

- (NSInteger)indexOfItemAtPoint:(NSPoint)point
{
    if (!NSPointInRect(point, [self bounds]))
        return -1;
    const auto row = NSInteger(std::floor((point.y - platform::kPopUpBorder) / m_rowHeight));
    const NSInteger index = m_first + std::clamp<NSInteger>(row, 0, m_shown - 1);
    return index < [self numberOfItems] ? index : -1;
}

- (BOOL)canChooseItemAtIndex:(NSInteger)index
{
    if (index < 0 || index >= [self numberOfItems])
        return NO;
    NSMenuItem* item = (NSMenuItem*)[[m_cell menu] itemAtIndex:index];
    return [item isEnabled] && ![item isSeparatorItem];
}

// Where another item has taken the highlighted one's place, a choice would hit what nobody aimed
// at.
- (void)itemsChanged:(NSNotification*)notification
{
    (void)notification;
    const NSInteger last = std::max<NSInteger>([self numberOfItems] - m_shown, 0);
    m_first = std::min(m_first, last);
    if (m_highlighted >= 0 &&
        (m_highlighted >= [self numberOfItems] ||
         ![[[[m_cell menu] itemAtIndex:m_highlighted] title] isEqualToString:m_highlightedTitle]))
        [self setHighlightedItemIndex:-1];
    [self setNeedsDisplay:YES];
}

- (void)setHighlightedItemIndex:(NSInteger)index
{
    if (![self canChooseItemAtIndex:index])
        index = -1;
    if (index == m_highlighted)
        return;
    m_highlighted = index;
    [m_highlightedTitle release];
    m_highlightedTitle = index < 0 ? nil : [[[[m_cell menu] itemAtIndex:index] title] copy];
    [self setNeedsDisplay:YES];
}

- (void)moveHighlightBy:(NSInteger)step
{
    const NSInteger last = [self numberOfItems] - 1;
    const NSInteger from = m_highlighted >= 0 ? m_highlighted : [m_cell indexOfSelectedItem];
    const NSInteger direction = step < 0 ? -1 : 1;
    NSInteger to = std::clamp<NSInteger>(from + step, 0, last);
    while (to >= 0 && to <= last && ![self canChooseItemAtIndex:to])
        to += direction;
    if (to < 0 || to > last)
        return;
    [self setHighlightedItemIndex:to];
    if (to < m_first)
        [self scrollBy:to - m_first];
    else if (to >= m_first + m_shown)
        [self scrollBy:to - m_first - m_shown + 1];
}

#pragma mark Scrolling

- (BOOL)scrollBy:(NSInteger)rows
{
    const NSInteger last = std::max<NSInteger>([self numberOfItems] - m_shown, 0);
    const NSInteger first = std::clamp<NSInteger>(m_first + rows, 0, last);
    if (first == m_first)
        return NO;
    m_first = first;
    [self setNeedsDisplay:YES];
    return YES;
}

- (NSInteger)scrollAtPoint:(NSPoint)point
{
    if (point.x < 0 || point.x >= NSWidth([self bounds]))
        return 0;
    if (point.y < platform::kPopUpBorder + m_rowHeight / 2)
        return -1;
    return point.y >= NSHeight([self bounds]) - platform::kPopUpBorder - m_rowHeight / 2 ? 1 : 0;
}

#pragma mark Drawing

- (void)drawItemAtIndex:(NSInteger)index
{
    NSMenuItem* item = (NSMenuItem*)[[m_cell menu] itemAtIndex:index];
    const NSRect row = [self rectOfItemAtIndex:index];
    const bool fHighlighted = index == m_highlighted;
    NSDictionary* attributes = AttributesOf(m_cell, fHighlighted);
    NSColor* colour = [attributes objectForKey:NSForegroundColorAttributeName];
    if ([item isSeparatorItem])
    {
        [[colour colorWithAlphaComponent:0.4] set];
        NSRectFill(NSMakeRect(NSMinX(row) + kRightMargin, std::floor(NSMidY(row)),
                              NSWidth(row) - 2 * kRightMargin, 1));
        return;
    }
    if (fHighlighted)
        DrawHighlight(m_cell, row, self);
    [colour set];
    if ([item state] == NSOnState)
        DrawTick(row);
    if (![item isEnabled])
    {
        NSMutableDictionary* dimmed = [[attributes mutableCopy] autorelease];
        [dimmed setObject:[colour colorWithAlphaComponent:0.5]
                   forKey:NSForegroundColorAttributeName];
        attributes = dimmed;
    }
    const bool fMore = (index == m_first && m_first > 0) ||
                       (index == m_first + m_shown - 1 && index < [self numberOfItems] - 1);
    if (fMore)
        DrawMore(row, index == m_first);
    const CGFloat height = std::ceil([@"Ag" sizeWithAttributes:attributes].height);
    const CGFloat right = fMore ? 2 * kRightMargin + 4 : kRightMargin;
    [[item title] drawInRect:NSMakeRect(NSMinX(row) + kMarkWidth,
                                        NSMinY(row) + std::floor((NSHeight(row) - height) / 2),
                                        NSWidth(row) - kMarkWidth - right, height)
              withAttributes:attributes];
}

- (void)drawRect:(NSRect)rect
{
    (void)rect;
    DrawGround(m_cell, [self bounds], self);
    const NSInteger end = std::min(m_first + m_shown, [self numberOfItems]);
    for (NSInteger n = m_first; n < end; ++n)
        [self drawItemAtIndex:n];
}

@end
