// A soak: real hosts deliver captures to a real server over a real bus, while all of them end and
// come back and the disk fills; after each round the invariants are checked.
#pragma once

#include "soak/HostDriver.h"
#include "soak/Plan.h"
#include "soak/ServerProcess.h"
#include "tests/support/PrivateBus.h"

#include <barrier>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

namespace Tarvane::Soak
{

struct SoakTotals
{
    long nAttempts = 0;
    long nDelivered = 0; ///< acknowledged as delivered
    long nDuplicates = 0;
    long nTakenAnew = 0; ///< of those, what a view had added that was killed before it could tell
    long nUndelivered = 0;
    long nRefused = 0;    ///< of those, what the server refused for its full disk
    long nFailed = 0;     ///< captures that the full disk took no more
    long nUnanswered = 0; ///< whose host was killed
    long nLate = 0;       ///< deliveries that a host tried by itself, later
    long nWithoutOffset = 0;
    long nTwice = 0; ///< captures that stand beside one like them
    long nServersWanted = 0;
    long nServerKills = 0;
    long nHostKills = 0;
    long nViewKills = 0;
    long nBusRestarts = 0;
    long nDiskFills = 0;
};

/// One thread, which lives as long as the object. One at a time in a process.
class CSoak
{
public:
    /// The folder is empty. nAllowance: what the memory of a process may grow by, in KiB.
    CSoak(const SoakSettings& settings, std::filesystem::path folder, long nAllowance);

    /// Runs the whole plan and prints a summary to the standard output. The first round with a
    /// finding is the last one, and leaves its evidence in the folder.
    std::vector<Finding> Run();

private:
    std::vector<Sound> MakeSounds(int nView) const;
    /// The drivers' threads.
    void Drive(int nView);
    void RunRounds();
    void RunRound(size_t nRound);
    void MakeFaults(const PlannedRound& round);
    void Make(const PlannedFault& fault);
    void LetAllArrive();
    void FillDisk(const PlannedFault& fault);
    void CloseRound(size_t nRound);
    RoundEvidence Gather() const;
    std::vector<SeenRegion> ReadSession() const;
    void Count(const RoundEvidence& evidence);
    void WatchHosts();
    void Watch(const std::string& strProcess, const std::vector<ProcessSample>& samples);
    int Views() const { return m_settings.nViews + m_settings.nPlugIns; }
    void KeepEvidence(const RoundEvidence& evidence) const;
    void TakeFindings(const std::vector<Finding>& findings);
    void Progress(size_t nRound) const;
    void Summarise() const;
    double Seconds() const;

    const SoakSettings m_settings;
    const std::filesystem::path m_folder;
    const long m_nAllowance;
    const SoakPlan m_plan;

    TarvaneTests::PrivateBus m_bus;
    std::unique_ptr<CServerProcess> m_pServer;
    std::filesystem::path m_session;
    std::filesystem::path m_round; ///< folder of the round
    Shared m_shared;
    std::vector<std::unique_ptr<CHostDriver>> m_drivers;
    std::barrier<> m_barrier; ///< the drivers and us
    size_t m_nRound = 0;      ///< that the drivers run next; plan's size when all is over
    SoakTotals m_totals;
    std::vector<Finding> m_findings;
    std::vector<std::string> m_growth; ///< lines for the summary
};

} // namespace Tarvane::Soak
