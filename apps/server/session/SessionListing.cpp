#include "apps/server/session/SessionListing.h"

#include "apps/support/text/Timecode.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

namespace Tarvane::Server
{

namespace
{

using Json = nlohmann::ordered_json;

std::string Time(std::int64_t nSamples, const Region& region)
{
    return FormatTimecode(static_cast<double>(nSamples), region.nSampleRate);
}

void ListPlace(std::ostream& out, const char* szName, std::int64_t nSamples, const Region& region)
{
    out << "      " << szName << nSamples << "  " << Time(nSamples, region) << '\n';
}

// One line, whatever is in the file's name.
std::string PathInOneLine(std::string strPath)
{
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    std::replace_if(strPath.begin(), strPath.end(), isControl, '?');
    return strPath;
}

void ListRegion(std::ostream& out, const Region& region, const Document& document)
{
    out << "    region " << region.nId << "  " << PathInOneLine(region.strPath) << "  "
        << region.nSampleRate << " Hz";
    if (!region.channels.empty())
    {
        out << "  channels";
        for (std::int32_t nChannel : region.channels)
            out << ' ' << nChannel;
    }
    out << (region.fMuted ? "  muted" : "")
        << (region.nId == document.nSelectedRegionId ? "  selected" : "") << '\n';
    ListPlace(out, "start     ", region.nStart, region);
    ListPlace(out, "end       ", region.nEnd, region);
    ListPlace(out, "position  ", region.nPosition, region);
}

void ListDocument(std::ostream& out, const Document& document)
{
    for (std::size_t nTrack = 0; nTrack < document.tracks.size(); nTrack++)
    {
        const Track& track = document.tracks[nTrack];
        out << "  track " << nTrack << "  " << track.strName << '\n';
        for (const Region& region : document.regions)
        {
            if (region.nTrackId == track.nId)
                ListRegion(out, region, document);
        }
        for (const MarkerArea& area : document.markerAreas)
        {
            if (area.nTrackId == track.nId)
                out << "    marker area " << area.nId << "  " << area.nStart << " to " << area.nEnd
                    << '\n';
        }
    }
    for (const Process& process : document.processes)
    {
        out << "  process " << process.nId << "  " << process.strKind;
        if (process.nRegionId != kNullId)
            out << "  made region " << process.nRegionId;
        out << '\n';
    }
}

Json RegionAsJson(const Region& region)
{
    return {{"id", region.nId},
            {"file", region.strPath},
            {"start", region.nStart},
            {"end", region.nEnd},
            {"position", region.nPosition},
            {"timelineStart", region.TimelineStart()},
            {"sampleRate", region.nSampleRate},
            {"channels", region.channels},
            {"muted", region.fMuted},
            {"startTime", Time(region.nStart, region)},
            {"endTime", Time(region.nEnd, region)},
            {"positionTime", Time(region.nPosition, region)}};
}

Json TrackAsJson(const Document& document, std::size_t nTrack)
{
    const Track& track = document.tracks[nTrack];
    Json regions = Json::array();
    for (const Region& region : document.regions)
    {
        if (region.nTrackId == track.nId)
            regions.push_back(RegionAsJson(region));
    }
    Json areas = Json::array();
    for (const MarkerArea& area : document.markerAreas)
    {
        if (area.nTrackId == track.nId)
            areas.push_back({{"id", area.nId}, {"start", area.nStart}, {"end", area.nEnd}});
    }
    return {{"number", nTrack},
            {"id", track.nId},
            {"name", track.strName},
            {"regions", std::move(regions)},
            {"markerAreas", std::move(areas)}};
}

Json DocumentAsJson(const CSession& session, DocumentKind kind)
{
    const Document& document = session.GetDocument(kind);
    Json tracks = Json::array();
    for (std::size_t nTrack = 0; nTrack < document.tracks.size(); nTrack++)
        tracks.push_back(TrackAsJson(document, nTrack));
    Json processes = Json::array();
    for (const Process& process : document.processes)
        processes.push_back(
            {{"id", process.nId}, {"kind", process.strKind}, {"region", process.nRegionId}});
    return {{"kind", DocumentName(kind)},
            {"displayPosition", document.dDisplayPosition},
            {"selectedRegion", document.nSelectedRegionId},
            {"tracks", std::move(tracks)},
            {"processes", std::move(processes)}};
}

} // namespace

std::string ListSession(const CSession& session)
{
    std::ostringstream out;
    out << "link offset " << session.LinkOffset() << " s, " << session.UpdateCount()
        << " updates\n";
    for (DocumentKind kind : kDocumentKinds)
    {
        out << DocumentName(kind) << " document, display at "
            << FormatSamples(session.GetDocument(kind).dDisplayPosition) << '\n';
        ListDocument(out, session.GetDocument(kind));
    }
    return out.str();
}

std::string ListSessionAsJson(const CSession& session)
{
    Json documents = Json::array();
    for (DocumentKind kind : kDocumentKinds)
        documents.push_back(DocumentAsJson(session, kind));
    const Json whole{{"linkOffset", session.LinkOffset()},
                     {"updateCount", session.UpdateCount()},
                     {"documents", std::move(documents)}};
    return whole.dump(2) + "\n";
}

} // namespace Tarvane::Server
