#include "tests/apps/host/EndToEndFixture.h"

#include <gmock/gmock.h>

#include <csignal>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

namespace
{

// The demonstration brings a server of its own; the fixture's is for getting in its way.
class Demo : public EndToEnd
{
protected:
    std::vector<std::string> Command(std::vector<std::string> options) const
    {
        options.insert(options.begin(), {DEMO_PROGRAM, "--speed", "max", "--out", folder / "out"});
        return options;
    }
    Ended RunDemo(std::vector<std::string> options) const
    {
        options.push_back("--headless");
        return RunToEnd(Command(options));
    }
    // A server of a name that nobody holds any more can start.
    void ExpectNoServerLeft()
    {
        StartServer();
        KillServer();
    }
};

} // namespace

TEST_F(Demo, TakesTwoRecordingsToTheSessionAndKnowsTheFirstAgain)
{
    const Ended outcome = RunDemo({});
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strError;
    EXPECT_THAT(outcome.strOutput,
                AllOf(HasSubstr("Capture 1: Front_Center.wav\n  captured     1.428 s, 68545 "
                                "samples at 48000 Hz\n  track        Dialogue\n"),
                      HasSubstr("  position     164545, 0:00:03.428\n  acknowledged delivered\n"),
                      HasSubstr("Capture 3: Front_Center.wav, once more\n"),
                      HasSubstr("acknowledged duplicate: \"Same audio captured previously.\" "
                                "\"This capture has been cancelled\"\n"),
                      HasSubstr("holds exactly these 2 regions")));
    EXPECT_THAT(FileText(folder / "out/session.txt"),
                AllOf(HasSubstr("Front_Center-001.wav"), HasSubstr("Front_Left-001.wav"),
                      HasSubstr("0:00:03.428")));
    EXPECT_THAT(FileText(folder / "out/link-view.png"), StartsWith("\x89PNG"));
    EXPECT_THAT(FileText(folder / "out/plug-in.log"), HasSubstr("64008 TNProperty_ElementDone"));
    ExpectNoServerLeft();
}

TEST_F(Demo, FilesOnTheCommandLineTakeTheirPlace)
{
    const Ended outcome = RunDemo({One(), Two(), One()});
    // The same recording at another place is no duplicate; at its own it is.
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strOutput << outcome.strError;
    EXPECT_THAT(outcome.strOutput,
                AllOf(HasSubstr("Capture 4: one.wav, once more"), HasSubstr("track        Foley"),
                      HasSubstr("holds exactly these 3 regions")));
}

TEST_F(Demo, ASecondRunReplacesTheFirstAndNothingElse)
{
    const Ended first = RunDemo({One()});
    EXPECT_EQ(first.nExitCode, 0);
    EXPECT_THAT(first.strOutput, HasSubstr("holds exactly this 1 region where it should be"));
    std::ofstream(folder / "out/notes.txt") << "mine";
    const auto before = fs::last_write_time(folder / "out/session.tarvane");
    EXPECT_EQ(RunDemo({Two()}).nExitCode, 0);
    EXPECT_NE(fs::last_write_time(folder / "out/session.tarvane"), before);
    EXPECT_EQ(FileText(folder / "out/notes.txt"), "mine");
    EXPECT_THAT(FileText(folder / "out/session.txt"), testing::Not(HasSubstr("one-001.wav")));
    EXPECT_FALSE(fs::exists(folder / "out/captures/one-001.wav"));
    EXPECT_TRUE(fs::exists(folder / "out/captures/two-001.wav"));
}

TEST_F(Demo, AFileOfSomebodyElseInTheWayIsRefusedAndKept)
{
    fs::create_directory(folder / "out");
    std::ofstream(folder / "out/session.txt") << "mine";
    const Ended outcome = RunDemo({One()});
    EXPECT_EQ(outcome.nExitCode, 2);
    EXPECT_THAT(outcome.strError, HasSubstr("is not one of our results"));
    EXPECT_EQ(FileText(folder / "out/session.txt"), "mine");
}

