#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "bench/signal/Bench.h"
#include "signal/CaptureCore.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

using namespace Tarvane;

namespace BenchSignal
{
namespace
{

constexpr std::uint32_t kChannels = 64, kRate = 96000, kFrames = 1024;
constexpr std::chrono::seconds kStall{2};

// The writer stands still in here as it would in a write.
void StallOnce(void* pStalled, CCaptureCore* pCore, std::uint32_t, std::uint32_t, std::uint32_t)
{
    double dLength = 0;
    std::uint32_t nSize = sizeof dLength;
    pCore->GetProperty(kTNProperty_CurrentCaptureLength, 0, 0, &dLength, &nSize);
    if (dLength > 1 && !static_cast<std::atomic<bool>*>(pStalled)->exchange(true))
    {
        std::this_thread::sleep_for(kStall);
    }
}

} // namespace

bool CaptureOnASlowDisk(const std::filesystem::path& folder, int nSeconds)
{
    CCaptureSettings settings;
    settings.captureFolder = folder;
    settings.format.nChannels = kChannels;
    settings.format.nRate = kRate;
    CCaptureCore core(settings);
    std::atomic<bool> fStalled = false;
    std::atomic<std::uint64_t> nKept = 0;
    core.AddListener(kTNProperty_CurrentCaptureLength, &StallOnce, &fStalled);
    core.SetObserver(
        [&](const CTake& take)
        {
            if (take.state == TakeState::Waiting)
            {
                nKept += take.nFrames;
            }
        });
    core.SetArmed(true);

    const std::vector<float> samples(kFrames, 0.25F);
    const std::vector<const float*> channels(kChannels, samples.data());
    const std::uint64_t nBlocks = static_cast<std::uint64_t>(nSeconds) * kRate / kFrames;
    auto due = std::chrono::steady_clock::now();
    for (std::uint64_t n = 0; n < nBlocks; ++n)
    {
        due += std::chrono::nanoseconds(std::uint64_t(kFrames) * 1'000'000'000 / kRate);
        std::this_thread::sleep_until(due);
        core.Process({true, false, 1, static_cast<double>(n * kFrames)}, channels.data(), kFrames);
    }
    core.EndTake();
    core.WaitUntilWritten();
    std::printf("%u channels at %u Hz for %d s, the disk still for %d s: %llu of %llu frames kept, "
                "%llu lost\n",
                kChannels, kRate, nSeconds, static_cast<int>(kStall.count()),
                static_cast<unsigned long long>(nKept),
                static_cast<unsigned long long>(nBlocks * kFrames),
                static_cast<unsigned long long>(core.LostFrames()));
    return fStalled && core.LostFrames() == 0 && nKept == nBlocks * kFrames;
}

} // namespace BenchSignal
