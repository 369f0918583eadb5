#include "apps/replay/EventLoop.h"

#include <TarvanePlatform/Application.h>

namespace Tarvane::Replay
{

void LetEventsIn(const std::function<double()>& fnSecondsLeft)
{
    for (double dLeft = fnSecondsLeft(); dLeft > 0; dLeft = fnSecondsLeft())
        TarvaneHandleEvents(dLeft);
}

} // namespace Tarvane::Replay
