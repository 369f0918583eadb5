#include "signal/CaptureCore.h"

#include "signal/CaptureCoreParts.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

using Clock = std::chrono::steady_clock;

// How long the disk may stand still before frames are lost, where the ring is not larger anyway.
constexpr std::size_t kRingSeconds = 4;
constexpr std::size_t kSmallestRing = 4 << 20; // bytes

constexpr std::uint32_t kMaxChannels = 64;
constexpr std::uint32_t kMinRate = 8000, kMaxRate = 768000;

constexpr std::uint64_t kProgressFrames = 512;
constexpr std::chrono::milliseconds kLookAgain{20}; // while a take runs
constexpr std::chrono::milliseconds kTryAgain{500}; // to write a journal that the disk refused
// A host that has stopped calling us does not end the take of a disarmed instance; after this we
// do.
constexpr std::chrono::milliseconds kAbandoned{500};

std::size_t SampleBytes(SampleType type)
{
    return type == SampleType::Double ? sizeof(double) : sizeof(float);
}

void Check(const CTakeFormat& format)
{
    if (format.nChannels < 1 || format.nChannels > kMaxChannels)
    {
        throw std::invalid_argument("a take has 1 to 64 channels.");
    }
    if (format.nRate < kMinRate || format.nRate > kMaxRate)
    {
        throw std::invalid_argument("a take has 8000 to 768000 samples a second.");
    }
}

std::size_t RingBytes(const CTakeFormat& format)
{
    Check(format);
    return std::max(kSmallestRing,
                    kRingSeconds * format.nRate * format.nChannels * SampleBytes(format.samples));
}

void Interleave(const std::byte* pPlanar, std::byte* pInterleaved, std::size_t nSampleBytes,
                std::size_t nChannels, std::size_t nFrames)
{
    for (std::size_t nChannel = 0; nChannel < nChannels; ++nChannel)
    {
        const std::byte* pFrom = pPlanar + nChannel * nFrames * nSampleBytes;
        std::byte* pTo = pInterleaved + nChannel * nSampleBytes;
        for (std::size_t nFrame = 0; nFrame < nFrames; ++nFrame)
        {
            std::memcpy(pTo, pFrom, nSampleBytes);
            pFrom += nSampleBytes;
            pTo += nChannels * nSampleBytes;
        }
    }
}

} // namespace

CCaptureCore::Parts::Parts(CCaptureCore& core, const CCaptureSettings& settings)
    : m_core(core), m_ring(RingBytes(settings.format)), m_gate(m_ring, m_wake),
      m_nTrack(settings.nTrack), m_folder(settings.captureFolder),
      m_strUuid(CTakeJournal::IsUuid(settings.strUuid) ? settings.strUuid
                                                       : CTakeJournal::NewUuid()),
      m_fTurn(CTakeJournal::IsUuid(settings.strUuid)),
      m_writer(settings.captureFolder, m_strUuid,
               [this](const std::string& strLine) { Log(strLine); })
{
    m_gate.SetChannels(settings.format.nChannels);
    m_writer.SetFormat(settings.format);
    m_thread = std::thread([this] { Work(); });
}

CCaptureCore::Parts::~Parts()
{
    Close();
}

void CCaptureCore::Parts::Close()
{
    if (!m_thread.joinable())
    {
        return;
    }
    {
        std::lock_guard lock(m_mutex);
        m_fEnding = true;
    }
    m_gate.EndTake();
    m_wake.Wake();
    m_thread.join();
}

void CCaptureCore::Parts::SetArmed(bool fArm)
{
    if (const std::uint32_t nArm = m_gate.Arm(fArm))
    {
        Notify(TNProperty_ArmCapture);
        // Only now may a take begin: its first progress must find the toggle on.
        m_gate.Open(nArm);
        m_wake.Wake();
    }
}

void CCaptureCore::Parts::Notify(std::uint32_t nId)
{
    if (IsEnding())
    {
        return;
    }
    m_listeners.Notify(&m_core, nId, kPropertyScope_Global, 0);
}

void CCaptureCore::Parts::Observe(const CTake& take)
{
    std::function<void(const CTake&)> observer;
    {
        std::lock_guard lock(m_mutex);
        observer = m_observer;
    }
    if (observer)
    {
        observer(take);
    }
}

void CCaptureCore::Parts::Log(const std::string& strLine)
{
    std::function<void(const std::string&)> log;
    {
        std::lock_guard lock(m_mutex);
        m_strTrouble = strLine;
        log = m_log;
    }
    if (log)
    {
        log(strLine);
    }
}

