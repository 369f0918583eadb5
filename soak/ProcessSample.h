// What the system tells of another process, and lets us do to it.
#pragma once

#include "soak/Evidence.h"

#include <cstdint>
#include <sys/types.h>
#include <vector>

namespace Tarvane::Soak
{

/// Throws std::runtime_error when there is no such process.
ProcessSample SampleProcess(pid_t nProcess);

/// The same once the process rests: what it opens for a moment, to log an event or to write a file,
/// is no growth. Takes the sample as it is when the process does not come to rest in five seconds.
ProcessSample SampleAtRest(pid_t nProcess);

/// The processes that the process has started and that run, those of all its threads. Empty when
/// there is no such process.
std::vector<pid_t> ChildrenOf(pid_t nProcess);

/// From now on no file that the process writes may grow beyond so many bytes: the kernel refuses
/// the rest as it does on a full disk. Nothing happens when the process has ended.
void LimitFiles(pid_t nProcess, std::uint64_t nBytes);
void UnlimitFiles(pid_t nProcess);

} // namespace Tarvane::Soak
