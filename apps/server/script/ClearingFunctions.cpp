// Walking and deleting what stands on a track of the selected document.
#include "apps/server/script/ScriptFunctions.h"

namespace Tarvane::Server
{

namespace
{

// Of a track's regions, or of its marker areas.
using CountOn = std::int64_t (CSessionDatabase::*)(std::int64_t nTrackId);
using IdOn = std::int64_t (CSessionDatabase::*)(std::int64_t nTrackId, std::int64_t nPlace);

ScriptValue Count(CScriptContext& context, const CScriptArguments& arguments, CountOn count)
{
    return (context.Session().*count)(context.FindTrack(arguments.Integer(1)).nId);
}

// The id of what stands on the track at the place given, from 0.
ScriptValue IdAt(CScriptContext& context, const CScriptArguments& arguments, CountOn count,
                 IdOn idOn)
{
    const std::int64_t nTrackId = context.FindTrack(arguments.Integer(1)).nId;
    const std::int64_t nPlace = arguments.Integer(2);
    const std::int64_t nId = (context.Session().*idOn)(nTrackId, nPlace);
    if (nId == kNullId)
        throw CScriptError("the track has nothing at place " + std::to_string(nPlace) +
                           "; it has " + std::to_string((context.Session().*count)(nTrackId)) +
                           ", counted from 0");
    return nId;
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
    context.Session().DeleteRegion(nRegionId);
    return {};
}

ScriptValue DeleteMarkerArea(CScriptContext& context, const CScriptArguments& arguments)
{
    const std::int64_t nAreaId = arguments.Integer(1);
    if (!context.Session().HasMarkerArea(context.Selected(), nAreaId))
        throw CScriptError("the document has no marker area with the id " +
                           std::to_string(nAreaId));
    context.Session().DeleteMarkerArea(nAreaId);
    return {};
}

} // namespace

std::vector<ScriptFunction> ClearingFunctions(CScriptContext& context)
{
    return {
        {"GetRegionCount", [&context](const CScriptArguments& arguments)
         { return Count(context, arguments, &CSessionDatabase::RegionCount); }},
        {"GetRegionID",
         [&context](const CScriptArguments& arguments) {
             return IdAt(context, arguments, &CSessionDatabase::RegionCount,
                         &CSessionDatabase::RegionAt);
         }},
        {"DeleteRegion",
         [&context](const CScriptArguments& arguments) { return DeleteRegion(context, arguments); },
         true, true},
        {"GetMarkerTrackID", [&context](const CScriptArguments& arguments)
         { return MarkerTrackId(context, arguments); }},
        {"CountMarkerAreas", [&context](const CScriptArguments& arguments)
         { return Count(context, arguments, &CSessionDatabase::MarkerAreaCount); }},
        {"GetMarkerAreaID",
         [&context](const CScriptArguments& arguments)
         {
             return IdAt(context, arguments, &CSessionDatabase::MarkerAreaCount,
                         &CSessionDatabase::MarkerAreaAt);
         }},
        {"DeleteMarkerArea",
         [&context](const CScriptArguments& arguments)
         { return DeleteMarkerArea(context, arguments); },
         true, true},
    };
}

} // namespace Tarvane::Server
