// SIGTERM and SIGINT as something that a program can wait for.
#pragma once

#include "apps/support/process/Pipe.h"

#include <chrono>

namespace Tarvane::Server
{

/// From construction on the two signals no longer end the process; they are kept here. One object a
/// process. Main thread.
class CEndSignals
{
public:
    CEndSignals();
    ~CEndSignals();
    CEndSignals(const CEndSignals&) = delete;
    CEndSignals& operator=(const CEndSignals&) = delete;

    /// Readable once the process has been asked to end. Nothing is to be read from it: it stays so.
    int Descriptor() const { return m_pipe.ReadEnd(); }
    bool HasCome() const;
    /// Returns when the process has been asked to end.
    void Wait() const;
    /// The same, or when the time is over.
    void WaitFor(std::chrono::milliseconds time) const;

private:
    CPipe m_pipe;
};

} // namespace Tarvane::Server
