#include "soak/Plan.h"

#include <algorithm>
#include <random>
#include <sstream>

namespace Tarvane::Soak
{

namespace
{

constexpr int kCalmEvery = 8;
// Long enough for every step of a delivery to be the one that is hit.
constexpr int kMostDelay = 30000;     // microseconds
constexpr int kMostHostDelay = 40000; // from the command; arming and capturing come first
constexpr int kMostAway = 150;        // milliseconds
constexpr int kMostFull = 400;        // milliseconds
// Nothing fits; a sound fits in part; a sound fits and a session does not.
constexpr std::uint64_t kFileLimits[] = {0, 500, 4000};

class CDraw
{
public:
    explicit CDraw(std::uint64_t nSeed) : m_engine(nSeed) {}

    // From 0 up to, and without, nEnd. Not a standard distribution: those differ between libraries.
    int Below(int nEnd) { return static_cast<int>(m_engine() % static_cast<unsigned>(nEnd)); }

private:
    std::mt19937_64 m_engine;
};

PlannedFault DrawFault(CDraw& draw, FaultKind kind, int nDeliveries)
{
    PlannedFault fault;
    fault.kind = kind;
    fault.nAfter = draw.Below(nDeliveries);
    fault.delay = std::chrono::microseconds(draw.Below(kMostDelay));
    const int nMost = kind == FaultKind::DiskFill ? kMostFull : kMostAway;
    fault.away = std::chrono::milliseconds(draw.Below(nMost));
    fault.nFileLimit = kFileLimits[draw.Below(std::size(kFileLimits))];
    return fault;
}

// Where the n-th of nCount goes that are spread evenly over so many rounds.
size_t Nth(int n, int nCount, size_t nRounds)
{
    return static_cast<size_t>(n) * nRounds / static_cast<size_t>(nCount);
}

bool IsCalm(size_t nRound)
{
    return nRound % kCalmEvery == kCalmEvery - 1;
}

const char* NameOf(FaultKind kind)
{
    switch (kind)
    {
    case FaultKind::ServerKill:
        return "kill the server";
    case FaultKind::BusRestart:
        return "restart the bus";
    case FaultKind::DiskFill:
        break;
    }
    return "fill the disk";
}

} // namespace

SoakPlan MakePlan(const SoakSettings& settings)
{
    CDraw draw(settings.nSeed);
    const int nRounds = std::max(1, (settings.nDeliveries + settings.nRoundDeliveries - 1) /
                                        settings.nRoundDeliveries);
    const int nViews = settings.nViews + settings.nPlugIns;
    const int nPlaces = (settings.nDeliveries + nRounds * nViews - 1) / (nRounds * nViews);
    SoakPlan plan;
    plan.rounds.resize(static_cast<size_t>(nRounds));
    std::vector<size_t> rough;
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::duration<double, std::ratio<60>>(settings.dMinutes));
    for (size_t nRound = 0; nRound < plan.rounds.size(); ++nRound)
    {
        PlannedRound& round = plan.rounds[nRound];
        round.nPlaces = nPlaces;
        round.beginning = whole * nRound / nRounds;
        round.interval = whole / (nRounds * nPlaces);
        if (!IsCalm(nRound))
            rough.push_back(nRound);
    }
    const auto spread = [&](FaultKind kind, int nCount)
    {
        for (int n = 0; n < nCount; ++n)
            plan.rounds[rough[Nth(n, nCount, rough.size())]].faults.push_back(
                DrawFault(draw, kind, nPlaces * nViews));
    };
    spread(FaultKind::ServerKill, settings.nServerKills);
    spread(FaultKind::BusRestart, settings.nBusRestarts);
    spread(FaultKind::DiskFill, settings.nDiskFills);
    const auto drawKill = [&](int nFirst)
    {
        PlannedKill kill;
        kill.nView = nFirst < nViews ? nFirst + draw.Below(nViews - nFirst) : 0;
        kill.nBefore = draw.Below(nPlaces);
        kill.delay = std::chrono::microseconds(draw.Below(kMostHostDelay));
        return kill;
    };
    for (int n = 0; n < settings.nHostKills; ++n)
        plan.rounds[Nth(n, settings.nHostKills, plan.rounds.size())].hostKills.push_back(
            drawKill(1));
    for (int n = 0; settings.nPlugIns > 0 && n < settings.nViewKills; ++n)
        plan.rounds[Nth(n, settings.nViewKills, plan.rounds.size())].viewKills.push_back(
            drawKill(settings.nViews));
    for (PlannedRound& round : plan.rounds)
        std::stable_sort(round.faults.begin(), round.faults.end(),
                         [](const auto& one, const auto& other)
                         { return one.nAfter < other.nAfter; });
    return plan;
}

std::string DescribePlan(const SoakPlan& plan)
{
    std::ostringstream text;
    for (size_t nRound = 0; nRound < plan.rounds.size(); ++nRound)
    {
        const PlannedRound& round = plan.rounds[nRound];
        text << "round " << nRound << ": " << round.nPlaces << " captures for each view";
        if (round.interval.count() > 0)
            text << ", one in " << round.interval.count() << " us, from " << round.beginning.count()
                 << " us on";
        text << "\n";
        for (const PlannedFault& fault : round.faults)
            text << "  after delivery " << fault.nAfter << " and " << fault.delay.count()
                 << " us: " << NameOf(fault.kind) << " for " << fault.away.count()
                 << " ms, file limit " << fault.nFileLimit << "\n";
        const auto tell = [&](const std::vector<PlannedKill>& kills, const char* szWhat)
        {
            for (const PlannedKill& kill : kills)
                text << "  view " << kill.nView << ", capture " << kill.nBefore << ": kill "
                     << szWhat << " after " << kill.delay.count() << " us\n";
        };
        tell(round.hostKills, "the host");
        tell(round.viewKills, "the view");
    }
    return text.str();
}

} // namespace Tarvane::Soak
