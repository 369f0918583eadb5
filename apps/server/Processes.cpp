#include "apps/server/Processes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Tarvane::Server
{

namespace
{

struct ProcessKind
{
    const char* szName;
    std::vector<std::int64_t> ioTypes; // of its inputs, in their order
};

const ProcessKind* FindKind(const std::string& strName)
{
    static const std::vector<ProcessKind> kinds{{"GDX", {1, 2}}, {"Spreader", {1}}};
    const auto found =
        std::find_if(kinds.begin(), kinds.end(),
                     [&strName](const ProcessKind& kind) { return kind.szName == strName; });
    return found == kinds.end() ? nullptr : &*found;
}

std::optional<std::string> InputFlaw(const ProcessInput& input, std::int64_t nIOType,
                                     const Document& document)
{
    if (input.nIOType != nIOType)
        return "an input's IOType is " + std::to_string(input.nIOType) + " in the place of " +
               std::to_string(nIOType);
    if (document.FindTrack(input.nTrackId) == nullptr)
        return "the document has no track with the id " + std::to_string(input.nTrackId);
    return StretchFlaw(input.nStart, input.nEnd);
}

// The part of the region that lies within the stretch; empty when none does.
std::optional<Region> Cut(const Region& region, const ProcessInput& input)
{
    const std::int64_t nFrom = std::max(region.TimelineStart(), input.nStart);
    const std::int64_t nTo = std::min(region.TimelineStart() + region.Length(), input.nEnd);
    if (nTo <= nFrom)
        return std::nullopt;
    Region part = region;
    part.nStart = nFrom - region.nPosition;
    part.nEnd = nTo - region.nPosition;
    return part;
}

// What the process makes, on its output track; empty when its last input holds no audio.
std::optional<Region> MakeOutput(const Process& process, const Document& document)
{
    const ProcessInput& source = process.inputs.back();
    for (const Region& region : document.regions)
    {
        std::optional<Region> part;
        if (region.nTrackId == source.nTrackId)
            part = Cut(region, source);
        if (!part)
            continue;
        part->nTrackId = process.outputTrackIds.front();
        part->nPosition += process.inputs.front().nStart - source.nStart;
        return part;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> ProcessFlaw(const Process& process, const Document& document)
{
    const ProcessKind* pKind = FindKind(process.strKind);
    if (pKind == nullptr)
        return "there is no process \"" + process.strKind + "\"; there are GDX and Spreader";
    if (const auto flaw = NameFlaw(process.strHost))
        return "the host's name " + *flaw;
    if (process.inputs.size() != pKind->ioTypes.size())
        return process.strKind + " takes " + std::to_string(pKind->ioTypes.size()) +
               " inputs, not " + std::to_string(process.inputs.size());
    for (std::size_t nInput = 0; nInput < process.inputs.size(); nInput++)
    {
        if (auto flaw = InputFlaw(process.inputs[nInput], pKind->ioTypes[nInput], document))
            return flaw;
    }
    if (process.outputTrackIds.size() != 1)
        return process.strKind + " has one output, not " +
               std::to_string(process.outputTrackIds.size());
    if (document.FindTrack(process.outputTrackIds.front()) == nullptr)
        return "the document has no track with the id " +
               std::to_string(process.outputTrackIds.front());
    const auto output = MakeOutput(process, document);
    return output ? RegionPlaceFlaw(*output) : std::nullopt;
}

std::int64_t CreateProcess(CSession& session, DocumentKind kind, Process process)
{
    for (const ProcessInput& input : process.inputs)
        session.AddMarkerArea(kind, {kNullId, input.nTrackId, input.nStart, input.nEnd});
    if (auto output = MakeOutput(process, session.GetDocument(kind)))
        process.nRegionId = session.AddRegion(kind, *std::move(output));
    return session.AddProcess(kind, std::move(process));
}

} // namespace Tarvane::Server
