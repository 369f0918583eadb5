#include "apps/server/Session.h"

#include <algorithm>
#include <utility>

namespace Tarvane::Server
{

namespace
{

template <typename Entries>
auto FindById(const Entries& entries, std::int64_t nId) -> decltype(entries.data())
{
    for (const auto& entry : entries)
    {
        if (entry.nId == nId)
            return &entry;
    }
    return nullptr;
}

bool TakesPart(const Process& process, std::int64_t nTrackId)
{
    const auto isInput = [=](const ProcessInput& input) { return input.nTrackId == nTrackId; };
    return std::any_of(process.inputs.begin(), process.inputs.end(), isInput) ||
           std::count(process.outputTrackIds.begin(), process.outputTrackIds.end(), nTrackId) != 0;
}

} // namespace

const Track* Document::FindTrack(std::int64_t nTrackId) const
{
    return FindById(tracks, nTrackId);
}

const Region* Document::FindRegion(std::int64_t nRegionId) const
{
    return FindById(regions, nRegionId);
}

const MarkerArea* Document::FindMarkerArea(std::int64_t nAreaId) const
{
    return FindById(markerAreas, nAreaId);
}

const Process* Document::FindProcess(std::int64_t nProcessId) const
{
    return FindById(processes, nProcessId);
}

const char* DocumentName(DocumentKind kind)
{
    return kind == DocumentKind::Script ? "script" : "audiosuite";
}

CSession::CSession(const std::vector<std::string>& trackNames, double dLinkOffset)
    : m_dLinkOffset(dLinkOffset)
{
    for (DocumentKind kind : kDocumentKinds)
    {
        for (const std::string& strName : trackNames)
            AddTrack(kind, strName);
    }
    // What a session begins with is no change of it.
    m_nUpdateCount = 0;
}

const Document& CSession::GetDocument(DocumentKind kind) const
{
    return m_documents[static_cast<std::size_t>(kind)];
}

Document& CSession::Edit(DocumentKind kind)
{
    m_nUpdateCount++;
    return m_documents[static_cast<std::size_t>(kind)];
}

std::int64_t CSession::AddTrack(DocumentKind kind, const std::string& strName)
{
    Edit(kind).tracks.push_back({m_nNextId, strName});
    return m_nNextId++;
}

void CSession::RenameTrack(DocumentKind kind, std::int64_t nTrackId, const std::string& strName)
{
    for (Track& track : Edit(kind).tracks)
    {
        if (track.nId == nTrackId)
            track.strName = strName;
    }
}

void CSession::MoveTrack(DocumentKind kind, std::int64_t nTrackId, std::size_t nPlace)
{
    std::vector<Track>& tracks = Edit(kind).tracks;
    const auto isIt = [=](const Track& track) { return track.nId == nTrackId; };
    const auto found = std::find_if(tracks.begin(), tracks.end(), isIt);
    if (found == tracks.end())
        return;
    Track track = std::move(*found);
    tracks.erase(found);
    tracks.insert(tracks.begin() + static_cast<std::ptrdiff_t>(std::min(nPlace, tracks.size())),
                  std::move(track));
}

void CSession::DeleteTrack(DocumentKind kind, std::int64_t nTrackId)
{
    const std::vector<Region> regions = GetDocument(kind).regions;
    for (const Region& region : regions)
    {
        if (region.nTrackId == nTrackId)
            DeleteRegion(kind, region.nId);
    }
    Document& document = Edit(kind);
    std::erase_if(document.markerAreas,
                  [=](const MarkerArea& area) { return area.nTrackId == nTrackId; });
    std::erase_if(document.processes,
                  [=](const Process& process) { return TakesPart(process, nTrackId); });
    std::erase_if(document.tracks, [=](const Track& track) { return track.nId == nTrackId; });
}

std::int64_t CSession::AddRegion(DocumentKind kind, Region region)
{
    region.nId = m_nNextId;
    Edit(kind).regions.push_back(std::move(region));
    return m_nNextId++;
}

void CSession::SelectRegion(DocumentKind kind, std::int64_t nRegionId)
{
    if (GetDocument(kind).nSelectedRegionId != nRegionId)
        Edit(kind).nSelectedRegionId = nRegionId;
}

void CSession::ReplaceAudio(DocumentKind kind, std::int64_t nRegionId, const std::string& strPath)
{
    for (Region& region : Edit(kind).regions)
    {
        if (region.nId != nRegionId)
            continue;
        const std::int64_t nTimelineStart = region.TimelineStart();
        const std::int64_t nLength = region.Length();
        region.strPath = strPath;
        region.nStart = 0;
        region.nEnd = nLength;
        region.nPosition = nTimelineStart;
        region.channels.clear();
    }
}

void CSession::DeleteRegion(DocumentKind kind, std::int64_t nRegionId)
{
    Document& document = Edit(kind);
    std::erase_if(document.regions, [=](const Region& region) { return region.nId == nRegionId; });
    if (document.nSelectedRegionId == nRegionId)
        document.nSelectedRegionId = kNullId;
    for (Process& process : document.processes)
    {
        if (process.nRegionId == nRegionId)
            process.nRegionId = kNullId;
    }
}

std::int64_t CSession::AddMarkerArea(DocumentKind kind, MarkerArea area)
{
    area.nId = m_nNextId;
    Edit(kind).markerAreas.push_back(area);
    return m_nNextId++;
}

std::int64_t CSession::AddProcess(DocumentKind kind, Process process)
{
    process.nId = m_nNextId;
    Edit(kind).processes.push_back(std::move(process));
    return m_nNextId++;
}

void CSession::DeleteMarkerArea(DocumentKind kind, std::int64_t nAreaId)
{
    std::erase_if(Edit(kind).markerAreas,
                  [=](const MarkerArea& area) { return area.nId == nAreaId; });
}

void CSession::MoveDisplay(DocumentKind kind, double dPosition)
{
    if (GetDocument(kind).dDisplayPosition != dPosition)
        Edit(kind).dDisplayPosition = dPosition;
}

CSession CSession::Restore(std::array<Document, 2> documents, double dLinkOffset,
                           std::int64_t nUpdateCount, std::int64_t nNextId)
{
    CSession session;
    session.m_documents = std::move(documents);
    session.m_dLinkOffset = dLinkOffset;
    session.m_nUpdateCount = nUpdateCount;
    session.m_nNextId = nNextId;
    return session;
}

} // namespace Tarvane::Server
