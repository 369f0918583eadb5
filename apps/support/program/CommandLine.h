// What the programs' command lines have in common: exit codes, --version, and one clear line for
// every way in which a program can be used wrongly.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace CLI
{
class App;
}

namespace Tarvane
{

enum ExitCode : int
{
    kExitDone = 0,   ///< what was asked for has been done
    kExitFailed = 1, ///< it was tried, and did not come out as asked
    kExitUsage = 2,  ///< wrong use, or input that cannot be used; nothing was begun
};

/// Wrong use or unusable input. The text is one line that says what to do; RunProgram prints it.
class CUsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Adds --version, the hidden --completions SHELL, and to --help what the exit codes mean.
/// strFailed completes the sentence of exit code 1, "some capture was not delivered" for instance.
void AddCommonOptions(CLI::App& app, const std::string& strFailed);

/// For a program that declares options in groups of their own (CLI::Option::group): adds
/// --help-all, which shows them all, and leaves those groups out of --help, which is for what a
/// user needs first.
void AddHelpAll(CLI::App& app);

/// Parses, runs the body and turns what leaves it into an exit code: help and version 0, a parse
/// error or CUsageError kExitUsage, any other exception kExitFailed. Every failure is one line on
/// the standard error stream that begins with the program's name. Nothing is thrown, and what
/// nobody catches on another thread ends the process the same way (LastWords.h). From then on a
/// file that may grow no further is an error of the write, as a full disk is, and ends no process,
/// and the numbers of closed standard streams are taken, by nothing.
int RunProgram(CLI::App& app, int argc, char** argv, const std::function<int()>& body);

} // namespace Tarvane
