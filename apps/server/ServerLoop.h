// The server's run loop.
#pragma once

namespace Tarvane::Server
{

class CEndSignals;

// Main thread. Lets events in until the process has been asked to end.
void RunUntilEnd(const CEndSignals& signals);

} // namespace Tarvane::Server
