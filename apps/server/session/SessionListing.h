// A session for people and for scripts to read.
#pragma once

#include "apps/server/session/Session.h"

#include <string>

namespace Tarvane::Server
{

/// Both documents, track by track: each region with its file and with start, end and position in
/// samples and as h:mm:ss.mmm of the file's rate; each marker area; then the processes.
std::string ListSession(const CSession& session);

/// The same as one JSON object: "linkOffset", "updateCount" and "documents", a list of objects with
/// "kind", "displayPosition", "selectedRegion", "tracks" and "processes". A track has "number",
/// "id", "name", "regions" and "markerAreas"; a region has "id", "file", "start", "end",
/// "position", "timelineStart", "sampleRate", "channels" (empty for all), "muted" and "startTime",
/// "endTime", "positionTime"; a marker area "id", "start" and "end"; a process "id", "kind" and
/// "region" (0 for none).
std::string ListSessionAsJson(const CSession& session);

} // namespace Tarvane::Server
