#include "apps/host/Options.h"

#include "apps/support/process/ChildProcess.h"
#include "apps/support/program/KindHelp.h"
#include "apps/support/sound/CaptureFolder.h"
#include "apps/support/text/DecimalNumber.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <optional>
#include <set>
#include <stdexcept>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

void ReadFaults(const std::string& strNames, SignalFaults& faults)
{
    try
    {
        faults = ParseSignalFaults(strNames);
    }
    catch (const std::invalid_argument& error)
    {
        throw CLI::ValidationError("--misbehave", error.what());
    }
}

double SpeedOf(const std::string& strSpeed)
{
    if (strSpeed == "max")
    {
        return 0;
    }
    const std::optional<double> speed = DecimalFrom<double>(strSpeed);
    if (!speed || !(*speed > 0))
    {
        throw CUsageError("--speed " + strSpeed +
                          " is no speed - give a number above 0, 1 for real time, or max.");
    }
    return *speed;
}

std::vector<CCaptureSource> PlaceFiles(const HostOptions& options)
{
    if (options.positions.size() > options.files.size())
    {
        throw CUsageError("there are more positions than sound files - give at most one for each.");
    }
    std::vector<CCaptureSource> sources;
    double dEnd = 0, dRate = 0;
    for (size_t n = 0; n < options.files.size(); ++n)
    {
        const CSoundReader reader(options.files[n]);
        const double dOwnRate = reader.Info().samplerate;
        const double dPosition = n < options.positions.size()
                                     ? options.positions[n]
                                     : PositionBehind(dEnd, 0, dRate, dOwnRate);
        if (!std::isfinite(dPosition))
        {
            throw CUsageError("a position must be a number of samples.");
        }
        sources.push_back({reader.Path(), dPosition});
        dEnd = dPosition + static_cast<double>(reader.Info().frames);
        dRate = dOwnRate;
    }
    return sources;
}

fs::path CaptureFolder(const HostOptions& options)
{
    if (!options.strCaptureFolder.empty())
    {
        return fs::absolute(options.strCaptureFolder).lexically_normal();
    }
    return fs::absolute(fs::path(options.strResults) / "captures").lexically_normal();
}

// The recording stands between the view and the plug-in, and goes with the plug-in.
void CheckRecording(const HostOptions& options)
{
    const auto has = [&options](SignalFault fault) { return options.faults.count(fault) != 0; };
    if (!options.strRecord.empty() &&
        (has(SignalFault::ListenersKept) || has(SignalFault::NotifiesAfterDisposal)))
    {
        throw CUsageError("a plug-in that notifies whoever has left cannot be recorded - leave "
                          "--record away, or listeners-kept and notifies-after-disposal.");
    }
}

void DeclareCaptures(CLI::App& app, HostOptions& options)
{
    app.add_option(
        "SOUND_FILE", options.files,
        "Sound files to capture, one behind the other from sample 0. The same file at the "
        "same position a second time is what the server calls a duplicate");
    app.add_option("--position", options.positions,
                   "Where the first sample of a file lies on the host's timeline; the first one is "
                   "for the first file, and so on (repeatable)")
        ->type_name("SAMPLES")
        ->allow_extra_args(false);
    app.add_option("--speed", options.strSpeed,
                   "Times real time, or max for as fast as the disk allows (default 1)")
        ->type_name("X|max");
    app.add_option("--capture-folder", options.strCaptureFolder,
                   "Where captured files go (default: captures, in the results folder if there is "
                   "one)")
        ->type_name("DIR");
    app.add_option("--track", options.nTrack,
                   "The track that is chosen at first, counted from 0 in the menu's order "
                   "(default 0)")
        ->type_name("N");
    app.add_flag("--headless", options.fHeadless,
                 "Capture every file without a hand on the toggle, and end. Without it the window "
                 "stays open: each press of the toggle captures the next file");
    app.add_option("--results", options.strResults,
                   "Write captures.json and link-view.png, a picture of the window, into this "
                   "folder. Files there that are not ours are never replaced")
        ->type_name("DIR");
    app.add_option("--record", options.strRecord,
                   "Record every event, reply, property and notification in this new file, which "
                   "tarvane-replay plays and draws")
        ->type_name("FILE");
    app.add_option("--bundle", options.strBundle,
                   "The view to load (default: ../lib/TarvaneLink.bundle beside this program)")
        ->type_name("PATH");
}

