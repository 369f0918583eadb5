// What the desktop makes of the application; one source file a platform.
#pragma once

namespace Tarvane
{

/// Main thread, once the application object is there. Its windows may then come to the front and
/// hear keys, also when the program was started from a shell.
void StandInFront();

} // namespace Tarvane
