// tarvane-server: the reference server. It runs the scripts that clients send as events, on
// documents of its own.
#include "apps/server/Options.h"
#include "apps/server/Server.h"
#include "apps/support/program/CommandLine.h"

#include <CLI/CLI.hpp>

int main(int argc, char** argv)
{
    CLI::App app("Receives script events under the signature 'TkNe', runs the scripts on its "
                 "session and answers with what they print. Prints \"ready\" once events are "
                 "received; SIGTERM or SIGINT ends it.",
                 "tarvane-server");
    Tarvane::AddCommonOptions(app, "the session or the bus could not be used");
    Tarvane::Server::Options options;
    Tarvane::Server::DeclareOptions(app, options);
    return Tarvane::RunProgram(app, argc, argv,
                               [&options] { return Tarvane::Server::RunServer(options); });
}
