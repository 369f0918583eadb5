// tarvane-host: a small host. It opens the link view from its bundle, beside a plug-in that
// captures from sound files.
#include "apps/host/Host.h"
#include "apps/host/Options.h"
#import "apps/support/Application.h"

#include <CLI/CLI.hpp>

#import <AppKit/AppKit.h>

namespace
{

int RunHost(const Tarvane::HostOptions& options, char** argv)
{
    const Tarvane::HostPlan plan = Tarvane::MakePlan(options);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Tarvane::OpenApplication(argv);
    int nExitCode = 0;
    {
        Tarvane::CHost host(options, plan);
        nExitCode = host.Run();
    }
    [pool drain];
    return nExitCode;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Opens the link view beside a plug-in that captures from sound files: plays each "
                 "file, writes what it captures, and has the view send it to Tarvane.",
                 "tarvane-host");
    Tarvane::AddCommonOptions(app, "some capture was neither delivered nor a duplicate");
    Tarvane::HostOptions options;
    Tarvane::DeclareOptions(app, options);
    return Tarvane::RunProgram(app, argc, argv, [&] { return RunHost(options, argv); });
}
