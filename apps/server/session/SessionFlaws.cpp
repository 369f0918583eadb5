// What makes a session unsound.
#include "apps/server/session/Session.h"

#include "utils/UnicodeText.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

namespace Tarvane::Server
{

namespace
{

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

std::optional<std::string> TrackStretchFlaw(const Document& document, std::int64_t nTrackId,
                                            std::int64_t nStart, std::int64_t nEnd)
{
    if (document.FindTrack(nTrackId) == nullptr)
        return "its track " + std::to_string(nTrackId) + " is missing";
    return StretchFlaw(nStart, nEnd);
}

bool IsRegionOrNull(const Document& document, std::int64_t nRegionId)
{
    return nRegionId == kNullId || document.FindRegion(nRegionId) != nullptr;
}

std::optional<std::string> ProcessFlaw(const Process& process, const Document& document)
{
    for (const std::string& strName : {process.strKind, process.strHost})
    {
        if (auto flaw = NameFlaw(strName))
            return "one of its names " + *flaw;
    }
    for (const ProcessInput& input : process.inputs)
    {
        if (auto flaw = TrackStretchFlaw(document, input.nTrackId, input.nStart, input.nEnd))
            return flaw;
    }
    for (std::int64_t nTrackId : process.outputTrackIds)
    {
        if (document.FindTrack(nTrackId) == nullptr)
            return "its track " + std::to_string(nTrackId) + " is missing";
    }
    if (!IsRegionOrNull(document, process.nRegionId))
        return "its region " + std::to_string(process.nRegionId) + " is missing";
    return std::nullopt;
}

std::optional<std::string> DocumentFlaw(const Document& document, std::int64_t nNextId,
                                        std::set<std::int64_t>& ids)
{
    for (const Track& track : document.tracks)
    {
        if (auto flaw = IdFlaw(track.nId, nNextId, ids))
            return flaw;
        if (auto flaw = NameFlaw(track.strName))
            return "the name of track " + std::to_string(track.nId) + " " + *flaw;
    }
    for (const Region& region : document.regions)
    {
        if (auto flaw = IdFlaw(region.nId, nNextId, ids))
            return flaw;
        if (auto flaw = RegionFlaw(region, document))
            return "region " + std::to_string(region.nId) + ": " + *flaw;
    }
    for (const MarkerArea& area : document.markerAreas)
    {
        auto flaw = IdFlaw(area.nId, nNextId, ids);
        if (!flaw)
            flaw = TrackStretchFlaw(document, area.nTrackId, area.nStart, area.nEnd);
        if (flaw)
            return "marker area " + std::to_string(area.nId) + ": " + *flaw;
    }
    for (const Process& process : document.processes)
    {
        auto flaw = IdFlaw(process.nId, nNextId, ids);
        if (!flaw)
            flaw = ProcessFlaw(process, document);
        if (flaw)
            return "process " + std::to_string(process.nId) + ": " + *flaw;
    }
    if (!IsRegionOrNull(document, document.nSelectedRegionId))
        return "the selected region " + std::to_string(document.nSelectedRegionId) + " is missing";
    if (!std::isfinite(document.dDisplayPosition))
        return "the display position is no number";
    return std::nullopt;
}

} // namespace

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

std::optional<std::string> NameFlaw(std::string_view strName)
{
    // A client reads the list of tracks as lines, and an empty line or one too many ends it.
    if (strName.empty())
        return "is empty";
    if (strName.size() > kLongestName)
        return "is longer than " + std::to_string(kLongestName) + " bytes";
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

std::optional<std::string> StretchFlaw(std::int64_t nStart, std::int64_t nEnd)
{
    if (nEnd <= nStart)
        return "the stretch is empty: it ends at " + std::to_string(nEnd) + " and starts at " +
               std::to_string(nStart);
    if (nStart < -kLargestPosition || nEnd > kLargestPosition)
        return std::string("a position is beyond 2^53 samples");
    return std::nullopt;
}

} // namespace Tarvane::Server
