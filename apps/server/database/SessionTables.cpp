// The tables of a session, and whole sessions into and out of them.
#include "apps/server/database/SessionQuery.h"

#include <sstream>

namespace Tarvane::Server
{

namespace
{

// 0 is the script document and 1 the audiosuite document, as in DocumentKind. Counts and positions
// are bounded as in Session.h.
constexpr const char* kTables = R"(
CREATE TABLE session(
    id INTEGER PRIMARY KEY CHECK(id = 1),
    link_offset REAL NOT NULL CHECK(abs(link_offset) <= 1e6),
    update_count INTEGER NOT NULL CHECK(update_count BETWEEN 0 AND 9007199254740992),
    next_id INTEGER NOT NULL CHECK(next_id BETWEEN 1 AND 9007199254740992)) STRICT;
CREATE TABLE tracks(
    id INTEGER PRIMARY KEY CHECK(id > 0),
    document INTEGER NOT NULL CHECK(document IN (0, 1)),
    place INTEGER NOT NULL CHECK(place >= 0), -- in the list of the document
    name TEXT NOT NULL CHECK(name <> '')) STRICT;
CREATE INDEX tracks_by_place ON tracks(document, place);
CREATE TABLE regions(
    id INTEGER PRIMARY KEY CHECK(id > 0),
    track INTEGER NOT NULL REFERENCES tracks(id) ON DELETE CASCADE,
    path TEXT NOT NULL CHECK(path GLOB '/*'),
    start INTEGER NOT NULL CHECK(start >= 0),
    stop INTEGER NOT NULL CHECK(stop > start AND stop <= 9007199254740992),
    position INTEGER NOT NULL CHECK(abs(position) <= 9007199254740992),
    sample_rate INTEGER NOT NULL CHECK(sample_rate > 0),
    channels TEXT NOT NULL, -- '0 2' for instance; empty for all of the file's
    muted INTEGER NOT NULL CHECK(muted IN (0, 1))) STRICT;
CREATE INDEX regions_by_track ON regions(track);
CREATE INDEX regions_by_place ON regions(track, position + start);
CREATE TABLE documents(
    id INTEGER PRIMARY KEY CHECK(id IN (0, 1)),
    display_position REAL NOT NULL,
    selected_region INTEGER REFERENCES regions(id) ON DELETE SET NULL) STRICT;
CREATE TABLE marker_areas(
    id INTEGER PRIMARY KEY CHECK(id > 0),
    track INTEGER NOT NULL REFERENCES tracks(id) ON DELETE CASCADE,
    start INTEGER NOT NULL CHECK(start >= -9007199254740992),
    stop INTEGER NOT NULL CHECK(stop > start AND stop <= 9007199254740992)) STRICT;
CREATE INDEX marker_areas_by_track ON marker_areas(track);
CREATE TABLE processes(
    id INTEGER PRIMARY KEY CHECK(id > 0),
    document INTEGER NOT NULL CHECK(document IN (0, 1)),
    kind TEXT NOT NULL CHECK(kind <> ''),
    host TEXT NOT NULL CHECK(host <> ''),
    region INTEGER REFERENCES regions(id) ON DELETE SET NULL) STRICT;
CREATE INDEX processes_by_document ON processes(document);
CREATE INDEX processes_by_region ON processes(region);
CREATE TABLE process_inputs(
    process INTEGER NOT NULL REFERENCES processes(id) ON DELETE CASCADE,
    place INTEGER NOT NULL,
    io_type INTEGER NOT NULL,
    track INTEGER NOT NULL REFERENCES tracks(id),
    start INTEGER NOT NULL CHECK(start >= -9007199254740992),
    stop INTEGER NOT NULL CHECK(stop > start AND stop <= 9007199254740992),
    PRIMARY KEY(process, place)) STRICT, WITHOUT ROWID;
CREATE INDEX process_inputs_by_track ON process_inputs(track);
CREATE TABLE process_outputs(
    process INTEGER NOT NULL REFERENCES processes(id) ON DELETE CASCADE,
    place INTEGER NOT NULL,
    track INTEGER NOT NULL REFERENCES tracks(id),
    PRIMARY KEY(process, place)) STRICT, WITHOUT ROWID;
CREATE INDEX process_outputs_by_track ON process_outputs(track);
)";

// Sessions made before there were any get them when they are opened; a program that knows of none
// passes them over.
constexpr const char* kFingerprints = R"(
CREATE TABLE IF NOT EXISTS fingerprints(
    id INTEGER PRIMARY KEY, -- the older the lower
    device INTEGER NOT NULL,
    inode INTEGER NOT NULL,
    start INTEGER NOT NULL,
    stop INTEGER NOT NULL,
    channels TEXT NOT NULL, -- as in regions
    size INTEGER NOT NULL,
    changed INTEGER NOT NULL,
    form INTEGER NOT NULL,
    content TEXT NOT NULL CHECK(length(content) = 32),
    UNIQUE(device, inode, start, stop, channels)) STRICT;
)";

} // namespace

std::string ChannelText(const std::vector<std::int32_t>& channels)
{
    std::string strText;
    for (const std::int32_t nChannel : channels)
        strText += (strText.empty() ? "" : " ") + std::to_string(nChannel);
    return strText;
}

std::vector<std::int32_t> ChannelsFromText(const std::string& strText)
{
    std::istringstream text(strText);
    std::vector<std::int32_t> channels;
    for (std::int32_t nChannel = 0; text >> nChannel;)
        channels.push_back(nChannel);
    return channels;
}

