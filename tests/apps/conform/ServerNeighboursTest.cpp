// Which server breaks which rules: the reference server with each fault that it can be asked for,
// and the smallest one with a change. Each is examined on a bus of its own, several at a time.
#include "apps/conform/server/ServerRules.h"
#include "apps/server/faults/Misbehaviour.h"
#include "tests/apps/conform/ConformFixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace TarvaneTest;

namespace
{

using IdList = std::vector<std::string>;

constexpr std::size_t kAtOnce = 4;

struct Neighbour
{
    const char* szSentence; // of the page for makers, which it breaks
    std::string strName;
    IdList broken;
    bool fAlone = true;           // no other rules; else the first of them is meant
    const char* szFrom = "";      // the event from which on it misbehaves
    const char* szSeconds = "60"; // that a command may take; a server that never answers costs them
};

constexpr char szFails[] = "without it the command has failed";
constexpr char szWidths[] = "whole numbers of 16 and 24 bits or floating-point numbers of 32 bits";
constexpr char szNames[] = "Names are of every kind";
constexpr char szStays[] = "Document and tracks stay as they are while nobody edits them";
constexpr char szBeside[] = "What was added goes on to stand beside what is added later";

// The reference server, by its fault. The 56th command comes between two looks at the list of
// tracks.
const std::vector<Neighbour> kFaulty{
    {"A server answers within ten seconds of its start", "slow-start", {}},
    {szFails, "no-reply", {"S1"}, true, "", "1"},
    {szFails, "late-reply", {"S1"}, true, "", "1"},
    {szFails, "hang", {"S1"}, true, "", "1"},
    {szFails, "exit-before-effect", {"S1"}},
    {szFails, "exit-after-effect", {"S1"}},
    {szFails, "no-result", {"S1"}},
    {"The reply has two texts of type 'utxt'", "wrong-type", {"S1"}},
    {"all that the script printed", "empty-result", {"S1"}},
    {"all that the script printed", "lone-surrogates", {"S1"}},
    {"all that the script printed", "huge-reply", {"S1"}},
    {"Left out or empty when it did not", "error-beside-result", {"S7"}, false},
    {"a server that did not do what it was asked leaves 'Rslt' out",
     "refusal-with-result",
     {"S33"}},
    {szStays, "document-vanishes", {"S14"}, false, "@30"},
    {szStays, "track-vanishes", {"S14"}, false, "@30"},
    {szStays, "tracks-move", {"S14"}, false, "@30"},
    {"`GetUpdateCount()` rises with every change", "frozen-counter", {"S24"}},
    {"sends no events to itself", "event-flood", {"S31"}},
    {szBeside, "region-replaced", {"S36"}},
    {szNames, "path-refused", {"S40"}},
    {"of one channel and several", "stereo-refused", {"S41"}},
    {szWidths, "wide-refused", {"S41"}},
    {szWidths, "float-refused", {"S41"}},
    {"at any rate", "rate-refused", {"S42"}},
    {"the view multiplies it with the rate of the record", "offset-at-one-rate", {"S42"}},
    {"neither is the same audio on another track", "duplicate-any-track", {"S37"}},
    {"A stretch that overlaps in part with what is there is no duplicate",
     "duplicate-whole-file",
     {"S39"}},
    {"whatever the file is called", "duplicate-by-path", {"S21", "S39"}},
};

// The smallest server, by its change.
const std::vector<Neighbour> kChanged{
    {"each `print` ended by a line end", "lines-joined", {"S2", "S3", "S28", "S29"}},
    {"Whole numbers are printed in plain decimal digits", "numbers-with-points", {"S3"}},
    {"UTF-16 in the machine's byte order", "result-in-ascii", {"S4"}},
    {"all that the script printed", "result-cut", {"S5"}},
    {"why the script failed, in words for the user", "error-untold", {"S6"}},
    {"Left out or empty when it did not", "error-without-failure", {"S7"}},
    {"empty when nothing was printed", "silence-unanswered", {"S8", "S28", "S29", "S30"}},
    {"A script sees no variables of another", "variables-kept", {"S9"}},
    {"A server goes on after a script that fails in any way", "ends-with-a-script", {"S10"}},
    {"A server offers every function of this table", "no-display", {"S11", "S17"}},
    {"A name has one line of 1 to 999 bytes", "name-of-two-lines", {"S13", "S14"}},
    {"A place that is not there fails the script", "track-anywhere", {"S15"}},
    {"seconds by which the server's timeline is ahead", "offset-no-number", {"S16"}, false},
    {"takes seven digits and more as", "display-of-six-digits", {"S17"}},
    {"whatever the file is called; else 0", "duplicate-on-an-empty-track", {"S18", "S37"}},
    {"1 when these samples of the file are on the track", "never-a-duplicate", {"S19"}, false},
    {"or at another place", "duplicate-anywhere", {"S20"}},
    {"with the file's first sample at `nPosition`", "one-sample-late", {"S22", "S43"}},
    {"Fails the script when the file or a part of the stretch is not there",
     "adds-what-is-missing",
     {"S23", "S33"}},
    {"What such a script changed before it failed is undone", "half-done", {"S34"}},
    {"what was there before stays", "failure-clears", {"S35"}},
    {szBeside, "adds-twice", {"S36"}},
    {"neither is the same audio on another track", "adds-to-every-track", {"S37"}},
    {"a question changes nothing", "question-remembered", {"S38"}},
    {"A stretch that overlaps in part with what is there is no duplicate",
     "beginning-alone",
     {"S39"}},
    {szNames, "short-names", {"S40"}},
    {szNames, "names-without-percent", {"S40"}},
    {"of one channel and several", "two-channels-at-most", {"S41"}},
    {"may lie below 0 and above 2^32", "positions-of-32-bits", {"S43"}},
    {"places close up", "places-stay", {"S30"}},
    {"an export names the file that it wrote", "export-names-nothing", {"S28"}},
    {"rendering tells rate and place, of a process's region too", "render-without-a-rate", {"S29"}},
};

// What the smallest server breaks unchanged: export, rendering and processes are not in it.
const std::set<std::string> kUnchanged{"S12", "S24", "S25", "S26", "S27"};

std::string FaultyServer(const Neighbour& neighbour)
{
    return std::string("'") + SERVER_PROGRAM +
           "' --track Vox --track Alt --link-offset 1.25 --delay 60 --misbehave " +
           neighbour.strName + neighbour.szFrom;
}

std::string ChangedServer(const Neighbour& neighbour)
{
    return std::string(PYTHON " '") + NEIGHBOUR_SERVERS + "' " + neighbour.strName + " '" +
           SMALLEST_PYTHON_SERVER + "'";
}

using CommandOf = std::string (*)(const Neighbour&);

ConformEnded Examine(const Neighbour& neighbour, CommandOf command)
{
    // On a bus of its own; the server ends in any case.
    Tarvane::CChildProcess shell({"dbus-run-session", "--", "sh", "-c",
                                  command(neighbour) + " >/dev/null 2>&1 & server=$!; '" +
                                      CONFORM_PROGRAM + "' server --json --wait 100 --timeout " +
                                      neighbour.szSeconds +
                                      "; status=$?; kill -9 $server; exit $status"});
    const int nExitCode = shell.WaitForEnd(kAnyTime).value_or(-1);
    return {nExitCode, shell.Output(), shell.ErrorOutput()};
}

// In the order of the neighbours.
std::vector<ConformEnded> ExamineAll(const std::vector<Neighbour>& neighbours, CommandOf command)
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
                        all[at] = Examine(neighbours[at], command);
                });
    }
    return all;
}

