// A capture core, driven as a host drives one: block by block, on the test's own thread.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "signal/CaptureCore.h"
#include "signal/PropertyStatus.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <array>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <sndfile.h>
#include <utility>
#include <vector>

namespace TarvaneTest
{

/// The audio of all these tests: what stands at a place of the timeline, in 24 bits. A file is
/// right if and only if its sample i is that of its position + i.
inline float SampleAt(std::int64_t nPosition, std::uint32_t nChannel = 0)
{
    std::uint64_t nHash = static_cast<std::uint64_t>(nPosition) * 64 + nChannel;
    nHash = (nHash ^ (nHash >> 30)) * 0xBF58476D1CE4E5B9U;
    nHash = (nHash ^ (nHash >> 27)) * 0x94D049BB133111EBU;
    nHash ^= nHash >> 31;
    return (static_cast<float>(nHash & 0xFFFFFF) - 0x800000) / 0x800000;
}

/// How many samples of a file are those of the timeline from the position on; frames times channels
/// when all are.
inline std::size_t SamplesThatAreRight(const std::filesystem::path& file, double dPosition)
{
    SF_INFO info{};
    SNDFILE* pFile = sf_open(file.c_str(), SFM_READ, &info);
    EXPECT_NE(pFile, nullptr) << file << ": " << sf_strerror(nullptr);
    if (pFile == nullptr)
    {
        return 0;
    }
    std::vector<float> samples(static_cast<std::size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_float(pFile, samples.data(), info.frames), info.frames);
    sf_close(pFile);
    std::size_t nRight = 0;
    for (std::size_t n = 0; n < samples.size(); ++n)
    {
        const auto nChannels = static_cast<std::size_t>(info.channels);
        nRight += samples[n] == SampleAt(static_cast<std::int64_t>(dPosition) +
                                             static_cast<std::int64_t>(n / nChannels),
                                         static_cast<std::uint32_t>(n % nChannels));
    }
    return nRight;
}

class CCoreUnderTest
{
public:
    explicit CCoreUnderTest(std::uint32_t nChannels = 2, const std::string& strUuid = {},
                            std::filesystem::path folder = {})
        : m_nChannels(nChannels)
    {
        Tarvane::CCaptureSettings settings;
        settings.captureFolder = folder.empty() ? captures.Path() : folder;
        settings.format.nChannels = nChannels;
        settings.strUuid = strUuid;
        Open(settings);
    }
    ~CCoreUnderTest() { Close(); }

    /// A kept state is restored when the observer is there to see what it brings.
    void Open(Tarvane::CCaptureSettings settings)
    {
        const std::string strUuid = std::exchange(settings.strUuid, {});
        core = std::make_unique<Tarvane::CCaptureCore>(settings);
        for (std::uint32_t nId = 64000; nId <= 64010; ++nId)
        {
            core->AddListener(nId, &Hear, this);
        }
        core->SetObserver([this](const Tarvane::CTake& take) { Note(take); });
        core->SetLog(
            [this](const std::string& strLine)
            {
                std::lock_guard lock(m_mutex);
                m_log.push_back(strLine);
            });
        core->Restore(strUuid, settings.nTrack);
    }
    void Close() { core.reset(); }

