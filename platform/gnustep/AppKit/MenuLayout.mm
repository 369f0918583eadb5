#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

#include <initializer_list>

// What a menu costs grows with its items and no faster: it is laid out once, when it is shown,
// however many of them have changed before. GNUstep has the place of each changed item drawn anew,
// and to know that place it lays the whole menu out, each time; it searches for each from the
// first; and it empties a menu from the front, so that all others move up for each.
@interface PlatformMenuLayout : NSObject
@end

namespace
{

using SetNeedsDisplayMethod = void (*)(id, SEL, NSInteger);
using IndexMethod = NSInteger (*)(id, SEL, id<NSMenuItem>);
using RemoveMethod = void (*)(id, SEL);

SetNeedsDisplayMethod g_setNeedsDisplay;
IndexMethod g_indexOfItem;
RemoveMethod g_removeAllItems;

// Before the layout nobody knows where an item is: all of the menu is drawn after it.
void SetNeedsDisplay(id self, SEL selector, NSInteger index)
{
    if ([self needsSizing])
        [self setNeedsDisplay:YES];
    else
        g_setNeedsDisplay(self, selector, index);
}

// Whoever fills a menu or goes through it asks for one item after the other, and meanwhile, nothing
// being selected, for none.
NSInteger IndexOfItem(id self, SEL selector, id<NSMenuItem> item)
{
    if (item == nil)
        return -1;
    static NSInteger nLast = 0;
    const NSInteger nItems = [self numberOfItems];
    for (const NSInteger nIndex : {nLast + 1, nLast, NSInteger(0)})
    {
        if (nIndex < nItems && [self itemAtIndex:nIndex] == (id)item)
            return nLast = nIndex;
    }
    const NSInteger nIndex = g_indexOfItem(self, selector, item);
    if (nIndex >= 0)
        nLast = nIndex;
    return nIndex;
}

void RemoveAllItems(id self, SEL selector)
{
    NSMenu* menu = [self menu];
    [self selectItem:nil];
    for (NSInteger nIndex = [menu numberOfItems] - 1; nIndex > 0; --nIndex)
        [menu removeItemAtIndex:nIndex];
    g_removeAllItems(self, selector);
}

} // namespace

@implementation PlatformMenuLayout

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    platform::ReplaceMethod([NSMenuView class], @selector(setNeedsDisplayForItemAtIndex:),
                            SetNeedsDisplay, g_setNeedsDisplay);
    platform::ReplaceMethod([NSMenu class], @selector(indexOfItem:), IndexOfItem, g_indexOfItem);
    platform::ReplaceMethod([NSPopUpButtonCell class], @selector(removeAllItems), RemoveAllItems,
                            g_removeAllItems);
    [pool drain];
}

@end
