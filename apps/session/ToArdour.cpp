#include "apps/session/ToArdour.h"

#include "apps/editor/ArdourEditor.h"
#include "apps/session/EditorModelFile.h"

#include <iostream>
#include <memory>

namespace Tarvane::Session
{

namespace
{

struct ToArdourOptions
{
    std::string strFile;
    std::string strFolder;
    Editor::CArdourEditor::Settings settings;
};

int RunToArdour(const ToArdourOptions& options)
{
    const Editor::Model model = LoadModel(options.strFile);
    Editor::CArdourEditor editor(options.strFolder, options.settings);
    if (editor.File().empty() && !model.HasRegions() && options.settings.nRate == 0)
        throw CUsageError("the session has no region and so no sample rate; give the new one "
                          "a rate with --rate.");
    editor.Take(model);
    std::cout << editor.File().string() << '\n';
    return kExitDone;
}

} // namespace

void AddToArdour(CLI::App& app, std::function<int()>& run)
{
    const auto options = std::make_shared<ToArdourOptions>();
    CLI::App* pCommand = app.add_subcommand(
        "to-ardour", "Put the tracks and regions into an Ardour 7 session, new or there already.");
    pCommand->add_option("file", options->strFile, "The session file.")->required();
    pCommand->add_option("folder", options->strFolder, "The folder of the Ardour session.")
        ->required();
    pCommand->add_flag("--copy", options->settings.fCopyFiles,
                       "Copy the sound files into the folder; without it, link to them.");
    pCommand
        ->add_option("--rate", options->settings.nRate,
                     "The rate of a new session, in samples per second; without it, that of the "
                     "first region.")
        ->check(CLI::Range(1, 768'000));
    pCommand->callback([&run, options] { run = [options] { return RunToArdour(*options); }; });
}

} // namespace Tarvane::Session
