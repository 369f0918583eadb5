// Which recorded answer an event gets, when it comes where the recording has another one too.
#pragma once

#include "apps/replay/Recording.h"

#include <ostream>

namespace Tarvane::Replay
{

/// One thread. Tells on the way, in words, where what comes parts from the recording.
class CServerMatch
{
public:
    /// All exchanges have ended.
    CServerMatch(std::vector<Exchange> exchanges, std::ostream& story)
        : m_exchanges(std::move(exchanges)), m_story(story)
    {
    }

    /// The exchange whose reply answers the event; null when the recording has none for it.
    ///
    /// The event that is next is taken, also when it differs but calls the same functions. Another
    /// one that has come before comes once more, and gets the same answer. One that is to come
    /// later has come too early: what lies between is given up.
    const Exchange* Take(AEEventClass nClass, AEEventID nId, const Parameters& event);

    bool HasAll() const { return m_nNext == m_exchanges.size(); }

    /// No more events come. True when all came as recorded.
    bool End();

private:
    const Exchange* TakeNext();
    void GiveUpTo(std::size_t nPlace);
    void Part(const std::string& strText);

    const std::vector<Exchange> m_exchanges;
    std::ostream& m_story;
    std::size_t m_nNext = 0;
    std::size_t m_nPartings = 0;
};

} // namespace Tarvane::Replay
