// tarvane-palette: the palette and the controls on a sheet, for those who design them.
#include "apps/palette/GradientDump.h"
#include "apps/palette/Options.h"
#include "apps/palette/PaletteFile.h"
#import "apps/palette/PaletteWindow.h"
#import "apps/support/window/Application.h"
#include "colours/ComponentsColors.h"

#include <CLI/CLI.hpp>

#import <Foundation/Foundation.h>

namespace
{

int RunPalette(const Tarvane::PaletteOptions& options, char** argv)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    AppCreateDefaultColoursDesigner();
    if (!options.strLoad.empty())
    {
        Tarvane::LoadPalette(options.strLoad);
    }
    if (!options.strSave.empty() || Tarvane::WantsWindow(options))
    {
        Tarvane::OpenApplication(argv);
    }
    if (!options.strDump.empty())
    {
        Tarvane::DumpGradient(options.strDump);
    }
    if (!options.strStore.empty())
    {
        Tarvane::StorePalette(options.strStore);
    }
    if (!options.strSave.empty())
    {
        Tarvane::SavePicture(options.strSave);
    }
    if (Tarvane::WantsWindow(options))
    {
        Tarvane::ShowSheet();
    }
    [pool drain];
    return Tarvane::kExitDone;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Shows the palette as the fills paint it, and the controls in all their looks. "
                 "Without an option the sheet stands in a window until that is closed.",
                 "tarvane-palette");
    Tarvane::AddCommonOptions(app, "a file could not be written");
    Tarvane::PaletteOptions options;
    Tarvane::DeclareOptions(app, options);
    return Tarvane::RunProgram(app, argc, argv, [&] { return RunPalette(options, argv); });
}
