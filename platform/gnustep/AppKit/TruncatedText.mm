#import "platform/gnustep/AppKit/TruncatedText.h"

#include "platform/gnustep/AppKit/MethodReplacement.h"

// GNUstep keeps the truncating modes of a paragraph style and does nothing with them: a text that
// is too long is broken in lines, of which the first shows, or cut at both ends. This shortens it
// before it is drawn in a rectangle.
@interface PlatformTruncatedText : NSObject
@end

namespace
{

using DrawStringMethod = void (*)(id, SEL, NSRect, NSDictionary*);
using DrawAttributedMethod = void (*)(id, SEL, NSRect);

DrawStringMethod g_drawString;
DrawAttributedMethod g_drawAttributed;

NSLineBreakMode ModeOf(NSAttributedString* text)
{
    if ([text length] == 0)
        return NSLineBreakByWordWrapping;
    NSParagraphStyle* style = [text attribute:NSParagraphStyleAttributeName
                                      atIndex:0
                               effectiveRange:nullptr];
    return [style lineBreakMode];
}

bool Truncates(NSLineBreakMode mode)
{
    return mode == NSLineBreakByTruncatingHead || mode == NSLineBreakByTruncatingTail ||
           mode == NSLineBreakByTruncatingMiddle;
}

// How many of the characters that are kept stand before the ellipsis.
NSUInteger KeptInFront(NSLineBreakMode mode, NSUInteger kept)
{
    if (mode == NSLineBreakByTruncatingHead)
        return 0;
    return mode == NSLineBreakByTruncatingTail ? kept : (kept + 1) / 2;
}

NSAttributedString* WithEllipsis(NSAttributedString* text, NSLineBreakMode mode, NSUInteger kept)
{
    const NSUInteger front = KeptInFront(mode, kept);
    NSRange gap = {front, [text length] - kept};
    // A character and its accents, or the halves of one beyond the first 65536, go together.
    gap = [[text string] rangeOfComposedCharacterSequencesForRange:gap];
    NSMutableAttributedString* shorter = [[text mutableCopy] autorelease];
    [shorter replaceCharactersInRange:gap withString:@"\u2026"];
    return shorter;
}

NSAttributedString* Longest(NSAttributedString* text, NSLineBreakMode mode, CGFloat width)
{
    NSUInteger fits = 0, tooMany = [text length];
    while (tooMany - fits > 1)
    {
        const NSUInteger kept = (fits + tooMany) / 2;
        ([WithEllipsis(text, mode, kept) size].width <= width ? fits : tooMany) = kept;
    }
    return WithEllipsis(text, mode, fits);
}

void DrawString(id self, SEL selector, NSRect rect, NSDictionary* attributes)
{
    NSAttributedString* text = [[[NSAttributedString alloc] initWithString:self
                                                                attributes:attributes] autorelease];
    NSAttributedString* shown = platform::TruncatedText(text, NSWidth(rect));
    g_drawString(shown == text ? self : [shown string], selector, rect, attributes);
}

void DrawAttributed(id self, SEL selector, NSRect rect)
{
    g_drawAttributed(platform::TruncatedText(self, NSWidth(rect)), selector, rect);
}

} // namespace

NSAttributedString* platform::TruncatedText(NSAttributedString* text, CGFloat width)
{
    const NSLineBreakMode mode = ModeOf(text);
    if (!Truncates(mode) || [text size].width <= width ||
        [[text string] rangeOfCharacterFromSet:[NSCharacterSet newlineCharacterSet]].length > 0)
        return text;
    return Longest(text, mode, width);
}

@implementation PlatformTruncatedText

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    platform::ReplaceMethod([NSString class], @selector(drawInRect:withAttributes:), DrawString,
                            g_drawString);
    platform::ReplaceMethod([NSAttributedString class], @selector(drawInRect:), DrawAttributed,
                            g_drawAttributed);
}

@end
