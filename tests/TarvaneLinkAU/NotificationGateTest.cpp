#include "TarvaneLinkAU/NotificationGate.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <latch>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace
{
using Kind = CNotificationGate::Kind;

// The address of a view that nobody looks behind. All of them hash alike, and so share what can be
// shared.
const void* Address(std::uintptr_t n)
{
    return reinterpret_cast<const void*>((n + 1) << 24);
}

bool ComesIn(const void* pView, Kind kind = Kind::Other)
{
    return bool(CNotificationGate::CPass(pView, kind));
}

void Close(CNotificationGate& gate)
{
    gate.CloseBehindTheLast([] { return true; });
}

void Leave(CNotificationGate& gate)
{
    Close(gate);
    gate.Abandon();
}

TEST(NotificationGate, AddressWhereNoViewEverWasIsNotBarred)
{
    int nNoView = 0;
    EXPECT_TRUE(ComesIn(&nNoView));
    EXPECT_TRUE(ComesIn(&nNoView, Kind::Progress));
}

TEST(NotificationGate, LetsEverybodyInUntilItIsClosed)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    {
        CNotificationGate::CPass first(Address(0), Kind::Other);
        CNotificationGate::CPass second(Address(0), Kind::Progress);
        EXPECT_TRUE(first);
        EXPECT_TRUE(second);
    }
    Close(gate);
    EXPECT_FALSE(ComesIn(Address(0)));
    EXPECT_FALSE(ComesIn(Address(0), Kind::Progress));
    gate.Abandon();
    EXPECT_FALSE(ComesIn(Address(0)));
}

TEST(NotificationGate, StaysOpenForBothKindsWhenThereIsAnotherOwner)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    gate.CloseBehindTheLast([] { return false; });
    EXPECT_TRUE(ComesIn(Address(0)));
    EXPECT_TRUE(ComesIn(Address(0), Kind::Progress));
    Leave(gate);
}

TEST(NotificationGate, ClosingWaitsForWhoeverIsInside)
{
    for (Kind kind : {Kind::Other, Kind::Progress})
    {
        CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
        std::latch entered(1);
        int nWrittenInside = 0; // a race, for the thread sanitizer, if closing did not wait
        std::thread visitor(
            [&]
            {
                CNotificationGate::CPass pass(Address(0), kind);
                entered.count_down();
                for (int n = 0; n < 1000; ++n)
                {
                    std::this_thread::yield();
                    ++nWrittenInside;
                }
            });
        entered.wait();
        Close(gate);
        EXPECT_EQ(nWrittenInside, 1000);
        visitor.join();
        gate.Abandon();
    }
}

TEST(NotificationGate, StaysOpenWhenWhoIsInsideBecomesAnOwner)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    std::atomic<int> nOwners{1};
    std::atomic<bool> fClosing{false};
    std::latch entered(1);
    std::thread visitor(
        [&]
        {
            CNotificationGate::CPass pass(Address(0), Kind::Other);
            entered.count_down();
            while (!fClosing)
                std::this_thread::yield();
            ++nOwners;
        });
    entered.wait();
    gate.CloseBehindTheLast(
        [&]
        {
            const bool fLast = nOwners == 1;
            fClosing = true;
            return fLast;
        });
    visitor.join();
    EXPECT_TRUE(ComesIn(Address(0)));
    EXPECT_TRUE(ComesIn(Address(0), Kind::Progress));
    Leave(gate);
}

TEST(NotificationGate, OwnerLooksAgainWhenSomebodyCameInSinceItLooked)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    int nLooks = 0;
    bool fCameIn = false;
    gate.CloseBehindTheLast(
        [&]
        {
            if (++nLooks > 1)
                return false; // an owner was made meanwhile
            fCameIn = ComesIn(Address(0));
            return true;
        });
    EXPECT_TRUE(fCameIn) << "nothing is turned away before the gate is closed";
    EXPECT_EQ(nLooks, 2);
    EXPECT_TRUE(ComesIn(Address(0)));
    Leave(gate);
}

TEST(NotificationGate, ProgressDoesNotHoldUpTheLastOwner)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    int nLooks = 0;
    bool fCameIn = false;
    gate.CloseBehindTheLast(
        [&]
        {
            fCameIn = fCameIn || ComesIn(Address(0), Kind::Progress);
            return ++nLooks < 100;
        });
    EXPECT_FALSE(fCameIn);
    EXPECT_EQ(nLooks, 1);
    gate.Abandon();
}

TEST(NotificationGate, PauseKeepsProgressOutAndNothingElse)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    {
        CNotificationGate::CPass inside(Address(0), Kind::Other);
        CNotificationGate::CPause pause(gate); // does not wait for the one inside
        EXPECT_FALSE(ComesIn(Address(0), Kind::Progress));
        EXPECT_TRUE(ComesIn(Address(0)));
    }
    EXPECT_TRUE(ComesIn(Address(0), Kind::Progress));
    Leave(gate);
}

