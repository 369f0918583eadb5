// Deliveries as the link makes them, and what becomes of them on a server's track.
#pragma once

#include "apps/conform/server/ServerRules.h"

#include <string>

namespace Tarvane::Conform
{

/// A stretch of a file, in samples.
struct Capture
{
    std::string strPath;
    long long nPosition = 480000; ///< of the file's first sample, on the host's timeline
    int nStart = 100;
    int nEnd = 4000; ///< the first sample behind it
    int nRate = CTestSound::kRate;
};

/// Where a region begins and ends on the server's timeline, in samples.
struct Place
{
    double dStart;
    double dEnd;
    bool operator==(const Place&) const = default;
};
std::string Told(const Place& place);

/// The body of a script that adds the capture at its position as it is.
std::string AddingScript(int nTrack, const Capture& capture);

// All the following throw CBroken when the server does not answer as it must.

int TrackCount(const ServerBench& bench);
double RegionCount(const ServerBench& bench, int nTrack);

/// Whether the server calls it a duplicate on the track.
bool IsThereOn(int nTrack, const ServerBench& bench, const Capture& capture);
/// On the track to work on.
bool IsThere(const ServerBench& bench, const Capture& capture);

/// Seconds by which the server's timeline is ahead of the host's.
double Offset(const ServerBench& bench);
/// Adds it to the track to work on, where the link would: the offset is in the position.
void Add(const ServerBench& bench, const Capture& capture);
/// Where it stands then.
Place ExpectedPlace(const ServerBench& bench, const Capture& capture);
/// Where the track's region of this number, from 0, says that it stands.
Place PlaceOf(const ServerBench& bench, int nRegion);

} // namespace Tarvane::Conform
