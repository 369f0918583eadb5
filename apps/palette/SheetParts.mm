#import "apps/palette/SheetParts.h"

#include "colours/ComponentsColors.h"

namespace Tarvane
{
namespace
{

NSColor* Grey(CGFloat dLevel) { return [NSColor colorWithCalibratedWhite:dLevel alpha:1.0]; }

struct WordLook
{
    CGFloat dSize;
    bool fBold;
    CGFloat dLevel;
};

WordLook LookOf(CWords kind)
{
    switch (kind)
    {
    case CWords::Title:
        return {18, true, 0.95};
    case CWords::Section:
        return {11, true, 0.62};
    case CWords::Strong:
        return {12, true, 0.88};
    case CWords::Detail:
        break;
    }
    return {10, false, 0.66};
}

} // namespace

NSColor* SheetBackground() { return Grey(0.12); }

NSTextField* MakeWords(CWords kind, NSString* strText, NSRect frame, NSTextAlignment alignment)
{
    const WordLook look = LookOf(kind);
    NSTextField* words = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    [words setStringValue:strText];
    [words setEditable:NO];
    [words setSelectable:NO];
    [words setBezeled:NO];
    [words setBordered:NO];
    [words setDrawsBackground:NO];
    [words setAlignment:alignment];
    [words setTextColor:Grey(look.dLevel)];
    [words setFont:look.fBold ? [NSFont boldSystemFontOfSize:look.dSize]
                              : [NSFont systemFontOfSize:look.dSize]];
    [[words cell] setLineBreakMode:NSLineBreakByTruncatingTail];
    return words;
}

NSString* ToNSString(const std::string& strText)
{
    NSString* text = [NSString stringWithUTF8String:strText.c_str()];
    return text != nil ? text : @"(a text that is not UTF-8)";
}

} // namespace Tarvane

@implementation SheetGroup

- (BOOL)isFlipped
{
    return YES;
}

- (void)setStill:(bool)fStill
{
    m_fStill = fStill;
}

- (NSView*)hitTest:(NSPoint)point
{
    return m_fStill ? nil : [super hitTest:point];
}

@end

@implementation Swatch

- (id)initWithFrame:(NSRect)frame
               code:(CComponentCode)code
          direction:(FillDirection)direction
             radius:(float)fRadius
{
    self = [super initWithFrame:frame];
    if (self)
    {
        m_Code = code;
        m_direction = direction;
        m_fRadius = fRadius;
    }
    return self;
}

- (void)drawGround:(NSRect)bounds
{
    constexpr CGFloat dSquare = 5;
    for (CGFloat y = 0; y < NSHeight(bounds); y += dSquare)
    {
        for (CGFloat x = 0; x < NSWidth(bounds); x += dSquare)
        {
            const bool fLight = (int(x / dSquare) + int(y / dSquare)) % 2 == 0;
            [(fLight ? Tarvane::Grey(0.75) : Tarvane::Grey(0.45)) set];
            NSRectFill(NSIntersectionRect(NSMakeRect(x, y, dSquare, dSquare), bounds));
        }
    }
}

- (void)drawRect:(NSRect)rect
{
    rect = [self bounds];
    NSBezierPath* edge = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(rect, 0.5, 0.5)
                                                         xRadius:m_fRadius
                                                         yRadius:m_fRadius];
    [NSGraphicsContext saveGraphicsState];
    [edge addClip];
    [self drawGround:rect];
    [NSGraphicsContext restoreGraphicsState];
    [GraphicUtils FillRoundRect:(CGContextRef)[[NSGraphicsContext currentContext] graphicsPort]
                          Color:m_Code
                     Background:CComponentCode(0, 0)
                           Rect:rect
                         Radius:m_fRadius
                  FillDirection:m_direction
                        Flipped:[self isFlipped]];
}

@end

@implementation CellSpecimen

- (id)initWithFrame:(NSRect)frame cell:(NSCell*)cell style:(int)nStyle
{
    self = [super initWithFrame:frame];
    if (self)
    {
        m_cell = [cell retain];
        m_nStyle = nStyle;
    }
    return self;
}

- (void)dealloc
{
    [m_cell release];
    [super dealloc];
}

// As a button is.
- (BOOL)isFlipped
{
    return YES;
}

- (void)drawRect:(NSRect)rect
{
    (void)rect;
    const int nStyle = gnAppStyle;
    gnAppStyle = m_nStyle;
    [m_cell drawWithFrame:[self bounds] inView:self];
    gnAppStyle = nStyle;
}

@end

@implementation ToggleSpecimen

- (void)setHeldDown:(bool)fDown
{
    m_fMouseDown = fDown;
}

@end
