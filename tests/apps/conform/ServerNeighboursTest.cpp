// Which server breaks which rules: the reference server with each fault that it can be asked for.
// Each is examined on a bus of its own, several at a time.
#include "apps/server/Misbehaviour.h"
#include "tests/apps/conform/ConformFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

using namespace TarvaneTest;
using testing::IsSupersetOf;

namespace
{

using Ids = std::vector<std::string>;

constexpr std::size_t kAtOnce = 4;

struct Neighbour
{
    std::string strName;
    std::string strCommand; // of a shell
    std::string strSeconds; // that a command may take
    Ids broken;
    bool fAlone = true; // no other rules; else the first of them is meant
};

// A server that never answers costs its time; any other may be as slow as the machine.
constexpr char szSoon[] = "1";
constexpr char szAnyTime[] = "60";

Neighbour Faulty(const char* szFault, const Ids& broken, const char* szFrom = "",
                 const char* szSeconds = szAnyTime)
{
    const std::string strServer = std::string("'") + SERVER_PROGRAM +
                                  "' --track Vox --track Alt --link-offset 1.25 --delay 60";
    return {szFault, strServer + " --misbehave " + szFault + szFrom, szSeconds, broken};
}

// Breaks this rule first, and others that rely on it.
Neighbour Faultier(const char* szFault, const char* szRule, const char* szFrom = "")
{
    Neighbour neighbour = Faulty(szFault, {szRule}, szFrom);
    neighbour.fAlone = false;
    return neighbour;
}

// The 56th command comes between two looks at the list of tracks.
std::vector<Neighbour> FaultyServers()
{
    return {
        Faulty("slow-start", {}),
        Faulty("no-reply", {"S1"}, "", szSoon),
        Faulty("late-reply", {"S1"}, "", szSoon),
        Faulty("hang", {"S1"}, "", szSoon),
        Faulty("exit-before-effect", {"S1"}),
        Faulty("exit-after-effect", {"S1"}),
        Faulty("no-result", {"S1"}),
        Faulty("wrong-type", {"S1"}),
        Faulty("empty-result", {"S1"}),
        Faulty("lone-surrogates", {"S1"}),
        Faulty("huge-reply", {"S1"}),
        Faultier("error-beside-result", "S7"),
        Faulty("refusal-with-result", {"S33"}),
        Faultier("document-vanishes", "S14", "@56"),
        Faultier("track-vanishes", "S14", "@56"),
        Faultier("tracks-move", "S14", "@56"),
        Faulty("frozen-counter", {"S24"}),
        Faulty("event-flood", {"S31"}),
        Faulty("region-replaced", {"S36"}),
        Faulty("path-refused", {"S40"}),
        Faulty("stereo-refused", {"S41"}),
        Faulty("wide-refused", {"S41"}),
        Faulty("float-refused", {"S41"}),
        Faulty("rate-refused", {"S42"}),
        Faulty("offset-at-one-rate", {"S42"}),
        Faulty("duplicate-any-track", {"S37"}),
        Faulty("duplicate-whole-file", {"S39"}),
        Faulty("duplicate-by-path", {"S21", "S39"}),
    };
}

ConformEnded Examine(const Neighbour& neighbour)
{
    // On a bus of its own; the server ends in any case.
    Tarvane::CChildProcess shell({"dbus-run-session", "--", "sh", "-c",
                                  neighbour.strCommand + " >/dev/null 2>&1 & server=$!; '" +
                                      CONFORM_PROGRAM + "' server --json --wait 100 --timeout " +
                                      neighbour.strSeconds +
                                      "; status=$?; kill -9 $server; exit $status"});
    const int nExitCode = shell.WaitForEnd(kAnyTime).value_or(-1);
    return {nExitCode, shell.Output(), shell.ErrorOutput()};
}

// In the order of the neighbours.
std::vector<ConformEnded> ExamineAll(const std::vector<Neighbour>& neighbours)
{
    std::vector<ConformEnded> all(neighbours.size());
    std::atomic<std::size_t> nNext = 0;
    {
        std::vector<std::jthread> threads;
        for (std::size_t n = 0; n < kAtOnce; ++n)
            threads.emplace_back(
                [&]
                {
                    for (std::size_t at; (at = nNext++) < neighbours.size();)
                        all[at] = Examine(neighbours[at]);
                });
    }
    return all;
}

} // namespace

TEST(ServerNeighbours, EachBreaksItsRules)
{
    std::vector<Neighbour> neighbours = FaultyServers();
    std::erase_if(neighbours, [](const Neighbour& one) { return one.broken.empty(); });
    const std::vector<ConformEnded> all = ExamineAll(neighbours);
    for (std::size_t n = 0; n < all.size(); ++n)
    {
        SCOPED_TRACE(neighbours[n].strName);
        ASSERT_FALSE(all[n].strOutput.empty()) << all[n].strError;
        Ids broken = all[n].Rules("broken");
        if (!neighbours[n].fAlone && !broken.empty())
            broken.resize(1);
        EXPECT_EQ(broken, neighbours[n].broken);
    }
}

TEST(ServerNeighbours, NoFaultIsForgotten)
{
    Ids held;
    for (const Neighbour& neighbour : FaultyServers())
        held.push_back(neighbour.strName);
    Ids known;
    for (const Tarvane::Server::FaultKind& kind : Tarvane::Server::FaultKinds())
        known.push_back(kind.szName);
    EXPECT_THAT(held, testing::UnorderedElementsAreArray(known));
}
