#include "apps/replay/ServerPart.h"

#include "apps/replay/EventLoop.h"
#include "apps/replay/EventParameters.h"
#include "apps/replay/ServerMatch.h"
#include "apps/support/event/EventReceiver.h"

#include <TarvanePlatform/Application.h>

#include <chrono>
#include <cstdio>
#include <deque>
#include <exception>
#include <set>
#include <thread>
#include <utility>

namespace Tarvane::Replay
{
namespace
{

using Clock = std::chrono::steady_clock;

// How long something that comes too much is waited for.
constexpr std::chrono::milliseconds kMoment{500};

double Seconds(Clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

class CServerPart
{
public:
    CServerPart(const std::vector<Exchange>& exchanges, const PlaySettings& settings,
                std::ostream& story)
        : m_settings(settings), m_match(exchanges, story)
    {
        for (const Exchange& exchange : exchanges)
        {
            m_kinds.emplace(exchange.nClass, exchange.nId);
            for (const auto& [nKeyword, parameter] : exchange.event)
                m_keywords.insert(nKeyword);
        }
    }
    ~CServerPart()
    {
        for (const auto& [nClass, nId] : m_kinds)
            AERemoveEventHandler(nClass, nId, nullptr, false);
    }
    CServerPart(const CServerPart&) = delete;
    CServerPart& operator=(const CServerPart&) = delete;

    void Install(OSType nSignature)
    {
        TarvaneSetApplicationSignature(nSignature);
        for (const auto& kind : m_kinds)
        {
            m_handlers.push_back({this, kind.first, kind.second});
            ReceiveEvents(kind.first, kind.second, Receive, &m_handlers.back());
        }
        m_lastEvent = Clock::now();
    }

    double SecondsLeft() const
    {
        const double dWait = m_match.HasAll() ? Seconds(kMoment) : m_settings.dTimeout;
        return dWait - Seconds(Clock::now() - m_lastEvent);
    }

    bool End() { return m_match.End(); }

private:
    // Of one class and id.
    struct Handler
    {
        CServerPart* pPart;
        AEEventClass nClass;
        AEEventID nId;
    };

    static OSErr Receive(const AppleEvent* pEvent, AppleEvent* pReply, void* pHandler)
    {
        const Handler& handler = *static_cast<Handler*>(pHandler);
        try
        {
            return handler.pPart->Handle(handler, pEvent, pReply);
        }
        catch (const std::exception& error)
        {
            std::fprintf(stderr, "tarvane-replay: %s\n", error.what());
            return errAEEventFailed;
        }
    }

    OSErr Handle(const Handler& handler, const AppleEvent* pEvent, AppleEvent* pReply)
    {
        const Clock::time_point began = Clock::now();
        const Exchange* const pExchange =
            m_match.Take(handler.nClass, handler.nId, ReadParameters(pEvent, m_keywords));
        const OSErr nStatus = pExchange == nullptr ? OSErr(errAEEventNotHandled)
                                                   : Answer(*pExchange, began, pEvent, pReply);
        m_lastEvent = Clock::now();
        return nStatus;
    }

    OSErr Answer(const Exchange& exchange, Clock::time_point began, const AppleEvent* pEvent,
                 AppleEvent* pReply) const
    {
        // The sender waited in vain then, and its own timeout lets it do so again.
        if (exchange.nStatus == errAETimeout)
            return AESuspendTheCurrentEvent(pEvent);
        if (!m_settings.fFast)
            std::this_thread::sleep_until(began + std::chrono::microseconds(exchange.nTook));
        if (exchange.nStatus != noErr || pReply->descriptorType == typeNull)
            return exchange.nStatus;
        return PutParameters(pReply, exchange.reply);
    }

    const PlaySettings m_settings;
    CServerMatch m_match;
    std::set<std::pair<AEEventClass, AEEventID>> m_kinds;
    std::set<AEKeyword> m_keywords;
    std::deque<Handler> m_handlers;
    Clock::time_point m_lastEvent;
};

} // namespace

bool PlayServer(const std::vector<Exchange>& exchanges, const PlaySettings& settings,
                std::ostream& story)
{
    CServerPart part(exchanges, settings, story);
    part.Install(exchanges.front().nTarget);
    story << "ready" << std::endl;
    LetEventsIn([&part] { return part.SecondsLeft(); });
    return part.End();
}

} // namespace Tarvane::Replay
