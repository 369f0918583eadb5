// What a shell needs to complete the command line of a program.
#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace Tarvane
{

/// The completions of the program's subcommands, options and their values, from its own tables, as
/// a file for "bash", "zsh" or "fish". Throws CUsageError for any other shell. All that is declared
/// afterwards is left out, and so are hidden options.
std::string Completions(const CLI::App& app, const std::string& strShell);

} // namespace Tarvane
