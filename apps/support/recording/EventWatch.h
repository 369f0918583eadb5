// The events that this process sends, shown to whoever watches; one source file a system.
#pragma once

#include "apps/support/recording/EventLines.h"

#include <cstdint>
#include <vector>

namespace Tarvane
{

/// Called on the sending thread, before an event goes out and when it has ended. Sends no events.
class CEventWatcher
{
public:
    virtual ~CEventWatcher() = default;
    virtual void Add(const SeenEvent& event) = 0;
    virtual void Add(const SeenReply& reply) = 0;
};

/// From now on every event is shown to these, in their order, and to no others; when it returns,
/// those before are no longer in use. One thread. False on a system that shows nobody its events.
bool WatchEvents(std::vector<CEventWatcher*> watchers);

/// The process that receives the events of a signature now; 0 when that is not known. Any thread;
/// waits two seconds at most.
std::int64_t ReceiverOf(OSType nSignature);

} // namespace Tarvane
