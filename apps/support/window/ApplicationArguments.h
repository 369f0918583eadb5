// Keeps the program's own options from the application object; one source file a platform.
#pragma once

namespace Tarvane
{

/// Main thread, before the application object is made. The process then seems to have been started
/// without arguments: an application takes bare words for documents to open.
void HideArguments(char** argv);

} // namespace Tarvane
