// Listing the tracks of the selected document.
#include "apps/server/script/ScriptFunctions.h"

namespace Tarvane::Server
{

namespace
{

ScriptValue TrackCount(CScriptContext& context)
{
    return context.Session().TrackCount(context.Selected());
}

ScriptValue TrackId(CScriptContext& context, const CScriptArguments& arguments)
{
    const DocumentKind kind = context.Selected();
    const std::int64_t nTrack = arguments.Integer(1);
    const std::optional<Track> track = context.Session().TrackAt(kind, nTrack);
    if (!track)
        throw CScriptError("there is no track " + std::to_string(nTrack) + "; the document has " +
                           std::to_string(context.Session().TrackCount(kind)) + ", counted from 0");
    return track->nId;
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
