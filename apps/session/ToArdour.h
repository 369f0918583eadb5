// The command that puts a session's tracks and regions into an Ardour session.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace Tarvane::Session
{

/// Declares the command. When it is on the command line, run becomes what does it and answers with
/// the exit code; that throws CUsageError, and then nothing was written.
void AddToArdour(CLI::App& app, std::function<int()>& run);

} // namespace Tarvane::Session
