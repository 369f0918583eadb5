#include "apps/replay/ServerMatch.h"

#include "apps/replay/Comparison.h"
#include "apps/support/recording/ScriptCalls.h"

#include <algorithm>

namespace Tarvane::Replay
{
namespace
{

bool IsAlike(const Exchange& recorded, const Exchange& came)
{
    const std::vector<std::string> calls = ScriptCalls(came.Script());
    return recorded.nClass == came.nClass && recorded.nId == came.nId && !calls.empty() &&
           ScriptCalls(recorded.Script()) == calls;
}

bool IsSame(const Exchange& recorded, const Exchange& came)
{
    return recorded.nClass == came.nClass && recorded.nId == came.nId &&
           recorded.event == came.event;
}

std::string InShort(const Exchange& exchange)
{
    std::string strText;
    for (const std::string& strCall : ScriptCalls(exchange.Script()))
        strText += (strText.empty() ? "" : ", ") + strCall;
    return strText.empty() ? "a script without calls" : strText;
}

} // namespace

const Exchange* CServerMatch::Take(AEEventClass nClass, AEEventID nId, const Parameters& event)
{
    Exchange came;
    came.nClass = nClass;
    came.nId = nId;
    came.event = event;
    const auto isSame = [&came](const Exchange& recorded) { return IsSame(recorded, came); };

    if (!HasAll() && isSame(m_exchanges[m_nNext]))
        return TakeNext();
    if (!HasAll() && IsAlike(m_exchanges[m_nNext], came))
    {
        Part(PlaceOf(m_exchanges[m_nNext]) + ": another one came\n" +
             Differences(m_exchanges[m_nNext].event, event));
        return TakeNext();
    }
    const auto next = m_exchanges.begin() + static_cast<std::ptrdiff_t>(m_nNext);
    const auto before = std::find_if(std::make_reverse_iterator(next), m_exchanges.rend(), isSame);
    if (before != m_exchanges.rend())
    {
        Part(PlaceOf(*before) + ": it came once more (" + InShort(came) + ")\n");
        return &*before;
    }
    const auto later = std::find_if(next, m_exchanges.end(), isSame);
    if (later != m_exchanges.end())
    {
        GiveUpTo(static_cast<std::size_t>(later - m_exchanges.begin()));
        return TakeNext();
    }
    Part("an event came that the recording does not have (" + InShort(came) + ")\n" +
         (HasAll() ? "  nothing more was expected\n"
                   : "  expected was " + PlaceOf(m_exchanges[m_nNext]) + "\n" +
                         Differences(m_exchanges[m_nNext].event, event)));
    return nullptr;
}

bool CServerMatch::End()
{
    GiveUpTo(m_exchanges.size());
    if (m_nPartings == 0)
        m_story << "All " << m_exchanges.size() << " events came as recorded." << std::endl;
    else
        m_story << "Differences: " << m_nPartings << ", in " << m_exchanges.size() << " events."
                << std::endl;
    return m_nPartings == 0;
}

const Exchange* CServerMatch::TakeNext()
{
    return &m_exchanges[m_nNext++];
}

void CServerMatch::GiveUpTo(std::size_t nPlace)
{
    for (; m_nNext < nPlace; ++m_nNext)
        Part(PlaceOf(m_exchanges[m_nNext]) + ": it did not come (" + InShort(m_exchanges[m_nNext]) +
             ")\n");
}

void CServerMatch::Part(const std::string& strText)
{
    ++m_nPartings;
    m_story << strText << std::flush;
}

} // namespace Tarvane::Replay
