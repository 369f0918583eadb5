// The written form of a session: a binary session (utils/ParameterBlock.h), which tarvane-session
// shows, checks and converts. Its tree, with the meanings of Session.h:
//
//     "Tarvane Link session"                the root
//         Version                           int, 2
//         LinkOffset                        double, seconds
//         UpdateCount, NextId               int64
//         script, audiosuite                block, one document each:
//             DisplayPosition               double
//             SelectedRegion                int64
//             Track ...                     block: int64 Id, string Name
//             Region ...                    block: int64 Id, Track, string File, int64 Start, End,
//                                           Position, int SampleRate, bool Muted, block Channels
//                                           of ints named Channel
//             MarkerArea ...                block: int64 Id, Track, Start, End
//             Process ...                   block: int64 Id, string Kind, Host, int64 Region,
//                                           block Input ... (int64 IOType, Track, Start, End),
//                                           block Outputs of int64s named Track
//
// "..." stands for any number of blocks of that name, in their order. Nothing else stands in it.
#pragma once

#include "apps/server/session/Session.h"
#include "apps/server/session/SessionFlaw.h"

#include <string>
#include <string_view>

namespace Tarvane::Server
{

/// The bytes of the file. Throws std::bad_alloc.
std::string EncodeSession(const CSession& session);

/// Throws CSessionFlaw, whose text tells the place, for anything but a whole, sound session, and
/// CSessionTooNew.
CSession DecodeSession(std::string_view bytes);

} // namespace Tarvane::Server
