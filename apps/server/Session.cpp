#include "apps/server/Session.h"

#include "apps/server/UnicodeText.h"

#include <algorithm>
#include <cmath>
#include <set>
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

// Every id lies below the next one and stands once in the session.
std::optional<std::string> IdFlaw(std::int64_t nId, std::int64_t nNextId,
                                  std::set<std::int64_t>& ids)
{
    if (nId <= kNullId || nId >= nNextId)
        return "the id " + std::to_string(nId) + " was never given out";
    if (!ids.insert(nId).second)
        return "the id " + std::to_string(nId) + " stands twice";
    return std::nullopt;
}

std::optional<std::string> RegionFlaw(const Region& region, const Document& document)
{
    if (document.FindTrack(region.nTrackId) == nullptr)
        return "its track " + std::to_string(region.nTrackId) + " is missing";
    if (region.strPath.empty() || region.strPath.front() != '/')
        return "its file is no full path";
    if (!IsUtf8(region.strPath) || region.strPath.find('\0') != std::string::npos)
        return "its path is not UTF-8 text";
    if (region.nSampleRate <= 0)
        return "its sample rate is " + std::to_string(region.nSampleRate);
    if (!region.channels.empty() && region.channels.front() < 0)
        return "a channel number is negative";
    if (std::adjacent_find(region.channels.begin(), region.channels.end(),
                           std::greater_equal<>()) != region.channels.end())
        return "its channel numbers do not rise";
    return RegionPlaceFlaw(region);
}

std::optional<std::string> DocumentFlaw(const Document& document, std::int64_t nNextId,
                                        std::set<std::int64_t>& ids)
{
    for (const Track& track : document.tracks)
    {
        if (auto flaw = IdFlaw(track.nId, nNextId, ids))
            return flaw;
        if (auto flaw = TrackNameFlaw(track.strName))
            return "the name of track " + std::to_string(track.nId) + " " + *flaw;
    }
    for (const Region& region : document.regions)
    {
        if (auto flaw = IdFlaw(region.nId, nNextId, ids))
            return flaw;
        if (auto flaw = RegionFlaw(region, document))
            return "region " + std::to_string(region.nId) + ": " + *flaw;
    }
    if (document.nSelectedRegionId != kNullId &&
        document.FindRegion(document.nSelectedRegionId) == nullptr)
        return "the selected region " + std::to_string(document.nSelectedRegionId) + " is missing";
    if (!std::isfinite(document.dDisplayPosition))
        return "the display position is no number";
    return std::nullopt;
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

std::optional<std::string> CSession::Flaw() const
{
    if (auto flaw = LinkOffsetFlaw(m_dLinkOffset))
        return "the link offset " + *flaw;
    // Counts that still have all the room that a session can need above them.
    if (m_nUpdateCount < 0 || m_nUpdateCount > kLargestPosition)
        return "the update count is " + std::to_string(m_nUpdateCount);
    if (m_nNextId <= kNullId || m_nNextId > kLargestPosition)
        return "the next id is " + std::to_string(m_nNextId);
    std::set<std::int64_t> ids;
    for (DocumentKind kind : kDocumentKinds)
    {
        if (auto flaw = DocumentFlaw(GetDocument(kind), m_nNextId, ids))
            return std::string("the ") + DocumentName(kind) + " document: " + *flaw;
    }
    return std::nullopt;
}

std::optional<std::string> TrackNameFlaw(std::string_view strName)
{
    // A client reads the list of tracks as lines, and an empty line or one too many ends it.
    if (strName.empty())
        return "is empty";
    if (strName.size() > kLongestTrackName)
        return "is longer than " + std::to_string(kLongestTrackName) + " bytes";
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    if (std::any_of(strName.begin(), strName.end(), isControl))
        return "contains a line end or another control character";
    if (!IsUtf8(strName))
        return "is not UTF-8 text";
    return std::nullopt;
}

std::optional<std::string> LinkOffsetFlaw(double dSeconds)
{
    if (std::isfinite(dSeconds) && std::fabs(dSeconds) <= kLargestLinkOffset)
        return std::nullopt;
    return "is not within a million seconds";
}

std::optional<std::string> RegionPlaceFlaw(const Region& region)
{
    if (region.nStart < 0)
        return "the region starts before its file, at " + std::to_string(region.nStart);
    if (region.nEnd <= region.nStart)
        return "the region is empty: it ends at " + std::to_string(region.nEnd) +
               " and starts at " + std::to_string(region.nStart);
    if (region.nEnd > kLargestPosition || region.nPosition > kLargestPosition ||
        region.nPosition < -kLargestPosition)
        return std::string("a position is beyond 2^53 samples");
    return std::nullopt;
}

} // namespace Tarvane::Server
