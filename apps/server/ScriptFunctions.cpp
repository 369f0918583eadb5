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

std::vector<ScriptFunction> MakeScriptFunctions(CScriptContext& context)
{
    std::vector<ScriptFunction> all;
    for (const auto& make : {DocumentFunctions, TrackFunctions, RegionFunctions})
    {
        std::vector<ScriptFunction> some = make(context);
        std::move(some.begin(), some.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace Tarvane::Server
