#import "controls/TKToggleSwitch.h"

@implementation TKToggleSwitch

- (void)SetDelegate:(id)idDelegate
{
    m_idDelegate = idDelegate;
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

- (BOOL)Hits:(NSEvent*)pEvent
{
    return NSPointInRect([self convertPoint:[pEvent locationInWindow] fromView:nil], [self bounds]);
}

- (void)Arm:(bool)fMouseDown
{
    m_fMouseDown = fMouseDown;
    [self setNeedsDisplay:YES];
}

- (void)mouseDown:(NSEvent*)pEvent
{
    [self Arm:[self Hits:pEvent]];
}

- (void)mouseDragged:(NSEvent*)pEvent
{
    [self Arm:[self Hits:pEvent]];
}

- (void)mouseUp:(NSEvent*)pEvent
{
    [self Arm:false];
    if (![self Hits:pEvent])
        return;
    [self setState:m_nState == 1 ? 0 : 1];
    [m_idDelegate TKSwitchChange:self
                   ModifierFlags:static_cast<std::int32_t>([pEvent modifierFlags])];
}

- (void)drawRect:(NSRect)rcDirty
{
    (void)rcDirty;
    NSRect rcFace = NSInsetRect([self bounds], 1, 1);
    [[NSColor colorWithCalibratedWhite:m_fMouseDown ? 0.1 : 0.2 alpha:1.0] setFill];
    NSBezierPath* pFace = [NSBezierPath bezierPathWithRoundedRect:rcFace xRadius:4 yRadius:4];
    [pFace fill];
    [[NSColor colorWithCalibratedWhite:0.5 alpha:1.0] setStroke];
    [pFace stroke];

    NSColor* pLamp = m_nState == 1
                         ? [NSColor colorWithCalibratedRed:1.0 green:0.25 blue:0.2 alpha:1.0]
                         : [NSColor colorWithCalibratedWhite:0.38 alpha:1.0];
    [pLamp setFill];
    NSRect rcLamp = NSMakeRect(NSMidX(rcFace) - 5, NSMidY(rcFace) - 5, 10, 10);
    [[NSBezierPath bezierPathWithOvalInRect:rcLamp] fill];
}

@end
