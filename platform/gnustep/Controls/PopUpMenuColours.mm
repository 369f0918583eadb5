#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"
#import "controls/GraphicUtils.h"
#import "controls/TKPopUpButtonCell.h"
#import "platform/gnustep/AppKit/PopUpMenuLook.h"

// The open menu of a button with the palette's look has it too. Where the system draws menus it
// sees to that by itself.
@interface TKPopUpButtonCell (PopUpMenuColours) <PlatformPopUpMenuLook>
@end

namespace
{
void FillFromTop(CComponentCode colour, NSRect frame, NSView* view)
{
    [GraphicUtils FillRect:CurrentContext()
                     Color:colour
                Background:CComponentCode(0, 0)
                      Rect:frame
             FillDirection:kFillTopToBottom
                   Flipped:[view isFlipped]];
}
} // namespace

@implementation TKPopUpButtonCell (PopUpMenuColours)

- (void)drawMenuWithFrame:(NSRect)frame inView:(NSView*)view
{
    FillFromTop(ccTransportBtnBorderUp, frame, view);
    FillFromTop(m_nFaceUp, NSInsetRect(frame, 1.0, 1.0), view);
}

- (void)drawHighlightWithFrame:(NSRect)frame inView:(NSView*)view
{
    FillFromTop(ccSelectedTextBackground, frame, view);
}

// White on the highlight: the palette's own text is too dim there.
- (NSDictionary*)menuTextAttributesHighlighted:(BOOL)highlighted
{
    NSMutableDictionary* attributes =
        ButtonTitleAttributes([self controlSize], NSLeftTextAlignment);
    if (highlighted)
        [attributes setObject:[NSColor whiteColor] forKey:NSForegroundColorAttributeName];
    return attributes;
}

@end
