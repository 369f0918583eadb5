#include "apps/server/script/ScriptFunctions.h"

#include <algorithm>
#include <iterator>

namespace Tarvane::Server
{

bool CScriptContext::Select(DocumentKind kind)
{
    if (m_fHasDocuments)
        m_selected = kind;
    else
        m_fSelectionFailed = true;
    return m_fHasDocuments;
}

DocumentKind CScriptContext::Selected() const
{
    if (!m_selected)
        throw CScriptError("no document is selected; begin with SelectScriptDocument() or "
                           "SelectAudioSuiteDocument()");
    return *m_selected;
}

Track CScriptContext::FindTrack(std::int64_t nTrackId) const
{
    std::optional<Track> track = m_session.FindTrack(Selected(), nTrackId);
    if (!track)
        throw CScriptError("the document has no track with the id " + std::to_string(nTrackId));
    return *std::move(track);
}

Region CScriptContext::FindRegion(std::int64_t nRegionId) const
{
    std::optional<Region> region = m_session.FindRegion(Selected(), nRegionId);
    if (!region)
        throw CScriptError("the document has no region with the id " + std::to_string(nRegionId));
    return *std::move(region);
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

namespace
{

bool IsOfName(char c)
{
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool Names(std::string_view strScript, std::string_view name)
{
    for (std::size_t nAt = strScript.find(name); nAt != std::string_view::npos;
         nAt = strScript.find(name, nAt + 1))
    {
        const std::size_t nEnd = nAt + name.size();
        if ((nAt == 0 || !IsOfName(strScript[nAt - 1])) &&
            (nEnd == strScript.size() || !IsOfName(strScript[nEnd])))
            return true;
    }
    return false;
}

std::vector<std::string> ChangingNames()
{
    CSessionDatabase session{CSession()};
    CRenderFolder folder{{}};
    CScriptContext context(session, folder, true);
    std::vector<std::string> names;
    for (const ScriptFunction& function : MakeScriptFunctions(context))
    {
        if (function.fChanges)
            names.push_back(function.strName);
    }
    return names;
}

} // namespace

bool NamesChange(std::string_view strScript)
{
    static const std::vector<std::string> names = ChangingNames();
    return std::any_of(names.begin(), names.end(),
                       [=](const std::string& strName) { return Names(strScript, strName); });
}

} // namespace Tarvane::Server
