// The run loop by which events reach this process.
#pragma once

#include <functional>

namespace Tarvane::Replay
{

/// Main thread. Lets events in as long as the function, which is asked after each, answers with
/// more than 0: the seconds that are left when nothing comes.
void LetEventsIn(const std::function<double()>& fnSecondsLeft);

} // namespace Tarvane::Replay
