#include "apps/support/recording/EventWatch.h"

namespace Tarvane
{

bool WatchEvents(std::vector<CEventWatcher*>)
{
    return false;
}

} // namespace Tarvane
