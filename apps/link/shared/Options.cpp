#include "apps/link/shared/Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tarvane::Link
{

namespace
{

constexpr double kTicksPerSecond = 60.0;
constexpr double kLongestTimeout = 60.0;
constexpr double kLongestInterval = 3600.0;

// Reads a number with a check that says in words what will do.
template <typename Number> class CNumberIn : public CLI::Validator
{
public:
    CNumberIn(Number nLowest, Number nHighest, const std::string& strWords)
    {
        func_ = [=](std::string& strText)
        {
            Number nValue{};
            const bool fRead = CLI::detail::lexical_cast(strText, nValue);
            // Not a number compares false with everything.
            return fRead && nValue >= nLowest && nValue <= nHighest
                       ? std::string()
                       : "\"" + strText + "\" will not do; write " + strWords;
        };
    }
};

const CNumberIn<int> kTrack(0, std::numeric_limits<int>::max(),
                            "a track's place in the list, from 0");
const CNumberIn<double> kSamples(std::numeric_limits<double>::lowest(),
                                 std::numeric_limits<double>::max(), "a number of samples");
const CNumberIn<long long> kWholeSamples(std::numeric_limits<long long>::min(),
                                         std::numeric_limits<long long>::max(),
                                         "a whole number of samples");
const CNumberIn<long> kRate(1, std::numeric_limits<int>::max(), "a rate in samples per second");

CLI::App* AddCommand(CLI::App& app, Options& options, const std::string& strName,
                     const std::string& strWhat)
{
    CLI::App* pCommand = app.add_subcommand(strName, strWhat);
    pCommand->final_callback([&options, strName] { options.strCommand = strName; });
    return pCommand;
}

void DeclareFilePlace(CLI::App& command, FilePlace& place)
{
    command.add_option("FILE", place.strFile, "The sound file")->required();
    command.add_option("--track", place.nTrack, "The track's place in the list, from 0")
        ->type_name("N")
        ->check(kTrack)
        ->required();
    command
        .add_option("--position", place.dPosition,
                    "Where the file's first sample lies on the timeline, in samples")
        ->type_name("P")
        ->check(kSamples)
        ->required();
    CLI::Option* pStart =
        command
            .add_option("--start", place.start,
                        "First sample of the stretch. Without --start and --end it is the whole "
                        "file, which must then be readable here")
            ->type_name("S")
            ->check(kSamples);
    CLI::Option* pEnd = command.add_option("--end", place.end, "The sample after the stretch")
                            ->type_name("E")
                            ->check(kSamples);
    pStart->needs(pEnd);
    pEnd->needs(pStart);
}

void DeclareStretch(CLI::App& command, TrackStretch& stretch, const std::string& strPrefix,
                    const std::string& strWhat)
{
    command.add_option(strPrefix + "track", stretch.nTrack, strWhat + ": the track")
        ->type_name("N")
        ->check(kTrack)
        ->required();
    command.add_option(strPrefix + "start", stretch.nStart, strWhat + ": its first sample")
        ->type_name("S")
        ->check(kWholeSamples)
        ->required();
    command.add_option(strPrefix + "end", stretch.nEnd, strWhat + ": the sample after it")
        ->type_name("E")
        ->check(kWholeSamples)
        ->required();
}

void DeclareFileCommands(CLI::App& app, Options& options)
{
    CLI::App* pSend =
        AddCommand(app, options, "send", "Add a stretch of a sound file to a track, as a region");
    DeclareFilePlace(*pSend, options.place);
    pSend
        ->add_option("--index-mask", options.place.nIndexMask,
                     "Send a list of the numbers of the mask's set bits along (5 sends {0,2}); the "
                     "server decides what it means, channels for instance (default 0: no list)")
        ->type_name("MASK")
        ->check(CNumberIn<int>(0, std::numeric_limits<int>::max(), "a number, 0 or more"));
    DeclareFilePlace(
        *AddCommand(app, options, "duplicate",
                    "Ask whether the track has this audio already: prints \"duplicate\" "
                    "or \"new\""),
        options.place);
}

void DeclareQuestions(CLI::App& app, Options& options)
{
    AddCommand(app, options, "tracks", "List the tracks, each with its place in the list");
    AddCommand(app, options, "offset", "Print the offset between the timelines, in seconds");
    AddCommand(app, options, "updates", "Print the server's count of updates");
}

void DeclareRegionCommands(CLI::App& app, Options& options)
{
    AddCommand(app, options, "export",
               "Have the server write its selected region to a file, and print that file's path");
    AddCommand(app, options, "render",
               "Have the server render its selected region, and print where it lies")
        ->add_option("--rate", options.rate,
                     "The rate that the host works at, to be warned when the server's is another")
        ->type_name("R")
        ->check(kRate);
}

void DeclareProcessCommands(CLI::App& app, Options& options)
{
    CLI::App* pAlign =
        AddCommand(app, options, "align", "Have the server align a dub with its guide");
    DeclareStretch(*pAlign, options.guide, "--guide-", "The guide");
    DeclareStretch(*pAlign, options.dub, "--dub-", "The dub");
    pAlign->add_option("--aligned-track", options.nOutputTrack, "The track for the result")
        ->type_name("N")
        ->check(kTrack)
        ->required();

    CLI::App* pSpread =
        AddCommand(app, options, "spread", "Have the server set up its single-input process");
    DeclareStretch(*pSpread, options.input, "--", "The input");
    pSpread->add_option("--output-track", options.nOutputTrack, "The track for the result")
        ->type_name("N")
        ->check(kTrack)
        ->required();

    AddCommand(app, options, "clear", "Remove every marker area and every region of a track")
        ->add_option("N", options.nTrack, "The track's place in the list, from 0")
        ->check(kTrack)
        ->required();
}

void DeclareScriptCommand(CLI::App& app, Options& options)
{
    CLI::App* pRun = AddCommand(app, options, "run", "Send a script and print what it prints");
    CLI::Option* pScript = pRun->add_option("SCRIPT", options.script,
                                            "Lua, UTF-8; left out or - it is standard input");
    pRun->add_option("--file", options.scriptFile, "Send the script in this file")
        ->type_name("FILE")
        ->excludes(pScript);
}

void DeclareTakes(CLI::App& app, Options& options)
{
    CLI::App* pTakes = AddCommand(app, options, "takes",
                                  "List the takes on this machine that no server has yet: file, "
                                  "position, rate, length, state");
    CLI::Option* pSend =
        pTakes->add_option("--send", options.strSentTake, "Send this one to a track")
            ->type_name("FILE");
    pTakes->add_option("--track", options.place.nTrack, "The track's place in the list, from 0")
        ->type_name("N")
        ->check(kTrack)
        ->needs(pSend);
    pTakes
        ->add_option("--forget", options.strForgottenTake, "Offer this one no more; its file stays")
        ->type_name("FILE")
        ->excludes(pSend);
}

void DeclareObservers(CLI::App& app, Options& options)
{
    CLI::App* pWatch =
        AddCommand(app, options, "watch",
                   "Print the count of updates and the tracks, now and whenever they change");
    pWatch->add_option("--interval", options.dInterval, "Seconds between two looks (default 1)")
        ->type_name("SECONDS")
        ->check(CNumberIn<double>(0.0, kLongestInterval, "a number of seconds from 0 to 3600"));
    pWatch->add_option("--count", options.nReports, "End after so many reports (default: never)")
        ->type_name("N")
        ->check(CNumberIn<long>(1, std::numeric_limits<long>::max(), "a number from 1"));

    CLI::App* pDoctor = AddCommand(app, options, "doctor",
                                   "Examine bus, server and capture folder, and say what to do");
    pDoctor
        ->add_option("--capture-folder", options.strCaptureFolder,
                     "The folder that captures are written to: can the server read what is there?")
        ->type_name("FOLDER");
    pDoctor
        ->add_option("--rate", options.rate,
                     "The rate that the host works at (default: that of the newest sound file in "
                     "the capture folder)")
        ->type_name("R")
        ->check(kRate);
}

} // namespace

SInt32 Options::TimeoutTicks() const
{
    if (!timeout)
        return -1;
    return std::max(SInt32(1), static_cast<SInt32>(std::lround(*timeout * kTicksPerSecond)));
}

void DeclareOptions(CLI::App& app, Options& options)
{
    // Before the commands, which take the flag over: --help shows all commands with their options.
    app.set_help_flag();
    app.set_help_all_flag("-h,--help", "Print this help and end");
    app.require_subcommand(1);
    app.fallthrough();
    app.add_flag("--audio-suite", options.fAudioSuite,
                 "Work on the AudioSuite document instead of the script document");
    app.add_option("--timeout", options.timeout,
                   "Wait at most so long for each answer, up to 60 seconds (default 60)")
        ->type_name("SECONDS")
        ->check(CNumberIn<double>(std::numeric_limits<double>::min(), kLongestTimeout,
                                  "a number of seconds above 0, at most 60"));
    app.add_flag("--json", options.fJson, "Print JSON, one object (watch: one a line)");
    app.add_flag("--trace", options.fTrace,
                 "Show every event out and in on the standard error stream");
    app.add_option("--record", options.strRecord,
                   "Record every event and reply in this new file, which tarvane-replay plays and "
                   "draws")
        ->type_name("FILE");

    DeclareQuestions(app, options);
    DeclareFileCommands(app, options);
    DeclareRegionCommands(app, options);
    DeclareProcessCommands(app, options);
    DeclareScriptCommand(app, options);
    DeclareTakes(app, options);
    DeclareObservers(app, options);
}

} // namespace Tarvane::Link
