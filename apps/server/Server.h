// The server as a whole: opening its session, receiving, ending.
#pragma once

#include "apps/server/Options.h"
#include "apps/server/database/SessionStore.h"
#include "apps/server/session/Session.h"

namespace Tarvane::Server
{

/// Sees to it that the store's file is a database for this server, and is its alone: the one that
/// is there, one made from a file of an earlier form, or a new session's. What it did about the
/// file is told on the standard error stream. Options for new sessions are accepted for an existing
/// one when they say what it holds (so the same command line starts and restarts a server) and are
/// CUsageError when they do not. CUsageError too for a file of a later program, std::runtime_error
/// for one that is in use or cannot be read or written. A flawed file is kept aside, and a new
/// session begins.
void OpenSession(CSessionStore& store, const Options& options);

/// The folder for exported and rendered audio, a full path: the one asked for, one beside the
/// session file, or one of the user's own. Without a home folder that is a new one at each call.
/// Throws std::system_error.
std::filesystem::path RenderFolderFor(const CSessionStore& store, const Options& options);

/// Does what the options ask for, and returns when that is done or the process has been asked to
/// end. Main thread. Throws as OpenSession does, and std::runtime_error when events cannot be
/// received.
int RunServer(const Options& options);

} // namespace Tarvane::Server
