// Which processes there are, and whether they have a file open.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <vector>

namespace Tarvane::Editor
{

// The processes that this user may look at. Any thread.
std::vector<std::int64_t> RunningProcesses();

// Whether the process has one of the files open. The paths are canonical.
bool HasOneOpen(std::int64_t nProcess, const std::set<std::filesystem::path>& files);

} // namespace Tarvane::Editor
