// What an instance is made of; for the sources of CCaptureCore alone.
#pragma once

#include "signal/CaptureCore.h"
#include "signal/CaptureGate.h"
#include "signal/CaptureRing.h"
#include "signal/PropertyStatus.h"
#include "signal/TakeQueue.h"
#include "signal/TakeWriter.h"
#include "signal/WakeUp.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Tarvane
{

class CCaptureCore::Parts
{
public:
    Parts(CCaptureCore& core, const CCaptureSettings& settings);
    ~Parts();
    void Close();

    bool IsEnding() const;
    void SetArmed(bool fArm);
    void Notify(std::uint32_t nId);
    void Observe(const CTake& take);
    void Log(const std::string& strLine);
    /// Has the writer do the work between two events.
    void Post(std::function<void()> work);
    std::int32_t TakeAck(const TNElementAck& ack);
    void AnnounceWaiting(std::size_t nTakes);

    /// The writer.
    void Work();
    void RunJobs();
    void TellArming();
    void Handle(const CRingEvent& event);
    void Begin(const CRingEvent& event);
    void TakeIn(const CRingEvent& event);
    void EndTake();
    void RaiseProgress();
    void EndAbandonedTake();
    void Fail(const CTake& take);
    void TurnIfAsked();
    void TellHandled(std::uint64_t nHandled);

    CCaptureCore& m_core;
    CCaptureCore::Listeners m_listeners;
    CWakeUp m_wake;
    CCaptureRing m_ring;
    CCaptureGate m_gate;
    CTakeQueue m_queue;

    std::atomic<std::int32_t> m_nTrack = 0;
    std::atomic<bool> m_fTellArming = false; ///< armed or disarmed from the port
    std::atomic<bool> m_fCapturing = false;
    std::atomic<double> m_dPosition = 0;      ///< where the take that began last lies
    std::atomic<std::uint64_t> m_nFrames = 0; ///< of it
    std::atomic<double> m_dRate = 0;
    std::atomic<std::uint64_t> m_nLostToDisk = 0;

    mutable std::mutex m_mutex; ///< guards these
    std::condition_variable m_handledMore;
    std::function<void(const CTake&)> m_observer;
    std::function<void(const std::string&)> m_log;
    std::vector<std::function<void()>> m_jobs;
    std::filesystem::path m_folder; ///< as it was named; where the next take goes
    std::string m_strUuid;
    bool m_fTurn = false;     ///< the writer is to turn to the journal of these two
    std::string m_strTrouble; ///< the last thing that went wrong
    std::uint64_t m_nHandled = 0;
    bool m_fEnding = false; ///< nothing is raised any more
    bool m_fEnded = false;  ///< the writer is gone
    std::mutex m_lateMutex; ///< held for what the writer would have done

    /// The writer's own.
    CTakeWriter m_writer;
    std::uint32_t m_nTakes = 0;
    std::uint32_t m_nTakeArm = 0;
    std::uint64_t m_nUntold = 0;         ///< frames that no 64010 has told of
    std::uint64_t m_nLostBehindTake = 0; ///< that came when the disk had refused the take
    std::vector<std::byte> m_planar, m_interleaved;
    std::chrono::steady_clock::time_point m_lastEvent;

    std::thread m_thread;
};

} // namespace Tarvane
