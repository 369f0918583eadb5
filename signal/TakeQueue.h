// The takes that are whole and not settled.
#pragma once

#include "signal/Take.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane
{

/// A take that is kept with its place in the journal.
struct CQueuedTake
{
    CTake take;
    std::uint64_t nJournal = 0;   ///< its number there; 0 when no journal could be kept
    std::string strJournalUuid{}; ///< of the journal
};

/// Takes wait in one line for their acknowledge; the front is the one to deliver. One that could
/// not reach a server steps aside, and gets to the line's end under a new index when a server
/// appears: an index that has been acknowledged is never seen again.
///
/// All operations: any thread.
class CTakeQueue
{
public:
    /// Gives the take its index and has it wait.
    CTake Add(CQueuedTake queued);

    /// The index of the take to deliver; negative for none.
    std::int32_t Next() const;
    /// The record of a take that waits: a view that reads it takes it in hand.
    std::optional<TNCaptureElement> Record(std::uint32_t nElement);

    /// Keeps what became of the take to deliver until its acknowledge comes. Any other index is
    /// passed over.
    void Tell(std::int32_t nElement, TakeOutcome outcome, std::string_view words,
              double dExpectedPosition);
    /// Takes in the acknowledge for the take to deliver, and no other. Answers it as it stands now:
    /// what was told of it, or else delivered or unreachable as the acknowledge has it. One that
    /// could not reach a server waits again at once if one has appeared since it was taken in hand.
    std::optional<CQueuedTake> Acknowledge(const TNElementAck& ack, std::int32_t nTrack);

    /// A server has appeared: has those that could not reach one wait again; answers how many.
    std::size_t OfferAgain();

    std::size_t Waiting() const;
    std::size_t Unreachable() const;
    bool IsWaiting(std::uint32_t nNumber) const;
    /// All, for a journal that is another from now on: fnMoved is called with each.
    template <typename Work> void ForEach(Work fnMoved)
    {
        std::lock_guard lock(m_mutex);
        for (std::deque<CQueuedTake>* pTakes : {&m_waiting, &m_unreachable})
        {
            for (CQueuedTake& queued : *pTakes)
            {
                fnMoved(queued);
            }
        }
    }

private:
    void WaitAgain(CQueuedTake queued);

    mutable std::mutex m_mutex;
    std::deque<CQueuedTake> m_waiting;
    std::deque<CQueuedTake> m_unreachable;
    std::int32_t m_nNextElement = 0;
    std::uint64_t m_nServers = 0;       ///< that have appeared
    std::uint64_t m_nServersInHand = 0; ///< when a record was read last
};

} // namespace Tarvane
