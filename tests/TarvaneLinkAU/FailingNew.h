// A program that runs short of memory once, when a test says so.
#pragma once

namespace TarvaneTests
{

/// When it is true, the next operator new on this thread throws std::bad_alloc, and makes it false.
extern thread_local bool g_fNextNewFails;

} // namespace TarvaneTests