void CCaptureCore::Parts::Post(std::function<void()> work)
{
    {
        std::lock_guard lock(m_mutex);
        if (!m_fEnded)
        {
            m_jobs.push_back(std::move(work));
            m_wake.Wake();
            return;
        }
    }
    // There is no writer any more.
    std::lock_guard lock(m_lateMutex);
    work();
}

void CCaptureCore::Parts::AnnounceWaiting(std::size_t nTakes)
{
    for (std::size_t n = 0; n < nTakes; ++n)
    {
        Notify(TNProperty_Elements);
    }
}

void CCaptureCore::Parts::Work()
{
    std::uint64_t nHandled = 0;
    while (true)
    {
        CRingEvent event;
        const bool fEvent = m_ring.Take(event);
        // What was asked for, and armed, ahead of this event is done and told ahead of what comes
        // of it.
        RunJobs();
        TellArming();
        if (fEvent)
        {
            Handle(event);
            ++nHandled;
            m_lastEvent = Clock::now();
            continue;
        }
        RaiseProgress();
        TellHandled(nHandled);
        EndAbandonedTake();
        TurnIfAsked();
        if (IsEnding())
        {
            EndTake();
            std::lock_guard lock(m_mutex);
            m_fEnded = m_jobs.empty();
            if (m_fEnded)
            {
                return;
            }
        }
        else if (m_writer.IsOpen())
        {
            m_wake.WaitFor(kLookAgain);
        }
        else if (!m_writer.CatchUp())
        {
            m_wake.WaitFor(kTryAgain);
        }
        else
        {
            m_wake.Wait();
        }
    }
}

bool CCaptureCore::Parts::IsEnding() const
{
    std::lock_guard lock(m_mutex);
    return m_fEnding;
}

void CCaptureCore::Parts::TellHandled(std::uint64_t nHandled)
{
    std::lock_guard lock(m_mutex);
    m_nHandled = nHandled;
    m_handledMore.notify_all();
}

void CCaptureCore::Parts::RunJobs()
{
    std::vector<std::function<void()>> jobs;
    {
        std::lock_guard lock(m_mutex);
        jobs.swap(m_jobs);
    }
    for (const auto& job : jobs)
    {
        job();
    }
}

void CCaptureCore::Parts::TellArming()
{
    if (m_fTellArming.load() && m_fTellArming.exchange(false))
    {
        Notify(TNProperty_ArmCapture);
    }
}

void CCaptureCore::Parts::Handle(const CRingEvent& event)
{
    switch (event.kind)
    {
    case CRingEvent::Begin:
        Begin(event);
        break;
    case CRingEvent::Audio:
        TakeIn(event);
        break;
    case CRingEvent::End:
        if (event.nLostFrames > 0 && m_writer.IsOpen())
        {
            Log("the disk is too slow: a take has ended early, and frames behind it are lost");
        }
        m_writer.Lose(event.nLostFrames + std::exchange(m_nLostBehindTake, 0));
        EndTake();
        break;
    }
}

void CCaptureCore::Parts::Begin(const CRingEvent& event)
{
    EndTake();
    TurnIfAsked();
    m_nTakeArm = event.nArm;
    m_dPosition = event.dPosition;
    m_nFrames = 0;
    m_dRate = m_writer.Format().nRate;
    m_fCapturing = true;
    const CTake& take = m_writer.Begin(m_nTakes++, event.dPosition);
    if (take.state == TakeState::Failed)
    {
        Fail(take);
        return;
    }
    {
        std::lock_guard lock(m_mutex);
        m_strUuid = m_writer.Uuid();
    }
    Observe(take);
}

void CCaptureCore::Parts::TakeIn(const CRingEvent& event)
{
    const CTakeFormat& format = m_writer.Format();
    const std::size_t nSampleBytes = SampleBytes(format.samples);
    const std::size_t nBytes = event.nFrames * format.nChannels * nSampleBytes;
    m_planar.resize(nBytes);
    m_interleaved.resize(nBytes);
    m_ring.TakeSamples(m_planar.data(), nBytes);
    if (!m_writer.IsOpen())
    {
        m_nLostToDisk += event.nFrames;
        m_nLostBehindTake += event.nFrames;
        return;
    }
    Interleave(m_planar.data(), m_interleaved.data(), nSampleBytes, format.nChannels,
               event.nFrames);
    const std::uint64_t nBefore = m_writer.Current().nFrames;
    const bool fWritten = m_writer.Write(m_interleaved.data(), event.nFrames);
    const std::uint64_t nWritten = m_writer.Current().nFrames - nBefore;
    m_nFrames += nWritten;
    m_nUntold += nWritten;
    if (!fWritten)
    {
        m_nLostToDisk += event.nFrames - nWritten;
        // What there is of it is whole; what follows would lie behind a gap.
        SetArmed(false);
        EndTake();
    }
    else if (m_nUntold >= kProgressFrames)
    {
        RaiseProgress();
    }
}

