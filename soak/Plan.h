// What happens in a soak, and when, drawn from its seed before it begins.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Tarvane::Soak
{

struct SoakSettings
{
    int nViews = 3;   ///< in the process of their host
    int nPlugIns = 1; ///< views in a process of their own, numbered behind those
    int nDeliveries = 1000;
    int nRoundDeliveries = 500; ///< a fresh session after so many
    int nServerKills = 10;
    int nHostKills = 5;
    int nViewKills = 5; ///< of those in a process of their own
    int nBusRestarts = 3;
    int nDiskFills = 3;
    std::uint64_t nSeed = 1;
    double dMinutes = 0; ///< over which the captures are spread; 0: as fast as they go
};

enum class FaultKind
{
    ServerKill,
    BusRestart,
    DiskFill,
};

struct PlannedFault
{
    FaultKind kind = FaultKind::ServerKill;
    int nAfter = 0;                     ///< deliveries of the round
    std::chrono::microseconds delay{0}; ///< from then on
    std::chrono::milliseconds away{0};  ///< until it is put right
    std::uint64_t nFileLimit = 0;       ///< bytes that a file may still hold; full disks
};

struct PlannedKill
{
    int nView = 0;
    int nBefore = 0;                    ///< places of that view in the round
    std::chrono::microseconds delay{0}; ///< from the command to the kill
};

struct PlannedRound
{
    int nPlaces = 0; ///< for each view
    /// A view's n-th capture begins no earlier than n intervals after the beginning, which is
    /// counted from that of the soak.
    std::chrono::microseconds beginning{0};
    std::chrono::microseconds interval{0};
    std::vector<PlannedFault> faults;
    std::vector<PlannedKill> hostKills;
    std::vector<PlannedKill> viewKills; ///< the process of the view, not its host
};

struct SoakPlan
{
    std::vector<PlannedRound> rounds;
};

/// The same settings give the same plan. Every eighth round is without server kills and bus
/// restarts where there are others to take them, so that one server lives through it; the host of
/// view 0 is never killed where there are others.
SoakPlan MakePlan(const SoakSettings& settings);

/// The plan as lines for people.
std::string DescribePlan(const SoakPlan& plan);

} // namespace Tarvane::Soak
