#include "apps/server/Options.h"

#include "apps/server/session/Session.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/program/KindHelp.h"

#include <CLI/CLI.hpp>

#include <stdexcept>

namespace Tarvane::Server
{

namespace
{

// A CLI11 check: empty when the value will do.
std::string CheckTrackName(const std::string& strName)
{
    const auto flaw = NameFlaw(strName);
    return flaw ? "a track's name " + *flaw : std::string();
}

std::string CheckLinkOffset(double dSeconds)
{
    const auto flaw = LinkOffsetFlaw(dSeconds);
    return flaw ? "the offset " + *flaw : std::string();
}

std::string CheckFileName(const std::string& strFile)
{
    return strFile.empty() ? "a file's name is empty" : std::string();
}

FaultPlan FaultsOrParseError(const std::string& strFaults)
{
    try
    {
        return ParseFaults(strFaults);
    }
    catch (const std::invalid_argument& error)
    {
        throw CLI::ValidationError("--misbehave", error.what());
    }
}

void DeclareSession(CLI::App& app, Options& options)
{
    app.add_option("--session", options.strSessionFile,
                   "Keep the session in this file; continue it when it exists. Without it nothing "
                   "is kept when the server ends")
        ->type_name("FILE")
        ->check(CheckFileName);
    app.add_option("--track", options.trackNames,
                   "Give a new session a track of this name, in both documents (repeatable)")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->each(
            [](const std::string& strName)
            {
                const std::string strFlaw = CheckTrackName(strName);
                if (!strFlaw.empty())
                    throw CLI::ValidationError("--track", strFlaw);
            });
    app.add_option_function<double>(
           "--link-offset",
           [&options](double dSeconds)
           {
               const std::string strFlaw = CheckLinkOffset(dSeconds);
               if (!strFlaw.empty())
                   throw CLI::ValidationError("--link-offset", strFlaw);
               options.linkOffset = dSeconds;
           },
           "Seconds by which a new session's timeline is ahead of the host's (default 0)")
        ->type_name("SECONDS");
}

// How scripts are served, and what becomes of what they change.
void DeclareServing(CLI::App& app, Options& options)
{
    app.add_flag("--read-only", options.fReadOnly, "Refuse every change that a script asks for");
    app.add_flag("--no-delete", options.fNoDelete, "Refuse to delete regions and marker areas");
    app.add_option("--render-folder", options.strRenderFolder,
                   "Put exported and rendered audio into this folder (default: FILE.audio beside "
                   "the session file, a new folder of the user's own without one)")
        ->type_name("FOLDER");
    app.add_option("--editor", options.strEditor,
                   "Put what comes in into an editor's session as well: ardour:FOLDER or "
                   "audacity:PROJECT.aup3. What it does not take is refused")
        ->type_name("KIND:WHERE");
    app.add_option("--log", options.strLogFile,
                   "Record every event in and out in this file; - is the standard output")
        ->type_name("FILE");
}

// What ends as soon as it is done.
void DeclareExchange(CLI::App& app, Options& options)
{
    CLI::Option* pExport =
        app.add_option("--export", options.strExportFile,
                       "Write the session of --session to this new file, as a binary session, and "
                       "end. A server may be at work on it")
            ->type_name("FILE")
            ->check(CheckFileName)
            ->needs(app.get_option("--session"));
    app.add_option(
           "--import", options.strImportFile,
           "Make the new session of --session from this one, a binary session for instance, "
           "and end")
        ->type_name("FILE")
        ->check(CheckFileName)
        ->needs(app.get_option("--session"))
        ->excludes(pExport);
}

void DeclareListing(CLI::App& app, Options& options)
{
    CLI::Option* pList = app.add_option("--list-session", options.strListedFile,
                                        "Print what is in a session file, and end")
                             ->type_name("FILE");
    app.add_flag("--json", options.fJson, "Print the listing as JSON")->needs(pList);
}

void DeclareMisbehaviour(CLI::App& app, Options& options)
{
    constexpr const char* kMisbehaviour = "Misbehaviour, for tests";
    app.add_flag("--no-document", options.fNoDocument,
                 "Behave as with no document open: scripts can select none")
        ->group(kMisbehaviour);
    app.add_option_function<std::vector<std::string>>(
           "--misbehave",
           [&options](const std::vector<std::string>& faults)
           {
               for (const std::string& strFaults : faults)
                   options.faults.push_back(FaultsOrParseError(strFaults));
           },
           HelpWithKinds(
               "Fail in these ways, all together, from the N-th event on, counted from 1, or "
               "up to the M-th (repeatable). With --seed, at random. The server",
               FaultKinds()))
        ->type_name("NAME[,NAME...][@N[-M]]")
        ->allow_extra_args(false)
        ->group(kMisbehaviour);
    app.add_option("--seed", options.seed,
                   "Let about every fourth event meet one of the faults of --misbehave; the same "
                   "seed draws the same ones again")
        ->type_name("NUMBER")
        ->group(kMisbehaviour);
    app.add_option("--delay", options.dDelay,
                   "How long slow-start and late-reply take (default 65, more than the minute for "
                   "which clients wait)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e6))
        ->group(kMisbehaviour);
}

} // namespace

void DeclareOptions(CLI::App& app, Options& options)
{
    AddHelpAll(app);
    DeclareSession(app, options);
    DeclareServing(app, options);
    DeclareExchange(app, options);
    DeclareListing(app, options);
    DeclareMisbehaviour(app, options);
}

} // namespace Tarvane::Server
