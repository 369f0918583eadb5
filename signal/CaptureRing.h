// The way from the audio thread to the writer.
#pragma once

#include <boost/lockfree/spsc_queue.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tarvane
{

struct CRingEvent
{
    enum Kind : std::uint8_t
    {
        Begin, ///< a take, at dPosition
        Audio, ///< nFrames of it: the samples of the first channel, then those of the next
        End,   ///< of the take; another one behind it tells of what else was lost
    };
    Kind kind = End;
    std::uint32_t nFrames = 0;
    std::uint32_t nArm = 0; ///< of Begin: the arming under which it is taken
    double dPosition = 0;
    std::uint64_t nLostFrames = 0; ///< of End: that came behind the take and found no room; each
                                   ///< of them is in one event
};

/// One thread puts, one takes; neither locks nor allocates. An event is visible only when the
/// samples that belong to it are.
class CCaptureRing
{
public:
    static constexpr std::size_t kSmallestBlock = 128; ///< bytes

    explicit CCaptureRing(std::size_t nBytes)
        : m_nBytes(nBytes), m_samples(nBytes), m_events(nBytes / kSmallestBlock + kSpareEvents)
    {
        // The audio thread is not to be the first to touch this memory.
        const std::vector<std::byte> page(kPage);
        while (m_samples.push(page.data(), page.size()) != 0)
        {
        }
        while (m_events.push(CRingEvent()))
        {
        }
        m_samples.reset();
        m_events.reset();
    }

    // --- The thread that puts

    bool HasRoom(std::size_t nEvents, std::size_t nBytes) const
    {
        return m_events.write_available() >= nEvents && m_samples.write_available() >= nBytes;
    }
    /// There must be room.
    void PutSamples(const void* pSamples, std::size_t nBytes)
    {
        m_samples.push(static_cast<const std::byte*>(pSamples), nBytes);
    }
    void Put(const CRingEvent& event) { m_events.push(event); }

    // --- The thread that takes

    bool Take(CRingEvent& event) { return m_events.pop(event); }
    /// At most as many as the events that were taken speak of.
    void TakeSamples(void* pSamples, std::size_t nBytes)
    {
        m_samples.pop(static_cast<std::byte*>(pSamples), nBytes);
    }

    std::size_t Capacity() const { return m_nBytes; }

private:
    static constexpr std::size_t kSpareEvents = 1024;
    static constexpr std::size_t kPage = 4096;

    const std::size_t m_nBytes;
    boost::lockfree::spsc_queue<std::byte> m_samples;
    boost::lockfree::spsc_queue<CRingEvent> m_events;
};

} // namespace Tarvane
