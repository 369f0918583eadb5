// What commands ask of a session.
#include "apps/server/database/SessionQuery.h"

namespace Tarvane::Server
{

Region CSessionDatabase::ReadRegion(CQuery& query)
{
    Region region;
    region.nId = query.Number(0);
    region.nTrackId = query.Number(1);
    region.strPath = query.Text(2);
    region.nStart = query.Number(3);
    region.nEnd = query.Number(4);
    region.nPosition = query.Number(5);
    region.nSampleRate = static_cast<std::int32_t>(query.Number(6));
    region.channels = ChannelsFromText(query.Text(7));
    region.fMuted = query.Number(8) != 0;
    return region;
}

std::optional<Region> CSessionDatabase::OneRegion(CQuery query)
{
    return query.Next() ? std::optional(ReadRegion(query)) : std::nullopt;
}

std::int64_t CSessionDatabase::Number(CQuery query)
{
    return query.Next() ? query.Number(0) : 0;
}

std::int64_t CSessionDatabase::TrackCount(DocumentKind kind)
{
    // Places have no gaps.
    return Number(Query("SELECT COALESCE(MAX(place) + 1, 0) FROM tracks WHERE document = ?",
                        static_cast<int>(kind)));
}

std::optional<Track> CSessionDatabase::TrackAt(DocumentKind kind, std::int64_t nPlace)
{
    CQuery query = Query("SELECT id, name FROM tracks WHERE document = ? AND place = ?",
                         static_cast<int>(kind), nPlace);
    return query.Next() ? std::optional(Track{query.Number(0), query.Text(1)}) : std::nullopt;
}

std::optional<Track> CSessionDatabase::FindTrack(DocumentKind kind, std::int64_t nTrackId)
{
    CQuery query = Query("SELECT id, name FROM tracks WHERE id = ? AND document = ?", nTrackId,
                         static_cast<int>(kind));
    return query.Next() ? std::optional(Track{query.Number(0), query.Text(1)}) : std::nullopt;
}

std::vector<Track> CSessionDatabase::Tracks(DocumentKind kind)
{
    std::vector<Track> tracks;
    CQuery query = Query("SELECT id, name FROM tracks WHERE document = ? ORDER BY place",
                         static_cast<int>(kind));
    while (query.Next())
        tracks.push_back({query.Number(0), query.Text(1)});
    return tracks;
}

std::int64_t CSessionDatabase::RegionCount(std::int64_t nTrackId)
{
    return Number(Query("SELECT COUNT(*) FROM regions WHERE track = ?", nTrackId));
}

std::int64_t CSessionDatabase::RegionAt(std::int64_t nTrackId, std::int64_t nPlace)
{
    if (nPlace < 0)
        return kNullId;
    const bool fOnward = m_cursor.nTrackId == nTrackId && m_cursor.nPlace <= nPlace;
    const std::int64_t nFrom = fOnward ? m_cursor.nId : kNullId;
    const std::int64_t nSkip = fOnward ? nPlace - m_cursor.nPlace : nPlace;
    const std::int64_t nId = Number(Query("SELECT id FROM regions WHERE track = ? AND id >= ? "
                                          "ORDER BY id LIMIT 1 OFFSET ?",
                                          nTrackId, nFrom, nSkip));
    if (nId != kNullId)
        m_cursor = {nTrackId, nPlace, nId};
    return nId;
}

std::optional<Region> CSessionDatabase::FindRegion(DocumentKind kind, std::int64_t nRegionId)
{
    return OneRegion(Query("SELECT regions.* FROM regions JOIN tracks ON tracks.id = track "
                           "WHERE regions.id = ? AND document = ?",
                           nRegionId, static_cast<int>(kind)));
}

std::optional<Region> CSessionDatabase::NextRegion(std::int64_t nRegionId)
{
    return OneRegion(Query("SELECT * FROM regions WHERE id > ? ORDER BY id LIMIT 1", nRegionId));
}

std::optional<Region> CSessionDatabase::FirstRegion(DocumentKind kind)
{
    return OneRegion(
        Query("SELECT * FROM regions WHERE id = (SELECT MIN((SELECT MIN(id) FROM regions WHERE "
              "track = tracks.id)) FROM tracks WHERE document = ?)",
              static_cast<int>(kind)));
}

std::optional<Region> CSessionDatabase::FirstRegionIn(std::int64_t nTrackId, std::int64_t nStart,
                                                      std::int64_t nEnd)
{
    return OneRegion(Query("SELECT * FROM regions WHERE track = ? AND position + start < ? AND "
                           "position + stop > ? ORDER BY id LIMIT 1",
                           nTrackId, nEnd, nStart));
}

std::vector<Region> CSessionDatabase::RegionsThatBegin(std::int64_t nTrackId, std::int64_t nFirst,
                                                       std::int64_t nLast)
{
    std::vector<Region> regions;
    CQuery query = Query("SELECT * FROM regions WHERE track = ? AND position + start BETWEEN ? AND "
                         "? ORDER BY id",
                         nTrackId, nFirst, nLast);
    while (query.Next())
        regions.push_back(ReadRegion(query));
    return regions;
}

std::int64_t CSessionDatabase::MarkerAreaCount(std::int64_t nTrackId)
{
    return Number(Query("SELECT COUNT(*) FROM marker_areas WHERE track = ?", nTrackId));
}

std::int64_t CSessionDatabase::MarkerAreaAt(std::int64_t nTrackId, std::int64_t nPlace)
{
    // A negative offset would count as none.
    if (nPlace < 0)
        return kNullId;
    return Number(Query("SELECT id FROM marker_areas WHERE track = ? ORDER BY id LIMIT 1 OFFSET ?",
                        nTrackId, nPlace));
}

bool CSessionDatabase::HasMarkerArea(DocumentKind kind, std::int64_t nAreaId)
{
    return Number(Query("SELECT marker_areas.id FROM marker_areas JOIN tracks ON tracks.id = track "
                        "WHERE marker_areas.id = ? AND document = ?",
                        nAreaId, static_cast<int>(kind))) != kNullId;
}

std::int64_t CSessionDatabase::LastProcessId(DocumentKind kind)
{
    return Number(
        Query("SELECT MAX(id) FROM processes WHERE document = ?", static_cast<int>(kind)));
}

std::optional<std::int64_t> CSessionDatabase::ProcessRegion(DocumentKind kind,
                                                            std::int64_t nProcessId)
{
    CQuery query = Query("SELECT region FROM processes WHERE id = ? AND document = ?", nProcessId,
                         static_cast<int>(kind));
    return query.Next() ? std::optional(query.Number(0)) : std::nullopt;
}

std::int64_t CSessionDatabase::SelectedRegionId(DocumentKind kind)
{
    return Number(
        Query("SELECT selected_region FROM documents WHERE id = ?", static_cast<int>(kind)));
}

} // namespace Tarvane::Server
