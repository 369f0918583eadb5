// Counts what a test program allocates.
#pragma once

#include <cstddef>

namespace TarvaneTests
{

/// Allocations by operator new of this program since its start, on any thread.
size_t AllocationCount();

} // namespace TarvaneTests
