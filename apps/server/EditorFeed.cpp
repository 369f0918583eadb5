#include "apps/server/EditorFeed.h"

#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <utility>

namespace Tarvane::Server
{

namespace
{

Editor::Region ForEditor(const Region& region)
{
    Editor::Region made;
    made.nId = region.nId;
    made.strFile = region.strPath;
    made.strName = std::filesystem::path(region.strPath).stem().string();
    made.nPosition = region.TimelineStart();
    made.nStart = region.nStart;
    made.nLength = region.Length();
    made.nRate = region.nSampleRate;
    made.channels = region.channels;
    made.fMuted = region.fMuted;
    return made;
}

// All tracks, with the regions that are wanted and that the table lets in.
Editor::Model ForEditor(const Document& document, const Editor::Abilities& table,
                        const std::function<bool(const Region&)>& wanted)
{
    Editor::Model model;
    std::map<std::int64_t, std::size_t> places;
    for (const Track& track : document.tracks)
    {
        places[track.nId] = model.tracks.size();
        model.tracks.push_back({track.strName, {}});
    }
    for (const Region& region : document.regions)
    {
        if (!wanted(region))
            continue;
        const Editor::Region made = ForEditor(region);
        if (const auto why = Editor::WhyUnable(table, made))
            std::cerr << "tarvane-server: the region " << made.strName << " does not go to "
                      << table.szName << ": " << *why << "; it is in the session alone"
                      << std::endl;
        else
            model.tracks[places.at(region.nTrackId)].regions.push_back(made);
    }
    return model;
}

bool HasSameAudio(const Region& a, const Region& b)
{
    return a.strPath == b.strPath && a.nStart == b.nStart && a.nEnd == b.nEnd &&
           a.nPosition == b.nPosition;
}

} // namespace

CEditorFeed::CEditorFeed(std::unique_ptr<Editor::CEditor> pEditor) : m_pEditor(std::move(pEditor))
{
}

void CEditorFeed::Begin(const CSession& session)
{
    if (m_pEditor->Table().fKnowsWhatItHas)
        m_pEditor->Take(ForEditor(session.GetDocument(DocumentKind::Script), m_pEditor->Table(),
                                  [](const Region&) { return true; }));
}

void CEditorFeed::Pass(const CSession& before, const CSession& after)
{
    std::map<std::int64_t, const Region*> known;
    for (const Region& region : before.GetDocument(DocumentKind::Script).regions)
        known[region.nId] = &region;
    const Editor::Model model =
        ForEditor(after.GetDocument(DocumentKind::Script), m_pEditor->Table(),
                  [&known](const Region& region)
                  {
                      const auto found = known.find(region.nId);
                      return found == known.end() || !HasSameAudio(*found->second, region);
                  });
    if (model.HasRegions())
        m_pEditor->Take(model);
}

} // namespace Tarvane::Server
