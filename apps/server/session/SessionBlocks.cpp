#include "apps/server/session/SessionBlocks.h"

#include "apps/server/session/BlockReader.h"
#include "apps/session/SessionScan.h"
#include "utils/ParameterBlock.h"

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <new>
#include <type_traits>

namespace Tarvane::Server
{

namespace
{

constexpr const char* szForm = "Tarvane Link session";
// 1 was a text (SessionText.h).
constexpr int kVersion = 2;

struct DataReleaser
{
    void operator()(CFMutableDataRef pData) const { CFRelease(pData); }
};
using OwnedData = std::unique_ptr<std::remove_pointer_t<CFMutableDataRef>, DataReleaser>;

void Add(CParameterBlock& block, const char* szName, std::int64_t nValue)
{
    block.AddParameter(szName, static_cast<long long>(nValue));
}

void Add(CParameterBlock& block, const char* szName, const std::string& strValue)
{
    block.AddParameter(szName, "");
    // A pointer would end the value at a zero byte.
    static_cast<CStringParameter&>(*block.m_vParameters.back()).m_strValue = strValue;
}

CParameterBlock& AddBlock(CParameterBlock& block, const char* szName)
{
    const CParameterBlock empty;
    block.AddParameter(szName, &empty);
    return static_cast<CParameterBlock&>(*block.m_vParameters.back());
}

void AddTrack(CParameterBlock& document, const Track& track)
{
    CParameterBlock& block = AddBlock(document, "Track");
    Add(block, "Id", track.nId);
    Add(block, "Name", track.strName);
}

void AddRegion(CParameterBlock& document, const Region& region)
{
    CParameterBlock& block = AddBlock(document, "Region");
    Add(block, "Id", region.nId);
    Add(block, "Track", region.nTrackId);
    Add(block, "File", region.strPath);
    Add(block, "Start", region.nStart);
    Add(block, "End", region.nEnd);
    Add(block, "Position", region.nPosition);
    block.AddParameter("SampleRate", region.nSampleRate);
    block.AddParameter("Muted", region.fMuted);
    CParameterBlock& channels = AddBlock(block, "Channels");
    for (std::int32_t nChannel : region.channels)
        channels.AddParameter("Channel", nChannel);
}

void AddMarkerArea(CParameterBlock& document, const MarkerArea& area)
{
    CParameterBlock& block = AddBlock(document, "MarkerArea");
    Add(block, "Id", area.nId);
    Add(block, "Track", area.nTrackId);
    Add(block, "Start", area.nStart);
    Add(block, "End", area.nEnd);
}

void AddProcess(CParameterBlock& document, const Process& process)
{
    CParameterBlock& block = AddBlock(document, "Process");
    Add(block, "Id", process.nId);
    Add(block, "Kind", process.strKind);
    Add(block, "Host", process.strHost);
    Add(block, "Region", process.nRegionId);
    for (const ProcessInput& input : process.inputs)
    {
        CParameterBlock& inputBlock = AddBlock(block, "Input");
        Add(inputBlock, "IOType", input.nIOType);
        Add(inputBlock, "Track", input.nTrackId);
        Add(inputBlock, "Start", input.nStart);
        Add(inputBlock, "End", input.nEnd);
    }
    CParameterBlock& outputs = AddBlock(block, "Outputs");
    for (std::int64_t nTrackId : process.outputTrackIds)
        Add(outputs, "Track", nTrackId);
}

void AddDocument(CParameterBlock& root, const char* szName, const Document& document)
{
    CParameterBlock& block = AddBlock(root, szName);
    block.AddParameter("DisplayPosition", document.dDisplayPosition);
    Add(block, "SelectedRegion", document.nSelectedRegionId);
    for (const Track& track : document.tracks)
        AddTrack(block, track);
    for (const Region& region : document.regions)
        AddRegion(block, region);
    for (const MarkerArea& area : document.markerAreas)
        AddMarkerArea(block, area);
    for (const Process& process : document.processes)
        AddProcess(block, process);
}

Track ReadTrack(CBlockReader& block)
{
    return {block.Int64("Id"), block.Text("Name")};
}

Region ReadRegion(CBlockReader& block)
{
    Region region;
    region.nId = block.Int64("Id");
    region.nTrackId = block.Int64("Track");
    region.strPath = block.Text("File");
    region.nStart = block.Int64("Start");
    region.nEnd = block.Int64("End");
    region.nPosition = block.Int64("Position");
    region.nSampleRate = block.Int("SampleRate");
    region.fMuted = block.Flag("Muted");
    region.channels = block.Ints("Channels", "Channel");
    return region;
}

MarkerArea ReadMarkerArea(CBlockReader& block)
{
    return {block.Int64("Id"), block.Int64("Track"), block.Int64("Start"), block.Int64("End")};
}

ProcessInput ReadInput(CBlockReader& block)
{
    return {block.Int64("IOType"), block.Int64("Track"), block.Int64("Start"), block.Int64("End")};
}

Process ReadProcess(CBlockReader& block)
{
    Process process;
    process.nId = block.Int64("Id");
    process.strKind = block.Text("Kind");
    process.strHost = block.Text("Host");
    process.nRegionId = block.Int64("Region");
    process.inputs = block.Blocks("Input", ReadInput);
    process.outputTrackIds = block.Int64s("Outputs", "Track");
    return process;
}

Document ReadDocument(CBlockReader& block)
{
    Document document;
    document.dDisplayPosition = block.Double("DisplayPosition");
    document.nSelectedRegionId = block.Int64("SelectedRegion");
    document.tracks = block.Blocks("Track", ReadTrack);
    document.regions = block.Blocks("Region", ReadRegion);
    document.markerAreas = block.Blocks("MarkerArea", ReadMarkerArea);
    document.processes = block.Blocks("Process", ReadProcess);
    return document;
}

// The lenient reader takes what is broken off or damaged for what it seems to be: the strict one
// goes first.
void LoadSound(CParameterBlock& root, std::string_view bytes)
{
    const Tarvane::Session::ScannedSession scanned = Tarvane::Session::Scan(bytes);
    if (scanned.flaw)
        throw CSessionFlaw(Tarvane::Session::FlawText(*scanned.flaw));
    std::string copy(bytes);
    const int nResult = root.LoadBinarySessionFromMemory(
        reinterpret_cast<unsigned char*>(copy.data()), static_cast<unsigned int>(copy.size()));
    if (nResult != CParameterBlock::kSessionDone)
        throw CSessionFlaw("it cannot be loaded, result " + std::to_string(nResult));
}

} // namespace

std::string EncodeSession(const CSession& session)
{
    CParameterBlock root;
    root.m_strName = szForm;
    root.AddParameter("Version", kVersion);
    root.AddParameter("LinkOffset", session.LinkOffset());
    Add(root, "UpdateCount", session.UpdateCount());
    Add(root, "NextId", session.NextId());
    for (DocumentKind kind : kDocumentKinds)
        AddDocument(root, DocumentName(kind), session.GetDocument(kind));

    const OwnedData pData(CFDataCreateMutable(kCFAllocatorDefault, 0));
    const unsigned long nSize = root.SaveBinarySessionToMemory(pData.get());
    if (nSize == 0)
        throw std::bad_alloc();
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(pData.get())), nSize};
}

CSession DecodeSession(std::string_view bytes)
{
    CParameterBlock root;
    LoadSound(root, bytes);
    if (root.m_strName != szForm)
        throw CSessionFlaw("this is a session of another program");

    CBlockReader reader(root);
    RequireVersion(reader.Int("Version"), kVersion);
    const double dLinkOffset = reader.Double("LinkOffset");
    const std::int64_t nUpdateCount = reader.Int64("UpdateCount");
    const std::int64_t nNextId = reader.Int64("NextId");
    std::array<Document, kDocumentKinds.size()> documents;
    for (DocumentKind kind : kDocumentKinds)
        documents[static_cast<std::size_t>(kind)] = reader.Block(DocumentName(kind), ReadDocument);
    reader.RequireAllRead();

    CSession session = CSession::Restore(std::move(documents), dLinkOffset, nUpdateCount, nNextId);
    if (const auto flaw = session.Flaw())
        throw CSessionFlaw(*flaw);
    return session;
}

} // namespace Tarvane::Server
