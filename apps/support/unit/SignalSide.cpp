#include "apps/support/unit/SignalSide.h"

#include "apps/support/program/CommandLine.h"
#include "apps/support/sound/CaptureFolder.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

using Clock = std::chrono::steady_clock;

// The host keeps no state between its runs, so that its takes are found by the folder alone. Of two
// instances in one folder the second gets a UUID of its own.
constexpr const char* kHostUuid = "74617276-616e-4e65-8c69-6e6b686f7374";

constexpr std::uint32_t kRaised[] = {TNProperty_Elements, TNProperty_ArmCapture,
                                     kTNProperty_CurrentCaptureLength};

// Each channel's samples of a block on their own, as hosts hand them over.
template <typename Sample> class CChannels
{
public:
    CChannels(const CSampleBlock& block, size_t nChannels, size_t nFrames)
    {
        const auto* pSamples = static_cast<const Sample*>(block.Data());
        m_samples.resize(nChannels, std::vector<Sample>(nFrames));
        for (size_t nChannel = 0; nChannel < nChannels; ++nChannel)
        {
            for (size_t n = 0; n < nFrames; ++n)
            {
                m_samples[nChannel][n] = pSamples[n * nChannels + nChannel];
            }
            m_channels.push_back(m_samples[nChannel].data());
        }
    }
    const Sample* const* Data() const { return m_channels.data(); }

private:
    std::vector<std::vector<Sample>> m_samples;
    std::vector<const Sample*> m_channels;
};

void Process(CCaptureCore& core, const CTransport& transport, const CSampleBlock& block,
             size_t nChannels, std::uint32_t nFrames)
{
    switch (block.Type())
    {
    case SampleType::Integer:
        core.Process(transport, CChannels<std::int32_t>(block, nChannels, nFrames).Data(), nFrames);
        break;
    case SampleType::Float:
        core.Process(transport, CChannels<float>(block, nChannels, nFrames).Data(), nFrames);
        break;
    case SampleType::Double:
        core.Process(transport, CChannels<double>(block, nChannels, nFrames).Data(), nFrames);
        break;
    }
}

CaptureState StateOf(TakeState state)
{
    switch (state)
    {
    case TakeState::Waiting:
        return CaptureState::Waiting;
    case TakeState::Acknowledged:
        return CaptureState::Acknowledged;
    case TakeState::Failed:
        return CaptureState::Failed;
    case TakeState::Running:
        break;
    }
    return CaptureState::Running;
}

CCaptureReport ReportOfEarlier(const CTake& take)
{
    CCaptureReport report;
    report.source = take.guide;
    report.fRecovered = true;
    report.fLate = true;
    return report;
}

void Fill(CCaptureReport& report, const CTake& take)
{
    report.state = StateOf(take.state);
    report.strFailure = take.strFailure;
    report.nLostFrames = take.nLostFrames;
    report.nElement = take.nElement;
    report.nTrack = take.nTrack;
    report.pAck = take.ack;
    report.outcome = take.outcome;
    report.strWords = take.strWords;
    report.dExpectedPosition = take.dExpectedPosition;
    if (take.nElement >= 0)
    {
        report.dub = take.file;
        report.times.dPosition = take.dPosition;
        report.times.dEnd = static_cast<double>(take.nFrames);
        report.dSampleRate = take.dRate;
    }
}

CCaptureSettings CoreSettings()
{
    CCaptureSettings settings;
    settings.captureFolder = ".";
    return settings;
}

} // namespace

CSignalSide::CSignalSide() : m_core(CoreSettings())
{
    for (const std::uint32_t nId : kRaised)
    {
        m_core.AddListener(nId, &Hear, this);
    }
    m_core.SetObserver([this](const CTake& take) { TakeChanged(take); });
    m_core.SetLog([this](const std::string& strLine) { Log(strLine); });
    m_thread = std::thread([this] { Work(); });
}

CSignalSide::~CSignalSide()
{
    End();
}

void CSignalSide::End()
{
    Stop();
    if (m_thread.joinable())
    {
        m_thread.join();
    }
    m_core.Close();
}

void CSignalSide::Stop()
{
    std::lock_guard lock(m_mutex);
    m_fClosing = true;
    m_wake.notify_all();
}

void CSignalSide::Configure(const CSignalSettings& settings)
{
    if (!(settings.dSpeed >= 0) || !std::isfinite(settings.dSpeed))
    {
        throw CUsageError("the speed must be a number of 0 or more.");
    }
    const fs::path folder = fs::absolute(settings.captureFolder).lexically_normal();
    {
        std::lock_guard lock(m_mutex);
        m_settings = settings;
        m_settings.captureFolder = folder;
    }
    m_core.SetCaptureFolder(folder);
    m_core.Restore(settings.fContinues ? kHostUuid : "", settings.nTrack);
}

void CSignalSide::SetLog(std::function<void(const std::string&)> log)
{
    std::lock_guard lock(m_mutex);
    m_log = std::move(log);
}

void CSignalSide::SetObserver(std::function<void(const CCaptureReport&)> observer)
{
    std::lock_guard lock(m_mutex);
    m_observer = std::move(observer);
}

void CSignalSide::SetSource(const CCaptureSource& source)
{
    std::unique_ptr<Source> pSource(new Source{CSoundReader(source.file), source.dPosition});
    std::lock_guard lock(m_mutex);
    CheckCapturePath(m_settings.captureFolder, pSource->reader);
    CheckCaptureFolder(m_settings.captureFolder);
    m_pSource = std::move(pSource);
    m_fBegin = m_fReady;
    m_wake.notify_all();
}