TEST(NotificationGate, PauseWaitsForProgressThatIsInside)
{
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    std::latch entered(1);
    int nWrittenInside = 0; // a race, for the thread sanitizer, if the pause did not wait
    std::thread visitor(
        [&]
        {
            CNotificationGate::CPass pass(Address(0), Kind::Progress);
            entered.count_down();
            for (int n = 0; n < 1000; ++n)
            {
                std::this_thread::yield();
                ++nWrittenInside;
            }
        });
    entered.wait();
    {
        CNotificationGate::CPause pause(gate);
        EXPECT_EQ(nWrittenInside, 1000);
    }
    visitor.join();
    Leave(gate);
}

TEST(NotificationGate, GateOfAViewThatIsGoneStaysClosedWhateverViewsCome)
{
    Leave(CNotificationGate::OpenFor(Address(0)));
    CNotificationGate& other = CNotificationGate::OpenFor(Address(1));
    EXPECT_TRUE(ComesIn(Address(1)));
    EXPECT_TRUE(ComesIn(Address(1), Kind::Progress));
    EXPECT_FALSE(ComesIn(Address(0)));
    EXPECT_FALSE(ComesIn(Address(0), Kind::Progress));
    Leave(other);
}

TEST(NotificationGate, ViewAtAnOldAddressHasItsGateOpenedAgain)
{
    CNotificationGate& first = CNotificationGate::OpenFor(Address(0));
    Leave(first);
    CNotificationGate& gate = CNotificationGate::OpenFor(Address(0));
    EXPECT_EQ(&first, &gate);
    EXPECT_TRUE(ComesIn(Address(0)));
    EXPECT_TRUE(ComesIn(Address(0), Kind::Progress));
    Leave(gate);
}

TEST(NotificationGate, ViewThatGoesWithoutItsOwnersIsNotEnteredAnyMore)
{
    CNotificationGate::OpenFor(Address(0)).Abandon();
    EXPECT_FALSE(ComesIn(Address(0)));
    EXPECT_FALSE(ComesIn(Address(0), Kind::Progress));
}

TEST(NotificationGate, EachOfManyViewsHasAGateOfItsOwn)
{
    constexpr int kViews = 500;
    std::vector<CNotificationGate*> gates;
    for (int n = 0; n < kViews; ++n)
        gates.push_back(&CNotificationGate::OpenFor(Address(n)));
    for (int n = 0; n < kViews; n += 2)
        Leave(*gates[n]);
    for (int n = 0; n < kViews; ++n)
        EXPECT_EQ(ComesIn(Address(n)), n % 2 == 1) << n;
    for (int n = 0; n < kViews; n += 2)
        EXPECT_EQ(&CNotificationGate::OpenFor(Address(n)), gates[n]) << n;
    for (int n = 0; n < kViews; ++n)
        EXPECT_TRUE(ComesIn(Address(n))) << n;
    for (CNotificationGate* pGate : gates)
        Leave(*pGate);
    for (int n = 0; n < kViews; ++n)
        EXPECT_FALSE(ComesIn(Address(n))) << n;
}

// Views that come and go, of several threads, at addresses that come again, while others go on
// calling under addresses that they were told long ago. What stands behind an address is written by
// whoever is let in and by the owner who gives it up: the thread sanitizer and the count see
// everybody who is in a view that is gone.
TEST(NotificationGate, NobodyIsInAViewThatIsGone)
{
    struct Memory
    {
        std::atomic<int> nInside{0};
        int nOwnersWord = 0;
        std::atomic<bool> fThere{false};
    };
    static std::array<Memory, 4> memories;
    for (Memory& memory : memories)
        Leave(CNotificationGate::OpenFor(&memory)); // where a view has been
    std::atomic<bool> fStop{false};
    std::atomic<int> nInNothing{0}, nLetIn{0};

    std::vector<std::thread> threads;
    for (int nCaller = 0; nCaller < 3; ++nCaller)
    {
        threads.emplace_back(
            [&, nCaller]
            {
                for (unsigned n = 0; !fStop; ++n)
                {
                    Memory& memory = memories[n % memories.size()];
                    CNotificationGate::CPass pass(
                        &memory, (n / 4 + nCaller) % 2 != 0 ? Kind::Other : Kind::Progress);
                    if (!pass)
                        continue;
                    ++memory.nInside;
                    nInNothing += !memory.fThere;
                    nInNothing += memory.nOwnersWord != 1;
                    --memory.nInside;
                    ++nLetIn;
                }
            });
    }
    std::vector<std::thread> owners;
    for (std::size_t nOwner = 0; nOwner < 2; ++nOwner)
    {
        owners.emplace_back(
            [&, nOwner]
            {
                for (int n = 0; n < 300 || nLetIn < 100; ++n)
                {
                    Memory& memory = memories[2 * nOwner + static_cast<std::size_t>(n) % 2];
                    memory.nOwnersWord = 1;
                    memory.fThere = true;
                    CNotificationGate& gate = CNotificationGate::OpenFor(&memory);
                    if (n % 3 == 0)
                        std::this_thread::yield();
                    Close(gate);
                    memory.nOwnersWord = 0;
                    memory.fThere = false;
                    nInNothing += memory.nInside;
                    gate.Abandon();
                }
            });
    }
    for (std::thread& thread : owners)
        thread.join();
    fStop = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(nInNothing, 0);
    EXPECT_GE(nLetIn, 100);
}
} // namespace
