#import "controls/TKButtonCell.h"

#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"

@implementation TKButtonCell

#include "controls/ButtonCellMethods.inc"

#pragma mark Title

- (NSRect)drawTitle:(NSAttributedString*)title withFrame:(NSRect)frame inView:(NSView*)view
{
    (void)view;
    const NSTextAlignment alignment =
        [self imagePosition] == NSImageLeft ? NSLeftTextAlignment : NSCenterTextAlignment;
    [[title string] drawInRect:frame
                withAttributes:ButtonTitleAttributes([self controlSize], alignment)];
    return frame;
}

@end
