// Listing the tracks of the selected document.
#include "apps/server/ScriptFunctions.h"

namespace Tarvane::Server
{

namespace
{

ScriptValue TrackCount(CScriptContext& context)
{
    return static_cast<std::int64_t>(context.SelectedDocument().tracks.size());
}

ScriptValue TrackId(CScriptContext& context, const CScriptArguments& arguments)
{
    const std::vector<Track>& tracks = context.SelectedDocument().tracks;
    const std::int64_t nTrack = arguments.Integer(1);
    if (nTrack < 0 || nTrack >= static_cast<std::int64_t>(tracks.size()))
        throw CScriptError("there is no track " + std::to_string(nTrack) + "; the document has " +
                           std::to_string(tracks.size()) + ", counted from 0");
    return tracks[static_cast<std::size_t>(nTrack)].nId;
}

} // namespace

std::vector<ScriptFunction> TrackFunctions(CScriptContext& context)
{
    return {
        {"GetTrackCount", [&context](const CScriptArguments&) { return TrackCount(context); }},
        {"GetTrackID",
         [&context](const CScriptArguments& arguments) { return TrackId(context, arguments); }},
        {"GetTrackName", [&context](const CScriptArguments& arguments)
         { return context.FindTrack(arguments.Integer(1)).strName; }},
    };
}

} // namespace Tarvane::Server
