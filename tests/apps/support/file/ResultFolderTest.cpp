#include "apps/support/file/ResultFolder.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <sys/resource.h>

using namespace Tarvane;
using TarvaneTest::CTemporaryFolder;
using testing::ElementsAre;

namespace
{

void Put(const std::filesystem::path& path, const std::string& strText)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << strText;
}

std::string Text(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace

TEST(ResultFolder, IsMadeWhereItIsMissing)
{
    CTemporaryFolder folder;
    CResultFolder results(folder / "a/b");
    results.WriteText("captures.json", "{}");
    EXPECT_EQ(results.Path(), folder / "a/b");
    EXPECT_EQ(Text(folder / "a/b/captures.json"), "{}");
}

TEST(ResultFolder, ReplacesItsOwnResultsInALaterRun)
{
    CTemporaryFolder folder;
    CResultFolder(folder.Path()).WriteText("session.txt", "first");
    CResultFolder(folder.Path()).WriteText("session.txt", "second");
    EXPECT_EQ(Text(folder / "session.txt"), "second");
}

TEST(ResultFolder, LeavesAFileThatIsNotItsOwnAndRefusesTheName)
{
    CTemporaryFolder folder;
    Put(folder / "session.txt", "mine");
    CResultFolder results(folder.Path());
    EXPECT_THROW(results.WriteText("session.txt", "theirs"), CUsageError);
    EXPECT_THROW(results.Claim("session.txt"), CUsageError);
    EXPECT_EQ(Text(folder / "session.txt"), "mine");
}

TEST(ResultFolder, ALinkThatLeadsNowhereIsAFileOfOthersToo)
{
    CTemporaryFolder folder;
    std::filesystem::create_symlink("/nowhere/at/all", folder / "session.txt");
    CResultFolder results(folder.Path());
    EXPECT_THROW(results.Claim("session.txt"), CUsageError);
}

TEST(ResultFolder, RemovesEarlierResultsAndNothingElse)
{
    CTemporaryFolder folder;
    {
        CResultFolder results(folder.Path());
        results.WriteText("session.txt", "");
        results.WriteText("captures/one.wav", "");
        results.WriteText("empty/two.wav", "");
    }
    Put(folder / "notes.txt", "mine");
    Put(folder / "captures/mine.wav", "mine");
    CResultFolder(folder.Path()).RemoveEarlier();
    EXPECT_THAT(folder.Files(), ElementsAre(".tarvane-results", "captures/mine.wav", "notes.txt"));
    EXPECT_FALSE(std::filesystem::exists(folder / "empty"));
}

TEST(ResultFolder, AnAdoptedFileIsRemovedWithTheRest)
{
    CTemporaryFolder folder;
    Put(folder / "captures/one-001.wav", "");
    {
        CResultFolder results(folder.Path());
        results.Adopt(results.Path() / "captures/one-001.wav");
    }
    CResultFolder(folder.Path()).RemoveEarlier();
    EXPECT_THAT(folder.Files(), ElementsAre(".tarvane-results"));
}

TEST(ResultFolder, AClaimedFileIsListedBeforeItIsWritten)
{
    CTemporaryFolder folder;
    Put(CResultFolder(folder.Path()).Claim("link-view.png"), "half");
    CResultFolder(folder.Path()).RemoveEarlier();
    EXPECT_THAT(folder.Files(), ElementsAre(".tarvane-results"));
}

TEST(ResultFolder, NoNameAndNoListLeadsOutOfIt)
{
    CTemporaryFolder folder;
    Put(folder / "outside.txt", "mine");
    Put(folder / "in/.tarvane-results",
        "Tarvane results\n../outside.txt\n" + (folder / "outside.txt").string() + "\n");
    CResultFolder results(folder / "in");
    results.RemoveEarlier();
    results.Adopt(folder / "outside.txt");
    results.RemoveEarlier();
    EXPECT_EQ(Text(folder / "outside.txt"), "mine");
    EXPECT_THROW(results.Claim("../outside.txt"), CUsageError);
    EXPECT_THROW(results.Claim(""), CUsageError);
    EXPECT_THROW(results.Claim("/tmp/x"), CUsageError);
}

TEST(ResultFolder, AListThatIsNoneIsRefused)
{
    CTemporaryFolder folder;
    Put(folder / ".tarvane-results", "shopping\n");
    EXPECT_THROW(CResultFolder results(folder.Path()), CUsageError);
}

TEST(ResultFolder, AFolderThatCannotBeMadeIsRefused)
{
    CTemporaryFolder folder;
    Put(folder / "file", "");
    EXPECT_THROW(CResultFolder results(folder / "file"), CUsageError);
    EXPECT_THROW(CResultFolder results(folder / "file/below"), CUsageError);
}

TEST(ResultFolder, AWriteThatFailsLeavesTheOldFileAndNoOther)
{
    CTemporaryFolder folder;
    Put(folder / "session.txt", "old");
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small{100, old.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_THROW(WriteFileAtomically(folder / "session.txt", std::string(1000, 'x')),
                 std::filesystem::filesystem_error);
    ::setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(Text(folder / "session.txt"), "old");
    EXPECT_THAT(folder.Files(), ElementsAre("session.txt"));
}
