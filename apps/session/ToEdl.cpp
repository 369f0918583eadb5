#include "apps/session/ToEdl.h"

#include "apps/editor/Interchange.h"
#include "apps/session/EditorModelFile.h"
#include "apps/session/NewFile.h"
#include "apps/support/program/CommandLine.h"

#include <algorithm>
#include <filesystem>
#include <memory>

namespace Tarvane::Session
{

namespace
{

struct ToEdlOptions
{
    std::string strFile;
    std::string strOutput;
    std::string strRate = "25";
    std::string strOffset = "00:00:00:00";
    std::string strTrack;
    bool fBetweenFrames = false;
};

int RunToEdl(const ToEdlOptions& options)
{
    Editor::EdlSettings settings;
    settings.strTitle = std::filesystem::path(options.strFile).stem().string();
    settings.rate = Editor::FrameRateNamed(options.strRate);
    settings.nOffset = Editor::FrameNumbered(options.strOffset, settings.rate);
    settings.fBetweenFrames = options.fBetweenFrames;

    Editor::Model model = LoadModel(options.strFile);
    if (!options.strTrack.empty())
    {
        std::erase_if(model.tracks, [&](const Editor::Track& track)
                      { return track.strName != options.strTrack; });
        if (model.tracks.empty())
            throw CUsageError("the session has no track \"" + options.strTrack + "\".");
    }
    WriteNew(options.strOutput, Editor::EditDecisionList(model, settings));
    return kExitDone;
}

} // namespace

void AddToEdl(CLI::App& app, std::function<int()>& run)
{
    const auto options = std::make_shared<ToEdlOptions>();
    CLI::App* pCommand =
        app.add_subcommand("to-edl", "Write the regions as a CMX 3600 list, of frames.");
    pCommand->add_option("file", options->strFile, "The session file.")->required();
    pCommand->add_option("output", options->strOutput,
                         "The list, a new file; without it, standard output.");
    pCommand->add_option("--frame-rate", options->strRate,
                         "23.976, 24, 25 (without it), 29.97, 29.97df or 30 frames a second.");
    pCommand->add_option("--offset", options->strOffset,
                         "The frame at which the timeline begins, 01:00:00:00 for instance.");
    pCommand->add_option("--track", options->strTrack, "Only the track of this name.");
    pCommand->add_flag("--between-frames", options->fBetweenFrames,
                       "Put what lies within a frame to its beginning, and say so in the list.");
    pCommand->callback([&run, options] { run = [options] { return RunToEdl(*options); }; });
}

} // namespace Tarvane::Session
