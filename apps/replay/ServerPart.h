// The server's part of a recording, played to a live view.
#pragma once

#include "apps/replay/Recording.h"

#include <ostream>

namespace Tarvane::Replay
{

struct PlaySettings
{
    bool fFast = false;     ///< without the recorded delays
    double dTimeout = 60.0; ///< seconds: for the next event, or for a reply
};

/// Answers under the recorded signature, as recorded, until all events have come and no other one
/// comes for a moment, or none comes within the timeout. Says "ready" once it can be asked. True
/// when they came as recorded; what parts is told. All exchanges have ended, and there is at least
/// one. Main thread. Throws std::runtime_error that says what stands in the way, another server
/// above all.
bool PlayServer(const std::vector<Exchange>& exchanges, const PlaySettings& settings,
                std::ostream& story);

} // namespace Tarvane::Replay
