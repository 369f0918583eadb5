// All the threads of an instance at once, for the thread sanitizer too: the host's audio thread,
// the writer, and views that join, deliver and leave while servers appear.
#include "tests/signal/CoreUnderTest.h"

#include <atomic>
#include <set>
#include <thread>

using namespace Tarvane;
using namespace TarvaneTest;

namespace
{

constexpr int kTakes = 64; // a few seconds of 16 a second, as fast as they go
constexpr std::uint32_t kFrames = 3000;
constexpr int kMostTurns = 10; // of a view, before it leaves

// Delivers as a view does: some reach no server, and come again.
class CView
{
public:
    explicit CView(CCaptureCore& core) : m_core(core)
    {
        m_core.AddListener(TNProperty_Elements, &Hear, this);
        m_core.ViewJoined();
    }
    ~CView() { m_core.RemoveListener(TNProperty_Elements, &Hear, this); }

    void Deliver(std::set<double>& placed, unsigned& nSeed)
    {
        for (int nTurn = 0; nTurn < kMostTurns; ++nTurn)
        {
            std::int32_t nElement = -1;
            std::uint32_t nSize = sizeof nElement;
            m_core.GetProperty(TNProperty_NextElement, 0, 0, &nElement, &nSize);
            TNCaptureElement record{};
            nSize = sizeof record;
            if (nElement < 0 ||
                m_core.GetProperty(TNProperty_ElementInfo, 0, static_cast<std::uint32_t>(nElement),
                                   &record, &nSize) != kPropertyDone)
            {
                std::this_thread::yield();
                continue;
            }
            const bool fReached = ++nSeed % 3 != 0;
            m_core.TellOutcome(nElement,
                               fReached ? TakeOutcome::Delivered : TakeOutcome::Unreachable, "", 0);
            const TNElementAck ack{nElement, 1, static_cast<std::uint8_t>(fReached ? 0 : 1), 1};
            EXPECT_EQ(m_core.SetProperty(TNProperty_ElementDone, 0, 0, &ack, sizeof ack),
                      kPropertyDone);
            if (fReached)
            {
                EXPECT_TRUE(placed.insert(record.tDub.dPosition).second) << "placed twice";
            }
        }
    }

private:
    static void Hear(void* pView, CCaptureCore*, std::uint32_t, std::uint32_t, std::uint32_t)
    {
        ++static_cast<CView*>(pView)->m_nHeard;
    }

    CCaptureCore& m_core;
    std::atomic<int> m_nHeard = 0;
};

} // namespace

TEST(ViewsComeAndGo, EveryTakeIsPlacedOnceWhoeverIsThere)
{
    CCoreUnderTest host;
    std::atomic<bool> fOver = false;
    std::thread server(
        [&]
        {
            while (!fOver)
            {
                host.core->ServerAppeared();
                host.core->StatusText();
                std::this_thread::yield();
            }
        });
    std::thread audio(
        [&]
        {
            for (int n = 0; n < kTakes; ++n)
            {
                host.core->ArmFromPort(true);
                // Freewheeling, so that nothing is lost however slow the disk is.
                host.Play(n * 10'000.0, kFrames, 512, 1, true);
                host.core->ArmFromPort(false);
                host.Process({true, true, 1, n * 10'000.0 + kFrames}, 64);
            }
        });
    std::set<double> placed;
    unsigned nSeed = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (placed.size() < kTakes && std::chrono::steady_clock::now() < deadline)
    {
        CView view(*host.core);
        view.Deliver(placed, nSeed);
    }
    fOver = true;
    audio.join();
    server.join();
    EXPECT_EQ(placed.size(), static_cast<std::size_t>(kTakes));
    EXPECT_EQ(host.core->Waiting() + host.core->Unreachable(), 0U);
    EXPECT_EQ(host.core->LostFrames(), 0U);
}
