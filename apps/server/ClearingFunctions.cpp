// Walking and deleting what stands on a track of the selected document.
#include "apps/server/ScriptFunctions.h"

#include <algorithm>

namespace Tarvane::Server
{

namespace
{

// A track's regions, or its marker areas.
template <typename Entry> using Entries = std::vector<Entry> Document::*;

template <typename Entry>
ScriptValue Count(CScriptContext& context, const CScriptArguments& arguments,
                  Entries<Entry> entries)
{
    const std::int64_t nTrackId = context.FindTrack(arguments.Integer(1)).nId;
    const std::vector<Entry>& all = context.SelectedDocument().*entries;
    return std::int64_t(std::count_if(all.begin(), all.end(),
                                      [nTrackId](const Entry& entry)
                                      { return entry.nTrackId == nTrackId; }));
}

// The id of the entry that stands on the track at the place given, from 0.
template <typename Entry>
ScriptValue IdAt(CScriptContext& context, const CScriptArguments& arguments, Entries<Entry> entries)
{
    const std::int64_t nTrackId = context.FindTrack(arguments.Integer(1)).nId;
    const std::int64_t nWanted = arguments.Integer(2);
    std::int64_t nPlace = 0;
    for (const Entry& entry : context.SelectedDocument().*entries)
    {
        if (entry.nTrackId == nTrackId && nPlace++ == nWanted)
            return entry.nId;
    }
    throw CScriptError("the track has nothing at place " + std::to_string(nWanted) + "; it has " +
                       std::to_string(nPlace) + ", counted from 0");
}

// A track has one marker track, which goes by the track's own id.
ScriptValue MarkerTrackId(CScriptContext& context, const CScriptArguments& arguments)
{
    if (arguments.Integer(2) != 0)
        throw CScriptError("a track has one marker track, number 0");
    return context.FindTrack(arguments.Integer(1)).nId;
}

ScriptValue DeleteRegion(CScriptContext& context, const CScriptArguments& arguments)
{
    const std::int64_t nRegionId = context.FindRegion(arguments.Integer(1)).nId;
    context.Session().DeleteRegion(context.Selected(), nRegionId);
    return {};
}

ScriptValue DeleteMarkerArea(CScriptContext& context, const CScriptArguments& arguments)
{
    const std::int64_t nAreaId = arguments.Integer(1);
    if (context.SelectedDocument().FindMarkerArea(nAreaId) == nullptr)
        throw CScriptError("the document has no marker area with the id " +
                           std::to_string(nAreaId));
    context.Session().DeleteMarkerArea(context.Selected(), nAreaId);
    return {};
}

} // namespace

std::vector<ScriptFunction> ClearingFunctions(CScriptContext& context)
{
    return {
        {"GetRegionCount", [&context](const CScriptArguments& arguments)
         { return Count(context, arguments, &Document::regions); }},
        {"GetRegionID", [&context](const CScriptArguments& arguments)
         { return IdAt(context, arguments, &Document::regions); }},
        {"DeleteRegion",
         [&context](const CScriptArguments& arguments) { return DeleteRegion(context, arguments); },
         true, true},
        {"GetMarkerTrackID", [&context](const CScriptArguments& arguments)
         { return MarkerTrackId(context, arguments); }},
        {"CountMarkerAreas", [&context](const CScriptArguments& arguments)
         { return Count(context, arguments, &Document::markerAreas); }},
        {"GetMarkerAreaID", [&context](const CScriptArguments& arguments)
         { return IdAt(context, arguments, &Document::markerAreas); }},
        {"DeleteMarkerArea",
         [&context](const CScriptArguments& arguments)
         { return DeleteMarkerArea(context, arguments); },
         true, true},
    };
}

} // namespace Tarvane::Server
