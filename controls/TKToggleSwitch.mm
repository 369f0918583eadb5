#import "controls/TKToggleSwitch.h"

#include "colours/ComponentsColors.h"
#import "controls/GraphicUtils.h"

@implementation TKToggleSwitch

- (void)setDefaults
{
    m_fDrawButton = true;
    m_fEnabled = true;
    m_fRadius = gfDefaultRadius;
    m_nLabelColor = ccControlText;
}

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self)
        [self setDefaults];
    return self;
}

// Nibs may make it by either of the two. Looks are not archived.
- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    if (self)
        [self setDefaults];
    return self;
}

- (void)dealloc
{
    [m_imageOnUp release];
    [m_imageOnDown release];
    [m_imageOffUp release];
    [m_imageOffDown release];
    [m_strLabel release];
    [super dealloc];
}

#pragma mark State and delegate

- (void)SetDelegate:(id)idDelegate
{
    m_idDelegate = idDelegate;
}

- (id)Delegate
{
    return m_idDelegate;
}

- (NSInteger)state
{
    return m_nState;
}

- (void)setState:(NSInteger)nState
{
    if (nState == m_nState)
        return;
    m_nState = nState;
    [self setNeedsDisplay:YES];
}

#pragma mark Look

- (void)SetStateImages:(NSInteger)nState Up:(NSString*)strUp Down:(NSString*)strDown
{
    if (nState != 0 && nState != 1)
        return;
    NSImage** pUp = nState ? &m_imageOnUp : &m_imageOffUp;
    NSImage** pDown = nState ? &m_imageOnDown : &m_imageOffDown;
    [*pUp release];
    [*pDown release];
    // The view's own bundle, not the host's.
    NSBundle* bundle = [NSBundle bundleForClass:[self class]];
    NSString* upPath = [bundle pathForResource:strUp ofType:@"png"];
    NSString* downPath = [bundle pathForResource:strDown ofType:@"png"];
    *pUp = [[NSImage alloc] initWithContentsOfFile:upPath];
    *pDown = [[NSImage alloc] initWithContentsOfFile:downPath];
}

- (void)SetDrawButton:(bool)fDrawButton
{
    m_fDrawButton = fDrawButton;
}

- (void)SetCorner:(float)fRadius
{
    m_fRadius = fRadius;
}

- (void)SetUpColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_nOnUpFace = face;
    m_nOnUpBorder = border;
}

- (void)SetDownColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_nOnDownFace = face;
    m_nOnDownBorder = border;
}

- (void)SetOffUpColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_nOffUpFace = face;
    m_nOffUpBorder = border;
}

- (void)SetOffDownColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_nOffDownFace = face;
    m_nOffDownBorder = border;
}

- (void)SetLabel:(NSString*)strLabel XOffset:(float)fXOffset
{
    [strLabel retain];
    [m_strLabel release];
    m_strLabel = strLabel;
    m_fLabelXOffset = fXOffset;
}

- (void)SetLabelColor:(CComponentCode)colour
{
    m_nLabelColor = colour;
}

- (void)SetImageOffset:(float)fXOffset
{
    m_fImageXOffset = fXOffset;
}

- (void)SetEnabled:(bool)fEnabled
{
    m_fEnabled = fEnabled;
}

- (void)SetToolTip:(NSString*)strToolTip
{
    [self setToolTip:strToolTip];
}

#pragma mark Tracking

- (bool)isInside:(NSEvent*)event
{
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    return NSPointInRect(point, [self bounds]);
}

- (void)mouseDown:(NSEvent*)event
{
    if (!m_fEnabled || ![self isInside:event])
        return;
    m_fMouseDown = true;
    [self setNeedsDisplay:YES];
}

- (void)mouseDragged:(NSEvent*)event
{
    if (!m_fEnabled)
        return;
    const bool fInside = [self isInside:event];
    if (fInside == m_fMouseDown)
        return;
    m_fMouseDown = fInside;
    [self setNeedsDisplay:YES];
}

