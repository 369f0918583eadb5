// The server's run loop.
#pragma once

namespace Tarvane::Server
{

class CEndSignals;

/// One for the life of the server, on the main thread, around all that deals with events: what the
/// platform hands out by the way goes with it.
class CServerLoop
{
public:
    CServerLoop();
    ~CServerLoop();
    CServerLoop(const CServerLoop&) = delete;
    CServerLoop& operator=(const CServerLoop&) = delete;

    /// Lets events in until the process has been asked to end.
    void RunUntilEnd(const CEndSignals& signals);

private:
    void* m_pPool;
};

} // namespace Tarvane::Server
