#include "signal/TakeQueue.h"

#include <algorithm>
#include <cstring>

namespace Tarvane
{
namespace
{

template <std::size_t nSize>
void CopyPath(char (&szField)[nSize], const std::filesystem::path& path)
{
    const std::string strPath = path.string();
    if (strPath.size() < nSize)
    {
        std::memcpy(szField, strPath.c_str(), strPath.size() + 1);
    }
}

TNCaptureElement RecordOf(const CTake& take)
{
    TNCaptureElement record{};
    TNRegionTimes times{};
    times.dPosition = take.dPosition;
    times.dEnd = static_cast<double>(take.nFrames);
    // The view only logs the guide; a path that is too long for its field is left out.
    CopyPath(record.szGuidePath, take.guide);
    record.tGuide = times;
    CopyPath(record.szDubPath, take.file);
    record.tDub = times;
    record.dSampleRate = take.dRate;
    return record;
}

} // namespace

CTake CTakeQueue::Add(CQueuedTake queued)
{
    std::lock_guard lock(m_mutex);
    queued.take.state = TakeState::Waiting;
    queued.take.nElement = m_nNextElement++;
    m_waiting.push_back(std::move(queued));
    return m_waiting.back().take;
}

std::int32_t CTakeQueue::Next() const
{
    std::lock_guard lock(m_mutex);
    return m_waiting.empty() ? -1 : m_waiting.front().take.nElement;
}

std::optional<TNCaptureElement> CTakeQueue::Record(std::uint32_t nElement)
{
    std::lock_guard lock(m_mutex);
    m_nServersInHand = m_nServers;
    const auto found =
        std::find_if(m_waiting.begin(), m_waiting.end(),
                     [nElement](const CQueuedTake& queued)
                     { return static_cast<std::uint32_t>(queued.take.nElement) == nElement; });
    return found != m_waiting.end() ? std::optional(RecordOf(found->take)) : std::nullopt;
}

void CTakeQueue::Tell(std::int32_t nElement, TakeOutcome outcome, std::string_view words,
                      double dExpectedPosition)
{
    std::lock_guard lock(m_mutex);
    if (!m_waiting.empty() && m_waiting.front().take.nElement == nElement)
    {
        CTake& take = m_waiting.front().take;
        take.outcome = outcome;
        take.strWords = words;
        take.dExpectedPosition = dExpectedPosition;
    }
}

std::optional<CQueuedTake> CTakeQueue::Acknowledge(const TNElementAck& ack, std::int32_t nTrack)
{
    std::lock_guard lock(m_mutex);
    if (m_waiting.empty() || m_waiting.front().take.nElement != ack.nElement)
    {
        return std::nullopt;
    }
    CQueuedTake queued = std::move(m_waiting.front());
    m_waiting.pop_front();
    CTake& take = queued.take;
    take.state = TakeState::Acknowledged;
    take.ack = ack;
    take.nTrack = nTrack;
    if (!take.outcome)
    {
        take.outcome = ack.fNotDelivered == 0 ? TakeOutcome::Delivered : TakeOutcome::Unreachable;
    }
    if (IsOfferedAgain(*take.outcome))
    {
        if (m_nServers != m_nServersInHand)
        {
            WaitAgain(queued);
        }
        else
        {
            m_unreachable.push_back(queued);
        }
    }
    return queued;
}

std::size_t CTakeQueue::OfferAgain()
{
    std::lock_guard lock(m_mutex);
    ++m_nServers;
    const std::size_t nOffered = m_unreachable.size();
    for (CQueuedTake& queued : m_unreachable)
    {
        WaitAgain(std::move(queued));
    }
    m_unreachable.clear();
    return nOffered;
}

void CTakeQueue::WaitAgain(CQueuedTake queued)
{
    CTake& take = queued.take;
    take.state = TakeState::Waiting;
    take.nElement = m_nNextElement++;
    take.ack.reset();
    take.outcome.reset();
    take.strWords.clear();
    take.dExpectedPosition = 0;
    m_waiting.push_back(std::move(queued));
}

std::size_t CTakeQueue::Waiting() const
{
    std::lock_guard lock(m_mutex);
    return m_waiting.size();
}

std::size_t CTakeQueue::Unreachable() const
{
    std::lock_guard lock(m_mutex);
    return m_unreachable.size();
}

bool CTakeQueue::IsWaiting(std::uint32_t nNumber) const
{
    std::lock_guard lock(m_mutex);
    return std::any_of(m_waiting.begin(), m_waiting.end(),
                       [nNumber](const CQueuedTake& queued)
                       { return queued.take.nNumber == nNumber; });
}

} // namespace Tarvane
