#import "controls/TKButtonCell.h"

#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"

@implementation TKButtonCell

- (void)setDefaultCodes
{
    [self SetButtonControlsFaceUp:ccButtonFace
                         BorderUp:ccButtonBorder
                         FaceDown:ccButtonFaceActive
                       BorderDown:ccButtonBorderActive];
}

- (id)init
{
    self = [super init];
    if (self)
        [self setDefaultCodes];
    return self;
}

// Colours are not archived: the defaults are set every time.
- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    if (self)
        [self setDefaultCodes];
    return self;
}

#pragma mark TKButtonCellColors

- (void)SetButtonControlsFaceUp:(CComponentCode)faceUp
                       BorderUp:(CComponentCode)borderUp
                       FaceDown:(CComponentCode)faceDown
                     BorderDown:(CComponentCode)borderDown
{
    m_nFaceUp = faceUp;
    m_nBorderUp = borderUp;
    m_nFaceDown = faceDown;
    m_nBorderDown = borderDown;
}

#pragma mark Drawing

- (void)DrawButton:(CGContextRef)context
            Active:(bool)fActive
              Area:(CGRect*)pArea
           Flipped:(bool)fFlipped
{
    if (gnAppStyle)
        DrawPaletteButton(context, fActive ? m_nBorderDown : m_nBorderUp,
                          fActive ? m_nFaceDown : m_nFaceUp, *pArea, fFlipped);
    else
        DrawShadedButton(context, *pArea, [self isEnabled], fActive);
}

- (void)drawBezelWithFrame:(NSRect)frame inView:(NSView*)view
{
    [self DrawButton:CurrentContext()
              Active:[self isHighlighted]
                Area:&frame
             Flipped:[view isFlipped]];
}

- (NSRect)drawTitle:(NSAttributedString*)title withFrame:(NSRect)frame inView:(NSView*)view
{
    (void)view;
    CGFloat dFontSize = 12.0;
    if ([self controlSize] == NSMiniControlSize)
        dFontSize = 8.0;
    else if ([self controlSize] == NSSmallControlSize)
        dFontSize = 10.0;
    const NSTextAlignment alignment =
        [self imagePosition] == NSImageLeft ? NSLeftTextAlignment : NSCenterTextAlignment;
    [[title string] drawInRect:frame withAttributes:ButtonTitleAttributes(dFontSize, alignment)];
    return frame;
}

@end
