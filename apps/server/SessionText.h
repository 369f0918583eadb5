// The written form of a session: UTF-8 text, JSON.
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

#include "apps/server/Session.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace Tarvane::Server
{

// The text says what is wrong with what was read.
class CSessionFlaw : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::string EncodeSession(const CSession& session);
// Throws CSessionFlaw for anything but a whole, sound session.
CSession DecodeSession(std::string_view text);

} // namespace Tarvane::Server
