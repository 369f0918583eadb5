// The program writes a session for editors that read lists and projects.
#include "tests/apps/session/ServerSession.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>

using namespace testing;
using namespace TarvaneTest;

namespace
{

class ToInterchange : public Test
{
protected:
    ToInterchange()
    {
        session.AddTrack(1, "Vox");
        session.AddTrack(2, "Guitar");
        session.AddRegion(7, 1, "/takes/one.wav", 1920, 49920, 96000);
        session.AddRegion(8, 2, "/takes/two.wav", 0, 48001, 96000);
        std::ofstream(folder / "s.session", std::ios::binary) << session.Bytes();
    }

    Ended Run(const std::string& strCommand, std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {SESSION_PROGRAM, strCommand, folder / "s.session"});
        return RunToEnd(more);
    }
    std::string Text(const std::string& strName) const
    {
        std::ifstream file(folder / strName);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    CTemporaryFolder folder;
    CServerSession session;
};

} // namespace

TEST_F(ToInterchange, AListHasRateOffsetAndTrackAsAskedFor)
{
    const Ended ended = Run("to-edl", {"--track", "Vox", "--offset", "10:00:00:00"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.strOutput,
                StartsWith("TITLE: s\nFCM: NON-DROP FRAME\n* RATE: 25 FRAMES PER "
                           "SECOND\n* OFFSET: THE TIMELINE BEGINS AT 10:00:00:00\n"));
    // The region's first sample is sample 1920 of the file, whose first sample is at 96000.
    EXPECT_THAT(ended.strOutput, HasSubstr(" 00:00:00:01 00:00:01:01 10:00:02:01 10:00:03:01\n"));
    EXPECT_THAT(Run("to-edl", {"--track", "Vox", "--frame-rate", "24"}).strError,
                HasSubstr("does not begin and end on frames of 24 a second"));
}

TEST_F(ToInterchange, WhatFramesCannotHoldIsRefusedAndSaidOnRequest)
{
    const Ended refused = Run("to-edl", {folder / "s.edl"});
    EXPECT_EQ(refused.nExitCode, 2);
    EXPECT_THAT(refused.strError, HasSubstr("the region two at sample 96000"));
    EXPECT_FALSE(std::filesystem::exists(folder / "s.edl"));
    EXPECT_EQ(Run("to-edl", {folder / "s.edl", "--between-frames"}).nExitCode, 0);
    EXPECT_THAT(Text("s.edl"), HasSubstr("* BETWEEN FRAMES: TIMELINE SAMPLE 96000, FILE SAMPLE 0, "
                                         "48001 SAMPLES\n"));
}

TEST_F(ToInterchange, WrongUseIsNamed)
{
    for (const auto& [strOption, strValue] :
         {std::pair("--frame-rate", "26"), std::pair("--offset", "1"),
          std::pair("--track", "Bass")})
    {
        const Ended ended = Run("to-edl", {strOption, strValue});
        EXPECT_EQ(ended.nExitCode, 2) << strOption;
        EXPECT_THAT(ended.strError, HasSubstr(std::string("\"") + strValue + "\""));
    }
}

TEST_F(ToInterchange, AProjectHasItsRulerAsAskedFor)
{
    const Ended ended = Run("to-rpp", {folder / "s.rpp", "--ruler", "3600"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(Text("s.rpp"), HasSubstr("PROJOFFS 3600 0 0\n"));
    EXPECT_THAT(Text("s.rpp"), HasSubstr("POSITION 2.04\n      LENGTH 1\n"));
    EXPECT_THAT(Text("s.rpp"), HasSubstr("SOFFS 0.04\n"));
    EXPECT_EQ(Run("to-rpp").strOutput.find("<REAPER_PROJECT"), 0U);
}

TEST_F(ToInterchange, NothingThatIsThereIsWrittenOver)
{
    std::ofstream(folder / "there.txt") << "mine";
    std::filesystem::create_symlink("nowhere", folder / "link");
    for (const char* szCommand : {"to-edl", "to-rpp"})
    {
        for (const char* szName : {"there.txt", "link", "."})
        {
            const Ended ended =
                Run(szCommand, {folder / szName, szCommand[3] == 'e' ? "--track" : "--ruler",
                                szCommand[3] == 'e' ? "Vox" : "0"});
            EXPECT_EQ(ended.nExitCode, 2) << szCommand << szName;
            EXPECT_THAT(ended.strError, HasSubstr("is there already")) << szCommand << szName;
        }
    }
    EXPECT_EQ(Text("there.txt"), "mine");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
}
