#pragma once

#include "apps/conform/shared/Rule.h"

#include <optional>
#include <string>

namespace Tarvane::Conform
{

struct ServerOptions
{
    double dTimeout = 10.0;      ///< seconds a command may take
    std::optional<int> nTrack{}; ///< the one to work on; the last without
    bool fClear = false;         ///< the track's regions may go
    double dWait = 0.0;          ///< seconds to wait for a server to come
    bool fNoOffset = false;      ///< the server's timeline is always the host's
};

/// Examines every rule on the server that answers on the session bus. Once it no longer answers, or
/// when the first rule is broken, the other rules are not examined. Throws CUsageError when there
/// is no server, or no track that may be worked on: nothing has been changed then.
Findings ExamineServer(const ServerOptions& options);

/// What the server's GetLinkVersion answers; empty where it has none, or no longer answers.
std::string VersionOfServer(const ServerOptions& options);

} // namespace Tarvane::Conform