void CCaptureCore::Parts::RaiseProgress()
{
    if (m_nUntold > 0)
    {
        m_nUntold = 0;
        Notify(kTNProperty_CurrentCaptureLength);
    }
}

void CCaptureCore::Parts::EndTake()
{
    if (!m_writer.IsOpen())
    {
        return;
    }
    RaiseProgress();
    CQueuedTake queued = m_writer.End();
    if (queued.take.state == TakeState::Failed)
    {
        Fail(queued.take);
        return;
    }
    if (!queued.take.strFailure.empty())
    {
        Log(queued.take.strFailure);
    }
    const CTake take = m_queue.Add(std::move(queued));
    m_fCapturing = false;
    Notify(TNProperty_Elements);
    Observe(take);
}

void CCaptureCore::Parts::Fail(const CTake& take)
{
    if (!take.strFailure.empty())
    {
        Log(take.strFailure);
    }
    SetArmed(false);
    m_fCapturing = false;
    Observe(take);
}

void CCaptureCore::Parts::EndAbandonedTake()
{
    if (m_writer.IsOpen() && m_gate.Arming() != m_nTakeArm &&
        Clock::now() - m_lastEvent > kAbandoned)
    {
        EndTake();
    }
}

void CCaptureCore::Parts::TurnIfAsked()
{
    fs::path folder;
    std::string strUuid;
    {
        std::lock_guard lock(m_mutex);
        if (!m_fTurn || m_writer.IsOpen())
        {
            return;
        }
        m_fTurn = false;
        folder = m_folder;
        strUuid = m_strUuid;
    }
    if (!m_writer.TurnTo(folder, strUuid, m_queue))
    {
        Log("another instance holds the takes of this one's state: this one is a copy");
        std::lock_guard lock(m_mutex);
        m_strUuid = m_fTurn ? m_strUuid : m_writer.Uuid();
    }
    for (CQueuedTake& queued : m_writer.Recover())
    {
        queued.take.nNumber = m_nTakes++;
        const CTake take = m_queue.Add(std::move(queued));
        Notify(TNProperty_Elements);
        Observe(take);
    }
}

CCaptureCore::CCaptureCore(const CCaptureSettings& settings)
    : m_pParts(std::make_unique<Parts>(*this, settings))
{
}

CCaptureCore::~CCaptureCore() = default;

void CCaptureCore::Process(const CTransport& transport, const float* const* ppChannels,
                           std::uint32_t nFrames) noexcept
{
    m_pParts->m_gate.Process(transport, ppChannels, nFrames);
}

void CCaptureCore::Process(const CTransport& transport, const std::int32_t* const* ppChannels,
                           std::uint32_t nFrames) noexcept
{
    m_pParts->m_gate.Process(transport, ppChannels, nFrames);
}

void CCaptureCore::Process(const CTransport& transport, const double* const* ppChannels,
                           std::uint32_t nFrames) noexcept
{
    m_pParts->m_gate.Process(transport, ppChannels, nFrames);
}

void CCaptureCore::ArmFromPort(bool fArm) noexcept
{
    if (const std::uint32_t nArm = m_pParts->m_gate.Arm(fArm))
    {
        m_pParts->m_gate.Open(nArm);
        m_pParts->m_fTellArming = true;
        m_pParts->m_wake.Wake();
    }
}

void CCaptureCore::EndTake()
{
    m_pParts->m_gate.EndTake();
}

void CCaptureCore::Prepare(const CTakeFormat& format)
{
    Check(format);
    m_pParts->m_gate.EndTake();
    WaitUntilWritten();
    m_pParts->m_gate.SetChannels(format.nChannels);
    // Ahead of every block that comes from now on, as the writer does its jobs first.
    m_pParts->Post([pParts = m_pParts.get(), format] { pParts->m_writer.SetFormat(format); });
}

void CCaptureCore::WaitUntilWritten()
{
    m_pParts->m_wake.Wake();
    std::unique_lock lock(m_pParts->m_mutex);
    m_pParts->m_handledMore.wait(lock, [this]
                                 { return m_pParts->m_nHandled >= m_pParts->m_gate.EventsPut(); });
}

