#import "controls/TKPopUpButtonCell.h"

#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"

namespace
{
NSImage* sharedArrow; // one for all cells, loaded by the first draw and never released

constexpr CGFloat kArrowMargin = 4.0; // points between the arrow and the frame's right edge
} // namespace

@implementation TKPopUpButtonCell

#include "controls/ButtonCellMethods.inc"

#pragma mark Drawing

// A load that fails is tried again at the next draw.
- (void)loadArrow
{
    if (sharedArrow)
        return;
    NSString* path = [[NSBundle bundleForClass:[self class]] pathForResource:@"PopupArrow"
                                                                      ofType:@"png"];
    sharedArrow = [[NSImage alloc] initWithContentsOfFile:path];
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    [self drawBezelWithFrame:frame inView:view];
    [self loadArrow];

    const NSSize arrowSize = sharedArrow ? [sharedArrow size] : NSZeroSize;
    const float aw = float(arrowSize.width);
    const float tw = float(NSWidth(frame) - aw - kArrowMargin);
    NSString* title = [[self selectedItem] title];

    NSRect titleRect = NSMakeRect(NSMinX(frame), NSMinY(frame) + 1.0, tw, NSHeight(frame) - 2.0);
    if ([self controlSize] == NSSmallControlSize)
    {
        titleRect.origin.y = NSMinY(frame) + 3.0;
        titleRect.size.height = NSHeight(frame) - 3.0;
    }
    NSDictionary* attributes = ButtonTitleAttributes([self controlSize], NSCenterTextAlignment);

    const CGFloat ah = arrowSize.height;
    const NSRect arrowRect = NSMakeRect(NSWidth(frame) + NSMinX(frame) - aw - kArrowMargin,
                                        NSMinY(frame) + (NSHeight(frame) - ah) * 0.5, aw, ah);
    // Flipped once and for good, whatever the view is.
    if (![sharedArrow isFlipped])
        [sharedArrow setFlipped:YES];
    [sharedArrow drawInRect:arrowRect
                   fromRect:NSZeroRect
                  operation:NSCompositeSourceOver
                   fraction:0.9];
    [title drawInRect:titleRect withAttributes:attributes];
}

@end
