// The script contract: what the link needs of a server.
#pragma once

#include "apps/conform/server/ServerPeer.h"
#include "apps/conform/server/TestSound.h"
#include "apps/conform/shared/Rule.h"

#include <optional>
#include <string>
#include <vector>

namespace Tarvane::Conform
{

/// What the examinations work with.
struct ServerBench
{
    const CServerPeer& peer;
    const CTestSound& sound;
    int nTrack;                           ///< whose regions may come and go
    std::optional<double> secondsToStart; ///< from its start to its first answer; when seen
    bool fNoOffset;                       ///< the server's timeline is always the host's
    std::vector<std::string>& tried;      ///< an examination that tries several things says which
};

struct ServerRule : Rule
{
    /// Returns when the rule is kept; throws CBroken or CNotExaminable.
    void (*examine)(const ServerBench& bench);
    bool fChanges = false; ///< Regions come and go.
};

/// All rules, in the order in which they are examined: each relies on those before it.
std::vector<ServerRule> ServerRules();

/// By subject, each list in a source file of its own.
std::vector<ServerRule> TransportRules();
std::vector<ServerRule> DocumentRules();
std::vector<ServerRule> CaptureRules();
std::vector<ServerRule> TakeRules();
std::vector<ServerRule> WorkRules();
std::vector<ServerRule> ProcessRules();

} // namespace Tarvane::Conform
