// The command that writes a session's tracks and regions as a REAPER project.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace Tarvane::Session
{

/// As AddToArdour.
void AddToRpp(CLI::App& app, std::function<int()>& run);

} // namespace Tarvane::Session
