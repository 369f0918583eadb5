#include "apps/server/command/EditorFeed.h"

#include "apps/support/text/PlainText.h"

#include <filesystem>
#include <iostream>
#include <map>
#include <utility>
#include <vector>

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

// All tracks, with those of the regions that the table lets in.
Editor::Model ForEditor(const std::vector<Track>& tracks, const std::vector<Region>& regions,
                        const Editor::Abilities& table)
{
    Editor::Model model;
    std::map<std::int64_t, std::size_t> places;
    for (const Track& track : tracks)
    {
        places[track.nId] = model.tracks.size();
        model.tracks.push_back({track.strName, {}});
    }
    for (const Region& region : regions)
    {
        const Editor::Region made = ForEditor(region);
        if (const auto why = Editor::WhyUnable(table, made))
            std::cerr << "tarvane-server: the region " << PlainText(made.strName)
                      << " does not go to " << table.szName << ": " << *why
                      << "; it is in the session alone" << std::endl;
        else
            model.tracks[places.at(region.nTrackId)].regions.push_back(made);
    }
    return model;
}

} // namespace

CEditorFeed::CEditorFeed(std::unique_ptr<Editor::CEditor> pEditor) : m_pEditor(std::move(pEditor))
{
}

void CEditorFeed::Begin(CSessionDatabase& session)
{
    if (!m_pEditor->Table().fKnowsWhatItHas)
        return;
    const CSession content = session.Content();
    const Document& document = content.GetDocument(DocumentKind::Script);
    m_pEditor->Take(ForEditor(document.tracks, document.regions, m_pEditor->Table()));
}

void CEditorFeed::Pass(CSessionDatabase& session)
{
    std::vector<Region> regions;
    for (const std::int64_t nRegionId : session.RegionsWithNewAudio())
    {
        if (auto region = session.FindRegion(DocumentKind::Script, nRegionId))
            regions.push_back(*std::move(region));
    }
    if (regions.empty())
        return;
    const Editor::Model model =
        ForEditor(session.Tracks(DocumentKind::Script), regions, m_pEditor->Table());
    if (model.HasRegions())
        m_pEditor->Take(model);
}

} // namespace Tarvane::Server
