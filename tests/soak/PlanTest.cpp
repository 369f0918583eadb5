#include "soak/Plan.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Tarvane::Soak;

namespace
{

SoakSettings Settings(std::uint64_t nSeed)
{
    SoakSettings settings;
    settings.nViews = 3;
    settings.nPlugIns = 1;
    settings.nDeliveries = 9600;
    settings.nRoundDeliveries = 600;
    settings.nServerKills = 50;
    settings.nHostKills = 20;
    settings.nViewKills = 30;
    settings.nBusRestarts = 7;
    settings.nDiskFills = 5;
    settings.nSeed = nSeed;
    return settings;
}

long CountOf(const SoakPlan& plan, FaultKind kind)
{
    long nCount = 0;
    for (const PlannedRound& round : plan.rounds)
        nCount += std::count_if(round.faults.begin(), round.faults.end(),
                                [kind](const PlannedFault& fault) { return fault.kind == kind; });
    return nCount;
}

} // namespace

TEST(SoakPlan, ASeedRepeatsIt)
{
    EXPECT_EQ(DescribePlan(MakePlan(Settings(5))), DescribePlan(MakePlan(Settings(5))));
    EXPECT_NE(DescribePlan(MakePlan(Settings(5))), DescribePlan(MakePlan(Settings(6))));
}

TEST(SoakPlan, HoldsAsManyOfEachAsWasAskedFor)
{
    const SoakPlan plan = MakePlan(Settings(1));
    EXPECT_EQ(plan.rounds.size(), 16U);
    EXPECT_EQ(CountOf(plan, FaultKind::ServerKill), 50);
    EXPECT_EQ(CountOf(plan, FaultKind::BusRestart), 7);
    EXPECT_EQ(CountOf(plan, FaultKind::DiskFill), 5);
    size_t nHostKills = 0;
    size_t nViewKills = 0;
    for (const PlannedRound& round : plan.rounds)
    {
        EXPECT_EQ(round.nPlaces, 150);
        nHostKills += round.hostKills.size();
        nViewKills += round.viewKills.size();
    }
    EXPECT_EQ(nHostKills, 20U);
    EXPECT_EQ(nViewKills, 30U);
}

TEST(SoakPlan, FaultsComeInTheOrderOfTheirDeliveriesAndWithinTheRound)
{
    for (const PlannedRound& round : MakePlan(Settings(1)).rounds)
    {
        EXPECT_TRUE(std::is_sorted(round.faults.begin(), round.faults.end(),
                                   [](const auto& one, const auto& other)
                                   { return one.nAfter < other.nAfter; }));
        for (const PlannedFault& fault : round.faults)
            EXPECT_LT(fault.nAfter, 600);
        for (const PlannedKill& kill : round.hostKills)
            EXPECT_LT(kill.nBefore, 150);
        for (const PlannedKill& kill : round.viewKills)
            EXPECT_LT(kill.nBefore, 150);
    }
}

TEST(SoakPlan, FaultsAreSpreadOverTheWholeSoak)
{
    const SoakPlan plan = MakePlan(Settings(1));
    SoakPlan half;
    half.rounds.assign(plan.rounds.begin() + 8, plan.rounds.end());
    EXPECT_EQ(CountOf(half, FaultKind::ServerKill), 25);
    EXPECT_EQ(CountOf(half, FaultKind::BusRestart), 3);
    EXPECT_EQ(CountOf(half, FaultKind::DiskFill), 2);
    size_t nHostKills = 0;
    for (const PlannedRound& round : half.rounds)
        nHostKills += round.hostKills.size();
    EXPECT_EQ(nHostKills, 10U);
}

TEST(SoakPlan, EveryEighthRoundLeavesItsServerAlive)
{
    const SoakPlan plan = MakePlan(Settings(1));
    EXPECT_TRUE(plan.rounds[7].faults.empty());
    EXPECT_TRUE(plan.rounds[15].faults.empty());
    EXPECT_FALSE(plan.rounds[6].faults.empty());
}

TEST(SoakPlan, TheFirstHostIsNeverKilled)
{
    for (const PlannedRound& round : MakePlan(Settings(1)).rounds)
    {
        for (const PlannedKill& kill : round.hostKills)
        {
            EXPECT_GT(kill.nView, 0);
            EXPECT_LT(kill.nView, 4);
        }
    }
}

TEST(SoakPlan, ViewsInAProcessOfTheirOwnAloneAreKilledWithoutTheirHost)
{
    for (const PlannedRound& round : MakePlan(Settings(1)).rounds)
    {
        for (const PlannedKill& kill : round.viewKills)
            EXPECT_EQ(kill.nView, 3);
    }
    SoakSettings settings = Settings(1);
    settings.nPlugIns = 0;
    for (const PlannedRound& round : MakePlan(settings).rounds)
        EXPECT_TRUE(round.viewKills.empty());
}

TEST(SoakPlan, AFewDeliveriesAreOneRound)
{
    SoakSettings settings = Settings(1);
    settings.nDeliveries = 10;
    settings.nViews = 2;
    const SoakPlan plan = MakePlan(settings);
    ASSERT_EQ(plan.rounds.size(), 1U);
    EXPECT_EQ(plan.rounds[0].nPlaces, 4);
    EXPECT_EQ(CountOf(plan, FaultKind::ServerKill), 50);
}

TEST(SoakPlan, CapturesAreSpreadOverTheMinutes)
{
    using std::chrono::microseconds;
    SoakSettings settings = Settings(1);
    for (const PlannedRound& round : MakePlan(settings).rounds)
    {
        EXPECT_EQ(round.beginning, microseconds(0));
        EXPECT_EQ(round.interval, microseconds(0));
    }
    settings.dMinutes = 4;
    const SoakPlan plan = MakePlan(settings); // 16 rounds of 150 captures for each view
    EXPECT_EQ(plan.rounds[0].beginning, microseconds(0));
    EXPECT_EQ(plan.rounds[1].beginning, microseconds(15'000'000));
    EXPECT_EQ(plan.rounds[15].beginning, microseconds(225'000'000));
    for (const PlannedRound& round : plan.rounds)
        EXPECT_EQ(round.interval, microseconds(100'000));
}
