#import <AppKit/AppKit.h>

#include <CoreFoundation/CFUserNotification.h>

// Ends the alert that is shown when its time is over.
@interface PlatformAlertTimeout : NSObject
{
  @public
    BOOL m_fOver;
}
- (void)end:(NSTimer*)timer;
@end

@implementation PlatformAlertTimeout

- (void)end:(NSTimer*)timer
{
    (void)timer;
    m_fOver = YES;
    [NSApp stopModalWithCode:NSRunAbortedResponse];
    // GNUstep looks whether the panel is over after an event only, and for events that the program
    // posted only when a timer has fired once more: this one, a moment later.
    [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}

@end

namespace
{

const CFOptionFlags kLevelMask = 3;

using AlertPanel = NSInteger (*)(NSString* title, NSString* format, NSString* defaultButton,
                                 NSString* alternateButton, NSString* otherButton, ...);

AlertPanel PanelFor(CFOptionFlags flags)
{
    switch (flags & kLevelMask)
    {
    case kCFUserNotificationStopAlertLevel:
        return NSRunCriticalAlertPanel;
    case kCFUserNotificationNoteAlertLevel:
        return NSRunInformationalAlertPanel;
    default:
        return NSRunAlertPanel;
    }
}

CFOptionFlags ResponseFor(NSInteger nButton)
{
    switch (nButton)
    {
    case NSAlertAlternateReturn:
        return kCFUserNotificationAlternateResponse;
    case NSAlertOtherReturn:
        return kCFUserNotificationOtherResponse;
    default:
        return kCFUserNotificationDefaultResponse;
    }
}

NSString* TextOrEmpty(CFStringRef text) { return text == nullptr ? @"" : (NSString*)text; }

} // namespace

SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef,
                                      CFURLRef, CFURLRef, CFStringRef header, CFStringRef message,
                                      CFStringRef defaultButtonTitle,
                                      CFStringRef alternateButtonTitle,
                                      CFStringRef otherButtonTitle, CFOptionFlags* response)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    if (NSApp == nil || ![NSThread isMainThread])
    {
        [pool drain];
        return -1;
    }

    PlatformAlertTimeout* over = [[[PlatformAlertTimeout alloc] init] autorelease];
    NSTimer* timer = nil;
    if (timeout > 0)
    {
        timer = [[[NSTimer alloc] initWithFireDate:[NSDate dateWithTimeIntervalSinceNow:timeout]
                                          interval:0.01
                                            target:over
                                          selector:@selector(end:)
                                          userInfo:nil
                                           repeats:YES] autorelease];
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
    }
    // The message is not a format, whatever is in it.
    const NSInteger nButton = PanelFor(flags)(
        TextOrEmpty(header), @"%@",
        defaultButtonTitle == nullptr ? @"OK" : (NSString*)defaultButtonTitle,
        (NSString*)alternateButtonTitle, (NSString*)otherButtonTitle, TextOrEmpty(message));
    [timer invalidate];
    if (response != nullptr)
        *response = over->m_fOver ? kCFUserNotificationCancelResponse : ResponseFor(nButton);
    [pool drain];
    return 0;
}
