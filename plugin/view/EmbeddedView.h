// A view inside a window of another process.
#pragma once

#import <AppKit/AppKit.h>

/// A borderless window that lives inside a host's. It takes clicks as they come and leaves the
/// keyboard to the host, whose keys go on to work while the pointer is over the view.
@interface EmbeddedWindow : NSWindow
@end

/// Puts one view into a window of the display and takes it out again. Main thread.
@interface EmbeddedView : NSObject
{
    NSView* m_view;
    EmbeddedWindow* m_window; ///< only while embedded
    unsigned long m_nHost;    ///< the host's window; 0 while not embedded
    NSTimer* m_timer;         ///< owned by the run loop
    NSPoint m_ptSeen;         ///< where the window was seen on the display
}

/// Makes the application one of views inside others' windows, once its object is there: errors of
/// the display are logged and end no process, for a host may destroy its windows at any time; and
/// the application counts as active whatever has the focus.
+ (void)prepareApplication;

/// The view is retained.
- (id)initWithView:(NSView*)view;

/// Shows the view at the upper left corner of the window. One that holds it already is left first.
- (void)embed:(unsigned long)nHost;
/// Leaves the window, if it is the one that holds the view; 0 is whichever that is.
- (void)detach:(unsigned long)nHost;

@end
