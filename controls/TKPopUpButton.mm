#import "controls/TKPopUpButton.h"

#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"

namespace
{
constexpr CGFloat kArrowRoom = 16.0; // points at the right, where the arrow is
} // namespace

@implementation TKPopUpButton

- (void)drawRect:(NSRect)rect
{
    [super drawRect:rect];
    if ([self numberOfItems] > 0)
        return;
    NSMutableDictionary* attributes =
        ButtonTitleAttributes([[self cell] controlSize], NSCenterTextAlignment);
    // Not bold, as the names of tracks are.
    NSFont* font = [attributes objectForKey:NSFontAttributeName];
    [attributes setObject:[NSFont systemFontOfSize:[font pointSize]] forKey:NSFontAttributeName];
    NSRect place = NSInsetRect([self bounds], 0.0, 1.0);
    place.size.width -= kArrowRoom;
    [@"No Tarvane session" drawInRect:place withAttributes:attributes];
}

@end
