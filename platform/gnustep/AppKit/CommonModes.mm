#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

// What is to be performed on another thread is performed there in every common mode: in an
// application while it waits for events, shows a panel, or has a menu open. GNUstep performs it in
// the first of these alone, and so keeps what other threads have to tell for as long as a menu
// stays open.
@interface PlatformCommonModes : NSObject
@end

namespace
{

using OnMainThreadMethod = void (*)(id, SEL, SEL, id, BOOL);
using OnThreadMethod = void (*)(id, SEL, SEL, NSThread*, id, BOOL);

OnMainThreadMethod g_onMainThread;
OnThreadMethod g_onThread;

// Never freed: other threads may be using it when the program ends.
NSArray* g_modes;

void OnMainThread(id self, SEL, SEL selector, id argument, BOOL fWait)
{
    [self performSelectorOnMainThread:selector
                           withObject:argument
                        waitUntilDone:fWait
                                modes:g_modes];
}

void OnThread(id self, SEL, SEL selector, NSThread* thread, id argument, BOOL fWait)
{
    [self performSelector:selector
                 onThread:thread
               withObject:argument
            waitUntilDone:fWait
                    modes:g_modes];
}

} // namespace

@implementation PlatformCommonModes

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    g_modes = [[NSArray alloc] initWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                               NSEventTrackingRunLoopMode, nil];
    platform::ReplaceMethod([NSObject class],
                            @selector(performSelectorOnMainThread:withObject:waitUntilDone:),
                            OnMainThread, g_onMainThread);
    platform::ReplaceMethod([NSObject class],
                            @selector(performSelector:onThread:withObject:waitUntilDone:), OnThread,
                            g_onThread);
    [pool drain];
}

@end
