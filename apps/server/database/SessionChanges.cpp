// What commands change of a session.
#include "apps/server/database/SessionQuery.h"

#include <algorithm>

namespace Tarvane::Server
{

std::int64_t CSessionDatabase::AddTrack(DocumentKind kind, const std::string& strName)
{
    TakeLock();
    Change("INSERT INTO tracks VALUES(?, ?, ?, ?)", m_nNextId, static_cast<int>(kind),
           TrackCount(kind), strName);
    m_nUpdateCount++;
    return m_nNextId++;
}

void CSessionDatabase::RenameTrack(std::int64_t nTrackId, const std::string& strName)
{
    TakeLock();
    Change("UPDATE tracks SET name = ? WHERE id = ?", strName, nTrackId);
    m_nUpdateCount++;
}

void CSessionDatabase::MoveTrack(DocumentKind kind, std::int64_t nTrackId, std::int64_t nPlace)
{
    TakeLock();
    const int nKind = static_cast<int>(kind);
    const std::int64_t nFrom = Number(Query("SELECT place FROM tracks WHERE id = ?", nTrackId));
    const std::int64_t nTo = std::min(nPlace, TrackCount(kind) - 1);
    Change("UPDATE tracks SET place = place - 1 WHERE document = ? AND place > ?", nKind, nFrom);
    Change("UPDATE tracks SET place = place + 1 WHERE document = ? AND place >= ? AND id <> ?",
           nKind, nTo, nTrackId);
    Change("UPDATE tracks SET place = ? WHERE id = ?", nTo, nTrackId);
    m_nUpdateCount++;
}

void CSessionDatabase::DeleteTrack(DocumentKind kind, std::int64_t nTrackId)
{
    TakeLock();
    m_nUpdateCount += RegionCount(nTrackId) + 1;
    const std::int64_t nPlace = Number(Query("SELECT place FROM tracks WHERE id = ?", nTrackId));
    Change("DELETE FROM processes WHERE id IN (SELECT process FROM process_inputs WHERE track = ? "
           "UNION SELECT process FROM process_outputs WHERE track = ?)",
           nTrackId, nTrackId);
    Change("DELETE FROM tracks WHERE id = ?", nTrackId);
    Change("UPDATE tracks SET place = place - 1 WHERE document = ? AND place > ?",
           static_cast<int>(kind), nPlace);
    m_cursor = {};
}

std::int64_t CSessionDatabase::AddRegion(const Region& region)
{
    TakeLock();
    Region added = region;
    added.nId = m_nNextId;
    InsertRegion(added);
    m_regionsWithNewAudio.insert(added.nId);
    m_nUpdateCount++;
    return m_nNextId++;
}

void CSessionDatabase::SelectRegion(DocumentKind kind, std::int64_t nRegionId)
{
    if (SelectedRegionId(kind) == nRegionId)
        return;
    TakeLock();
    Change("UPDATE documents SET selected_region = NULLIF(?, 0) WHERE id = ?", nRegionId,
           static_cast<int>(kind));
    m_nUpdateCount++;
}

void CSessionDatabase::ReplaceAudio(const Region& region, const std::string& strPath)
{
    TakeLock();
    Change("UPDATE regions SET path = ?, start = 0, stop = ?, position = ?, channels = '' "
           "WHERE id = ?",
           strPath, region.Length(), region.TimelineStart(), region.nId);
    m_regionsWithNewAudio.insert(region.nId);
    m_nUpdateCount++;
}

void CSessionDatabase::DeleteRegion(std::int64_t nRegionId)
{
    TakeLock();
    Change("DELETE FROM regions WHERE id = ?", nRegionId);
    // The region after it has its place now.
    if (m_cursor.nId > nRegionId)
        m_cursor = {};
    m_nUpdateCount++;
}

std::int64_t CSessionDatabase::AddMarkerArea(const MarkerArea& area)
{
    TakeLock();
    Change("INSERT INTO marker_areas VALUES(?, ?, ?, ?)", m_nNextId, area.nTrackId, area.nStart,
           area.nEnd);
    m_nUpdateCount++;
    return m_nNextId++;
}

std::int64_t CSessionDatabase::AddProcess(DocumentKind kind, const Process& process)
{
    TakeLock();
    Process added = process;
    added.nId = m_nNextId;
    InsertProcess(kind, added);
    m_nUpdateCount++;
    return m_nNextId++;
}

void CSessionDatabase::DeleteMarkerArea(std::int64_t nAreaId)
{
    TakeLock();
    Change("DELETE FROM marker_areas WHERE id = ?", nAreaId);
    m_nUpdateCount++;
}

void CSessionDatabase::MoveDisplay(DocumentKind kind, double dPosition)
{
    {
        CQuery query =
            Query("SELECT display_position FROM documents WHERE id = ?", static_cast<int>(kind));
        if (query.Next() && query.Real(0) == dPosition)
            return;
    }
    TakeLock();
    Change("UPDATE documents SET display_position = ? WHERE id = ?", dPosition,
           static_cast<int>(kind));
    m_nUpdateCount++;
}

} // namespace Tarvane::Server
