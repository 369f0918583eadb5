// Exporting and rendering regions of the selected document.
#include "apps/server/script/ScriptFunctions.h"
#include "apps/server/sound/RenderFolder.h"

namespace Tarvane::Server
{

namespace
{

// Clients compare this with 0.
ScriptValue IsNull(const CScriptArguments& arguments)
{
    return std::int64_t(arguments.Integer(1) == kNullId ? 1 : 0);
}

ScriptValue SampleRate(CScriptContext& context)
{
    CSessionDatabase& session = context.Session();
    const DocumentKind kind = context.Selected();
    std::optional<Region> region = session.FindRegion(kind, session.SelectedRegionId(kind));
    if (!region)
        region = session.FirstRegion(kind);
    if (!region)
        throw CScriptError("the document has no audio yet, and so no sample rate");
    return std::int64_t(region->nSampleRate);
}

ScriptValue Render(CScriptContext& context, const CScriptArguments& arguments)
{
    const Region region = context.FindRegion(arguments.Integer(1));
    context.Session().ReplaceAudio(region, context.Folder().Write(region));
    return {};
}

ScriptValue EndPosition(const Region& region)
{
    return region.TimelineStart() + region.Length();
}

} // namespace

std::vector<ScriptFunction> RenderFunctions(CScriptContext& context)
{
    return {
        {"GetSelectedRegionID", [&context](const CScriptArguments&)
         { return context.Session().SelectedRegionId(context.Selected()); }},
        {"IsNullRegionID", IsNull},
        {"IsNullProcessID", IsNull},
        {"GetSampleRate", [&context](const CScriptArguments&) { return SampleRate(context); }},
        {"ExportRegion", [&context](const CScriptArguments& arguments)
         { return context.Folder().Write(context.FindRegion(arguments.Integer(1))); }},
        {"RegionRender",
         [&context](const CScriptArguments& arguments) { return Render(context, arguments); },
         true},
        {"GetRegionStartPosition", [&context](const CScriptArguments& arguments)
         { return context.FindRegion(arguments.Integer(1)).TimelineStart(); }},
        {"GetRegionEndPosition", [&context](const CScriptArguments& arguments)
         { return EndPosition(context.FindRegion(arguments.Integer(1))); }},
    };
}

} // namespace Tarvane::Server
