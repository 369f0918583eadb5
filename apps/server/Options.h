// What the server's command line asks for.
#pragma once

#include "apps/server/faults/Misbehaviour.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Tarvane::Server
{

struct Options
{
    std::string strSessionFile; ///< empty: the session is kept in memory alone
    std::vector<std::string> trackNames;
    std::optional<double> linkOffset; ///< seconds
    bool fNoDocument = false;
    bool fReadOnly = false;
    bool fNoDelete = false;
    std::string
        strRenderFolder;   ///< empty: beside the session file, or a private one (RenderFolderFor)
    std::string strEditor; ///< KIND:WHERE, as MakeEditor takes it; empty for none
    std::string strLogFile;
    std::vector<FaultPlan> faults;
    std::optional<std::uint64_t> seed; ///< of faults at random
    double dDelay = 65;                ///< seconds that a slow start and a late reply take
    /// The session written to, or made from, one of these is all that is asked for.
    std::string strExportFile;
    std::string strImportFile;
    /// A listing of this session is all that is asked for.
    std::string strListedFile;
    bool fJson = false;
};

/// Declares the options; values land in the given object when the app parses. What cannot be used
/// is a parse error.
void DeclareOptions(CLI::App& app, Options& options);

} // namespace Tarvane::Server
