#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

// A cell knows the control that it belongs to from the moment that it does. GNUstep tells it while
// it draws a cell, and only in its own drawing: a cell that draws by itself never hears of it, and
// then shows no change until something else has the control redrawn, and sends its action in the
// name of nobody.
@interface PlatformCellControlView : NSObject
@end

namespace
{

using DrawMethod = void (*)(id, SEL, NSRect);
using SetCellMethod = void (*)(id, SEL, NSCell*);
using SelectItemMethod = void (*)(id, SEL, id<NSMenuItem>);
using DeallocMethod = void (*)(id, SEL);

DrawMethod g_draw;
SetCellMethod g_setCell;
SelectItemMethod g_selectItem;
DeallocMethod g_dealloc;

// The cell keeps a bare pointer.
void LeaveCell(NSControl* control)
{
    NSCell* cell = [control cell];
    if ([cell controlView] == control)
        [cell setControlView:nil];
}

void SetCell(id self, SEL selector, NSCell* cell)
{
    LeaveCell(self);
    g_setCell(self, selector, cell);
    [cell setControlView:self];
}

// The cell of a nib is there without having been set.
void Draw(id self, SEL selector, NSRect rect)
{
    [[self cell] setControlView:self];
    g_draw(self, selector, rect);
}

// GNUstep has the button redrawn when the button selects, but not when its cell or menu does.
void SelectItem(id self, SEL selector, id<NSMenuItem> item)
{
    g_selectItem(self, selector, item);
    [[self controlView] setNeedsDisplay:YES];
}

void Dealloc(id self, SEL selector)
{
    LeaveCell(self);
    g_dealloc(self, selector);
}

} // namespace

@implementation PlatformCellControlView

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    platform::OverrideMethod([NSControl class], @selector(drawRect:), Draw, g_draw);
    platform::OverrideMethod([NSControl class], @selector(setCell:), SetCell, g_setCell);
    platform::ReplaceMethod([NSPopUpButtonCell class], @selector(selectItem:), SelectItem,
                            g_selectItem);
    platform::OverrideMethod([NSControl class], @selector(dealloc), Dealloc, g_dealloc);
    [pool drain];
}

@end
