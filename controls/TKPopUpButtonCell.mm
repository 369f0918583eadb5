#import "controls/TKPopUpButtonCell.h"

#include "colours/ComponentsColors.h"
#import "controls/ButtonDrawing.h"

namespace
{
NSImage* sharedArrow; // one for all cells, loaded by the first draw and never released

constexpr CGFloat kArrowMargin = 4.0; // points between the arrow and the frame's right edge
} // namespace

@implementation TKPopUpButtonCell

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

    CGFloat dFontSize = 12.0;
    NSRect titleRect = NSMakeRect(NSMinX(frame), NSMinY(frame) + 1.0, tw, NSHeight(frame) - 2.0);
    if ([self controlSize] == NSSmallControlSize)
    {
        dFontSize = 10.0;
        titleRect.origin.y = NSMinY(frame) + 3.0;
        titleRect.size.height = NSHeight(frame) - 3.0;
    }
    else if ([self controlSize] == NSMiniControlSize)
    {
        dFontSize = 8.0;
    }
    NSDictionary* attributes = ButtonTitleAttributes(dFontSize, NSCenterTextAlignment);

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
