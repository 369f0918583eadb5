#include "apps/palette/Options.h"

#include <CLI/CLI.hpp>

namespace Tarvane
{
namespace
{

void DeclareText(CLI::App& app, const char* szName, std::string& strValue, const char* szType,
                 const char* szHelp)
{
    app.add_option(szName, strValue, szHelp)
        ->type_name(szType)
        ->check([](const std::string& strText)
                { return std::string(strText.empty() ? "the text is empty" : ""); });
}

} // namespace

void DeclareOptions(CLI::App& app, PaletteOptions& options)
{
    DeclareText(app, "--load", options.strLoad, "FILE",
                "Take the entries of this session file in place of those of the same codes; all "
                "others stay as in the default palette. A file with a flaw is refused whole");
    DeclareText(app, "--store", options.strStore, "FILE",
                "Write the palette as a binary session, and end. The file is replaced whole or not "
                "at all");
    DeclareText(app, "--dump", options.strDump, "CODE",
                "Print the calls that rebuild this gradient on the standard error stream, ready to "
                "be pasted into the default palette, and end. CODE is a name such as ccButtonFace, "
                "a component such as 312, or MODULE:COMPONENT");
    DeclareText(app, "--save", options.strSave, "FILE.png",
                "Write a picture of the sheet, and end. Needs a display, and no window manager");
}

bool WantsWindow(const PaletteOptions& options)
{
    return options.strStore.empty() && options.strDump.empty() && options.strSave.empty();
}

} // namespace Tarvane
