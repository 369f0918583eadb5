#include "apps/conform/server/ServerExamination.h"

#include "apps/conform/server/ServerProcess.h"
#include "apps/conform/server/ServerRules.h"
#include "apps/support/program/CommandLine.h"

#include <Carbon/Carbon.h>

#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

namespace Tarvane::Conform
{
namespace
{

constexpr double kTicksPerSecond = 60.0;
constexpr std::chrono::milliseconds kGlance{20};

SInt32 TicksOf(const ServerOptions& options)
{
    return static_cast<SInt32>(options.dTimeout * kTicksPerSecond);
}

// Throws CBroken where it cannot be found out.
int TrackToWorkOn(const CServerPeer& peer, const ServerOptions& options)
{
    const double dTracks = Number(peer.Line("print(GetTrackCount())"));
    const int nTrack = options.nTrack.value_or(static_cast<int>(dTracks) - 1);
    if (nTrack < 0 || nTrack >= dTracks)
        throw CUsageError("the server's document has " +
                          std::to_string(static_cast<long>(dTracks)) +
                          " tracks, counted from 0; open one that has the track to work on.");
    if (!options.fClear && Regions(peer, false, nTrack) + Regions(peer, true, nTrack) > 0.0)
        throw CUsageError("track " + std::to_string(nTrack) +
                          " has regions, which would be cleared; open a session made for the "
                          "purpose, name another --track, or allow it with --clear.");
    return nTrack;
}

// Nothing where the server does not say: its regions are not put at risk.
std::optional<int> FindTrack(const CServerPeer& peer, const ServerOptions& options)
{
    try
    {
        return TrackToWorkOn(peer, options);
    }
    catch (const CBroken&)
    {
        return std::nullopt;
    }
    catch (const CNotExaminable& error)
    {
        throw CUsageError(std::string(error.what()) + "; open one with a track.");
    }
}

bool StillAnswers(const CServerPeer& peer)
{
    return peer.Send("print(1)\n").nStatus == noErr;
}

// Nothing where the server has gone again.
std::optional<double> StartOfServer()
try
{
    return SecondsSinceStart(ServerProcess());
}
catch (const CNotExaminable&)
{
    return std::nullopt;
}

// Returns once there is a server: how long it took from its start, or nothing where it was there
// already.
std::optional<double> AwaitServer(const CServerPeer& peer, double dSeconds)
{
    using Clock = std::chrono::steady_clock;
    const auto isThere = [&] { return peer.Send("print(1)\n").nStatus != procNotFound; };
    if (isThere())
        return std::nullopt;
    const auto end = Clock::now() + std::chrono::duration<double>(dSeconds);
    while (Clock::now() < end)
    {
        std::this_thread::sleep_for(kGlance);
        if (isThere())
            return StartOfServer();
    }
    throw CUsageError("no server receives events as " + ServerAddress() +
                      "; start it first, or give it time to start with --wait. "
                      "TARVANE_AE_TRACE=1 shows every event.");
}

// With the exchange in which it was broken.
Finding Examined(const ServerRule& rule, const ServerBench& bench)
{
    bench.peer.ForgetLast();
    Finding finding = ExamineRule(rule, bench);
    if (finding.outcome == Outcome::Broken && bench.peer.Last())
        finding.told = Told(*bench.peer.Last());
    return finding;
}

} // namespace

Findings ExamineServer(const ServerOptions& options)
{
    const SInt32 nTicks = TicksOf(options);
    // The link's own commands take the platform's default.
    setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", std::to_string(nTicks).c_str(), 1);
    const CServerPeer peer(nTicks);
    const std::optional<double> secondsToStart = AwaitServer(peer, options.dWait);

    const CTestSound sound;
    const std::optional<int> track = FindTrack(peer, options);
    std::vector<std::string> tried;
    const ServerBench bench{peer, sound, track.value_or(0), secondsToStart, options.fNoOffset,
                            tried};
    Findings findings;
    std::string strInTheWay;
    for (const ServerRule& rule : ServerRules())
    {
        if (!strInTheWay.empty())
            findings.push_back({rule, Outcome::NotExamined, strInTheWay});
        else if (rule.fChanges && !track)
            findings.push_back({rule, Outcome::NotExamined,
                                "the server does not say which track may be worked on"});
        else
            findings.push_back(Examined(rule, bench));
        findings.back().tried = std::exchange(tried, {});
        if (findings.back().outcome != Outcome::Broken)
            continue;
        if (findings.size() == 1)
            strInTheWay = "no rule can be examined without the first";
        else if (!StillAnswers(peer))
            strInTheWay = "the server no longer answers";
    }
    return findings;
}

std::string VersionOfServer(const ServerOptions& options)
{
    const Reply reply = CServerPeer(TicksOf(options)).Send(szVersionScript);
    const std::string strPrinted = reply.result ? reply.result->strText : "";
    return strPrinted.substr(0, strPrinted.find_first_of("\r\n"));
}

std::vector<ServerRule> ServerRules()
{
    std::vector<ServerRule> rules;
    for (const auto& list : {TransportRules(), DocumentRules(), CaptureRules(), TakeRules(),
                             WorkRules(), ProcessRules()})
        rules.insert(rules.end(), list.begin(), list.end());
    return rules;
}

} // namespace Tarvane::Conform
