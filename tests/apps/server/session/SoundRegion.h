// A region that nothing is wrong with, of 20 samples at 1000 on a track.
#pragma once

#include "apps/server/session/Session.h"

#include <cstdint>

namespace Tarvane::Server
{

inline Region SoundRegion(std::int64_t nTrackId)
{
    Region region;
    region.nTrackId = nTrackId;
    region.strPath = "/audio/take.wav";
    region.nStart = 10;
    region.nEnd = 30;
    region.nPosition = 1000;
    region.nSampleRate = 48000;
    return region;
}

} // namespace Tarvane::Server
