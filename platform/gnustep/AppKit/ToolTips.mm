#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

// GNUstep gives a tool tip's text just the room that it takes, and then breaks it in that room all
// the same; the second line is not seen. This keeps in one line what has the room for it.
@interface PlatformToolTips : NSObject
@end

namespace
{

using DrawMethod = void (*)(id, SEL, NSRect);

DrawMethod g_draw;
Ivar g_text;

NSAttributedString* InOneLine(NSAttributedString* text)
{
    NSMutableParagraphStyle* style =
        [[[NSParagraphStyle defaultParagraphStyle] mutableCopy] autorelease];
    [style setLineBreakMode:NSLineBreakByClipping];
    NSMutableAttributedString* line = [[text mutableCopy] autorelease];
    [line addAttribute:NSParagraphStyleAttributeName
                 value:style
                 range:NSMakeRange(0, [line length])];
    return line;
}

void Draw(id self, SEL selector, NSRect rect)
{
    // Longer ones have been given several lines.
    NSAttributedString* text = object_getIvar(self, g_text);
    if ([text size].width <= NSWidth([self bounds]))
        object_setIvar(self, g_text, InOneLine(text));
    g_draw(self, selector, rect);
    object_setIvar(self, g_text, text);
}

} // namespace

@implementation PlatformToolTips

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    Class view = NSClassFromString(@"GSTTView");
    g_text = class_getInstanceVariable(view, "_text");
    if (g_text != nullptr)
        platform::OverrideMethod(view, @selector(drawRect:), Draw, g_draw);
}

@end