void CSessionDatabase::MakeTables()
{
    m_database.exec(kTables);
    MakeFingerprintTable();
    m_database.exec("PRAGMA application_id=" + std::to_string(kApplicationId));
    m_database.exec("PRAGMA user_version=" + std::to_string(kVersion));
}

void CSessionDatabase::MakeFingerprintTable()
{
    m_database.exec(kFingerprints);
}

void CSessionDatabase::Fill(const CSession& content)
{
    SQLite::Transaction transaction(m_database);
    Change("INSERT INTO session VALUES(1, ?, ?, ?)", content.LinkOffset(), content.UpdateCount(),
           content.NextId());
    for (const DocumentKind kind : kDocumentKinds)
        FillDocument(content.GetDocument(kind), kind);
    transaction.commit();
    ReadCounts();
    m_nCountAtBegin = m_nUpdateCount;
}

void CSessionDatabase::FillDocument(const Document& document, DocumentKind kind)
{
    for (std::size_t nPlace = 0; nPlace < document.tracks.size(); nPlace++)
        Change("INSERT INTO tracks VALUES(?, ?, ?, ?)", document.tracks[nPlace].nId,
               static_cast<int>(kind), static_cast<std::int64_t>(nPlace),
               document.tracks[nPlace].strName);
    for (const Region& region : document.regions)
        InsertRegion(region);
    for (const MarkerArea& area : document.markerAreas)
        Change("INSERT INTO marker_areas VALUES(?, ?, ?, ?)", area.nId, area.nTrackId, area.nStart,
               area.nEnd);
    for (const Process& process : document.processes)
        InsertProcess(kind, process);
    Change("INSERT INTO documents VALUES(?, ?, NULLIF(?, 0))", static_cast<int>(kind),
           document.dDisplayPosition, document.nSelectedRegionId);
}

void CSessionDatabase::InsertRegion(const Region& region)
{
    Change("INSERT INTO regions VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?)", region.nId, region.nTrackId,
           region.strPath, region.nStart, region.nEnd, region.nPosition, region.nSampleRate,
           ChannelText(region.channels), region.fMuted ? 1 : 0);
}

void CSessionDatabase::InsertProcess(DocumentKind kind, const Process& process)
{
    Change("INSERT INTO processes VALUES(?, ?, ?, ?, NULLIF(?, 0))", process.nId,
           static_cast<int>(kind), process.strKind, process.strHost, process.nRegionId);
    std::int64_t nPlace = 0;
    for (const ProcessInput& input : process.inputs)
        Change("INSERT INTO process_inputs VALUES(?, ?, ?, ?, ?, ?)", process.nId, nPlace++,
               input.nIOType, input.nTrackId, input.nStart, input.nEnd);
    nPlace = 0;
    for (const std::int64_t nTrackId : process.outputTrackIds)
        Change("INSERT INTO process_outputs VALUES(?, ?, ?)", process.nId, nPlace++, nTrackId);
}

CSession CSessionDatabase::Content()
{
    std::optional<SQLite::Transaction> alone;
    if (!m_transaction)
        alone.emplace(m_database);
    std::array<Document, kDocumentKinds.size()> documents;
    for (const DocumentKind kind : kDocumentKinds)
        documents[static_cast<std::size_t>(kind)] = ContentOf(kind);
    if (!m_transaction)
        ReadCounts();
    return CSession::Restore(std::move(documents), m_dLinkOffset, m_nUpdateCount, m_nNextId);
}

Document CSessionDatabase::ContentOf(DocumentKind kind)
{
    Document document;
    document.tracks = Tracks(kind);
    const int nKind = static_cast<int>(kind);
    {
        CQuery query = Query("SELECT regions.* FROM regions JOIN tracks ON tracks.id = track "
                             "WHERE document = ? ORDER BY regions.id",
                             nKind);
        while (query.Next())
            document.regions.push_back(ReadRegion(query));
    }
    {
        CQuery query = Query("SELECT marker_areas.* FROM marker_areas JOIN tracks ON tracks.id = "
                             "track WHERE document = ? ORDER BY marker_areas.id",
                             nKind);
        while (query.Next())
            document.markerAreas.push_back(
                {query.Number(0), query.Number(1), query.Number(2), query.Number(3)});
    }
    {
        CQuery query = Query("SELECT * FROM processes WHERE document = ? ORDER BY id", nKind);
        while (query.Next())
            document.processes.push_back(
                {query.Number(0), query.Text(2), query.Text(3), {}, {}, query.Number(4)});
    }
    for (Process& process : document.processes)
        ReadStretches(process);
    CQuery query =
        Query("SELECT display_position, selected_region FROM documents WHERE id = ?", nKind);
    if (query.Next())
    {
        document.dDisplayPosition = query.Real(0);
        document.nSelectedRegionId = query.Number(1);
    }
    return document;
}

void CSessionDatabase::ReadStretches(Process& process)
{
    CQuery inputs =
        Query("SELECT * FROM process_inputs WHERE process = ? ORDER BY place", process.nId);
    while (inputs.Next())
        process.inputs.push_back(
            {inputs.Number(2), inputs.Number(3), inputs.Number(4), inputs.Number(5)});
    CQuery outputs =
        Query("SELECT * FROM process_outputs WHERE process = ? ORDER BY place", process.nId);
    while (outputs.Next())
        process.outputTrackIds.push_back(outputs.Number(2));
}

} // namespace Tarvane::Server
