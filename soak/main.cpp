// tarvane-soak: no take lost, doubled or misplaced, whatever ends meanwhile.
#include "apps/support/program/CommandLine.h"
#include "soak/Soak.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>

namespace fs = std::filesystem;

namespace
{

using namespace Tarvane;
using namespace Tarvane::Soak;

// Nobody has to wait a minute for a server that is gone, and a busy machine gets its time.
constexpr const char* kTimeoutTicks = "1200"; // of 1/60 second

fs::path WorkFolder(const std::string& strKept)
{
    if (strKept.empty())
    {
        std::string strTemplate = (fs::temp_directory_path() / "tarvane-soak-XXXXXX").string();
        if (!mkdtemp(strTemplate.data()))
            throw CUsageError("cannot make a folder in " + fs::temp_directory_path().string() +
                              " - name one with --keep.");
        return fs::canonical(strTemplate);
    }
    const fs::path folder = fs::absolute(strKept).lexically_normal();
    fs::create_directories(folder);
    if (!fs::is_empty(folder))
        throw CUsageError("the folder " + folder.string() + " is not empty - name another.");
    return folder;
}

int RunSoak(const SoakSettings& settings, const std::string& strKept, long nAllowance)
{
    setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", kTimeoutTicks, 1);
    const fs::path folder = WorkFolder(strKept);
    std::vector<Finding> findings;
    {
        CSoak soak(settings, folder, nAllowance);
        findings = soak.Run();
    }
    if (findings.empty())
    {
        if (strKept.empty())
            fs::remove_all(folder);
        std::cout << "every invariant holds" << std::endl;
        return kExitDone;
    }
    for (const Finding& finding : findings)
        std::cout << "BROKEN " << finding.strInvariant << ": " << finding.strWhat << "\n";
    std::cout << "the evidence is in " << folder.string() << std::endl;
    return kExitFailed;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Delivers captures from several hosts to one server while server, hosts and bus "
                 "are killed and the disk fills, and checks after each round that no take is lost, "
                 "doubled or misplaced. Needs a display: scripts/with-desktop --private.",
                 "tarvane-soak");
    AddCommonOptions(app, "an invariant is broken");
    SoakSettings settings;
    std::string strKept;
    long nAllowance = 4096;
    app.add_option("--views", settings.nViews, "Hosts, each with one view (default 3)")
        ->check(CLI::Range(1, 64));
    app.add_option("--plug-ins", settings.nPlugIns,
                   "Hosts beside these, with the view in a process of its own (default 1)")
        ->check(CLI::Range(0, 64));
    app.add_option("--deliveries", settings.nDeliveries, "Captures, all in all (default 1000)")
        ->check(CLI::Range(1, 100000000));
    app.add_option("--round", settings.nRoundDeliveries,
                   "Captures to a session; after so many it is checked and a new one begins "
                   "(default 500)")
        ->check(CLI::Range(1, 100000));
    app.add_option("--minutes", settings.dMinutes,
                   "Spread the captures over so long (default: as fast as they go)")
        ->check(CLI::Range(0.0, 100000.0));
    app.add_option("--server-kills", settings.nServerKills, "(default 10)")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--host-kills", settings.nHostKills, "(default 5)")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--view-kills", settings.nViewKills,
                   "Of views in a process of their own (default 5)")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--bus-restarts", settings.nBusRestarts, "(default 3)")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--disk-fills", settings.nDiskFills, "(default 3)")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--seed", settings.nSeed,
                   "The same seed, with the same other options, kills the same after the same "
                   "number of deliveries (default 1)");
    app.add_option("--allow", nAllowance,
                   "By how much the memory of a process may grow, KiB (default 4096)")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--keep", strKept,
                   "Work in this folder, which is empty or new, and leave it there. Without it a "
                   "temporary folder stays only when an invariant is broken")
        ->type_name("FOLDER");
    return RunProgram(app, argc, argv, [&] { return RunSoak(settings, strKept, nAllowance); });
}