    /// Plays from the position on, in blocks.
    void Play(double dPosition, std::uint32_t nFrames, std::uint32_t nBlock = 512,
              double dSpeed = 1, bool fFreewheeling = false)
    {
        for (std::uint32_t nDone = 0; nDone < nFrames; nDone += nBlock)
        {
            const std::uint32_t nNow = std::min(nBlock, nFrames - nDone);
            Process({true, fFreewheeling, dSpeed, dPosition + nDone}, nNow);
        }
    }
    /// A block that holds what stands at its place.
    void Process(const Tarvane::CTransport& transport, std::uint32_t nFrames)
    {
        std::vector<std::vector<float>> samples(m_nChannels, std::vector<float>(nFrames));
        std::vector<const float*> channels;
        const bool fPlace = std::abs(transport.dPosition) < 0x1p53; // not of what is no number
        const auto nPlace = static_cast<std::int64_t>(fPlace ? transport.dPosition : 0.0);
        for (std::uint32_t nChannel = 0; nChannel < m_nChannels; ++nChannel)
        {
            for (std::uint32_t n = 0; n < nFrames; ++n)
            {
                samples[nChannel][n] = SampleAt(nPlace + n, nChannel);
            }
            channels.push_back(samples[nChannel].data());
        }
        core->Process(transport, channels.data(), nFrames);
    }
    void StopTransport(double dPosition = 0) { Process({true, false, 0, dPosition}, 64); }

    template <typename Value> Value Get(std::uint32_t nId, std::uint32_t nElement = 0) const
    {
        Value value{};
        std::uint32_t nSize = sizeof value;
        EXPECT_EQ(core->GetProperty(nId, Tarvane::kPropertyScope_Global, nElement, &value, &nSize),
                  Tarvane::kPropertyDone)
            << nId;
        return value;
    }
    template <typename Value> std::int32_t Set(std::uint32_t nId, const Value& value) const
    {
        return core->SetProperty(nId, Tarvane::kPropertyScope_Global, 0, &value, sizeof value);
    }
    std::int32_t Acknowledge(std::int32_t nElement, std::uint8_t fNotDelivered = 0) const
    {
        return Set(TNProperty_ElementDone, TNElementAck{nElement, 1, fNotDelivered, 1});
    }

    /// Waits, woken by every notification, for a state that is sure to come.
    void WaitFor(const std::function<bool()>& fReached)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_heard.wait_for(lock, std::chrono::seconds(60), fReached));
    }
    /// The takes that were published, once there are that many.
    std::vector<Tarvane::CTake> Published(std::size_t nTakes)
    {
        WaitFor([&] { return m_published.size() >= nTakes; });
        std::lock_guard lock(m_mutex);
        return m_published;
    }
    std::vector<Tarvane::CTake> Seen() const
    {
        std::lock_guard lock(m_mutex);
        return m_seen;
    }
    std::vector<std::uint32_t> Ids() const
    {
        std::lock_guard lock(m_mutex);
        return m_ids;
    }
    std::size_t Count(std::uint32_t nId) const
    {
        std::lock_guard lock(m_mutex);
        return static_cast<std::size_t>(std::count(m_ids.begin(), m_ids.end(), nId));
    }
    std::vector<std::string> LogLines() const
    {
        std::lock_guard lock(m_mutex);
        return m_log;
    }

    /// Called on the notifying thread, after the notification has been noted.
    std::function<void(std::uint32_t)> onNotification;

    CTemporaryFolder captures;
    std::unique_ptr<Tarvane::CCaptureCore> core;

private:
    void Note(const Tarvane::CTake& take)
    {
        std::lock_guard lock(m_mutex);
        m_seen.push_back(take);
        if (take.state == Tarvane::TakeState::Waiting)
        {
            m_published.push_back(take);
        }
        m_heard.notify_all();
    }
    static void Hear(void* pUserData, Tarvane::CCaptureCore*, std::uint32_t nId, std::uint32_t,
                     std::uint32_t)
    {
        auto& self = *static_cast<CCoreUnderTest*>(pUserData);
        {
            std::lock_guard lock(self.m_mutex);
            self.m_ids.push_back(nId);
            self.m_heard.notify_all();
        }
        if (self.onNotification)
        {
            self.onNotification(nId);
        }
    }

    const std::uint32_t m_nChannels;
    mutable std::mutex m_mutex;
    std::condition_variable m_heard;
    std::vector<std::uint32_t> m_ids;
    std::vector<Tarvane::CTake> m_seen, m_published;
    std::vector<std::string> m_log;
};

} // namespace TarvaneTest
