// Exporting and rendering regions of the selected document.
#include "apps/server/RenderFolder.h"
#include "apps/server/ScriptFunctions.h"

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
    const Document& document = context.SelectedDocument();
    const Region* pRegion = document.FindRegion(document.nSelectedRegionId);
    if (pRegion == nullptr && !document.regions.empty())
        pRegion = &document.regions.front();
    if (pRegion == nullptr)
        throw CScriptError("the document has no audio yet, and so no sample rate");
    return std::int64_t(pRegion->nSampleRate);
}

ScriptValue Render(CScriptContext& context, const CScriptArguments& arguments)
{
    const Region& region = context.FindRegion(arguments.Integer(1));
    const std::int64_t nRegionId = region.nId;
    const std::string strPath = context.Folder().Write(region);
    context.Session().ReplaceAudio(context.Selected(), nRegionId, strPath);
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
         { return context.SelectedDocument().nSelectedRegionId; }},
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