TEST_F(Demo, AMissingRecordingIsWrongUseAndStartsNothing)
{
    const Ended outcome = RunDemo({"/nowhere.wav"});
    EXPECT_EQ(outcome.nExitCode, 2);
    EXPECT_EQ(outcome.strError,
              "tarvane-demo: there is no file /nowhere.wav - name a sound file.\n");
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(Demo, HelpAndVersionNeedNothing)
{
    const Ended help = RunToEnd({DEMO_PROGRAM, "--help"});
    EXPECT_EQ(help.nExitCode, 0);
    EXPECT_THAT(help.strOutput,
                HasSubstr("0 done, 1 something did not come out as it should, 2 wrong use"));
    const Ended version = RunToEnd({DEMO_PROGRAM, "--version"});
    EXPECT_EQ(version.nExitCode, 0);
    EXPECT_THAT(version.strOutput, StartsWith("tarvane-demo "));
}

TEST_F(Demo, WhatCannotBeUsedIsSaidInOneLineAndStartsNothing)
{
    std::ofstream(folder / "letter.wav") << "Dear reader,";
    std::ofstream(folder / "empty.wav").flush();
    WriteSound(folder / "silent.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0);
    fs::path deep = folder / "deep";
    for (int nFolder = 0; nFolder < 5; ++nFolder)
        deep /= std::string(220, 'x');
    const std::vector<std::pair<std::vector<std::string>, std::string>> uses{
        {{folder / "letter.wav"}, "is not a sound file that can be read"},
        {{folder / "empty.wav"}, "is not a sound file that can be read"},
        {{One(), folder / "silent.wav"}, "holds no sound"},
        {{One(), "--out", folder / "one.wav/out"}, "cannot write into the folder"},
        {{One(), "--out", deep}, "longer than 1023 bytes"},
        {{One(), "--louder"}, "--louder"}};
    const auto before = folder.Files();
    for (const auto& [options, strWords] : uses)
    {
        std::vector<std::string> command{DEMO_PROGRAM, "--headless"};
        command.insert(command.end(), options.begin(), options.end());
        if (options.size() < 3)
            command.insert(command.end(), {"--out", folder / "out"});
        const Ended outcome = RunToEnd(command);
        EXPECT_EQ(outcome.nExitCode, 2) << strWords;
        EXPECT_EQ(outcome.strOutput, "");
        EXPECT_THAT(outcome.strError, AllOf(StartsWith("tarvane-demo: "), HasSubstr(strWords)));
        EXPECT_EQ(std::count(outcome.strError.begin(), outcome.strError.end(), '\n'), 1);
        EXPECT_EQ(folder.Files(), before) << strWords;
    }
}

// As where the bundle has not been built.
TEST_F(Demo, WithoutABundleItSaysSoAndLeavesNothingRunning)
{
    fs::create_directory(folder / "bin");
    for (const char* szProgram : {"tarvane-demo", "tarvane-host", "tarvane-server"})
        fs::copy(fs::path(DEMO_PROGRAM).parent_path() / szProgram, folder / "bin" / szProgram);
    const Ended outcome =
        RunToEnd({folder / "bin/tarvane-demo", "--headless", "--out", folder / "out", One()});
    EXPECT_EQ(outcome.nExitCode, 1);
    EXPECT_THAT(outcome.strError, HasSubstr("there is no bundle"));
    EXPECT_EQ(std::count(outcome.strError.begin(), outcome.strError.end(), '\n'), 1)
        << outcome.strError;
    ExpectNoServerLeft();
}

TEST_F(Demo, AServerThatRunsAlreadyIsSaidAndLeftAlone)
{
    StartServer();
    const Ended outcome = RunDemo({One()});
    EXPECT_EQ(outcome.nExitCode, 1);
    EXPECT_THAT(outcome.strError, StartsWith("tarvane-demo: the server did not start: "));
    EXPECT_TRUE(server->IsRunning());
}

TEST_F(Demo, WithAWindowItStaysUntilItIsEndedAndEndsItsChildren)
{
    CChildProcess demo(Command({One()}));
    ASSERT_TRUE(demo.WaitForLine("The window stays open", kLong)) << demo.ErrorOutput();
    EXPECT_TRUE(demo.IsRunning());
    demo.Terminate();
    EXPECT_EQ(demo.WaitForEnd(kLong), 0);
    ExpectNoServerLeft();
}

TEST_F(Demo, EndedInTheMiddleItEndsItsChildren)
{
    WriteSound(folder / "long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000 * 600);
    CChildProcess demo({DEMO_PROGRAM, "--headless", "--out", folder / "out", folder / "long.wav"});
    ASSERT_TRUE(demo.WaitForLine("the link view is open", kLong)) << demo.ErrorOutput();
    demo.Terminate();
    EXPECT_EQ(demo.WaitForEnd(kLong), 1);
    ExpectNoServerLeft();
}

TEST_F(Demo, KilledItTakesItsChildrenWithIt)
{
    CChildProcess demo(Command({One()}));
    ASSERT_TRUE(demo.WaitForLine("The window stays open", kLong)) << demo.ErrorOutput();
    demo.Kill();
    EXPECT_EQ(demo.WaitForEnd(kLong), 128 + SIGKILL);
    // The children's end follows; the bus gives the name away when the server's has come.
    for (int nTry = 0; nTry < 100; ++nTry)
    {
        server.emplace(std::vector<std::string>{SERVER_PROGRAM});
        if (server->WaitForLine("ready", kLong))
        {
            return;
        }
    }
    FAIL() << "the demonstration's server still holds the name";
}
