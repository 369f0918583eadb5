// Faults on request, so that clients can be tested against a server that fails.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Server
{

enum class Fault
{
    None,
    ExitBeforeEffect, // the process ends before the script runs
    ExitAfterEffect,  // the process ends when the change is on disk, before the reply
    Hang              // the event is never answered; the process keeps its name on the bus
};

struct FaultKind
{
    const char* szName;
    Fault fault;
    const char* szMeaning; // completes "the server ..."
};

// Every fault that can be asked for.
const std::vector<FaultKind>& FaultKinds();

// One fault at one event, counted from 1 from the start of the process.
struct PlannedFault
{
    Fault fault = Fault::None;
    std::int64_t nEvent = 0;
};

// Reads "NAME@N". Throws std::invalid_argument, whose text says what can be asked for.
PlannedFault ParseFault(std::string_view text);

// The fault planned for the event; None for most.
Fault FaultAt(const std::vector<PlannedFault>& faults, std::int64_t nEvent);

} // namespace Tarvane::Server
