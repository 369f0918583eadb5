#include "apps/conform/server/ServerProcess.h"
#include "apps/conform/server/ServerRules.h"

#include <sstream>

namespace Tarvane::Conform
{
namespace
{

constexpr double kLongestStart = 10.0; // seconds
constexpr std::chrono::milliseconds kWatched{300};

void LeavesItselfAlone(const ServerBench&)
{
    const int nEvents = EventsToItself(ServerProcess(), kWatched);
    if (nEvents > 0)
        throw CBroken("it sent itself " + std::to_string(nEvents) + " events in " +
                      std::to_string(kWatched.count()) + " ms");
}

void StartsSoon(const ServerBench& bench)
{
    if (!bench.secondsToStart)
        throw CNotExaminable("the server was there already; start it once the examination waits "
                             "for it (--wait)");
    if (*bench.secondsToStart <= kLongestStart)
        return;
    std::ostringstream text;
    text << "its first answer came " << *bench.secondsToStart << " s after its start";
    throw CBroken(text.str());
}

} // namespace

std::vector<ServerRule> ProcessRules()
{
    return {
        {{"S31", Level::Should, "send no events to itself",
          "they stand in one line with the link's commands, and the host waits for each"},
         LeavesItselfAlone},
        {{"S32", Level::Should, "answer within ten seconds of its start",
          "until then the link tells its user that the server is not running"},
         StartsSoon},
    };
}

} // namespace Tarvane::Conform
