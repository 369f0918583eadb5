#import "apps/palette/PaletteWindow.h"

#import "apps/palette/Sheet.h"
#import "apps/palette/SheetParts.h"
#import "apps/support/window/Application.h"

#include <algorithm>
#include <stdexcept>

// Ends the run of the application with its window.
@interface PaletteWindowDelegate : NSObject
@end

@implementation PaletteWindowDelegate

- (void)windowWillClose:(NSNotification*)notification
{
    (void)notification;
    Tarvane::StopApplication();
}

@end

namespace Tarvane
{
namespace
{

NSWindow* MakeWindow(NSSize size, NSUInteger nStyle)
{
    NSWindow* window =
        [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, size.width, size.height)
                                    styleMask:nStyle
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setBackgroundColor:SheetBackground()];
    return window;
}

} // namespace

NSWindow* MakeSheetWindow(NSView* sheet)
{
    const NSUInteger nStyle = NSTitledWindowMask | NSClosableWindowMask |
                              NSMiniaturizableWindowMask | NSResizableWindowMask;
    NSSize size = [sheet frame].size;
    const NSSize room = [NSWindow contentRectForFrameRect:[[NSScreen mainScreen] visibleFrame]
                                                styleMask:nStyle]
                            .size;
    const CGFloat dScroller = [NSScroller scrollerWidth];
    const bool fTall = size.height > room.height;
    const bool fWide = size.width + (fTall ? dScroller : 0) > room.width;
    size.width = std::min(size.width + (fTall ? dScroller : 0), room.width);
    size.height = std::min(size.height + (fWide ? dScroller : 0), room.height);

    NSWindow* window = MakeWindow(size, nStyle);
    [window setTitle:@"Tarvane Link palette"];
    // Larger at first: scrollers that are there hide only where the sheet has room beside them.
    NSScrollView* scroll = [[[NSScrollView alloc]
        initWithFrame:NSMakeRect(0, 0, size.width + dScroller + 2, size.height + dScroller + 2)]
        autorelease];
    [scroll setHasVerticalScroller:YES];
    [scroll setHasHorizontalScroller:YES];
    [scroll setAutohidesScrollers:YES];
    [scroll setBackgroundColor:SheetBackground()];
    [scroll setDocumentView:sheet];
    [window setContentView:scroll];
    [sheet scrollPoint:NSZeroPoint];
    [window center];
    return window;
}

void SavePicture(const std::filesystem::path& path)
{
    NSView* sheet = MakeSheet();
    NSWindow* window = MakeWindow([sheet frame].size, NSBorderlessWindowMask);
    [window setContentView:sheet];
    [window orderFront:nil];
    BeginEditing(sheet);
    const std::string picture = TakePicture(sheet);
    [window orderOut:nil];
    [window release];
    NSData* data = [NSData dataWithBytes:picture.data() length:picture.size()];
    if (![data writeToFile:ToNSString(path.string()) atomically:YES])
    {
        throw std::runtime_error("cannot write the picture " + path.string() +
                                 " - name another file with --save.");
    }
}

void ShowSheet()
{
    PaletteWindowDelegate* delegate = [[PaletteWindowDelegate alloc] init];
    NSView* sheet = MakeSheet();
    NSWindow* window = MakeSheetWindow(sheet);
    [window setDelegate:(id)delegate];
    [window makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
    BeginEditing(sheet);
    [NSApp run];
    [window setDelegate:nil];
    [window release];
    [delegate release];
}

} // namespace Tarvane
