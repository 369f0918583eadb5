#include "apps/support/program/CommandLine.h"

#include "apps/support/program/Completions.h"
#include "apps/support/program/LastWords.h"
#include "apps/support/program/ProgramVersion.h"
#include "apps/support/text/PlainText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace Tarvane
{
namespace
{

std::string InOneLine(std::string strText)
{
    while (!strText.empty() && strText.back() == '\n')
    {
        strText.pop_back();
    }
    std::replace(strText.begin(), strText.end(), '\n', ' ');
    return strText;
}

int Complain(const CLI::App& app, const std::string& strText, int nCode)
{
    std::cerr << app.get_name() << ": " << PlainText(InOneLine(strText)) << std::endl;
    return nCode;
}

// A standard stream that is closed must not become the number of what the program opens next, the
// connection to the display for instance: whatever it prints would go there. Each is opened the
// wrong way round, so that to use it fails as before.
void HoldClosedStreams()
{
    for (const int nStream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (fcntl(nStream, F_GETFD) == -1)
            open("/dev/null", nStream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

class CShortHelp : public CLI::Formatter
{
    std::string make_help(const CLI::App* pApp, std::string strName,
                          CLI::AppFormatMode mode) const override
    {
        if (mode == CLI::AppFormatMode::All)
        {
            return Formatter::make_help(pApp, strName, mode);
        }
        const std::string strGroup = pApp->get_help_ptr()->get_group();
        const auto isFirst = [&strGroup](const CLI::Option* pOption)
        { return pOption->get_group() == strGroup && pOption->nonpositional(); };
        return make_description(pApp) + make_usage(pApp, strName) + make_positionals(pApp) +
               make_group(strGroup, false, pApp->get_options(isFirst)) + "\n" + make_footer(pApp);
    }

    // One option that goes with few others says so; each of the others need not.
    std::string make_option_opts(const CLI::Option* pOption) const override
    {
        const std::string strOptions = Formatter::make_option_opts(pOption);
        return strOptions.substr(0, strOptions.find(" Excludes:"));
    }
};

} // namespace

void AddCommonOptions(CLI::App& app, const std::string& strFailed)
{
    const std::string strCommit = ProgramCommit();
    app.set_version_flag("--version", app.get_name() + " " + ProgramVersion() +
                                          (strCommit.empty() ? "" : " (" + strCommit + ")"));
    app.add_option_function<std::string>("--completions",
                                         [&app](const std::string& strShell)
                                         {
                                             std::cout << Completions(app, strShell) << std::flush;
                                             throw CLI::Success();
                                         })
        ->group(""); // for those who install the program
    app.footer("Exit codes: 0 done, 1 " + strFailed + ", 2 wrong use or unusable input.");
}

void AddHelpAll(CLI::App& app)
{
    app.set_help_all_flag("--help-all", "Print every option, those for tests as well, and exit");
    app.formatter(std::make_shared<CShortHelp>());
}

int RunProgram(CLI::App& app, int argc, char** argv, const std::function<int()>& body)
{
    HoldClosedStreams();
    SayLastWords(app.get_name());
    std::signal(SIGXFSZ, SIG_IGN);
    try
    {
        app.parse(argc, argv);
        return body();
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
        {
            return app.exit(error);
        }
        return Complain(app,
                        InOneLine(error.what()) + " - see " + app.get_name() +
                            " --help for what it takes.",
                        kExitUsage);
    }
    catch (const CUsageError& error)
    {
        return Complain(app, error.what(), kExitUsage);
    }
    catch (const std::exception& error)
    {
        return Complain(app, LastWordsOf(error), kExitFailed);
    }
}

} // namespace Tarvane
