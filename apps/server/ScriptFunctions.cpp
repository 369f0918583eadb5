#include "apps/server/ScriptFunctions.h"

#include <iterator>

namespace Tarvane::Server
{

bool CScriptContext::Select(DocumentKind kind)
{
    if (m_fHasDocuments)
        m_selected = kind;
    return m_fHasDocuments;
}

DocumentKind CScriptContext::Selected() const
{
    if (!m_selected)
        throw CScriptError("no document is selected; begin with SelectScriptDocument() or "
                           "SelectAudioSuiteDocument()");
    return *m_selected;
}

const Document& CScriptContext::SelectedDocument() const
{
    return m_session.GetDocument(Selected());
}

const Track& CScriptContext::FindTrack(std::int64_t nTrackId) const
{
    const Track* pTrack = SelectedDocument().FindTrack(nTrackId);
    if (pTrack == nullptr)
        throw CScriptError("the document has no track with the id " + std::to_string(nTrackId));
    return *pTrack;
}

const Region& CScriptContext::FindRegion(std::int64_t nRegionId) const
{
    const Region* pRegion = SelectedDocument().FindRegion(nRegionId);
    if (pRegion == nullptr)
        throw CScriptError("the document has no region with the id " + std::to_string(nRegionId));
    return *pRegion;
}

std::vector<ScriptFunction> MakeScriptFunctions(CScriptContext& context)
{
    std::vector<ScriptFunction> all;
    for (const auto& make : {DocumentFunctions, TrackFunctions, RegionFunctions, RenderFunctions,
                             ProcessFunctions, ClearingFunctions})
    {
        std::vector<ScriptFunction> some = make(context);
        std::move(some.begin(), some.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace Tarvane::Server