size_t CSignalSide::CapturesBegun() const
{
    std::lock_guard lock(m_mutex);
    return m_nBegun;
}

bool CSignalSide::IsWaiting(size_t nNumber) const
{
    std::lock_guard lock(m_mutex);
    return std::any_of(m_captures.begin(), m_captures.end(),
                       [this, nNumber](const auto& entry)
                       {
                           const CCaptureReport& report = entry.second;
                           return !report.fLate && report.nNumber == nNumber &&
                                  m_core.IsWaiting(entry.first);
                       });
}

bool CSignalSide::IsCapturing() const
{
    std::lock_guard lock(m_mutex);
    return m_fPlaying || m_core.IsCapturing();
}

// Whether the player may play, once everybody has been told of the armed state.
void CSignalSide::SetReady()
{
    std::lock_guard lock(m_mutex);
    m_fReady = m_core.IsArmed();
    m_fBegin = m_fReady && m_pSource;
    m_wake.notify_all();
}

void CSignalSide::Work()
{
    std::unique_lock lock(m_mutex);
    while (true)
    {
        m_wake.wait(lock, [this] { return m_fClosing || (m_fBegin && m_pSource); });
        if (m_fClosing)
        {
            return;
        }
        m_fBegin = false;
        m_fStop = false;
        m_fPlaying = true;
        m_playing = CCaptureReport();
        m_playing.source = m_pSource->reader.Path();
        m_playing.nNumber = m_nBegun++;
        const std::unique_ptr<Source> pSource = std::move(m_pSource);
        lock.unlock();
        Play(*pSource);
        lock.lock();
    }
}

void CSignalSide::Play(Source& source)
{
    m_core.Prepare(TakeFormatFor(source.reader));
    const uint64_t nFrames = PlayBlocks(source);
    EndPlaying();
    {
        std::lock_guard lock(m_mutex);
        m_fPlaying = false;
        if (m_fClosing)
        {
            // The core finishes the capture as it is closed, when nothing is raised any more.
            return;
        }
    }
    m_core.EndTake();
    m_core.WaitUntilWritten();
    if (nFrames == 0)
    {
        m_playing.state = CaptureState::Empty;
        Observe(m_playing);
    }
}

uint64_t CSignalSide::PlayBlocks(Source& source)
{
    const SF_INFO& info = source.reader.Info();
    CSampleBlock block(SampleTypeOf(info.format), info.channels, kBlockFrames);
    const Clock::time_point start = Clock::now();
    uint64_t nFrames = 0;
    while (WaitForBlock(nFrames + kBlockFrames, info.samplerate, start))
    {
        const auto nRead = static_cast<std::uint32_t>(source.reader.Read(block));
        if (nRead == 0)
        {
            break;
        }
        Process(m_core,
                {true, m_settings.dSpeed == 0, 1, source.dPosition + static_cast<double>(nFrames)},
                block, static_cast<size_t>(info.channels), nRead);
        m_core.WaitUntilWritten();
        nFrames += nRead;
    }
    return nFrames;
}

bool CSignalSide::WaitForBlock(uint64_t nFrames, double dSampleRate, Clock::time_point start)
{
    std::unique_lock lock(m_mutex);
    // The core disarms when it can keep nothing more.
    const auto fOver = [this] { return m_fStop || m_fClosing || !m_core.IsArmed(); };
    if (m_settings.dSpeed > 0)
    {
        const std::chrono::duration<double> due(static_cast<double>(nFrames) / dSampleRate /
                                                m_settings.dSpeed);
        m_wake.wait_until(lock, start + std::chrono::duration_cast<Clock::duration>(due), fOver);
    }
    return !fOver();
}

void CSignalSide::EndPlaying()
{
    {
        std::lock_guard lock(m_mutex);
        if (m_fStop || m_fClosing)
        {
            return;
        }
        m_fReady = false;
    }
    m_core.SetArmed(false);
}

void CSignalSide::Hear(void* pUserData, CCaptureCore*, std::uint32_t nId, std::uint32_t nScope,
                       std::uint32_t nElement)
{
    auto& self = *static_cast<CSignalSide*>(pUserData);
    self.m_listeners.Notify(self.m_pUnit, nId, nScope, nElement);
}

void CSignalSide::TakeChanged(const CTake& take)
{
    CCaptureReport report;
    {
        std::lock_guard lock(m_mutex);
        const auto [found, fNew] = m_captures.try_emplace(take.nNumber);
        CCaptureReport& kept = found->second;
        if (fNew)
        {
            kept = take.fRecovered ? ReportOfEarlier(take) : m_playing;
        }
        Fill(kept, take);
        report = kept;
        // Whatever is told of it from here on comes later than its capture was over.
        kept.fLate = report.fLate || report.state == CaptureState::Acknowledged;
        if (report.IsOver() && !(take.outcome && IsOfferedAgain(*take.outcome)))
        {
            m_captures.erase(found);
        }
    }
    if (report.state != CaptureState::Running)
    {
        Observe(report);
    }
}

void CSignalSide::Log(const std::string& strLine)
{
    std::function<void(const std::string&)> log;
    {
        std::lock_guard lock(m_mutex);
        log = m_log;
    }
    if (log)
    {
        log(strLine);
    }
}

void CSignalSide::Observe(const CCaptureReport& report)
{
    std::function<void(const CCaptureReport&)> observer;
    {
        std::lock_guard lock(m_mutex);
        observer = m_observer;
    }
    if (observer)
    {
        observer(report);
    }
}

} // namespace Tarvane
