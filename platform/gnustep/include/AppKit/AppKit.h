#pragma once

/// GNUstep declares the methods of NSMenuDelegate as required, though it describes them as
/// optional and calls only those that are there. Nobody can adopt that without a page of warnings,
/// so the name stands for the published form here.
#define NSMenuDelegate GNUstepMenuDelegate
#include_next <AppKit/AppKit.h>
#undef NSMenuDelegate

@protocol NSMenuDelegate <NSObject>
@optional
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu
                    forEvent:(NSEvent*)event
                      target:(id*)target
                      action:(SEL*)action;
- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu;
- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)shouldCancel;
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
- (NSRect)confinementRectForMenu:(NSMenu*)menu onScreen:(NSScreen*)screen;
@end