void DeclareDriving(CLI::App& app, HostOptions& options)
{
    constexpr const char* kDriving = "For programs that drive this one";
    app.add_flag("--commands", options.fCommands,
                 "Do what lines on the standard input say, and answer each with one line of JSON: "
                 "capture FILE [SAMPLES], track N, open-menu, screenshot PATH, arm, disarm, state, "
                 "quit, with --stalls stalls, and with --count-objects objects. A FILE with blanks "
                 "stands between double quotes. The story goes to the standard error stream then")
        ->group(kDriving);
    app.add_option("--log", options.strLog,
                   "Record every property that the view writes in this file; - is the standard "
                   "output, or the standard error stream with --commands")
        ->type_name("FILE")
        ->group(kDriving);
    app.add_flag(
           "--stalls", options.fStalls,
           "Tell at the end how long the view kept the main thread, in all and at the longest, "
           "by what it did; in captures.json too, in milliseconds")
        ->group(kDriving);
    app.add_flag("--count-objects", options.fCountObjects,
                 "Count the objects that are alive, for the command objects")
        ->group(kDriving);
    app.add_flag(
           "--once", options.fOnce,
           "Offer each capture once. Without it, what no server got is sent when one appears, "
           "or by the next run with the same capture folder")
        ->group(kDriving);
    app.add_option("--ack-timeout", options.dAckTimeout,
                   "How long to wait for the acknowledge of a capture before it counts as not "
                   "delivered (default 200, as a delivery may take three minutes)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e6))
        ->group(kDriving);
}

void DeclareMisbehaviour(CLI::App& app, HostOptions& options)
{
    app.add_option_function<std::string>(
           "--misbehave",
           [&options](const std::string& strNames) { ReadFaults(strNames, options.faults); },
           HelpWithKinds("Let the plug-in do these things wrong, all together. It",
                         SignalFaultKinds()))
        ->type_name("NAME[,NAME...]")
        ->group("Misbehaviour, for tests");
}

// What another maker's plug-in captures, and where to, is its own affair; all that speaks of that,
// or of the host's own plug-in, does not go with it.
void DeclarePlugIn(CLI::App& app, HostOptions& options)
{
    const std::set<std::string> together{"--help",   "--help-all", "--version",  "--completions",
                                         "--bundle", "--track",    "--headless", "--ack-timeout"};
    CLI::Option* const pPlugIn =
        app.add_option(
               "--plugin", options.strPlugIn,
               "Host the signal side in this shared library in place of the host's own: "
               "each time that it is armed, it is made to capture for a moment; with "
               "--headless once. Beside it go --bundle, --track, --headless and --ack-timeout "
               "alone. See tarvane-conform(1) for what the library exports")
            ->type_name("FILE");
    for (CLI::Option* pOption : app.get_options())
    {
        if (pOption != pPlugIn && together.count(pOption->get_name()) == 0)
        {
            pPlugIn->excludes(pOption);
        }
    }
}

} // namespace

void DeclareOptions(CLI::App& app, HostOptions& options)
{
    AddHelpAll(app);
    DeclareCaptures(app, options);
    DeclareDriving(app, options);
    DeclareMisbehaviour(app, options);
    DeclarePlugIn(app, options);
}

fs::path BundlePath(const std::string& strBundle)
{
    const fs::path path = strBundle.empty()
                              ? ProgramFolder().parent_path() / "lib" / "TarvaneLink.bundle"
                              : fs::absolute(strBundle);
    std::error_code error;
    if (!fs::is_directory(path, error))
    {
        throw CUsageError("there is no bundle " + path.string() +
                          " - build it, or name one with --bundle.");
    }
    return path;
}

HostPlan MakePlan(const HostOptions& options)
{
    if (options.fHeadless && !options.fCommands && options.files.empty())
    {
        throw CUsageError("there is nothing to capture - name a sound file, or leave --headless "
                          "away.");
    }
    CheckRecording(options);
    HostPlan plan;
    plan.settings.dSpeed = SpeedOf(options.strSpeed);
    plan.settings.nTrack = options.nTrack;
    plan.settings.captureFolder = CaptureFolder(options);
    plan.settings.fContinues = !options.fOnce;
    plan.sources = PlaceFiles(options);
    plan.bundle = BundlePath(options.strBundle);
    for (const CCaptureSource& source : plan.sources)
    {
        CheckCapturePath(plan.settings.captureFolder, CSoundReader(source.file));
    }
    return plan;
}

void MakeCaptureFolder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
    {
        throw CUsageError("cannot make the capture folder " + folder.string() + " (" +
                          error.message() + ") - name another with --capture-folder.");
    }
    CheckCaptureFolder(folder);
}

} // namespace Tarvane
