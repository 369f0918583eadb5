// The processes that the server knows, and what they make.
//
// The server is a reference for its scripts, not for its sound: a process is kept with all that it
// was given, and what it makes is the audio of one of its inputs, unprocessed, as a region on its
// output track.
//
//     Kind      Inputs by IOType      Makes
//     GDX       1 guide, 2 dub        the dub's audio, moved so that the stretch of the dub begins
//                                     where the stretch of the guide does
//     Spreader  1 input               the input's audio, where it is
//
// Each input's stretch becomes a marker area of its track.
#pragma once

#include "apps/server/database/SessionDatabase.h"

#include <optional>
#include <string>

namespace Tarvane::Server
{

/// What is wrong with the process, in words; empty when it can be made. The document is the one
/// that it is for.
std::optional<std::string> ProcessFlaw(const Process& process, CSessionDatabase& session,
                                       DocumentKind kind);

/// Adds the process, which has no flaw, its marker areas and what it makes. Returns its id.
std::int64_t CreateProcess(CSessionDatabase& session, DocumentKind kind, Process process);

} // namespace Tarvane::Server
