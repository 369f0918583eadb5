// Sessions to and from files that other programs read and write.
#pragma once

#include "apps/server/Options.h"
#include "apps/server/database/SessionStore.h"

namespace Tarvane::Server
{

/// The whole session in the store's file. Throws CUsageError when there is none that can be read.
CSession LoadOrComplain(CSessionStore& store);

/// Writes the session of the options to the new file that they name for export, as a binary
/// session. Throws CUsageError for a session or a file that will not do, std::runtime_error when
/// nothing can be written, and for one of more than nMost bytes, which could not be imported again.
/// Returns the exit code.
int ExportSession(const Options& options, std::size_t nMost = kLargestSessionFile);

/// Makes the new session of the options from the file that they name for import, of any form that
/// the server reads. Throws alike.
int ImportSession(const Options& options);

} // namespace Tarvane::Server
