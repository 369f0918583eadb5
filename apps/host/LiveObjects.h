// How many objects of the object system are alive: a leak that memory hides is seen in their
// number. One source file a platform.
#pragma once

namespace Tarvane
{

/// Each object that is made from now on costs more time. Main thread.
void CountObjects();

/// Those that were made since then and are alive, those of autorelease pools among them. Main
/// thread.
long LiveObjects();

} // namespace Tarvane
