// Looking at the server again and again.
#pragma once

#include "apps/link/shared/Options.h"

namespace Tarvane::Link
{

/// Reports the count of updates and the tracks, or why they cannot be had, at first and whenever
/// they change; a server that goes and comes back is two changes. Returns the exit code of the last
/// look when as many reports are out as the options ask for, else never.
int Watch(const Options& options);

} // namespace Tarvane::Link
