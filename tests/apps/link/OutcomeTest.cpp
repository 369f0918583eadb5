// The words and the exit code of every way in which a command can fail.

#include "apps/link/shared/Outcome.h"
#include "apps/link/Link.h"
#include "tests/apps/link/LinkFixture.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <cstdio>
#include <cstdlib>

using namespace TarvaneTest;
using Tarvane::Link::Outcome;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

using OutcomeTest = LinkTest;

Outcome OutcomeOfMessages(const char* szLastError, const char* szAdvice)
{
    CTarvaneScript link;
    link.m_strLastError = szLastError;
    link.m_strAdvice = szAdvice;
    return Tarvane::Link::OutcomeOf(link);
}

// As main does.
[[noreturn]] void RunAndExit(const char* szCommand)
{
    std::string strName = "tarvane-link", strCommand = szCommand;
    char* words[] = {strName.data(), strCommand.data(), nullptr};
    std::exit(Tarvane::Link::RunLink(2, words));
}

[[noreturn]] void RunIntoAFullDisk(const char* szCommand)
{
    if (std::freopen("/dev/full", "w", stdout) == nullptr)
        std::abort();
    RunAndExit(szCommand);
}

} // namespace

TEST(Outcome, IsReadFromTheMessages)
{
    EXPECT_EQ(OutcomeOfMessages("", ""), Outcome::Done);
    EXPECT_EQ(OutcomeOfMessages("Error - Tarvane not running.", "Locate and launch Tarvane."),
              Outcome::NotRunning);
    EXPECT_EQ(OutcomeOfMessages("AEError ID:-1712", ""), Outcome::TimedOut);
    EXPECT_EQ(OutcomeOfMessages("AEError ID:-609", ""), Outcome::NoAnswer);
    EXPECT_EQ(OutcomeOfMessages("No Tarvane session is selected", ""), Outcome::ServerError);
}

TEST(Outcome, WordsOfTheServerThatResembleTheLinksAreTheServers)
{
    EXPECT_EQ(OutcomeOfMessages("Error - Tarvane not running.", ""), Outcome::ServerError);
    EXPECT_EQ(OutcomeOfMessages("AEError ID:-1712 ", ""), Outcome::ServerError);
    EXPECT_EQ(OutcomeOfMessages("AEError ID:", ""), Outcome::ServerError);
    EXPECT_EQ(OutcomeOfMessages("AEError", ""), Outcome::ServerError);
}

TEST_F(OutcomeTest, NotRunning)
{
    AnswerStatus("", -600);
    const Ran ran = RunLink({"tracks"});
    EXPECT_EQ(ran.nExitCode, 3);
    EXPECT_THAT(ran.strError,
                StartsWith("Error - Tarvane not running.\nLocate and launch Tarvane.\n"
                           "tarvane-link: \"tarvane-link doctor\""));
    EXPECT_EQ(RunLink({"tracks", "--json"}).Json()["outcome"], "not-running");
}

TEST_F(OutcomeTest, TimedOut)
{
    AnswerStatus("", -1712);
    const Ran ran = RunLink({"offset"});
    EXPECT_EQ(ran.nExitCode, 4);
    EXPECT_THAT(ran.strError, StartsWith("AEError ID:-1712\ntarvane-link: "));
    EXPECT_THAT(ran.strError, HasSubstr("--timeout"));
    EXPECT_EQ(RunLink({"tracks", "--json"}).Json()["outcome"], "timed-out");
}

TEST_F(OutcomeTest, NoUsableAnswerSaysWhatToDo)
{
    const std::vector<std::pair<OSErr, const char*>> cases{
        {-609, "went away"}, {-1701, "has no 'Rslt'"}, {-1700, "not of type 'utxt'"},
        {-1708, "'LCmd'"},   {-607, "16 MiB"},         {-1743, "NSAppleEventsUsageDescription"},
        {-1234, "--trace"}};
    for (const auto& [status, szWords] : cases)
    {
        const std::string strScript = "status " + std::to_string(status);
        AnswerStatus(strScript, status);
        const Ran ran = RunLink({"run", strScript});
        EXPECT_EQ(ran.nExitCode, 5) << status;
        EXPECT_THAT(ran.strError, StartsWith("AEError ID:" + std::to_string(status) + "\n"));
        EXPECT_THAT(ran.strError, HasSubstr(szWords));
        EXPECT_EQ(ran.strOutput, "");
    }
}

TEST_F(OutcomeTest, AReplyWithoutAResultHasNoAnswer)
{
    Rule("", {noErr, std::nullopt, std::nullopt});
    const Ran ran = RunLink({"run", "x", "--json"});
    EXPECT_EQ(ran.nExitCode, 5);
    EXPECT_EQ(ran.Json()["exitCode"], 5);
    EXPECT_EQ(ran.Json()["lastError"], "AEError ID:-1701");
    EXPECT_FALSE(ran.Json().contains("result"));
}

// The link itself ends the process there; the words and the code are the program's.
TEST_F(OutcomeTest, AnAnswerThatContradictsItselfEndsInWords)
{
    LinkTest::Answer("GetTrackName", "3\n1\nVox\n");
    for (const char* szCommand : {"tracks", "watch"})
        EXPECT_EXIT(RunAndExit(szCommand), testing::ExitedWithCode(5), "contradicts itself");
}

TEST_F(OutcomeTest, ANameCutInTwoIsStillJson)
{
    // 998 bytes and a character of two: the parser's limit of 999 goes through the middle.
    LinkTest::Answer("GetTrackName", "3\n1\n" + std::string(998, 'a') + "\xC3\xB6\n");
    const Ran ran = RunLink({"tracks", "--json"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.Json()["tracks"][0], std::string(998, 'a') + "\xEF\xBF\xBD");
}

TEST_F(OutcomeTest, OutputThatCannotBeWrittenIsAFailure)
{
    LinkTest::Answer("GetUpdateCount", "1\n");
    EXPECT_EXIT(RunIntoAFullDisk("updates"), testing::ExitedWithCode(1),
                "the standard output takes no more");
}
