#import "bench/painting/DirectView.h"

#import "bench/painting/DirectDrawing.h"

#include <initializer_list>

namespace
{

void DrawRing(NSRect bounds, CGFloat r, CGFloat rInside, NSGradient* border, NSGradient* face,
              bool fDiagonal, bool fFlipped)
{
    NSGraphicsContext* operators = [NSGraphicsContext currentContext];
    const NSRect inside = NSInsetRect(bounds, 1, 1);
    for (const bool fFace : {false, true})
    {
        const NSRect rect = fFace ? inside : bounds;
        const Bench::Fall fall = Bench::FallOf(rect, fFlipped);
        NSPoint end = fall.end;
        if (fDiagonal)
            end.x = NSMaxX(rect);
        Bench::DrawGradient(operators, fFace ? face : border, rect, fFace ? rInside : r, fall.start,
                            end);
    }
}

} // namespace

@interface DirectGround : NSView
{
    NSGradient* m_ground;
}
@end

@implementation DirectGround

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self)
        m_ground = Bench::MakeGradient(0.098916, 0.23685);
    return self;
}

- (void)dealloc
{
    [m_ground release];
    [super dealloc];
}

- (void)drawRect:(NSRect)rect
{
    rect = [self bounds];
    Bench::DrawGradient([NSGraphicsContext currentContext], m_ground, rect, 0, rect.origin,
                        NSMakePoint(NSMaxX(rect), NSMinY(rect)));
}

@end

@interface DirectControl : NSView
{
  @public
    bool m_fToggle;
    NSImage* m_image;
    NSRect m_imageRect;
    CGFloat m_dFraction;
    NSString* m_title;
    NSRect m_titleRect;
    NSDictionary* m_attributes;
    NSGradient* m_border;
    NSGradient* m_face;
}
@end

@implementation DirectControl

- (void)dealloc
{
    [m_image release];
    [m_title release];
    [m_attributes release];
    [m_border release];
    [m_face release];
    [super dealloc];
}

- (BOOL)isFlipped
{
    return !m_fToggle;
}

- (void)drawRect:(NSRect)rect
{
    (void)rect;
    DrawRing([self bounds], m_fToggle ? 4 : 6, m_fToggle ? 4 : 5, m_border, m_face, m_fToggle,
             !m_fToggle);
    [m_image drawInRect:m_imageRect
               fromRect:NSZeroRect
              operation:NSCompositeSourceOver
               fraction:m_dFraction];
    [m_title drawInRect:m_titleRect withAttributes:m_attributes];
}

@end

namespace
{

DirectControl* DirectToggle(NSView* toggle, NSImage* image)
{
    DirectControl* control = [[[DirectControl alloc] initWithFrame:[toggle frame]] autorelease];
    const NSSize size = [image size], bounds = [toggle bounds].size;
    control->m_fToggle = true;
    control->m_image = [image retain];
    control->m_imageRect = NSMakeRect((bounds.width - size.width) / 2,
                                      (bounds.height - size.height) / 2, size.width, size.height);
    control->m_dFraction = 1;
    control->m_border = Bench::MakeGradient(0.321569, 0.482353, 0.995413);
    control->m_face = Bench::MakeGradient(0.21176470588235294, 0.21176470588235294);
    return control;
}

NSDictionary* TitleAttributes()
{
    NSMutableParagraphStyle* style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setAlignment:NSCenterTextAlignment];
    [style setLineBreakMode:NSLineBreakByTruncatingMiddle];
    const CGFloat dText = 0.7529411764705882;
    return [NSDictionary dictionaryWithObjectsAndKeys:[NSFont boldSystemFontOfSize:12],
                                                      NSFontAttributeName, style,
                                                      NSParagraphStyleAttributeName,
                                                      [NSColor colorWithCalibratedRed:dText
                                                                                green:dText
                                                                                 blue:dText
                                                                                alpha:1],
                                                      NSForegroundColorAttributeName, nil];
}

DirectControl* DirectMenu(NSPopUpButton* menu, NSImage* arrow)
{
    DirectControl* control = [[[DirectControl alloc] initWithFrame:[menu frame]] autorelease];
    const NSSize size = [arrow size], bounds = [menu bounds].size;
    control->m_image = [arrow retain];
    control->m_imageRect = NSMakeRect(bounds.width - size.width - 4,
                                      (bounds.height - size.height) / 2, size.width, size.height);
    control->m_dFraction = 0.9;
    control->m_title = [[menu titleOfSelectedItem] copy];
    control->m_titleRect = NSMakeRect(0, 1, bounds.width - size.width - 4, bounds.height - 2);
    control->m_attributes = [TitleAttributes() retain];
    control->m_border = Bench::MakeGradient(0.447059, 0.156863);
    control->m_face = Bench::MakeGradient(0.21176470588235294, 0.21176470588235294);
    return control;
}

NSTextField* PlainText(NSTextField* text)
{
    NSTextField* plain = [[[NSTextField alloc] initWithFrame:[text frame]] autorelease];
    [plain setCell:[[[text cell] copy] autorelease]];
    return plain;
}

NSView* Twin(NSView* part, NSImage* toggleImage, NSImage* arrow)
{
    if ([part isKindOfClass:[NSTextField class]])
        return PlainText((NSTextField*)part);
    if ([part isKindOfClass:[NSPopUpButton class]])
        return DirectMenu((NSPopUpButton*)part, arrow);
    if ([part isKindOfClass:NSClassFromString(@"TKToggleSwitch")])
        return DirectToggle(part, toggleImage);
    return nil;
}

} // namespace

NSView* Bench::MakeDirectTwin(NSView* linkView, NSImage* toggleImage, NSImage* arrow)
{
    NSView* ground = [[[DirectGround alloc] initWithFrame:[linkView frame]] autorelease];
    for (NSUInteger n = 0; n < [[linkView subviews] count]; ++n)
    {
        NSView* twin = Twin([[linkView subviews] objectAtIndex:n], toggleImage, arrow);
        if (twin != nil)
            [ground addSubview:twin];
    }
    return ground;
}
