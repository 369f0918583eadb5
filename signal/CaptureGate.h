// The audio thread's half of a capture: what belongs to a take, and where takes begin and end.
#pragma once

#include "signal/CaptureRing.h"
#include "signal/Transport.h"
#include "signal/WakeUp.h"

#include <atomic>
#include <cstdint>

namespace Tarvane
{

/// Armings are numbered: an odd number is an armed state, an even one is not. A take belongs to the
/// arming under which it began, so that a disarming between two blocks ends it even when the next
/// arming comes before the second.
class CCaptureGate
{
public:
    CCaptureGate(CCaptureRing& ring, CWakeUp& wake) : m_ring(ring), m_wake(wake) {}
    CCaptureGate(const CCaptureGate&) = delete;
    CCaptureGate& operator=(const CCaptureGate&) = delete;

    // --- One thread at a time, the audio thread

    /// See CCaptureCore::Process.
    template <typename Sample>
    void Process(const CTransport& transport, const Sample* const* ppChannels,
                 std::uint32_t nFrames) noexcept;
    /// Ends the take that runs, and tells what has been lost since the last one ended.
    void EndTake() noexcept;

    // --- Beside no call of Process

    void SetChannels(std::uint32_t nChannels) { m_nChannels = nChannels; }
    /// Everything that was put so far.
    std::uint64_t EventsPut() const { return m_nEventsPut; }

    // --- Any thread, real-time safe

    /// Answers the number of the new arming; 0 when the state is that already. Nothing is taken
    /// under it until Open is given its number.
    std::uint32_t Arm(bool fArm) noexcept;
    void Open(std::uint32_t nArm) noexcept;
    std::uint32_t Arming() const noexcept { return m_nArm.load(); }
    bool IsArmed() const noexcept { return IsArmed(Arming()); }
    static bool IsArmed(std::uint32_t nArm) noexcept { return (nArm & 1U) != 0; }

    /// Frames that found no room.
    std::uint64_t LostFrames() const noexcept { return m_nLost.load(); }
    /// False as long as blocks came and none of them with a position.
    bool HasPosition() const noexcept { return m_fHasPosition.load(); }
    bool HasProcessed() const noexcept { return m_fHasProcessed.load(); }

private:
    template <typename Sample>
    void Put(const CTransport& transport, const Sample* const* ppChannels, std::uint32_t nOffset,
             std::uint32_t nFrames) noexcept;
    bool FindRoom(bool fFreewheeling, std::size_t nEvents, std::size_t nBytes) noexcept;
    void Lose(std::uint32_t nFrames) noexcept;
    void PutEvent(const CRingEvent& event) noexcept;

    CCaptureRing& m_ring;
    CWakeUp& m_wake;

    std::atomic<std::uint32_t> m_nArm = 0;
    std::atomic<std::uint32_t> m_nOpen = 0;
    std::atomic<std::uint64_t> m_nLost = 0;
    std::atomic<bool> m_fHasPosition = false;
    std::atomic<bool> m_fHasProcessed = false;

    /// The audio thread's.
    std::uint32_t m_nChannels = 0;
    bool m_fTaking = false;
    bool m_fOverrun = false; ///< no room was found, and there is not enough of it yet
    std::uint32_t m_nTakeArm = 0;
    double m_dStart = 0;
    std::uint64_t m_nFrames = 0;
    std::uint64_t m_nLostBehindTake = 0; ///< and not told yet
    std::uint64_t m_nEventsPut = 0;
};

} // namespace Tarvane
