// What the palette tool's command line says.
#pragma once

#include "apps/support/program/CommandLine.h"

#include <string>

namespace CLI
{
class App;
}

namespace Tarvane
{

/// Each is empty when it was not asked for.
struct PaletteOptions
{
    std::string strLoad;
    std::string strStore;
    std::string strDump;
    std::string strSave;
};

void DeclareOptions(CLI::App& app, PaletteOptions& options);

/// Whether the sheet is to stand in a window: nothing was asked for that is done without one.
bool WantsWindow(const PaletteOptions& options);

} // namespace Tarvane
