// tarvane-host: a small host. It opens the link view from its bundle, beside a plug-in that
// captures from sound files.
#include "apps/host/Host.h"
#import "apps/host/MakersHost.h"
#include "apps/host/Options.h"
#import "apps/support/window/Application.h"

#include <CLI/CLI.hpp>

#import <AppKit/AppKit.h>

namespace
{

int RunHost(const Tarvane::HostOptions& options, char** argv)
{
    const bool fOwn = options.strPlugIn.empty();
    const Tarvane::HostPlan plan = fOwn ? Tarvane::MakePlan(options) : Tarvane::HostPlan{};
    const std::filesystem::path bundle = Tarvane::BundlePath(options.strBundle);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Tarvane::OpenApplication(argv);
    int nExitCode = 0;
    if (fOwn)
    {
        Tarvane::CHost host(options, plan);
        nExitCode = host.Run();
    }
    else
    {
        Tarvane::CMakersHost host(options, bundle);
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
    Tarvane::AddCommonOptions(app,
                              "some capture was neither delivered nor a duplicate, or not whole");
    Tarvane::HostOptions options;
    Tarvane::DeclareOptions(app, options);
    return Tarvane::RunProgram(app, argc, argv, [&] { return RunHost(options, argv); });
}
