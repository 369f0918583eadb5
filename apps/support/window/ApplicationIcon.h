// How the program shows beside its windows.
#pragma once

namespace Tarvane
{

/// Keeps a window with the program's icon alone off the desktop, where the platform would put one
/// that nothing can be done with. Call it before there is an application.
void ShowNoIconWindow();

} // namespace Tarvane
