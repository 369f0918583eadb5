// What a script does, in short.
#pragma once

#include <string>
#include <vector>

namespace Tarvane::Replay
{

// The functions that a script calls, each once, in the order of their first calls; print, which
// every script calls, and what stands between double quotes are left out.
std::vector<std::string> ScriptCalls(const std::string& strScript);

} // namespace Tarvane::Replay
