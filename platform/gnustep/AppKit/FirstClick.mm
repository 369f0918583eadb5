#import <AppKit/AppKit.h>

#import <GNUstepGUI/GSDisplayServer.h>

// The first click on a fresh window counts. GNUstep sets its mouse up in the middle of the first
// press: it asks the process of distributed notifications, waits for the answer with its run loop
// running, and so puts a release that has come by then ahead of the press. Here the mouse is set up
// before there are windows.
@interface PlatformFirstClick : NSObject
@end

// What the display server of the X11 back end has of its own.
@interface GSDisplayServer (PlatformFirstClick)
- (void)initializeMouse;
@end

@implementation PlatformFirstClick

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(applicationWillFinishLaunching:)
                                                 name:NSApplicationWillFinishLaunchingNotification
                                               object:nil];
    [pool drain];
}

+ (void)applicationWillFinishLaunching:(NSNotification*)notification
{
    (void)notification;
    GSDisplayServer* server = GSCurrentServer();
    if ([server respondsToSelector:@selector(initializeMouse)])
    {
        [server initializeMouse];
    }
}

@end
