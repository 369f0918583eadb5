// Whether takes wait on this machine, and whether any is less than it should be.
#pragma once

#include "apps/link/doctor/Findings.h"

namespace Tarvane::Link
{

/// Those of a running host are its own affair. Asks no server.
Finding CheckTakes();
/// Frames that were lost behind takes within a day (CTakeJournal::Losses), also behind those that
/// were delivered, and those of a running host. Asks no server.
Finding CheckLosses();

} // namespace Tarvane::Link
