// Whether takes wait on this machine.
#pragma once

#include "apps/link/doctor/Findings.h"

namespace Tarvane::Link
{

/// Those of a running host are its own affair. Asks no server.
Finding CheckTakes();

} // namespace Tarvane::Link
