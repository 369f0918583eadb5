#include "apps/session/ToRpp.h"

#include "apps/editor/Interchange.h"
#include "apps/session/EditorModelFile.h"
#include "apps/session/NewFile.h"
#include "apps/support/program/CommandLine.h"

#include <memory>

namespace Tarvane::Session
{

namespace
{

struct ToRppOptions
{
    std::string strFile;
    std::string strOutput;
    double dOffset = 0;
};

int RunToRpp(const ToRppOptions& options)
{
    WriteNew(options.strOutput, Editor::ReaperProject(LoadModel(options.strFile), options.dOffset));
    return kExitDone;
}

} // namespace

void AddToRpp(CLI::App& app, std::function<int()>& run)
{
    const auto options = std::make_shared<ToRppOptions>();
    CLI::App* pCommand =
        app.add_subcommand("to-rpp", "Write the tracks and regions as a REAPER project.");
    pCommand->add_option("file", options->strFile, "The session file.")->required();
    pCommand->add_option("output", options->strOutput,
                         "The project, a new file; without it, standard output.");
    pCommand
        ->add_option("--ruler", options->dOffset,
                     "Seconds that the ruler shows where the timeline begins.")
        ->check(CLI::Range(-1e6, 1e6));
    pCommand->callback([&run, options] { run = [options] { return RunToRpp(*options); }; });
}

} // namespace Tarvane::Session