void ExpectEachToBreakItsRules(const std::vector<Neighbour>& neighbours, CommandOf command,
                               const std::set<std::string>& broken)
{
    const std::vector<ConformEnded> all = ExamineAll(neighbours, command);
    for (std::size_t n = 0; n < all.size(); ++n)
    {
        SCOPED_TRACE(neighbours[n].strName);
        ASSERT_FALSE(all[n].strOutput.empty()) << all[n].strError;
        IdList seen = all[n].Rules("broken");
        std::erase_if(seen, [&](const std::string& strId) { return broken.count(strId) != 0; });
        if (!neighbours[n].fAlone && !seen.empty())
            seen.resize(1);
        EXPECT_EQ(seen, neighbours[n].broken);
    }
}

std::vector<Neighbour> AllNeighbours()
{
    std::vector<Neighbour> all = kFaulty;
    all.insert(all.end(), kChanged.begin(), kChanged.end());
    return all;
}

} // namespace

TEST(ServerNeighbours, EachFaultBreaksItsRules)
{
    std::vector<Neighbour> neighbours = kFaulty;
    // Its rule is held by a test of its own, which sees it start.
    std::erase_if(neighbours, [](const Neighbour& one) { return one.strName == "slow-start"; });
    ExpectEachToBreakItsRules(neighbours, FaultyServer, {});
}

TEST(ServerNeighbours, EachChangeOfTheSmallestBreaksItsRules)
{
    ExpectEachToBreakItsRules(kChanged, ChangedServer, kUnchanged);
}

TEST(ServerNeighbours, EveryRuleIsBrokenByOne)
{
    std::set<std::string> broken = kUnchanged;
    broken.insert("S32"); // by slow-start
    for (const Neighbour& neighbour : AllNeighbours())
        broken.insert(neighbour.broken.begin(), neighbour.broken.end());
    std::set<std::string> all;
    for (const Tarvane::Conform::ServerRule& rule : Tarvane::Conform::ServerRules())
        all.insert(rule.szId);
    EXPECT_EQ(broken, all);
}

TEST(ServerNeighbours, EachBreaksASentenceOfThePageForMakers)
{
    const std::string strPage = FileText(PAGE_FOR_MAKERS);
    for (const Neighbour& neighbour : AllNeighbours())
        EXPECT_THAT(strPage, testing::HasSubstr(neighbour.szSentence)) << neighbour.strName;
}

TEST(ServerNeighbours, NoFaultAndNoChangeIsForgotten)
{
    const auto names = [](const std::vector<Neighbour>& neighbours)
    {
        IdList ids;
        for (const Neighbour& neighbour : neighbours)
            ids.push_back(neighbour.strName);
        return ids;
    };
    IdList known;
    for (const Tarvane::Server::FaultKind& kind : Tarvane::Server::FaultKinds())
        known.push_back(kind.szName);
    EXPECT_THAT(names(kFaulty), testing::UnorderedElementsAreArray(known));
    Tarvane::CChildProcess list({PYTHON, NEIGHBOUR_SERVERS, SMALLEST_PYTHON_SERVER});
    list.WaitForEnd(kAnyTime);
    std::istringstream lines(list.Output());
    IdList changes;
    for (std::string strLine; std::getline(lines, strLine);)
        changes.push_back(strLine);
    EXPECT_THAT(names(kChanged), testing::UnorderedElementsAreArray(changes));
}
