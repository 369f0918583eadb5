// Fingerprints of the audio of regions: made by reading it, and kept in the session so that it is
// read once.
#pragma once

#include "apps/server/database/SessionDatabase.h"

#include <optional>

namespace Tarvane::Server
{

/// Shorter stretches are sooner read again than looked up.
constexpr std::int64_t kLongStretch = 65536; ///< in frames

/// Of the region's audio: the one that the session keeps, or one made now, which is noted in the
/// session for its next SaveFingerprints. Of two regions with the same number of channels, and with
/// fingerprints of one form, the audio is equal when the fingerprints are, and only then. Empty
/// when the audio cannot be read. Takes as long as reading the audio does.
std::optional<Fingerprint> FingerprintOf(CSessionDatabase& session, const Region& region);

} // namespace Tarvane::Server
