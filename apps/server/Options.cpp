#include "apps/server/Options.h"

#include "apps/server/Session.h"

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

std::string FaultHelp()
{
    std::string strHelp =
        "For tests: fail at the N-th event, counted from 1 (repeatable). The server";
    const char* szBefore = "\n";
    for (const FaultKind& kind : FaultKinds())
    {
        strHelp += szBefore + std::string(kind.szName) + ": " + kind.szMeaning;
        szBefore = ",\n";
    }
    return strHelp;
}

PlannedFault FaultOrParseError(const std::string& strFault)
{
    try
    {
        return ParseFault(strFault);
    }
    catch (const std::invalid_argument& error)
    {
        throw CLI::ValidationError("--misbehave", error.what());
    }
}

} // namespace

void DeclareOptions(CLI::App& app, Options& options)
{
    app.add_option("--session", options.strSessionFile,
                   "Keep the session in this file; continue it when it exists. Without it nothing "
                   "is kept when the server ends")
        ->type_name("FILE");
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
    app.add_flag("--no-document", options.fNoDocument,
                 "Behave as with no document open: scripts can select none");
    app.add_option("--render-folder", options.strRenderFolder,
                   "Put exported and rendered audio into this folder (default: FILE.audio beside "
                   "the session file, tarvane-audio among the temporary files without one)")
        ->type_name("FOLDER");
    app.add_option("--log", options.strLogFile,
                   "Record every event in and out in this file; - is the standard output")
        ->type_name("FILE");
    app.add_option_function<std::vector<std::string>>(
           "--misbehave",
           [&options](const std::vector<std::string>& faults)
           {
               for (const std::string& strFault : faults)
                   options.faults.push_back(FaultOrParseError(strFault));
           },
           FaultHelp())
        ->type_name("NAME@N")
        ->allow_extra_args(false);
    CLI::Option* pList = app.add_option("--list-session", options.strListedFile,
                                        "Print what is in a session file, and end")
                             ->type_name("FILE");
    app.add_flag("--json", options.fJson, "Print the listing as JSON")->needs(pList);
}

} // namespace Tarvane::Server
