// tarvane-demo: takes real recordings through the whole link, from a plug-in's capture to regions
// of the server's session, and checks what came of them.
#include "apps/demo/Demo.h"
#include "apps/support/CommandLine.h"

int main(int argc, char** argv)
{
    CLI::App app("Starts a server with a session of a few tracks and a host with the link view, "
                 "captures recordings, sends the first one a second time, which the server must "
                 "know by then, and checks the session.",
                 "tarvane-demo");
    Tarvane::DemoOptions options;
    app.add_option("SOUND_FILE", options.files,
                   "Recordings to capture (default: two that come with the system)");
    app.add_option(
           "--out", options.strOut,
           "Where the results go: session.txt, link-view.png, the session, the captures and "
           "logs. Results of an earlier run are replaced, other files never (default: out)")
        ->type_name("DIR");
    app.add_option("--speed", options.strSpeed,
                   "Times real time, or max for as fast as the disk allows (default 1)")
        ->type_name("X|max");
    app.add_flag("--headless", options.fHeadless,
                 "End when all is done. Without it the window stays open for use by hand");
    Tarvane::AddCommonOptions(app, "something did not come out as it should");
    return Tarvane::RunProgram(app, argc, argv,
                               [&options] { return Tarvane::CDemo(options).Run(); });
}
