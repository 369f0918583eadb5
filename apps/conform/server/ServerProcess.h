// The server under examination as a process: what the bus and the system know of it.
#pragma once

#include <chrono>
#include <string>

#include <sys/types.h>

namespace Tarvane::Conform
{

/// Under which name the server is looked for.
std::string ServerAddress();

/// The error that the last event of this thread was answered with, in the words of what carries
/// events; empty for none.
std::string CarriersError();

/// The process that answers to the server's name on the session bus. This and EventsToItself throw
/// CNotExaminable where the bus does not say.
pid_t ServerProcess();

/// How long ago the process started. Throws CNotExaminable when it has ended.
double SecondsSinceStart(pid_t process);

/// How many events the process sends to itself while the bus is watched for so long. The bus is
/// watched as dbus-monitor does, which only its owner may.
int EventsToItself(pid_t process, std::chrono::milliseconds watched);

} // namespace Tarvane::Conform