// Where the mouse is released alone decides, whatever the pointer did before.
- (void)mouseUp:(NSEvent*)event
{
    if (!m_fEnabled)
        return;
    if ([self isInside:event])
    {
        m_nState = m_nState == 1 ? 0 : 1;
        [m_idDelegate TKSwitchChange:self ModifierFlags:std::int32_t([event modifierFlags])];
    }
    m_fMouseDown = false;
    [self setNeedsDisplay:YES];
}

#pragma mark Drawing

- (NSImage*)image
{
    if (m_nState == 1)
        return m_fMouseDown ? m_imageOnDown : m_imageOnUp;
    return m_fMouseDown ? m_imageOffDown : m_imageOffUp;
}

// False, with nothing painted, when the on colour is empty, whatever the off colour is. Colours ask
// whether the state is 0, images whether it is 1: any other shows off images in on colours.
- (bool)fill:(CGContextRef)context rect:(NSRect)rect on:(CComponentCode)on off:(CComponentCode)off
{
    if (on.Empty())
        return false;
    const bool fOff = m_nState == 0 && !off.Empty();
    [GraphicUtils FillRoundRect:context
                          Color:fOff ? off : on
                     Background:CComponentCode(0, 0)
                           Rect:rect
                         Radius:m_fRadius
                  FillDirection:kFillDiagonal
                        Flipped:[self isFlipped]];
    return true;
}

// Returns what is left inside the border.
- (NSRect)drawButton:(NSRect)rect in:(CGContextRef)context
{
    const CComponentCode onBorder = m_fMouseDown ? m_nOnDownBorder : m_nOnUpBorder;
    const CComponentCode offBorder = m_fMouseDown ? m_nOffDownBorder : m_nOffUpBorder;
    const CComponentCode onFace = m_fMouseDown ? m_nOnDownFace : m_nOnUpFace;
    const CComponentCode offFace = m_fMouseDown ? m_nOffDownFace : m_nOffUpFace;

    if ([self fill:context rect:rect on:onBorder off:offBorder])
        rect = NSInsetRect(rect, 1.0, 1.0);
    [self fill:context rect:rect on:onFace off:offFace];
    return rect;
}

- (void)drawImage:(NSImage*)image inside:(NSRect)rect
{
    NSRect target = [self bounds];
    if (m_fDrawButton)
    {
        const NSSize size = image ? [image size] : NSZeroSize;
        target = NSMakeRect((NSWidth(rect) - size.width) * 0.5 + NSMinX(rect) + m_fImageXOffset,
                            (NSHeight(rect) - size.height) * 0.5 + NSMinY(rect), size.width,
                            size.height);
    }
    [image drawInRect:target fromRect:NSZeroRect operation:NSCompositeSourceOver fraction:1.0];
}

- (void)drawLabel
{
    NSFont* font = [NSFont fontWithName:@"Tahoma" size:12.0];
    NSMutableParagraphStyle* style = [[NSMutableParagraphStyle alloc] init];
    [style setAlignment:NSCenterTextAlignment];
    NSColor* colour = gAppColours.FindNSColor(m_nLabelColor);
    NSMutableDictionary* attributes = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:style, NSParagraphStyleAttributeName, nil];
    // Without the font or the colour the platform's own stand in.
    if (font)
        [attributes setObject:font forKey:NSFontAttributeName];
    if (colour)
        [attributes setObject:colour forKey:NSForegroundColorAttributeName];

    const NSRect bounds = [self bounds];
    const NSSize size = [m_strLabel sizeWithAttributes:attributes];
    const CGFloat y = NSMinY(bounds) + (NSHeight(bounds) - size.height) * 0.5 + 1.0;
    [m_strLabel drawInRect:NSMakeRect(m_fLabelXOffset, y, size.width, size.height)
            withAttributes:attributes];
    [style release];
}

- (void)drawRect:(NSRect)rect
{
    const auto context = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
    NSImage* image = [self image];
    rect = [self bounds]; // the whole switch is painted every time
    if (m_fDrawButton)
        rect = [self drawButton:rect in:context];
    [self drawImage:image inside:rect];
    if (m_strLabel)
        [self drawLabel];
}

@end
