// What the scripted server takes as arguments: rules, each a part of a script, "=>" and what to
// answer to a script with that part. The first rule that fits counts; without one nothing was
// printed.
#pragma once

namespace ScriptedServer
{

inline constexpr char szReady[] = "ready";

/// An answer is the printed text, or one of these words and what follows it.
inline constexpr char szError[] = "error:";     ///< nothing printed, and this text as error
inline constexpr char szStatus[] = "status:";   ///< the handler fails with this number
inline constexpr char szTracks[] = "tracks:";   ///< a list of so many tracks, "Track 0" and on
inline constexpr char szBytes[] = "bytes:";     ///< so many letters and a line end
inline constexpr char szNumbers[] = "numbers:"; ///< this text, as bytes of no Unicode type
inline constexpr char szSilent[] = "silent";    ///< a reply without a result
inline constexpr char szDie[] = "die";          ///< the process ends instead of answering

} // namespace ScriptedServer
