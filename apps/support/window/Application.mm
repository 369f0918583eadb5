#import "apps/support/window/Application.h"

#include "apps/support/program/CommandLine.h"
#include "apps/support/program/LastWords.h"
#include "apps/support/window/ActivationPolicy.h"
#include "apps/support/window/ApplicationArguments.h"
#include "apps/support/window/ApplicationIcon.h"
#include "apps/support/window/ServiceProvider.h"
#include "apps/support/window/TemporaryFolder.h"

#import <AppKit/AppKit.h>

#include <stdexcept>

namespace Tarvane
{

void OpenApplication(char** argv)
{
    // The arguments are hidden with the environment, which has to be as the folder needs it by
    // then.
    RequireTemporaryFolder();
    HideArguments(argv);
    OfferNoServices();
    ShowNoIconWindow();
    bool fOpen = false;
    try
    {
        fOpen = [NSApplication sharedApplication] != nil;
    }
    // An exception of the object system. Only a catch of everything takes it with every compiler.
    catch (...)
    {
    }
    if (!fOpen)
    {
        throw CUsageError("no window can be opened here - start it on a desktop, or under "
                          "scripts/with-desktop.");
    }
    // The platform's panel waits for somebody to press a button, and lets no signal end the
    // program.
    SayLastWordsAgain();
    StandInFront();
}

void StopApplication()
{
    [NSApp stop:nil];
    // The application looks at its stop only after an event.
    NSEvent* event = [NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0];
    [NSApp postEvent:event atStart:YES];
}

std::string TakePicture(NSView* view)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [[view window] display];
    [view lockFocus];
    NSBitmapImageRep* image =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    NSData* data = [image representationUsingType:NSPNGFileType properties:nil];
    const std::string picture(static_cast<const char*>([data bytes]), [data length]);
    [pool drain];
    if (picture.empty())
    {
        throw std::runtime_error("cannot take a picture of the window.");
    }
    return picture;
}

} // namespace Tarvane
