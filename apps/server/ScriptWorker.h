// A process of the server's own in which scripts run, so that one can be ended whatever it is
// doing.
#pragma once

#include "apps/server/CommandProcessor.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace Tarvane::Server
{

// A copy of the server, made by fork, that knows the session as it was then. It runs one script at
// a time and ends with the server, or when its object goes. Main thread.
class CScriptWorker
{
public:
    // Throws std::system_error when no process can be made.
    explicit CScriptWorker(const CCommandProcessor& processor);
    ~CScriptWorker();
    CScriptWorker(const CScriptWorker&) = delete;
    CScriptWorker& operator=(const CScriptWorker&) = delete;

    // The state of the session that it knows.
    std::int64_t UpdateCount() const { return m_nUpdateCount; }

    // Has it run a script. Its processor time counts from here.
    void Begin(std::string_view strScript, const Trouble& trouble);

    // Readable when there is something to Receive.
    int Descriptor() const { return m_nSocket; }
    // Takes in what has come, without waiting: the execution once it is there whole. A worker that
    // has ended instead, for a bound or a fault, gives an execution with an error that says so.
    std::optional<Execution> Receive();

    // Whether it can run another script.
    bool IsAlive() const { return m_nProcess > 0; }

    // Lets it stand still and go on.
    void Stop();
    void Continue();

private:
    [[noreturn]] void Serve(const CCommandProcessor& processor, int nSocket);
    Execution WhyItEnded();

    std::int64_t m_nUpdateCount;
    std::int64_t m_nMilliseconds; // the bound of one script
    pid_t m_nProcess = -1;
    int m_nSocket = -1;
    std::string m_strReceived;
};

} // namespace Tarvane::Server
