// tarvane-link-view: the link view in a process of its own. A plug-in starts it and serves it over
// the socket that it finds as descriptor 3; it ends with the plug-in.
#include "apps/support/delivery/DeliveryWatch.h"
#include "apps/support/delivery/ServerWatch.h"
#include "apps/support/process/ChildProcess.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/recording/AnswerWords.h"
#include "apps/support/window/Application.h"
#include "apps/support/window/ApplicationArguments.h"
#import "apps/support/window/MainThread.h"
#import "apps/support/window/ViewFactory.h"
#import "plugin/view/EmbeddedView.h"
#include "plugin/view/PlugInConnection.h"
#include "plugin/view/SocketUnit.h"

#include <CLI/CLI.hpp>

#import <AppKit/AppKit.h>

#include <atomic>
#include <sys/socket.h>
#include <unistd.h>

using namespace Tarvane;

namespace
{

constexpr int kSocket = 3;

// Main thread; null until the view is there.
EmbeddedView* s_embedded = nil;

void RequirePlugIn()
{
    int nType = 0;
    socklen_t nSize = sizeof nType;
    if (::getsockopt(kSocket, SOL_SOCKET, SO_TYPE, &nType, &nSize) != 0 || nType != SOCK_SEQPACKET)
        throw CUsageError("there is no plug-in - the Tarvane Link plug-in starts this program by "
                          "itself, in the host that has loaded it.");
}

CPlugInConnection::Hooks MakeHooks()
{
    return {
        .notified = &CSocketUnit::Raise,
        .embed = [](std::uint32_t nWindow)
        { CallOnMainThread([nWindow] { [s_embedded embed:nWindow]; }); },
        .detach = [](std::uint32_t nWindow)
        { CallOnMainThread([nWindow] { [s_embedded detach:nWindow]; }); },
        // Wherever the main thread is: it may wait for a server.
        .ended = [] { ::_exit(kExitDone); },
    };
}

// An icon of an application on the desktop would be one of a window that is not ours.
void HideIcon()
{
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
}

void OpenView(CPlugInConnection& connection, CDeliveryWatch& deliveries)
{
    AudioUnit pUnit = nullptr;
    if (AudioComponentInstanceNew(CSocketUnit::Register(connection, deliveries), &pUnit) != noErr)
        throw std::runtime_error("the plug-in cannot be opened.");
    const std::filesystem::path bundle = ProgramFolder() / "TarvaneLink.bundle";
    NSView* view = [MakeViewFactory(bundle) uiViewForAudioUnit:pUnit withSize:NSZeroSize];
    if (view == nil)
        throw std::runtime_error("the bundle " + bundle.string() + " made no view.");
    s_embedded = [[EmbeddedView alloc] initWithView:view];
}

int RunView(char** argv)
{
    RequirePlugIn();
    CCommandWatch commands;
    CAnswerWords answerWords;
    CDeliveryWatch deliveries(commands);
    CPlugInConnection connection(kSocket, MakeHooks());
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    try
    {
        HideArguments(argv);
        HideIcon();
        OpenApplication(argv);
        [EmbeddedView prepareApplication];
        WatchEvents({&commands, &answerWords});
        OpenView(connection, deliveries);
    }
    catch (const std::exception& error)
    {
        connection.Tell({.kind = FrameKind::Failed},
                        std::string("The view cannot be opened: ") + error.what());
        throw;
    }
    [pool drain];
    connection.Tell({.kind = FrameKind::Ready});
    const CServerWatch watch([&] { connection.Tell({.kind = FrameKind::ServerAppeared}); });
    [NSApp run];
    return kExitDone;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Shows the link view inside a host's window. The Tarvane Link plug-in starts it.",
                 "tarvane-link-view");
    AddCommonOptions(app, "the view could not be opened");
    return RunProgram(app, argc, argv, [&] { return RunView(argv); });
}
