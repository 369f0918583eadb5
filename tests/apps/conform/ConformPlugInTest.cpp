// The program as it is run on libraries.
#include "tests/apps/conform/ConformFixture.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

using namespace TarvaneTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

class ConformPlugIn : public testing::Test
{
protected:
    ConformPlugIn() { setenv("TMPDIR", m_folder.Path().c_str(), 1); }
    ~ConformPlugIn() override
    {
        for (const char* szName : {"TMPDIR", "TARVANE_MISBEHAVE", "TARVANE_BROKEN"})
            unsetenv(szName);
    }

    static ConformEnded Examine(const char* szLibrary, std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"plugin", szLibrary});
        return RunConform(arguments);
    }

    // The first rule on the library that is broken in this way.
    static ConformEnded ExamineBroken(const char* szHow, std::vector<std::string> arguments = {})
    {
        setenv("TARVANE_BROKEN", szHow, 1);
        arguments.insert(arguments.end(), {"--rule", "P1"});
        return Examine(BROKEN_LIBRARY, arguments);
    }

    CTemporaryFolder m_folder;
};

} // namespace

TEST_F(ConformPlugIn, SignalSideOfTheHostKeepsEveryRule)
{
    const ConformEnded ended = Examine(SIGNAL_SIDE_LIBRARY, {"--json"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.Rules("broken"), IsEmpty()) << ended.strOutput;
    EXPECT_THAT(ended.Rules("not examined"), IsEmpty()) << ended.strOutput;
    EXPECT_THAT(ended.Rules("kept"), SizeIs(38));
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path())) << "what was captured is removed";
}

TEST_F(ConformPlugIn, SmallestSignalSideKeepsEveryMust)
{
    const ConformEnded ended = Examine(SMALLEST_SIGNAL_SIDE, {"--json"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strOutput;
    // As its page says.
    EXPECT_THAT(ended.Rules("broken"), ElementsAre("P30")) << ended.strOutput;
    EXPECT_THAT(ended.Rules("not examined"), ElementsAre("P25")) << ended.strOutput;
}

TEST_F(ConformPlugIn, TellsInWordsWhatIsBrokenAndWhy)
{
    setenv("TARVANE_MISBEHAVE", "nan-position", 1);
    const ConformEnded ended = Examine(SIGNAL_SIDE_LIBRARY, {"--rule", "P15", "--rule", "P16"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, HasSubstr("P15 kept: The plug-in MUST give paths"));
    EXPECT_THAT(ended.strOutput, HasSubstr("P16 broken: The plug-in MUST give position"));
    EXPECT_THAT(ended.strOutput,
                HasSubstr("\n    dPosition is nan\n    Why it matters: the place"));
    EXPECT_THAT(ended.strOutput, HasSubstr("MUST: 1 kept, 1 broken, 0 not examined\n"));
}

TEST_F(ConformPlugIn, BrokenShouldDoesNotFail)
{
    setenv("TARVANE_MISBEHAVE", "info-missing", 1);
    const ConformEnded ended =
        Examine(SIGNAL_SIDE_LIBRARY, {"--json", "--rule", "P2", "--rule", "P30"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_THAT(ended.Rules("broken"), ElementsAre("P30"));
}

TEST_F(ConformPlugIn, WhatCannotBeUsedIsRefused)
{
    const std::string strNone = m_folder.Path() / "none.so";
    EXPECT_EQ(Examine(strNone.c_str()).nExitCode, 2);
    EXPECT_THAT(Examine(strNone.c_str()).strError, HasSubstr("cannot be loaded"));
    const ConformEnded ended = Examine(PLATFORM_LIBRARY);
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("exports no TarvaneLinkSignalSideFactory"));
    EXPECT_EQ(ended.strOutput, "");
}

TEST_F(ConformPlugIn, WrongUseIsRefused)
{
    EXPECT_EQ(RunConform({"plugin"}).nExitCode, 2);
    EXPECT_THAT(RunConform({"plugin"}).strError, HasSubstr("name the LIBRARY"));
    const ConformEnded ended = Examine(SIGNAL_SIDE_LIBRARY, {"--rule", "P99"});
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("no rule P99"));
}

TEST_F(ConformPlugIn, WhatDoesNotOpenBreaksTheFirstRule)
{
    for (const char* szHow : {"null", "closed", "deaf"})
        EXPECT_THAT(ExamineBroken(szHow, {"--json"}).Rules("broken"), ElementsAre("P1")) << szHow;
}

TEST_F(ConformPlugIn, WithoutTheFirstRuleNoOtherIsExamined)
{
    const ConformEnded ended = ExamineBroken("closed", {"--rule", "P2"});
    EXPECT_EQ(ended.nExitCode, 1);
    const ConformEnded both =
        Examine(BROKEN_LIBRARY, {"--json", "--rule", "P1", "--rule", "P2", "--rule", "P32"});
    EXPECT_THAT(both.Rules("not examined"), ElementsAre("P2", "P32"));
    EXPECT_THAT(both.strOutput, HasSubstr("no rule can be examined without the first"));
}

TEST_F(ConformPlugIn, WhatCrashesIsToldAndTheNextRuleIsExamined)
{
    setenv("TARVANE_BROKEN", "crash", 1);
    const ConformEnded ended = Examine(BROKEN_LIBRARY, {"--rule", "P2", "--rule", "P3"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, HasSubstr("P2 broken"));
    EXPECT_THAT(ended.strOutput, HasSubstr("P3 broken"));
    EXPECT_THAT(ended.strOutput, HasSubstr("    signal 6 ended the process"));
}

TEST_F(ConformPlugIn, WhatEndsTheProcessIsTold)
{
    EXPECT_THAT(ExamineBroken("exit").strOutput, HasSubstr("    exit code 7 ended the process"));
}

TEST_F(ConformPlugIn, WhatHangsIsEnded)
{
    const ConformEnded ended = ExamineBroken("hang", {"--timeout", "0.1"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, HasSubstr("the plug-in hangs"));
}

TEST_F(ConformPlugIn, OutputOfThePlugInIsNotTakenForAnOutcome)
{
    EXPECT_THAT(ExamineBroken("talk", {"--json"}).Rules("kept"), ElementsAre("P1"));
}

TEST_F(ConformPlugIn, WithoutAWayToPlayCapturesAreNotExamined)
{
    const ConformEnded ended =
        Examine(BROKEN_LIBRARY, {"--json", "--rule", "P12", "--rule", "P19", "--rule", "P32"});
    EXPECT_EQ(ended.nExitCode, 1) << "a MUST was not examined";
    EXPECT_THAT(ended.Rules("not examined"), ElementsAre("P12", "P19"));
    EXPECT_THAT(ended.Rules("broken"), ElementsAre("P32"));
    EXPECT_THAT(ended.strOutput, HasSubstr("the library exports no TarvaneConformPlay"));
}

TEST_F(ConformPlugIn, RulesAreListedWithTheirReasonsAndNothingIsExamined)
{
    const ConformEnded ended = RunConform({"plugin", "--list"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_THAT(ended.strOutput, HasSubstr("P1 The plug-in MUST open"));
    EXPECT_THAT(ended.strOutput, HasSubstr("P32 The plug-in SHOULD refuse"));
    EXPECT_THAT(ended.strOutput, HasSubstr("\n    Why: "));
}
