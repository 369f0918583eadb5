// The folder in which the platform's application object keeps files of its own.
#pragma once

namespace Tarvane
{

// Sees to it that there is one, before anything else of the platform is used. Another user may have
// taken the name in the shared folder, or nothing can be made there; then a folder of the user's own
// takes its place. Throws CUsageError when there is none.
void RequireTemporaryFolder();

} // namespace Tarvane
