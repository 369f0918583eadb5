#include "apps/support/program/Completions.h"

#include "apps/support/process/ChildProcess.h"
#include "apps/support/program/CommandLine.h"

#include <CLI/CLI.hpp>

#include <gmock/gmock.h>

#include <sstream>

using namespace Tarvane;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

namespace
{

class CompletionsTest : public testing::Test
{
protected:
    CompletionsTest()
    {
        app.add_option("--track", nTrack, "The track. Counted from 0")->type_name("N");
        app.add_option("--as", strText, "Who it's to be")->type_name("server|host");
        app.add_option("--secret", strText, "For itself")->group("");
        CLI::App* pSend = app.add_subcommand("send", "Send a file");
        pSend->add_option("--speed", strText, "How fast")->type_name("X|max");
        pSend->add_option("--log", strText, "Where [words] go: a file")->type_name("FILE");
        pSend->add_flag("--dry", fDry, "Do nothing");
        app.add_subcommand("tracks", "List the tracks");
        AddCommonOptions(app, "it did not work");
    }

    std::string RunBash(const std::string& strScript) const
    {
        CChildProcess bash({"bash", "--norc", "-c", strScript, "bash", Completions(app, "bash")});
        EXPECT_EQ(bash.WaitForEnd(std::chrono::seconds(60)), 0) << bash.ErrorOutput();
        EXPECT_EQ(bash.ErrorOutput(), "");
        return bash.Output();
    }

    // What bash offers for the last of these words; "FILES" when it looks for files.
    std::vector<std::string> Offered(const std::string& strWords) const
    {
        const std::string strOutput = RunBash("eval \"$1\"\n"
                                              "compopt() { echo FILES; }\n"
                                              "COMP_WORDS=(" +
                                              strWords +
                                              ")\n"
                                              "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
                                              "cd /proc/self/fdinfo && _tarvane_try\n"
                                              "printf '%s\\n' \"${COMPREPLY[@]}\"\n");
        std::vector<std::string> offered;
        std::istringstream lines(strOutput);
        for (std::string strLine; std::getline(lines, strLine);)
        {
            if (strLine == "FILES")
            {
                return {strLine};
            }
            if (!strLine.empty())
            {
                offered.push_back(strLine);
            }
        }
        return offered;
    }

    CLI::App app{"Tries completions.", "tarvane-try"};
    int nTrack = 0;
    bool fDry = false;
    std::string strText;
};

} // namespace

TEST_F(CompletionsTest, BashOffersTheCommandsAndNoFiles)
{
    EXPECT_THAT(Offered("tarvane-try ''"), UnorderedElementsAre("send", "tracks"));
    EXPECT_THAT(Offered("tarvane-try se"), ElementsAre("send"));
}

TEST_F(CompletionsTest, BashOffersTheOptionsOfTheCommandAtHand)
{
    EXPECT_THAT(Offered("tarvane-try --"),
                UnorderedElementsAre("--help", "--track", "--as", "--version"));
    EXPECT_THAT(Offered("tarvane-try send --"),
                UnorderedElementsAre("--help", "--speed", "--log", "--dry"));
    EXPECT_THAT(Offered("tarvane-try --track 2 send --d"), ElementsAre("--dry"));
}

TEST_F(CompletionsTest, BashOffersTheValuesOfAnOption)
{
    EXPECT_THAT(Offered("tarvane-try --as ''"), UnorderedElementsAre("server", "host"));
    EXPECT_THAT(Offered("tarvane-try send --speed ''"), ElementsAre("max"));
    EXPECT_THAT(Offered("tarvane-try send --log ''"), ElementsAre("FILES"));
    EXPECT_THAT(Offered("tarvane-try --track ''"), ElementsAre());
    EXPECT_THAT(Offered("tarvane-try send ''"), ElementsAre("FILES"));
}

TEST_F(CompletionsTest, BashKnowsTheProgram)
{
    EXPECT_EQ(RunBash("eval \"$1\"; complete -p tarvane-try"),
              "complete -F _tarvane_try tarvane-try\n");
}

TEST_F(CompletionsTest, ZshAndFishGetEachOptionWithItsFirstSentence)
{
    const std::string strZsh = Completions(app, "zsh");
    EXPECT_THAT(strZsh, testing::StartsWith("#compdef tarvane-try\n"));
    EXPECT_THAT(strZsh,
                AllOf(HasSubstr("'*--track[The track]:value:()'"),
                      HasSubstr(R"('*--as[Who it'\''s to be]:value:(server host)')"),
                      HasSubstr(R"('*--log[Where \[words\] go]:value:_files')"),
                      HasSubstr("'*--dry[Do nothing]' "), HasSubstr("'1:command:(send tracks)'"),
                      HasSubstr("send) _tarvane_try_send ;;")));

    const std::string strFish = Completions(app, "fish");
    EXPECT_THAT(
        strFish,
        AllOf(
            HasSubstr("complete -c tarvane-try -n __fish_use_subcommand -f -a send -d 'Send a "
                      "file'\n"),
            HasSubstr("-l track -x -d 'The track'\n"), HasSubstr("-l dry -d 'Do nothing'\n"),
            HasSubstr(R"(-l as -x -a 'server host' -d 'Who it'\''s to be')"),
            HasSubstr("complete -c tarvane-try -n '__fish_seen_subcommand_from send' -l log -r -F "
                      "-d 'Where [words] go'\n")));
}

TEST_F(CompletionsTest, HiddenOptionsStayHidden)
{
    for (const char* szShell : {"bash", "zsh", "fish"})
    {
        EXPECT_THAT(Completions(app, szShell),
                    AllOf(Not(HasSubstr("secret")), Not(HasSubstr("completions"))));
    }
}

TEST_F(CompletionsTest, AnotherShellIsWrongUse)
{
    EXPECT_THROW(Completions(app, "tcsh"), CUsageError);
}
