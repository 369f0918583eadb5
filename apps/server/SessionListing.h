// A session for people and for scripts to read.
#pragma once

#include "apps/server/Session.h"

#include <string>

namespace Tarvane::Server
{

// Both documents, track by track: each region with its file and with start, end and position in
// samples and as h:mm:ss.mmm of the file's rate.
std::string ListSession(const CSession& session);

// The same as one JSON object: "linkOffset", "updateCount" and "documents", a list of objects with
// "kind", "displayPosition", "selectedRegion" and "tracks". A track has "number", "id", "name" and
// "regions"; a region has "id", "file", "start", "end", "position", "timelineStart", "sampleRate",
// "channels" (empty for all), "muted" and "startTime", "endTime", "positionTime".
std::string ListSessionAsJson(const CSession& session);

} // namespace Tarvane::Server
