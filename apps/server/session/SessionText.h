// The earlier written form of a session, which is read and no longer written: UTF-8 text, JSON.
//
//     {"form": "Tarvane Link session", "version": 1,
//      "linkOffset": seconds, "updateCount": n, "nextId": n,
//      "documents": {"script": {...}, "audiosuite": {...}}}
//
// A document is {"displayPosition", "selectedRegion", "tracks": [{"id", "name"}, ...],
// "regions": [{"id", "track", "file", "start", "end", "position", "sampleRate", "channels",
// "muted"}, ...], "markerAreas": [{"id", "track", "start", "end"}, ...], "processes": [{"id",
// "kind", "host", "inputs": [{"ioType", "track", "start", "end"}, ...], "outputs": [track, ...],
// "region"}, ...]}, with the meanings of Session.h.
#pragma once

#include "apps/server/session/Session.h"
#include "apps/server/session/SessionFlaw.h"

#include <string_view>

namespace Tarvane::Server
{

/// Whether these bytes can be of that form at all.
bool IsSessionText(std::string_view bytes);

/// Throws CSessionFlaw for anything but a whole, sound session, and CSessionTooNew.
CSession DecodeSessionText(std::string_view text);

} // namespace Tarvane::Server
