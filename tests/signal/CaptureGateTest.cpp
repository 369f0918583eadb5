#include "signal/CaptureGate.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Tarvane;

namespace
{

constexpr std::uint32_t kBlockFrames = 64;
constexpr std::size_t kBlockBytes = kBlockFrames * sizeof(float);
constexpr std::uint32_t kRingBlocks = 32;

// An armed gate of one channel; the test is audio thread and writer in turns.
class CaptureGate : public testing::Test
{
protected:
    CaptureGate()
    {
        gate.SetChannels(1);
        gate.Open(gate.Arm(true));
    }
    // The block behind the one before.
    void Play()
    {
        const std::vector<float> samples(kBlockFrames);
        const float* pSamples = samples.data();
        gate.Process({true, false, 1, dPosition}, &pSamples, kBlockFrames);
        dPosition += kBlockFrames;
    }
    void StopTransport()
    {
        gate.Process<float>({true, false, 0, dPosition}, nullptr, kBlockFrames);
    }
    // What the writer gets next, with its samples; an end without a loss when there is nothing.
    CRingEvent Take()
    {
        CRingEvent event;
        if (ring.Take(event) && event.kind == CRingEvent::Audio)
        {
            std::vector<float> samples(event.nFrames);
            ring.TakeSamples(samples.data(), samples.size() * sizeof(float));
        }
        return event;
    }
    void PlayUntilFramesAreLost()
    {
        while (gate.LostFrames() == 0)
        {
            Play();
        }
    }

    CCaptureRing ring{kRingBlocks * kBlockBytes};
    CWakeUp wake;
    CCaptureGate gate{ring, wake};
    double dPosition = 1000;
};

} // namespace

TEST_F(CaptureGate, AfterAnOverrunTheNextTakeWaitsUntilHalfOfTheRingIsFree)
{
    PlayUntilFramesAreLost();
    EXPECT_EQ(Take().kind, CRingEvent::Begin);
    std::uint32_t nFreed = 0;
    double dNext = dPosition;
    // A block is freed, and the next one played, until one is not lost.
    for (std::uint64_t nLost = 0; nFreed < kRingBlocks && gate.LostFrames() != nLost;)
    {
        EXPECT_EQ(Take().kind, CRingEvent::Audio);
        ++nFreed;
        nLost = gate.LostFrames();
        dNext = dPosition;
        Play();
    }
    EXPECT_EQ(nFreed, kRingBlocks / 2);
    while (nFreed < kRingBlocks)
    {
        EXPECT_EQ(Take().kind, CRingEvent::Audio);
        ++nFreed;
    }
    EXPECT_EQ(Take().kind, CRingEvent::End);
    EXPECT_EQ(Take().kind, CRingEvent::End) << "of what was lost since";
    const CRingEvent next = Take();
    EXPECT_EQ(next.kind, CRingEvent::Begin);
    EXPECT_EQ(next.dPosition, dNext) << "at its own place";
    // That was once: what follows needs room for itself alone.
    const std::uint64_t nLost = gate.LostFrames();
    for (std::uint32_t n = 1; n < kRingBlocks; ++n)
    {
        Play();
    }
    EXPECT_EQ(gate.LostFrames(), nLost);
}

TEST_F(CaptureGate, EachFrameThatIsLostIsToldOnceWhenItsStretchIsOver)
{
    const auto told = [this]
    {
        std::vector<std::uint64_t> losses;
        for (std::uint32_t n = 0; n < 2 * kRingBlocks; ++n)
        {
            const CRingEvent event = Take();
            if (event.nLostFrames > 0)
            {
                losses.push_back(event.nLostFrames);
            }
        }
        return losses;
    };
    PlayUntilFramesAreLost();
    Play();
    Play();
    StopTransport();
    StopTransport();
    EXPECT_EQ(told(), (std::vector<std::uint64_t>{kBlockFrames, 2 * kBlockFrames}));
    Play();
    StopTransport();
    EXPECT_EQ(told(), std::vector<std::uint64_t>());
    EXPECT_EQ(gate.LostFrames(), 3 * kBlockFrames);
}
