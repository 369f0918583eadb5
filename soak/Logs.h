// What the programs' own logs tell a soak.
#pragma once

#include "soak/Evidence.h"

#include <string>
#include <vector>

namespace Tarvane::Soak
{

/// The acknowledges in what a host with "--log -" has written to its standard error stream.
std::vector<Acknowledge> ReadAcknowledges(const std::string& strHostLog);

/// The commands that add a captured file and have been answered, from what a server with "--log -"
/// has written to its standard output, in order.
std::vector<ServerAnswer> ReadServerAnswers(const std::string& strServerLog);

} // namespace Tarvane::Soak
