#include "TarvaneLinkShared/ScriptTexts.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "apps/conform/server/ServerProcess.h"
#include "apps/conform/server/ServerRules.h"
#include "apps/support/recording/CommandWatch.h"
#include "utils/FileIO/FileName.h"

#include <filesystem>
#include <functional>

namespace Tarvane::Conform
{
namespace
{

// The items of a script that says how it fared. A status without more is refused unless it is one
// that the script may end with.
std::vector<std::string> ItemsOfOutcome(const ServerBench& bench, const char* szScript,
                                        std::size_t nItems, double dLargestStatus)
{
    const std::vector<std::string> items = Items(bench.peer.PrintedWithoutError(szScript));
    if (items.size() == nItems && Number(items.front()) == 0.0)
        return items;
    if (items.size() != 1)
        throw CBroken(std::to_string(items.size()) + " items came where " + std::to_string(nItems) +
                      " or 1 were to");
    const double dStatus = Number(items.front());
    if (dStatus < 0.0 || dStatus > dLargestStatus)
        throw CBroken("the status " + items.front() + " came");
    throw CNotExaminable("the server has nothing selected to work on");
}

void Exported(const ServerBench& bench, const char* szScript, double dLargestStatus)
{
    const std::string strPath = ItemsOfOutcome(bench, szScript, 2, dLargestStatus)[1];
    if (!std::filesystem::exists(strPath))
        throw CBroken("there is no file " + QuotedText(strPath) + ", which the export named");
}

void Rendered(const ServerBench& bench, const char* szScript, double dLargestStatus)
{
    const std::vector<std::string> items = ItemsOfOutcome(bench, szScript, 4, dLargestStatus);
    if (Number(items[1]) <= 0.0)
        throw CBroken("the rate " + items[1] + " came");
    if (Number(items[3]) <= Number(items[2]))
        throw CBroken("a region from " + items[2] + " to " + items[3] + " came");
}

void Exports(const ServerBench& bench)
{
    Exported(bench, szExportSelectedRegion, 1.0);
}

void Renders(const ServerBench& bench)
{
    Rendered(bench, szRenderSelectedRegion, 1.0);
}

ScriptExchange ExchangeOf(const SeenCommand& seen)
{
    ScriptExchange exchange{seen.strScript, seen.nStatus, {}, {}, CarriersError()};
    if (seen.fHasResult)
        exchange.result = seen.strResult;
    if (!seen.strError.empty())
        exchange.error = seen.strError;
    return exchange;
}

// A command of the link, which must not fail. What went to and fro becomes the peer's last
// exchange; on a system that shows its events to nobody there is none.
void Succeeds(const ServerBench& bench, const std::function<void(CTarvaneScript&)>& command)
{
    CCommandWatch watch;
    WatchEvents({&watch});
    CTarvaneScript link;
    command(link);
    WatchEvents({});
    bench.peer.ForgetLast();
    for (const SeenCommand& seen : watch.Take())
        bench.peer.Remember(ExchangeOf(seen));
    if (!link.m_strLastError.empty())
        throw CBroken("the command failed: " + QuotedText(link.m_strLastError));
}

void MakesProcesses(const ServerBench& bench)
{
    const int nTrack = bench.nTrack;
    Succeeds(bench, [nTrack](CTarvaneScript& link)
             { link.CreateGDX(false, nTrack, 0, 4800, nTrack, 0, 4800, nTrack); });
    Succeeds(bench, [nTrack](CTarvaneScript& link)
             { link.CreateSpreader(false, nTrack, 0, 4800, 0, nTrack); });
}

// A process with audio to work on, in the document where the scripts look for it.
void MakeProcess(const ServerBench& bench)
{
    const int nTrack = bench.nTrack;
    CFileName take(bench.sound.Take().c_str());
    Succeeds(bench, [&](CTarvaneScript& link)
             { link.SendFile(true, nTrack, &take, 0.0, 0.0, CTestSound::kFrames, 0); });
    Succeeds(bench, [nTrack](CTarvaneScript& link)
             { link.CreateSpreader(true, nTrack, 0, CTestSound::kFrames, 0, nTrack); });
}

void ExportsProcesses(const ServerBench& bench)
{
    MakeProcess(bench);
    Exported(bench, szASExportLastProcess, 2.0);
}

void RendersProcesses(const ServerBench& bench)
{
    MakeProcess(bench);
    Rendered(bench, szASRenderLastProcess, 2.0);
}

void Clears(const ServerBench& bench)
{
    for (const bool fAudioSuite : {false, true})
    {
        Succeeds(bench, [&](CTarvaneScript& link) { link.ClearTrack(fAudioSuite, bench.nTrack); });
        const double dLeft = Regions(bench.peer, fAudioSuite, bench.nTrack);
        if (dLeft != 0.0)
            throw CBroken(std::to_string(static_cast<long>(dLeft)) +
                          " regions are left on a track that was cleared");
    }
}

} // namespace

std::vector<ServerRule> WorkRules()
{
    return {
        {{"S25", Level::Should, "export the selected region, and name the file that it wrote",
          "the client opens that file"},
         Exports,
         true},
        {{"S26", Level::Should, "render the selected region, and tell its rate and place",
          "the client puts the region where it is told"},
         Renders,
         true},
        {{"S27", Level::Should, "make the alignment and the single-input process",
          "these commands have no answer that could tell otherwise"},
         MakesProcesses,
         true},
        {{"S28", Level::Should, "export what the process created last has made",
          "the client opens that file"},
         ExportsProcesses,
         true},
        {{"S29", Level::Should, "render what the process created last has made",
          "the client puts the region where it is told"},
         RendersProcesses,
         true},
        {{"S30", Level::Must, "renumber regions and marker areas when one is deleted",
          "a track is cleared by deleting the first until none is left; without that the host "
          "stands still"},
         Clears,
         true},
    };
}

} // namespace Tarvane::Conform
