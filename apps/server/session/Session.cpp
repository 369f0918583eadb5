#include "apps/server/session/Session.h"

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
            m_documents[static_cast<std::size_t>(kind)].tracks.push_back({m_nNextId++, strName});
    }
}

const Document& CSession::GetDocument(DocumentKind kind) const
{
    return m_documents[static_cast<std::size_t>(kind)];
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
