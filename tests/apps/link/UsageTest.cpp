// What the command line takes, and what it says of itself.
#include "apps/support/program/ProgramVersion.h"
#include "tests/apps/link/LinkFixture.h"
#include "tests/apps/support/ManualPage.h"
#include "tests/apps/support/TemporaryFolder.h"

using namespace TarvaneTest;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

using UsageTest = LinkTest;

const std::vector<std::string> kCommands{"tracks", "offset", "updates", "send",   "duplicate",
                                         "export", "render", "align",   "spread", "clear",
                                         "run",    "takes",  "watch",   "doctor"};

void ExpectWrongUse(const std::vector<std::string>& arguments, const std::string& strPart)
{
    const Ran ran = RunLink(arguments);
    EXPECT_EQ(ran.nExitCode, 2) << strPart;
    EXPECT_THAT(ran.strError, StartsWith("tarvane-link: "));
    EXPECT_THAT(ran.strError, HasSubstr(strPart));
    EXPECT_EQ(ran.strOutput, "");
}

std::vector<std::string> With(std::vector<std::string> arguments,
                              const std::vector<std::string>& more)
{
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

} // namespace

TEST_F(UsageTest, HelpHasEveryCommandOptionAndExitCode)
{
    for (const char* szFlag : {"--help", "-h"})
    {
        const Ran ran = RunLink({szFlag});
        EXPECT_EQ(ran.nExitCode, 0);
        for (const std::string& strCommand : kCommands)
            EXPECT_THAT(ran.strOutput, HasSubstr("\n" + strCommand + "\n"));
        EXPECT_EQ(OptionsIn(ran.strOutput),
                  (std::set<std::string>{
                      "--help",        "--version",     "--audio-suite",   "--timeout",
                      "--json",        "--trace",       "--track",         "--position",
                      "--start",       "--end",         "--index-mask",    "--rate",
                      "--guide-track", "--guide-start", "--guide-end",     "--dub-track",
                      "--dub-start",   "--dub-end",     "--aligned-track", "--output-track",
                      "--file",        "--interval",    "--count",         "--capture-folder",
                      "--record",      "--send",        "--forget"}));
        for (const char* szCode : {"0 done", "1 the server reported", "2 wrong use",
                                   "3 the server is not running", "4 no answer", "5 no usable"})
            EXPECT_THAT(ran.strOutput, HasSubstr(szCode));
    }
}

TEST_F(UsageTest, ACommandHasHelpOfItsOwn)
{
    const Ran ran = RunLink({"send", "--help"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_THAT(ran.strOutput, HasSubstr("--index-mask"));
    EXPECT_TRUE(m_events.Commands().empty());
}

TEST_F(UsageTest, TheManPageHasEveryCommandOptionAndExitCode)
{
    const std::string strPage = ManualPage(MAN_PAGE);
    EXPECT_EQ(OptionsIn(strPage), OptionsIn(RunLink({"--help"}).strOutput));
    for (const std::string& strCommand : kCommands)
        EXPECT_THAT(strPage, testing::AnyOf(HasSubstr("\n.B " + strCommand + "\n"),
                                            HasSubstr("\n.BI " + strCommand + " ")));
    for (const char* szCode : {"0", "1", "2", "3", "4", "5"})
        EXPECT_THAT(strPage, HasSubstr("\n.TP\n.B " + std::string(szCode) + "\n"));
}

TEST_F(UsageTest, Version)
{
    const Ran ran = RunLink({"--version"});
    EXPECT_EQ(ran.nExitCode, 0);
    const std::string strCommit = Tarvane::ProgramCommit();
    EXPECT_EQ(ran.strOutput, "tarvane-link " PROJECT_VERSION +
                                 (strCommit.empty() ? "" : " (" + strCommit + ")") + "\n");
}

TEST_F(UsageTest, ACommandIsRequired)
{
    ExpectWrongUse({}, "subcommand");
    ExpectWrongUse({"frobnicate"}, "subcommand");
    ExpectWrongUse({"tracks", "offset"}, "--help");
}

TEST_F(UsageTest, NumbersAreChecked)
{
    for (const char* szTimeout : {"0", "-1", "60.1", "nan", "inf", "x", ""})
        ExpectWrongUse({"tracks", "--timeout", szTimeout}, "at most 60");
    const std::vector<std::string> send{"send", "/a.wav"};
    ExpectWrongUse(With(send, {"--track", "-1", "--position", "0"}), "place in the list");
    ExpectWrongUse(With(send, {"--track", "1.5", "--position", "0"}), "place in the list");
    ExpectWrongUse(With(send, {"--track", "2147483648", "--position", "0"}), "place in the list");
    ExpectWrongUse(With(send, {"--track", "0", "--position", "nan"}), "samples");
    ExpectWrongUse(With(send, {"--track", "0", "--position", "inf"}), "samples");
    ExpectWrongUse(With(send, {"--track", "0", "--position", "0", "--index-mask", "-1"}),
                   "0 or more");
    ExpectWrongUse(
        {"spread", "--track", "0", "--start", "1.5", "--end", "2", "--output-track", "1"},
        "whole number");
    ExpectWrongUse({"render", "--rate", "0"}, "rate");
    ExpectWrongUse({"watch", "--interval", "-1"}, "0 to 3600");
    ExpectWrongUse({"watch", "--count", "0"}, "from 1");
    ExpectWrongUse({"clear", "x"}, "place in the list");
    EXPECT_TRUE(m_events.Commands().empty());
}

TEST_F(UsageTest, WhatIsMissingIsNamed)
{
    ExpectWrongUse({"send", "--track", "0", "--position", "0"}, "FILE");
    ExpectWrongUse({"send", "/a.wav", "--position", "0"}, "--track");
    ExpectWrongUse({"send", "/a.wav", "--track", "0"}, "--position");
    ExpectWrongUse({"send", "/a.wav", "--track", "0", "--position", "0", "--start", "1"}, "--end");
    ExpectWrongUse({"send", "/a.wav", "--track", "0", "--position", "0", "--end", "1"}, "--start");
    ExpectWrongUse({"clear"}, "N");
    ExpectWrongUse({"align"}, "--guide-track");
    ExpectWrongUse({"spread", "--track", "0", "--start", "0", "--end", "1"}, "--output-track");
    ExpectWrongUse({"run", "x", "--file", "/y"}, "--file");
}

TEST_F(UsageTest, RecordingIsRefusedWhereNoEventsCanBeSeen)
{
    const CTemporaryFolder folder;
    ExpectWrongUse({"tracks", "--record", folder / "recording"}, "cannot be recorded");
    EXPECT_TRUE(m_events.Commands().empty());
}