void CCaptureCore::Close()
{
    m_pParts->Close();
}

void CCaptureCore::AddListener(std::uint32_t nId, Listeners::Proc pProc, void* pUserData)
{
    m_pParts->m_listeners.Add(nId, pProc, pUserData);
}

bool CCaptureCore::RemoveListener(std::uint32_t nId, Listeners::Proc pProc, void* pUserData)
{
    return m_pParts->m_listeners.Remove(nId, pProc, pUserData);
}

void CCaptureCore::SetArmed(bool fArm)
{
    m_pParts->SetArmed(fArm);
}

bool CCaptureCore::IsArmed() const
{
    return m_pParts->m_gate.IsArmed();
}

std::string CCaptureCore::Uuid() const
{
    std::lock_guard lock(m_pParts->m_mutex);
    return m_pParts->m_strUuid;
}

std::int32_t CCaptureCore::Track() const
{
    return m_pParts->m_nTrack;
}

void CCaptureCore::Restore(const std::string& strUuid, std::int32_t nTrack)
{
    m_pParts->m_nTrack = nTrack;
    if (CTakeJournal::IsUuid(strUuid))
    {
        std::lock_guard lock(m_pParts->m_mutex);
        m_pParts->m_strUuid = strUuid;
        m_pParts->m_fTurn = true;
    }
    m_pParts->m_wake.Wake();
}

void CCaptureCore::SetCaptureFolder(const fs::path& folder)
{
    {
        std::lock_guard lock(m_pParts->m_mutex);
        m_pParts->m_folder = folder;
        m_pParts->m_fTurn = true;
    }
    m_pParts->m_wake.Wake();
}

void CCaptureCore::TellOutcome(std::int32_t nElement, TakeOutcome outcome, std::string_view words,
                               double dExpectedPosition)
{
    m_pParts->m_queue.Tell(nElement, outcome, words, dExpectedPosition);
}

void CCaptureCore::ServerAppeared()
{
    if (const std::size_t nOffered = m_pParts->m_queue.OfferAgain())
    {
        m_pParts->Notify(TNProperty_ArmCapture);
        m_pParts->AnnounceWaiting(nOffered);
    }
}

void CCaptureCore::ViewJoined()
{
    m_pParts->AnnounceWaiting(m_pParts->m_queue.Waiting());
}

std::string CCaptureCore::StatusText() const
{
    const Parts& parts = *m_pParts;
    std::string strText;
    if (parts.m_gate.HasProcessed() && !parts.m_gate.HasPosition())
    {
        strText = "The host tells no position on its timeline, so nothing is captured.";
    }
    else if (parts.m_fCapturing)
    {
        strText = "Capturing.";
    }
    else
    {
        strText = IsArmed() ? "Armed: plays at speed 1 are captured." : "Not armed.";
    }
    const auto add = [&](std::size_t nTakes, const char* szWhat)
    {
        if (nTakes > 0)
        {
            strText += " " + std::to_string(nTakes) + szWhat;
        }
    };
    add(Waiting(), " takes wait for the view.");
    add(Unreachable(), " takes wait for a server.");
    add(LostFrames(), " frames were lost.");
    std::lock_guard lock(parts.m_mutex);
    return parts.m_strTrouble.empty() ? strText : strText + " " + parts.m_strTrouble;
}

std::uint64_t CCaptureCore::LostFrames() const
{
    return m_pParts->m_gate.LostFrames() + m_pParts->m_nLostToDisk;
}

std::size_t CCaptureCore::Waiting() const
{
    return m_pParts->m_queue.Waiting();
}

bool CCaptureCore::IsWaiting(std::uint32_t nTake) const
{
    return m_pParts->m_queue.IsWaiting(nTake);
}

std::size_t CCaptureCore::Unreachable() const
{
    return m_pParts->m_queue.Unreachable();
}

bool CCaptureCore::IsCapturing() const
{
    return m_pParts->m_fCapturing;
}

void CCaptureCore::SetObserver(std::function<void(const CTake&)> observer)
{
    std::lock_guard lock(m_pParts->m_mutex);
    m_pParts->m_observer = std::move(observer);
}

void CCaptureCore::SetLog(std::function<void(const std::string&)> log)
{
    std::lock_guard lock(m_pParts->m_mutex);
    m_pParts->m_log = std::move(log);
}

} // namespace Tarvane
