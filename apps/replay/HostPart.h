// The host's part of a recording, played to a live server.
#pragma once

#include "apps/replay/ServerPart.h"

namespace Tarvane::Replay
{

/// Sends every event as recorded and compares its status and its reply. Events that found no server
/// when they were recorded had no effect, and are not sent. True when all came out as recorded;
/// what parts is told. Ends early when there is no server any more. All exchanges have ended.
bool PlayHost(const std::vector<Exchange>& exchanges, const PlaySettings& settings,
              std::ostream& story);

} // namespace Tarvane::Replay
