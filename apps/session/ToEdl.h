// The command that writes a session's regions as an edit decision list.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace Tarvane::Session
{

/// As AddToArdour.
void AddToEdl(CLI::App& app, std::function<int()>& run);

} // namespace Tarvane::Session
