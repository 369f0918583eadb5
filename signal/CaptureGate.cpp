#include "signal/CaptureGate.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace Tarvane
{
namespace
{

// A longer block is handed over in several pieces.
constexpr std::uint32_t kPieceFrames = 4096;
constexpr std::chrono::milliseconds kRoomPause{1};

} // namespace

std::uint32_t CCaptureGate::Arm(bool fArm) noexcept
{
    std::uint32_t nArm = m_nArm.load();
    while (IsArmed(nArm) != fArm)
    {
        if (m_nArm.compare_exchange_weak(nArm, nArm + 1))
        {
            return nArm + 1;
        }
    }
    return 0;
}

void CCaptureGate::Open(std::uint32_t nArm) noexcept
{
    // An older number would find the arming gone, and close the gate to the one that is there.
    std::uint32_t nOpen = m_nOpen.load();
    while (nOpen < nArm && !m_nOpen.compare_exchange_weak(nOpen, nArm))
    {
    }
}

template <typename Sample>
void CCaptureGate::Process(const CTransport& transport, const Sample* const* ppChannels,
                           std::uint32_t nFrames) noexcept
{
    const bool fPosition = transport.fKnown && std::isfinite(transport.dPosition);
    m_fHasProcessed.store(true, std::memory_order_relaxed);
    if (fPosition)
    {
        m_fHasPosition.store(true, std::memory_order_relaxed);
    }
    const std::uint32_t nArm = m_nArm.load();
    const bool fRuns =
        IsArmed(nArm) && m_nOpen.load() == nArm && fPosition && transport.dSpeed == 1;
    if (!fRuns || (m_fTaking && (nArm != m_nTakeArm ||
                                 transport.dPosition != m_dStart + static_cast<double>(m_nFrames))))
    {
        EndTake();
    }
    if (!fRuns || nFrames == 0)
    {
        return;
    }
    m_nTakeArm = nArm;
    // A block finds room as a whole or not at all; only a host that waits gets it piece by piece.
    const std::size_t nPieces = (nFrames - 1) / kPieceFrames + 1;
    const std::size_t nFrameBytes = m_nChannels * sizeof(Sample);
    if (!transport.fFreewheeling && !FindRoom(false, nPieces, nFrames * nFrameBytes))
    {
        Lose(nFrames);
        return;
    }
    for (std::uint32_t nOffset = 0; nOffset < nFrames; nOffset += kPieceFrames)
    {
        const std::uint32_t nPiece = std::min(kPieceFrames, nFrames - nOffset);
        if (transport.fFreewheeling && !FindRoom(true, 1, nPiece * nFrameBytes))
        {
            Lose(nFrames - nOffset);
            return;
        }
        Put(transport, ppChannels, nOffset, nPiece);
    }
}

template void CCaptureGate::Process(const CTransport&, const float* const*, std::uint32_t) noexcept;
template void CCaptureGate::Process(const CTransport&, const double* const*,
                                    std::uint32_t) noexcept;
template void CCaptureGate::Process(const CTransport&, const std::int32_t* const*,
                                    std::uint32_t) noexcept;

template <typename Sample>
void CCaptureGate::Put(const CTransport& transport, const Sample* const* ppChannels,
                       std::uint32_t nOffset, std::uint32_t nFrames) noexcept
{
    const bool fBegins = !m_fTaking;
    if (fBegins)
    {
        EndTake();
        m_fTaking = true;
        m_dStart = transport.dPosition + nOffset;
        m_nFrames = 0;
        PutEvent({CRingEvent::Begin, 0, m_nTakeArm, m_dStart, 0});
    }
    for (std::uint32_t nChannel = 0; nChannel < m_nChannels; ++nChannel)
    {
        m_ring.PutSamples(ppChannels[nChannel] + nOffset, nFrames * sizeof(Sample));
    }
    PutEvent({CRingEvent::Audio, nFrames, 0, 0, 0});
    m_nFrames += nFrames;
    // While a take is open the writer looks by itself: waking it costs many times what a block
    // does.
    if (fBegins)
    {
        m_wake.Wake();
    }
}

bool CCaptureGate::FindRoom(bool fFreewheeling, std::size_t nEvents, std::size_t nBytes) noexcept
{
    // One more for what was lost behind the take before, one for the beginning, and one for the
    // end, which must always find room.
    nEvents += 3;
    if (nBytes > m_ring.Capacity())
    {
        return false;
    }
    if (fFreewheeling)
    {
        while (!m_ring.HasRoom(nEvents, nBytes))
        {
            m_wake.Wake();
            std::this_thread::sleep_for(kRoomPause);
        }
        m_fOverrun = false;
        return true;
    }
    // After an overrun the next take waits for half of the ring, or there would be takes of single
    // blocks.
    if (!m_ring.HasRoom(nEvents, m_fOverrun ? std::max(nBytes, m_ring.Capacity() / 2) : nBytes))
    {
        return false;
    }
    m_fOverrun = false;
    return true;
}

void CCaptureGate::Lose(std::uint32_t nFrames) noexcept
{
    m_fOverrun = true;
    m_nLostBehindTake += nFrames;
    m_nLost.fetch_add(nFrames, std::memory_order_relaxed);
    if (m_fTaking)
    {
        EndTake();
    }
    m_wake.Wake();
}

void CCaptureGate::EndTake() noexcept
{
    // Room was kept for the end of a take, and for nothing else.
    if (m_fTaking || (m_nLostBehindTake > 0 && m_ring.HasRoom(1, 0)))
    {
        m_fTaking = false;
        PutEvent({CRingEvent::End, 0, 0, 0, m_nLostBehindTake});
        m_nLostBehindTake = 0;
        m_wake.Wake();
    }
}

void CCaptureGate::PutEvent(const CRingEvent& event) noexcept
{
    m_ring.Put(event);
    ++m_nEventsPut;
}

} // namespace Tarvane
