// What the scripts of the link expect of a server.
#pragma once

#include <vector>

namespace Tarvane::Link
{

struct ContractFunction
{
    const char* szName;
    /// The commands that do not work without it.
    const char* szNeededBy;
    /// Every capture needs it.
    bool fForCaptures;
};

/// Every function that any script of the link calls, beside Lua's own print.
const std::vector<ContractFunction>& ContractFunctions();

} // namespace Tarvane::Link
