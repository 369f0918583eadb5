// What the operating systems do differently about processes; one source file a system.
#pragma once

#include <filesystem>
#include <sys/types.h>

namespace Tarvane
{

/// Called in a child between fork and exec: asks the system to end it when the thread that forked
/// it ends. Where no such service exists a child that reads its standard input sees that end
/// instead. Safe in a signal handler.
void EndWithParent(pid_t nParent);

/// Closes every file of the process but the standard streams and this one.
void CloseAllBut(int nKept);

} // namespace Tarvane
