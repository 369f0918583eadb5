// Examining everything between this user's session and the server's documents.
#pragma once

#include "apps/link/doctor/Findings.h"
#include "apps/link/shared/Options.h"

namespace Tarvane::Link
{

/// In the order in which one thing stands on another; ends at what nothing else can stand on, such
/// as a server that does not answer. Changes nothing in the server. Throws CUsageError for a
/// capture folder that cannot be one.
Findings Examine(const Options& options);

/// Examines and prints the findings; returns the exit code.
int Doctor(const Options& options);

} // namespace Tarvane::Link
