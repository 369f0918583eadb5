#include "apps/support/SignalSide.h"

#include "apps/support/CommandLine.h"
#include "apps/support/DubFile.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

using Clock = std::chrono::steady_clock;

template <size_t nSize> void CopyPath(char (&szField)[nSize], const fs::path& path)
{
    const std::string strPath = path.string();
    if (strPath.size() < nSize)
    {
        std::memcpy(szField, strPath.c_str(), strPath.size() + 1);
    }
}

TNCaptureElement RecordOf(const fs::path& guide, const fs::path& dub, double dPosition,
                          double dFrames, double dSampleRate)
{
    TNCaptureElement record{};
    TNRegionTimes times{};
    times.dPosition = dPosition;
    times.dEnd = dFrames;
    // The view only logs the guide; a path that is too long for its field is left out.
    CopyPath(record.szGuidePath, guide);
    record.tGuide = times;
    CopyPath(record.szDubPath, dub);
    record.tDub = times;
    record.dSampleRate = dSampleRate;
    return record;
}

// What the work threw, or nothing.
template <typename Work> std::string FailureOf(Work work)
{
    try
    {
        work();
        return "";
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}

} // namespace

double PositionBehind(double dPosition, double dFrames, double dRate, double dNextRate)
{
    const double dEnd = dPosition + dFrames;
    return dRate > 0 && dRate != dNextRate ? std::ceil(dEnd / dRate * dNextRate) : dEnd;
}

CSignalSide::CSignalSide() : m_thread([this] { Work(); }) {}

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
    std::lock_guard lock(m_mutex);
    m_settings = settings;
    m_settings.captureFolder = fs::absolute(settings.captureFolder).lexically_normal();
    m_nTrack = settings.nTrack;
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
    CDubFile::CheckPath(m_settings.captureFolder, pSource->reader);
    CDubFile::CheckFolder(m_settings.captureFolder);
    m_pSource = std::move(pSource);
    m_fBegin = m_fArmed;
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
    return std::any_of(m_waiting.begin(), m_waiting.end(),
                       [nNumber](const Element& element)
                       { return element.report.nNumber == nNumber; });
}

bool CSignalSide::IsArmed() const
{
    std::lock_guard lock(m_mutex);
    return m_fArmed;
}

bool CSignalSide::IsCapturing() const
{
    std::lock_guard lock(m_mutex);
    return m_fCapturing;
}

void CSignalSide::SetArmed(bool fArmed)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_fArmed == fArmed)
        {
            return;
        }
        m_fArmed = fArmed;
        m_fBegin = false;
        m_fStop = m_fStop || !fArmed;
        m_wake.notify_all();
    }
    Notify(TNProperty_ArmCapture);
    // Only now may the capture begin: its first progress must find the toggle on.
    std::lock_guard lock(m_mutex);
    m_fBegin = m_fArmed && m_pSource;
    m_wake.notify_all();
}

OSStatus CSignalSide::TakeAck(const TNElementAck& ack)
{
    CCaptureReport acknowledged;
    {
        std::lock_guard lock(m_mutex);
        if (m_waiting.empty() || m_waiting.front().report.nElement != ack.nElement)
        {
            return kAudioUnitErr_InvalidPropertyValue;
        }
        acknowledged = std::move(m_waiting.front().report);
        m_waiting.pop_front();
        acknowledged.pAck = ack;
        acknowledged.nTrack = m_nTrack;
        acknowledged.state = CaptureState::Acknowledged;
    }
    Notify(TNProperty_ArmCapture);
    Observe(acknowledged);
    return noErr;
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
        m_fCapturing = true;
        m_dPosition = m_pSource->dPosition;
        m_dSamplesPlayed = 0;
        m_dCaptureLength = 0;
        CCaptureReport report;
        report.source = m_pSource->reader.Path();
        report.nNumber = m_nBegun++;
        const std::unique_ptr<Source> pSource = std::move(m_pSource);
        lock.unlock();
        Capture(*pSource, std::move(report));
        lock.lock();
    }
}

void CSignalSide::Capture(Source& source, CCaptureReport report)
{
    std::unique_ptr<CDubFile> pDub;
    uint64_t nFrames = 0;
    std::string strFailure = FailureOf(
        [&]
        {
            pDub = std::make_unique<CDubFile>(CaptureFolder(), source.reader);
            nFrames = Play(source, *pDub);
        });
    EndPlaying();
    if (strFailure.empty() && nFrames > 0)
    {
        strFailure = FailureOf([&] { Publish(source, nFrames, *pDub, report); });
    }
    // What was not published is gone before anybody hears of it.
    pDub.reset();
    if (!strFailure.empty() || nFrames == 0)
    {
        Conclude(std::move(report), strFailure);
    }
}

fs::path CSignalSide::CaptureFolder() const
{
    std::lock_guard lock(m_mutex);
    return m_settings.captureFolder;
}

uint64_t CSignalSide::Play(Source& source, CDubFile& dub)
{
    const SF_INFO& info = source.reader.Info();
    CSampleBlock block(SampleTypeOf(info.format), info.channels, kBlockFrames);
    const Clock::time_point start = Clock::now();
    uint64_t nFrames = 0;
    while (WaitForBlock(nFrames + kBlockFrames, info.samplerate, start))
    {
        const size_t nRead = source.reader.Read(block);
        if (nRead == 0)
        {
            break;
        }
        dub.Write(block, nRead);
        nFrames += nRead;
        {
            std::lock_guard lock(m_mutex);
            m_dSamplesPlayed = static_cast<double>(nFrames);
            m_dCaptureLength = m_dSamplesPlayed / info.samplerate;
        }
        Notify(kTNProperty_CurrentCaptureLength);
    }
    return nFrames;
}

bool CSignalSide::WaitForBlock(uint64_t nFrames, double dSampleRate, Clock::time_point start)
{
    std::unique_lock lock(m_mutex);
    const auto fOver = [this] { return m_fStop || m_fClosing; };
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
        m_fArmed = false;
    }
    Notify(TNProperty_ArmCapture);
}

void CSignalSide::Publish(const Source& source, uint64_t nFrames, CDubFile& dub,
                          CCaptureReport report)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_fClosing)
        {
            return;
        }
    }
    const TNCaptureElement record =
        RecordOf(source.reader.Path(), dub.Publish(), source.dPosition,
                 static_cast<double>(nFrames), source.reader.Info().samplerate);
    report.dub = record.szDubPath;
    report.times = record.tDub;
    report.dSampleRate = record.dSampleRate;
    report.state = CaptureState::Waiting;
    {
        std::lock_guard lock(m_mutex);
        report.nElement = m_nNextElement++;
        m_waiting.push_back({report, record});
        m_fCapturing = false;
    }
    Notify(TNProperty_Elements);
    Observe(report);
}

void CSignalSide::Conclude(CCaptureReport report, const std::string& strFailure)
{
    report.state = strFailure.empty() ? CaptureState::Empty : CaptureState::Failed;
    report.strFailure = strFailure;
    {
        std::lock_guard lock(m_mutex);
        m_fCapturing = false;
    }
    Observe(report);
}

void CSignalSide::Notify(AudioUnitPropertyID nId)
{
    m_listeners.Notify(m_pUnit, nId, kAudioUnitScope_Global, 0);
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
