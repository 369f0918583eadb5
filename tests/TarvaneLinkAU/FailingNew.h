// A program whose memory runs out when a test says so.
#pragma once

namespace TarvaneTests
{

// While it is true, operator new throws std::bad_alloc on this thread.
extern thread_local bool g_fNewFails;

} // namespace TarvaneTests
