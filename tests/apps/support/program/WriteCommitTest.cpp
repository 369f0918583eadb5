// The header that tells programs which commit they were built from.
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

using namespace Tarvane;
using testing::MatchesRegex;
namespace fs = std::filesystem;

namespace
{

class WriteCommit : public testing::Test
{
protected:
    std::string Run(std::vector<std::string> command) const
    {
        CChildProcess child(command);
        EXPECT_EQ(child.WaitForEnd(std::chrono::seconds(60)), 0)
            << command[0] << ": " << child.ErrorOutput();
        return child.Output();
    }
    void Git(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"git", "-C", folder.Path(), "-c", "user.name=A", "-c",
                                             "user.email=a@example.org"});
        Run(arguments);
    }
    void Change(const std::string& strText) const { std::ofstream(folder / "source") << strText; }

    // What the header says, written anew.
    std::string Written(const fs::path& source) const
    {
        Run({CMAKE_PROGRAM, "-Dsource=" + source.string(), "-Dheader=" + Header().string(), "-P",
             WRITE_COMMIT});
        std::ifstream header(Header());
        std::stringstream text;
        text << header.rdbuf();
        return text.str();
    }
    fs::path Header() const { return folder / "header.h"; }

    void Commit()
    {
        Git({"init", "-q"});
        Change("one");
        Git({"add", "source"});
        Git({"commit", "-q", "-m", "One"});
    }

    TarvaneTest::CTemporaryFolder folder;
};

constexpr const char* kNone = "constexpr const char* kProgramCommit = \"\";\n";

} // namespace

TEST_F(WriteCommit, ACommitIsTwelveDigitsAndAPlusWhenTheSourcesWereChanged)
{
    Commit();
    EXPECT_THAT(Written(folder.Path()),
                MatchesRegex("constexpr const char\\* kProgramCommit = \"[0-9a-f]{12}\";\n"));
    Change("two");
    EXPECT_THAT(Written(folder.Path()),
                MatchesRegex("constexpr const char\\* kProgramCommit = \"[0-9a-f]{12}\\+\";\n"));
}

TEST_F(WriteCommit, AnArchiveOfTheSourcesHasNone)
{
    EXPECT_EQ(Written(folder.Path()), kNone);
}

TEST_F(WriteCommit, AFolderInSomebodyElsesWorkingCopyHasNone)
{
    Commit();
    fs::create_directory(folder / "inside");
    EXPECT_EQ(Written(folder / "inside"), kNone);
}

TEST_F(WriteCommit, TheHeaderIsTouchedOnlyByAnotherCommit)
{
    Commit();
    const std::string strBefore = Written(folder.Path());
    const auto written = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time(Header(), written);
    EXPECT_EQ(Written(folder.Path()), strBefore);
    EXPECT_EQ(fs::last_write_time(Header()), written);
}
