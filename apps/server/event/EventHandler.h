// The server's end of the script events: class 'TKNE', id 'LCmd', received under the signature
// 'TkNe'.
//
// In: the direct parameter, 'utxt', the script in UTF-16 of this machine's byte order. Out: 'Rslt'
// and, when something went wrong, 'Errr', both 'utxt' in the same form. 'Rslt' is there unless a
// change was asked for and not made. An event without a script is no command: its status is what
// reading the parameter gave.
#pragma once

#include "apps/server/command/CommandQueue.h"
#include "apps/server/event/EventFlood.h"
#include "apps/server/event/EventLog.h"
#include "apps/server/faults/Misbehaviour.h"

#include <Carbon/Carbon.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace Tarvane::Server
{

/// Where a fault that takes its time spends it. Both return early when the process is asked to end.
struct FaultWaits
{
    std::function<void()> untilEnd;
    std::function<void()> delay;
};

/// Main thread. Events go through a queue (CommandQueue.h) and are answered when their turn has
/// come and their script has run. Installed from Install to its end. What it is given outlives it.
class CEventHandler
{
public:
    CEventHandler(CCommandQueue& queue, CEventLog& log, CMisbehaviour misbehaviour,
                  FaultWaits waits);
    ~CEventHandler();
    CEventHandler(const CEventHandler&) = delete;
    CEventHandler& operator=(const CEventHandler&) = delete;

    /// From now on events arrive whenever the run loop runs. Throws std::runtime_error that says
    /// what stands in the way, another server above all.
    void Install();

private:
    static OSErr Receive(const AppleEvent* pEvent, AppleEvent* pReply, void* pHandler);
    /// An event on its way through the queue.
    struct Event
    {
        std::int64_t nNumber;
        std::int64_t nProcess; ///< that sent it; 0 when nobody can tell
        FaultSet faults;
        AppleEvent event; ///< suspended, as its reply is
        AppleEvent reply;
        bool fBegun = false; ///< a command may begin again
    };

    OSErr Handle(const AppleEvent* pEvent, const AppleEvent* pReply);
    Trouble Begin(Event& event, const std::string& strScript);
    void SufferBefore(const FaultSet& faults);
    void End(Event& event, const CommandReply& reply);

    CCommandQueue& m_queue;
    CEventLog& m_log;
    CMisbehaviour m_misbehaviour;
    FaultWaits m_waits;
    CEventFlood m_flood;
    std::int64_t m_nEvents = 0;
    std::optional<std::int64_t> m_frozenCount; ///< of updates, while it stands still
    bool m_fInstalled = false;
};

} // namespace Tarvane::Server
