// The server as a whole: opening its session, receiving, ending.
#pragma once

#include "apps/server/Options.h"
#include "apps/server/Session.h"
#include "apps/server/SessionStore.h"

namespace Tarvane::Server
{

// The session to begin with: the one in the store's file, or a new one, which is then in the file.
// Options for new sessions are accepted for an existing one when they say what it holds (so the
// same command line starts and restarts a server) and are CUsageError when they do not. CUsageError
// too for a flawed file, std::runtime_error for one that is in use or cannot be read or written.
// pStore may be null: the session is then new and in memory.
CSession OpenSession(CSessionStore* pStore, const Options& options);

// The folder for exported and rendered audio, a full path: the one asked for, one beside the
// session file, or one of the user's own. Without a home folder that is a new one at each call.
// Throws std::system_error.
std::filesystem::path RenderFolderFor(const CSessionStore* pStore, const Options& options);

// Does what the options ask for, and returns when that is done or the process has been asked to
// end. Main thread. Throws as OpenSession does, and std::runtime_error when events cannot be
// received.
int RunServer(const Options& options);

} // namespace Tarvane::Server
