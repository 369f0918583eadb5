#include "apps/support/recording/EventWatch.h"

namespace Tarvane
{

bool WatchEvents(std::vector<CEventWatcher*>)
{
    return false;
}

std::int64_t ReceiverOf(OSType)
{
    return 0;
}

} // namespace Tarvane
