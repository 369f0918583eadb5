// What the functions that scripts call may do wrong on request: takes are lost, doubled or taken
// for others, and every reply reads well.
#pragma once

#include "apps/server/faults/Misbehaviour.h"
#include "apps/server/script/ScriptFunctions.h"

#include <bitset>
#include <vector>

namespace Tarvane::Server
{

/// A set of faults that travels as plain bytes.
using FunctionFaults = std::bitset<64>;

FunctionFaults FaultsOfFunctions(const FaultSet& faults);

/// Puts the faults into the functions. The context must outlive them.
void MisbehaveInFunctions(std::vector<ScriptFunction>& functions, CScriptContext& context,
                          const FunctionFaults& faults);

} // namespace Tarvane::Server
