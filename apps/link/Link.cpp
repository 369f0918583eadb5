#include "apps/link/Link.h"

#include "apps/link/AnswerGuard.h"
#include "apps/link/HangNotice.h"
#include "apps/link/Watch.h"
#include "apps/link/commands/Commands.h"
#include "apps/link/doctor/Doctor.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/recording/CommandWatch.h"
#include "apps/support/recording/Recorder.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace Tarvane::Link
{

namespace
{

// The platform reads these at each event.
void SetUpPlatform(const Options& options)
{
    // The operations without a timeout of their own take the platform's default.
    if (options.timeout)
        setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", std::to_string(options.TimeoutTicks()).c_str(),
               1);
    if (options.fTrace)
        setenv("TARVANE_AE_TRACE", "1", 1);
}

// The events of this process, watched while an object lives, and recorded if they are to be.
class CLinkWatch
{
public:
    explicit CLinkWatch(const std::string& strFile)
    {
        std::vector<CEventWatcher*> watchers{&m_commands};
        if (!strFile.empty())
            watchers.push_back(&m_recorder.emplace(strFile, "tarvane-link"));
        if (!WatchEvents(std::move(watchers)) && m_recorder)
            throw CUsageError("events cannot be recorded on this system; leave --record out.");
    }
    ~CLinkWatch() { WatchEvents({}); }
    CLinkWatch(const CLinkWatch&) = delete;
    CLinkWatch& operator=(const CLinkWatch&) = delete;

    CCommandWatch& Commands() { return m_commands; }

private:
    CCommandWatch m_commands;
    std::optional<CRecorder> m_recorder;
    const CHangNotice m_notice{m_commands};
};

std::string LastOutput(const Options& options)
{
    if (!options.fJson)
        return {};
    return JsonLine(ToJson(options.strCommand, {Outcome::NoAnswer, ""}, {}));
}

int RunCommand(Command command, const Options& options, CCommandWatch& commands)
{
    CTarvaneScript link;
    Answer answer = command(link, options);
    NoteRefusal(answer, commands.Take());
    Print(options.fJson ? JsonLine(ToJson(options.strCommand, answer, link)) : answer.strText);
    TellMessages(answer, link);
    return ExitCodeOf(answer.outcome);
}

int Dispatch(const Options& options)
{
    SetUpPlatform(options);
    CLinkWatch watch(options.strRecord);
    const CAnswerGuard guard(LastOutput(options));
    if (options.strCommand == "watch")
        return Watch(options);
    if (options.strCommand == "doctor")
        return Doctor(options);
    return RunCommand(FindCommand(options.strCommand), options, watch.Commands());
}

} // namespace

Command FindCommand(const std::string& strName)
{
    static const std::map<std::string, Command> commands{
        {"tracks", Tracks},       {"offset", Offset}, {"updates", Updates}, {"send", Send},
        {"duplicate", Duplicate}, {"export", Export}, {"render", Render},   {"align", Align},
        {"spread", Spread},       {"clear", Clear},   {"run", Run},         {"takes", Takes},
    };
    const auto found = commands.find(strName);
    return found == commands.end() ? nullptr : found->second;
}

int RunLink(int argc, char** argv)
{
    CLI::App app("Drives a server by the script link: every command is what the plug-in's view "
                 "sends, or could send. Tracks are numbered by their place in the list, from 0; "
                 "positions are samples.",
                 "tarvane-link");
    AddCommonOptions(app, "the server reported an error");
    app.footer(ExitCodeHelp());
    Options options;
    DeclareOptions(app, options);
    return RunProgram(app, argc, argv, [&options] { return Dispatch(options); });
}

} // namespace Tarvane::Link
