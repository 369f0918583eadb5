// Whether the server has a captured stretch of audio already.
//
// A duplicate is the same audio in the same place on the same track, whatever the file is called:
// sample rate, channels, length and every decoded sample are compared.
//
// The place needs care. A client asks with a position on the host's timeline, d samples cut to a
// whole number, and adds the region later at trunc(offset * rate + d), in samples of the server's
// timeline. The fraction of d that the cut took away is not known here, but it can carry the sum
// over the next whole number. So a region is in the place asked for when it stands at any position
// that the client may have added it at:
//
//     { trunc(offset * rate + d) : trunc(d) == nHostPosition }
//
// which is one position when offset * rate is whole and the numbers keep to one side of zero, and
// two or three side by side otherwise: trunc cuts toward zero, so that -1 < d < 1 is all one
// position, and so is the second -1 < x < 1.
#pragma once

#include "apps/server/database/SessionDatabase.h"

#include <cstdint>

namespace Tarvane::Server
{

struct PositionRange
{
    std::int64_t nFirst;
    std::int64_t nLast; ///< included

    bool Contains(std::int64_t nPosition) const
    {
        return nPosition >= nFirst && nPosition <= nLast;
    }
    bool operator==(const PositionRange&) const = default;
};

/// Exactly the set above. dOffsetSamples is offset * rate, within 2^53; |nHostPosition| <= 2^53.
PositionRange AddedPositions(std::int64_t nHostPosition, double dOffsetSamples);

/// Looks for the captured region on its track: its nPosition is the host's, and it takes all
/// channels. Regions whose own file can no longer be read are not the same as anything. Throws
/// CSoundFileError when the captured file cannot be read.
bool HasDuplicate(CSessionDatabase& session, const Region& captured);

} // namespace Tarvane::Server
