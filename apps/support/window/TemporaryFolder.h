// The folder in which the platform's application object keeps files of its own.
#pragma once

namespace Tarvane
{

/// Sees to it that there is one, before anything else of the platform is used: the platform would
/// go on without, and raise when it needs it. Where another user has taken its name in the shared
/// folder, or nothing can be made there, a folder of the user's own takes its place, by way of the
/// environment. Throws CUsageError when there is none, and std::runtime_error when another program
/// locks it for long; both say what stands in the way.
void RequireTemporaryFolder();

} // namespace Tarvane
