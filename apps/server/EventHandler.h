// The server's end of the script events: class 'TKNE', id 'LCmd', received under the signature
// 'TkNe'.
//
// In: the direct parameter, 'utxt', the script in UTF-16 of this machine's byte order. Out: 'Rslt'
// and, when something went wrong, 'Errr', both 'utxt' in the same form. 'Rslt' is always there. An
// event without a script is no command: its status is what reading the parameter gave.
#pragma once

#include "apps/server/CommandProcessor.h"
#include "apps/server/EventLog.h"
#include "apps/server/Misbehaviour.h"

#include <Carbon/Carbon.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace Tarvane::Server
{

// Main thread. Installed from Install to its end. What it is given must outlive it.
class CEventHandler
{
public:
    // waitForEnd is where a hanging event stays: it returns when the process has been asked to end.
    CEventHandler(CCommandProcessor& processor, CEventLog& log, std::vector<PlannedFault> faults,
                  std::function<void()> waitForEnd);
    ~CEventHandler();
    CEventHandler(const CEventHandler&) = delete;
    CEventHandler& operator=(const CEventHandler&) = delete;

    // From now on events arrive whenever the run loop runs. Throws std::runtime_error that says
    // what stands in the way, another server above all.
    void Install();

private:
    static OSErr Receive(const AppleEvent* pEvent, AppleEvent* pReply, void* pHandler);
    OSErr Handle(const AppleEvent* pEvent, AppleEvent* pReply);

    CCommandProcessor& m_processor;
    CEventLog& m_log;
    std::vector<PlannedFault> m_faults;
    std::function<void()> m_waitForEnd;
    std::int64_t m_nEvents = 0;
    bool m_fInstalled = false;
};

} // namespace Tarvane::Server
