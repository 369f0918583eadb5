// Which processes there are, and which files they have open.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <vector>

namespace Tarvane::Editor
{

/// The processes that this user may look at. Any thread.
std::vector<std::int64_t> RunningProcesses();

/// The files that the process has open, pipes with a name among them, as canonical paths; none when
/// it is gone, or is not to be looked at. Any thread.
std::set<std::filesystem::path> OpenFiles(std::int64_t nProcess);

} // namespace Tarvane::Editor
