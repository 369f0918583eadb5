#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

// A pop-up button that has the keyboard shows a ring around it, whatever its cell draws. GNUstep
// leaves that to the cell's drawing, and so to nobody where a cell draws by itself.
@interface PlatformFocusRing : NSObject
@end

namespace
{

using DrawMethod = void (*)(id, SEL, NSRect);

DrawMethod g_draw;

bool DrawsByItself(NSCell* cell)
{
    const SEL draw = @selector(drawWithFrame:inView:);
    return class_getMethodImplementation([cell class], draw) !=
           class_getMethodImplementation([NSPopUpButtonCell class], draw);
}

void Draw(id self, SEL selector, NSRect rect)
{
    g_draw(self, selector, rect);
    if ([[self window] firstResponder] != self || !DrawsByItself([self cell]))
        return;
    // The system's own colour for it is black.
    [[NSColor colorWithCalibratedRed:0.35 green:0.62 blue:0.95 alpha:1] set];
    NSBezierPath* ring = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect([self bounds], 1, 1)
                                                         xRadius:5
                                                         yRadius:5];
    [ring setLineWidth:2];
    [ring stroke];
}

} // namespace

@implementation PlatformFocusRing

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    platform::OverrideMethod([NSPopUpButton class], @selector(drawRect:), Draw, g_draw);
    [pool drain];
}

@end
