#include "apps/conform/Conform.h"

#include "apps/conform/plugin/PlugInExamination.h"
#include "apps/conform/server/ServerExamination.h"
#include "apps/conform/server/ServerProcess.h"
#include "apps/conform/server/ServerRules.h"
#include "apps/conform/shared/Report.h"
#include "apps/conform/shared/ReportPage.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/text/PlainText.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>

namespace Tarvane::Conform
{
namespace
{

constexpr double kShortestTimeout = 0.1; // seconds
constexpr double kLongestTimeout = 60.0;
constexpr double kLongestWait = 3600.0;

struct Options
{
    bool fJson = false;
    bool fList = false;
    std::string strReport{}; // a file
    ServerOptions server{};
    PlugInOptions plugIn{};
    std::string strAlone{}; // the rule that is this process's
};

// Before the examination, which takes its time.
void CheckReport(const Options& options)
{
    if (!options.strReport.empty() && !std::ofstream(options.strReport, std::ios::app))
        throw CUsageError("no report can be written to " + options.strReport + ".");
}

int Tell(const Options& options, const Subject& subject, const Findings& findings)
{
    const char* szParty = subject.strParty.c_str();
    if (options.fJson)
    {
        nlohmann::ordered_json told = FindingsJson(szParty, findings);
        told["version"] = subject.strVersion;
        std::cout << told.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    }
    else
        std::cout << PlainText(
            FindingsText(szParty, findings) +
            (subject.strVersion.empty() ? "" : "Version: " + subject.strVersion + "\n"));
    if (!options.strReport.empty())
        ReplaceFile(options.strReport, ReportPage(subject, findings));
    return Conforms(findings) ? kExitDone : kExitFailed;
}

int Server(const Options& options)
{
    if (options.fList)
    {
        const std::vector<ServerRule> rules = ServerRules();
        std::cout << RulesText("server", {rules.begin(), rules.end()});
        return kExitDone;
    }
    CheckReport(options);
    const Findings findings = ExamineServer(options.server);
    // What a server prints that does not answer what it was asked is no version.
    const bool fAnswers = findings.front().outcome == Outcome::Kept;
    const std::string strVersion = fAnswers ? VersionOfServer(options.server) : "";
    return Tell(options, {"server", ServerAddress(), strVersion}, findings);
}

void DeclareReport(CLI::App& command, Options& options)
{
    command.add_option("--report", options.strReport, "Write the findings as a page of HTML too")
        ->type_name("FILE");
}

void DeclareServer(CLI::App& app, Options& options)
{
    CLI::App* pServer = app.add_subcommand(
        "server", "Examines the server that answers on the session bus. Regions are added to one "
                  "track of its document, which is cleared at the end: open a session made for "
                  "the purpose.");
    pServer->add_flag("--json", options.fJson, "Tell the findings as JSON.");
    DeclareReport(*pServer, options);
    pServer->add_flag("--list", options.fList, "Tell the rules, and examine nothing.");
    pServer->add_option("--track", options.server.nTrack, "The track to work on, from 0 [the last]")
        ->check(CLI::NonNegativeNumber);
    pServer->add_flag("--clear", options.server.fClear, "Regions that the track holds may go.");
    pServer->add_flag("--no-offset", options.server.fNoOffset,
                      "The server's timeline is always the host's: its offset is never other than "
                      "0.");
    pServer->add_option("--wait", options.server.dWait, "Seconds to wait for a server to start")
        ->capture_default_str()
        ->check(CLI::Range(0.0, kLongestWait));
    pServer->add_option("--timeout", options.server.dTimeout, "Seconds a command may take")
        ->capture_default_str()
        ->check(CLI::Range(kShortestTimeout, kLongestTimeout));
}

int PlugIn(const Options& options)
{
    if (options.fList)
    {
        const std::vector<PlugInRule> rules = PlugInRules();
        std::cout << RulesText("plug-in", {rules.begin(), rules.end()});
        return kExitDone;
    }
    if (options.plugIn.strLibrary.empty())
        throw CUsageError("name the LIBRARY with the plug-in's signal side.");
    if (!options.strAlone.empty())
        ExamineRuleAndEnd(options.plugIn, options.strAlone);
    CheckReport(options);
    return Tell(options, {"plug-in", options.plugIn.strLibrary, ""}, ExaminePlugIn(options.plugIn));
}

CLI::App* DeclarePlugIn(CLI::App& app, Options& options)
{
    CLI::App* pPlugIn = app.add_subcommand(
        "plugin", "Examines the signal side of a plug-in, loaded from a shared library: each rule "
                  "on an instance of its own, in a process of its own.");
    pPlugIn->add_option("LIBRARY", options.plugIn.strLibrary,
                        "Exports TarvaneLinkSignalSideFactory, and TarvaneConformPlay if it is to "
                        "capture (apps/support/PlugInEntry.h)");
    pPlugIn->add_flag("--json", options.fJson, "Tell the findings as JSON.");
    DeclareReport(*pPlugIn, options);
    pPlugIn->add_flag("--list", options.fList, "Tell the rules, and examine nothing.");
    pPlugIn->add_option("--rule", options.plugIn.rules,
                        "Examine this rule; may be given more than once [all]");
    pPlugIn
        ->add_option("--timeout", options.plugIn.dTimeout,
                     "Seconds to wait for what must come; a rule that takes four times as long "
                     "is ended")
        ->capture_default_str()
        ->check(CLI::Range(kShortestTimeout, kLongestTimeout));
    pPlugIn->add_option("--examine", options.strAlone)->group(""); // how it starts itself
    return pPlugIn;
}

} // namespace

int RunConform(int argc, char** argv)
{
    CLI::App app("Holds a neighbour of the plug-in's view against what the view needs of it. Each "
                 "rule says MUST or SHOULD; a neighbour conforms that keeps every MUST.",
                 "tarvane-conform");
    AddCommonOptions(app, "a rule that says MUST is broken, or could not be examined");
    app.require_subcommand(1);
    Options options;
    DeclareServer(app, options);
    const CLI::App* pPlugIn = DeclarePlugIn(app, options);
    return RunProgram(app, argc, argv,
                      [&] { return pPlugIn->parsed() ? PlugIn(options) : Server(options); });
}

} // namespace Tarvane::Conform
