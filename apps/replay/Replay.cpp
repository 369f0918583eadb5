#include "apps/replay/Replay.h"

#include "apps/replay/HostPart.h"
#include "apps/replay/Page.h"
#include "apps/replay/RecordingReader.h"
#include "apps/replay/ServerPart.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"
#include "utils/UnicodeText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

namespace Tarvane::Replay
{
namespace
{

constexpr double kShortestTimeout = 0.1; // seconds
constexpr double kLongestTimeout = 3600.0;

struct Options
{
    std::string strFile;
    std::string strPart; // "server", "host", or empty
    std::string strPage; // empty: none is drawn
    std::vector<std::string> maps;
    bool fYes = false; // deletions may be played
    PlaySettings settings;
};

void ApplyMap(Recording& recording, const std::string& strMap)
{
    const std::size_t nEqual = strMap.find('=');
    if (nEqual == std::string::npos || nEqual == 0 || !IsUtf8(strMap))
        throw CUsageError("--map " + strMap + " says nothing - write FROM=TO.");
    ReplaceInTexts(recording, strMap.substr(0, nEqual), strMap.substr(nEqual + 1));
}

// Those that can be played.
std::vector<Exchange> Ended(const Recording& recording)
{
    std::vector<Exchange> exchanges;
    std::copy_if(recording.exchanges.begin(), recording.exchanges.end(),
                 std::back_inserter(exchanges),
                 [](const Exchange& exchange) { return exchange.fEnded; });
    if (exchanges.empty())
        throw CUsageError("the recording has no event with its reply; there is nothing to play.");
    const bool fOneTarget = std::all_of(exchanges.begin(), exchanges.end(),
                                        [&](const Exchange& exchange)
                                        { return exchange.nTarget == exchanges.front().nTarget; });
    if (!fOneTarget)
        throw CUsageError("the recording has events to more than one application; one can be "
                          "played.");
    return exchanges;
}

void TellFlaws(const Recording& recording)
{
    if (recording.nFlaws > 0)
        std::cerr << "tarvane-replay: the recording is damaged, " << recording.strFirstFlaw
                  << "; lines left out: " << recording.nFlaws << std::endl;
    const auto nOpen = std::count_if(recording.exchanges.begin(), recording.exchanges.end(),
                                     [](const Exchange& exchange) { return !exchange.fEnded; });
    if (nOpen > 0)
        std::cerr << "tarvane-replay: events without a reply in the recording: " << nOpen
                  << "; they are not played" << std::endl;
}

// A page of ours is replaced; any other file may be somebody's work.
void RequireOurs(const std::string& strFile)
{
    const std::filesystem::file_status status = std::filesystem::symlink_status(strFile);
    if (!std::filesystem::exists(status))
        return;
    std::string strStart(kPageStart.size(), '\0');
    // To open a pipe would wait for whoever writes into it.
    if (std::filesystem::is_regular_file(status))
        std::ifstream(strFile, std::ios::binary)
            .read(strStart.data(), static_cast<std::streamsize>(strStart.size()));
    if (strStart != kPageStart)
        throw CUsageError("there is a file " + strFile +
                          " already, which is no page of this program - name another with "
                          "--html.");
}

int Draw(const Recording& recording, const Options& options)
{
    RequireOurs(options.strPage);
    ReplaceFile(options.strPage, DrawPage(recording));
    return kExitDone;
}

// Whoever made the recording may have had other things in mind for another session.
void RequireLeaveToDelete(const std::vector<Exchange>& exchanges)
{
    const auto nDeletions =
        std::count_if(exchanges.begin(), exchanges.end(),
                      [](const Exchange& exchange)
                      { return exchange.Script().find("Delete") != std::string::npos; });
    if (nDeletions == 0)
        return;
    const std::string strWhat =
        "events of the recording that delete what is in the session: " + std::to_string(nDeletions);
    if (isatty(STDIN_FILENO) == 0)
        throw CUsageError(strWhat + "; --yes to play them.");
    std::cerr << "tarvane-replay: " << strWhat << ". Play them? (y/N) " << std::flush;
    std::string strAnswer;
    std::getline(std::cin, strAnswer);
    if (strAnswer != "y" && strAnswer != "Y")
        throw CUsageError("nothing was played.");
}

int Play(const Recording& recording, const Options& options)
{
    const std::vector<Exchange> exchanges = Ended(recording);
    if (options.strPart == "host" && !options.fYes)
        RequireLeaveToDelete(exchanges);
    const bool fAsRecorded = options.strPart == "server"
                                 ? PlayServer(exchanges, options.settings, std::cout)
                                 : PlayHost(exchanges, options.settings, std::cout);
    return fAsRecorded ? kExitDone : kExitFailed;
}

int Run(const Options& options)
{
    if (options.strPart.empty() == options.strPage.empty())
        throw CUsageError("say what to do with the recording - one of --as and --html.");
    Recording recording = ReadRecordingFile(options.strFile);
    TellFlaws(recording);
    for (const std::string& strMap : options.maps)
        ApplyMap(recording, strMap);
    return options.strPart.empty() ? Draw(recording, options) : Play(recording, options);
}

void DeclareOptions(CLI::App& app, Options& options)
{
    app.add_option("FILE", options.strFile, "The recording, made by --record")->required();
    CLI::Option* pAs =
        app.add_option("--as", options.strPart,
                       "Take this part: server answers a live view as the server did, host asks a "
                       "live server what the view asked")
            ->type_name("server|host")
            ->check(CLI::IsMember({"server", "host"}).description(""));
    app.add_flag("--fast", options.settings.fFast, "Without the recorded delays")->needs(pAs);
    app.add_option("--map", options.maps,
                   "Read TO wherever the recorded events and replies say FROM, such as a folder "
                   "that lies elsewhere now (repeatable, one after the other)")
        ->type_name("FROM=TO")
        ->allow_extra_args(false)
        ->needs(pAs);
    app.add_option("--timeout", options.settings.dTimeout,
                   "How long to wait for the view's next event, or for each reply of the server "
                   "(default 60)")
        ->type_name("SECONDS")
        ->check(CLI::Range(kShortestTimeout, kLongestTimeout).description(""))
        ->needs(pAs);
    app.add_flag("--yes", options.fYes,
                 "With --as host, delete what the recording deletes, unasked")
        ->needs(pAs);
    app.add_option("--html", options.strPage,
                   "Draw the recording as a page: lanes for plug-in, view and server, time "
                   "downwards. An earlier page is replaced, no other file is")
        ->type_name("OUT");
}

} // namespace

int RunReplay(int argc, char** argv)
{
    CLI::App app("Plays a recording of the link to one of its two ends and says where they part, "
                 "or draws it.",
                 "tarvane-replay");
    AddCommonOptions(app, "the live end and the recording part");
    Options options;
    DeclareOptions(app, options);
    return RunProgram(app, argc, argv, [&options] { return Run(options); });
}

} // namespace Tarvane::Replay
