#include "apps/server/script/Processes.h"

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
                                     CSessionDatabase& session, DocumentKind kind)
{
    if (input.nIOType != nIOType)
        return "an input's IOType is " + std::to_string(input.nIOType) + " in the place of " +
               std::to_string(nIOType);
    if (!session.FindTrack(kind, input.nTrackId))
        return "the document has no track with the id " + std::to_string(input.nTrackId);
    return StretchFlaw(input.nStart, input.nEnd);
}

// What the process makes, on its output track; empty when its last input holds no audio.
std::optional<Region> MakeOutput(const Process& process, CSessionDatabase& session)
{
    const ProcessInput& source = process.inputs.back();
    std::optional<Region> part = session.FirstRegionIn(source.nTrackId, source.nStart, source.nEnd);
    if (!part)
        return std::nullopt;
    const std::int64_t nEnd = std::min(part->nEnd, source.nEnd - part->nPosition);
    part->nStart = std::max(part->nStart, source.nStart - part->nPosition);
    part->nEnd = nEnd;
    part->nTrackId = process.outputTrackIds.front();
    part->nPosition += process.inputs.front().nStart - source.nStart;
    return part;
}

} // namespace

std::optional<std::string> ProcessFlaw(const Process& process, CSessionDatabase& session,
                                       DocumentKind kind)
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
        if (auto flaw = InputFlaw(process.inputs[nInput], pKind->ioTypes[nInput], session, kind))
            return flaw;
    }
    if (process.outputTrackIds.size() != 1)
        return process.strKind + " has one output, not " +
               std::to_string(process.outputTrackIds.size());
    if (!session.FindTrack(kind, process.outputTrackIds.front()))
        return "the document has no track with the id " +
               std::to_string(process.outputTrackIds.front());
    const auto output = MakeOutput(process, session);
    return output ? RegionPlaceFlaw(*output) : std::nullopt;
}

std::int64_t CreateProcess(CSessionDatabase& session, DocumentKind kind, Process process)
{
    for (const ProcessInput& input : process.inputs)
        session.AddMarkerArea({kNullId, input.nTrackId, input.nStart, input.nEnd});
    if (auto output = MakeOutput(process, session))
        process.nRegionId = session.AddRegion(*output);
    return session.AddProcess(kind, process);
}

} // namespace Tarvane::Server
