// What the host's command line says.
#pragma once

#include "apps/support/program/CommandLine.h"
#include "apps/support/unit/SignalFaults.h"
#include "apps/support/unit/SignalSide.h"

#include <filesystem>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Tarvane
{

struct HostOptions
{
    std::vector<std::string> files;
    std::vector<double> positions; ///< of the first files, in samples
    std::string strBundle;         ///< empty: beside the program
    std::string strPlugIn;         ///< empty: the host's own
    std::string strCaptureFolder;  ///< empty: "captures" in the results folder, or here
    std::string strResults;        ///< empty: nothing is written
    std::string strRecord;         ///< empty: nothing is recorded
    std::string strLog;            ///< "-": the standard output, or error with --commands
    std::string strSpeed = "1";
    int nTrack = 0;
    double dAckTimeout = 200; ///< seconds; three commands may take a minute each
    SignalFaults faults;      ///< of the plug-in; none: it keeps to its side of the protocol
    bool fHeadless = false;
    bool fCommands = false;
    bool fStalls = false;
    bool fCountObjects = false;
    bool fOnce = false; ///< what no server gets is not offered again
};

void DeclareOptions(CLI::App& app, HostOptions& options);

/// The options as they are meant, with everything that can be wrong found wrong at once: the sound
/// files with their places on the timeline, the folders. Throws CUsageError. Makes the capture
/// folder last, when all else is good.
struct HostPlan
{
    std::vector<CCaptureSource> sources;
    CSignalSettings settings;
    std::filesystem::path bundle;
};
HostPlan MakePlan(const HostOptions& options);

/// The view that the options name, or the one beside the program. Throws CUsageError when there is
/// none.
std::filesystem::path BundlePath(const std::string& strBundle);

/// Throws CUsageError when the folder is not there and cannot be made.
void MakeCaptureFolder(const std::filesystem::path& folder);

} // namespace Tarvane
