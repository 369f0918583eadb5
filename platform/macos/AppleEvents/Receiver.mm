#include <TarvanePlatform/Application.h>

#import <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cstdio>

namespace
{

// Whoever waits for more than events looks up after so many seconds.
constexpr double kLongestWait = 0.1;

char Character(OSType code, int nPlace) { return static_cast<char>(code >> (24 - 8 * nPlace)); }

void TellOfSignature(OSType signature)
{
    UInt32 type = 0;
    UInt32 stated = 0;
    CFBundleGetPackageInfo(CFBundleGetMainBundle(), &type, &stated);
    if (stated != signature)
        std::fprintf(stderr,
                     "No event for '%c%c%c%c' will find this program: that is not the "
                     "CFBundleSignature of its application.\n",
                     Character(signature, 0), Character(signature, 1), Character(signature, 2),
                     Character(signature, 3));
}

} // namespace

void TarvaneSetApplicationSignature(OSType signature)
{
    TellOfSignature(signature);
    // Only applications are found, and only their event loop calls the handlers.
    [NSApplication sharedApplication];
    [NSApp finishLaunching];
}

void TarvaneHandleEvents(double seconds)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:std::min(seconds, kLongestWait)];
    NSEvent* event = [NSApp nextEventMatchingMask:NSEventMaskAny
                                        untilDate:end
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil)
        [NSApp sendEvent:event];
    [pool drain];
}
