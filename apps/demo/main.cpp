// tarvane-demo: takes real recordings through the whole link, from a plug-in's capture to regions
// of the server's session, and checks what came of them.
#include "apps/demo/Demo.h"

#include <CLI/CLI.hpp>

int main(int argc, char** argv)
{
    CLI::App app("Starts a server with a session of a few tracks and a host with the link view, "
                 "captures recordings, sends the first one a second time, which the server must "
                 "know by then, and checks the session.",
                 "tarvane-demo");
    Tarvane::DemoOptions options;
    Tarvane::DeclareOptions(app, options);
    Tarvane::AddCommonOptions(app, "something did not come out as it should");
    return Tarvane::RunProgram(app, argc, argv,
                               [&options] { return Tarvane::CDemo(options).Run(); });
}
