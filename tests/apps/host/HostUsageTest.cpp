#include "apps/support/unit/SignalFaults.h"
#include "tests/apps/host/HostFixture.h"
#include "tests/apps/support/ManualPage.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <unistd.h>

using namespace TarvaneTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

namespace
{

// What the host says about wrong use: one line, code 2, nothing else.
class HostUsage : public testing::Test
{
protected:
    HostUsage()
    {
        WriteSound(folder / "good.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1000);
        fs::create_directory(folder / "captures");
    }

    std::string Complaint(std::vector<std::string> options, bool fDefaultFolders = true)
    {
        if (fDefaultFolders)
        {
            options.insert(options.end(), {"--capture-folder", folder / "captures"});
        }
        options.insert(options.end(), {"--headless", "--speed", "max"});
        const Ended outcome = RunToEnd(Host(options));
        EXPECT_EQ(outcome.nExitCode, 2);
        EXPECT_EQ(outcome.strOutput, "");
        EXPECT_THAT(outcome.strError, StartsWith("tarvane-host: "));
        EXPECT_EQ(std::count(outcome.strError.begin(), outcome.strError.end(), '\n'), 1)
            << outcome.strError;
        EXPECT_THAT(folder.Files(), testing::Contains("good.wav"));
        for (const std::string& strFile : folder.Files())
        {
            EXPECT_EQ(strFile.find("captures/"), std::string::npos) << strFile;
        }
        return outcome.strError;
    }

    std::string Good() const { return folder / "good.wav"; }

    CTemporaryFolder folder;
};

} // namespace

TEST_F(HostUsage, AMissingSoundFile)
{
    EXPECT_THAT(Complaint({Good(), "/nowhere/at/all.wav"}),
                HasSubstr("there is no file /nowhere/at/all.wav - name a sound file."));
}

TEST_F(HostUsage, AFileThatIsNoSound)
{
    std::ofstream(folder / "letter.wav") << "Dear reader,";
    EXPECT_THAT(Complaint({folder / "letter.wav"}),
                HasSubstr("is not a sound file that can be read"));
}

TEST_F(HostUsage, AFileOfNoLength)
{
    std::ofstream(folder / "empty.wav").flush();
    EXPECT_THAT(Complaint({folder / "empty.wav"}),
                HasSubstr("is not a sound file that can be read"));
    WriteSound(folder / "silent.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0);
    EXPECT_THAT(Complaint({folder / "silent.wav"}), HasSubstr("holds no sound"));
}

TEST_F(HostUsage, ACaptureFolderThatCannotBeWritten)
{
    EXPECT_THAT(Complaint({Good(), "--capture-folder", folder / "good.wav/captures"}, false),
                HasSubstr("cannot make the capture folder"));
}

TEST_F(HostUsage, ACapturePathThatIsTooLong)
{
    EXPECT_THAT(Complaint({Good(), "--capture-folder", folder / std::string(1015, 'x')}, false),
                HasSubstr("longer than 1023 bytes - name a capture folder with a shorter path"));
}

TEST_F(HostUsage, ACapturePathThatNoScriptCanCarry)
{
    fs::create_directory(folder / "a\"b");
    EXPECT_THAT(Complaint({Good(), "--capture-folder", folder / "a\"b"}, false),
                HasSubstr("which a script cannot carry - name another"));
}

TEST_F(HostUsage, AnUnknownOption)
{
    EXPECT_THAT(Complaint({Good(), "--louder"}), HasSubstr("--louder"));
}

TEST_F(HostUsage, AnUnknownFault)
{
    EXPECT_THAT(Complaint({Good(), "--misbehave", "storm,dance"}),
                HasSubstr("there is no fault \"dance\"; the names are index-never-negative, "));
}

TEST_F(HostUsage, NothingToCapture)
{
    EXPECT_THAT(Complaint({}), HasSubstr("there is nothing to capture"));
}

TEST_F(HostUsage, ABundleThatIsNotThere)
{
    EXPECT_THAT(Complaint({Good(), "--bundle", "/nowhere/View.bundle"}),
                HasSubstr("there is no bundle /nowhere/View.bundle - build it, or name one"));
}

TEST_F(HostUsage, ABundleWithoutAPrincipalClass)
{
    fs::create_directories(folder / "Hollow.bundle/Resources");
    EXPECT_THAT(Complaint({Good(), "--bundle", folder / "Hollow.bundle"}),
                HasSubstr("names no principal class - build it again, or name another"));
}

TEST_F(HostUsage, ABundleWhosePrincipalClassMakesNoViews)
{
    EXPECT_THAT(Complaint({Good(), "--bundle", NO_FACTORY_BUNDLE}),
                HasSubstr("NoFactoryPlainObject"));
}

TEST_F(HostUsage, ABundleThatMakesNoView)
{
    EXPECT_THAT(Complaint({Good(), "--bundle", NO_VIEW_BUNDLE}), HasSubstr("made no view"));
}

TEST_F(HostUsage, AResultsFolderWithSomebodyElsesFile)
{
    fs::create_directory(folder / "out");
    std::ofstream(folder / "out/captures.json") << "mine";
    EXPECT_THAT(Complaint({Good(), "--bundle", MUTE_VIEW_BUNDLE, "--results", folder / "out"}),
                HasSubstr("is not one of our results - move it away, or name another folder"));
    EXPECT_EQ(FileText(folder / "out/captures.json"), "mine");
}

TEST_F(HostUsage, ALogThatCannotBeWritten)
{
    EXPECT_THAT(Complaint({Good(), "--bundle", MUTE_VIEW_BUNDLE, "--log", "/nowhere/host.log"}),
                HasSubstr("cannot write the log /nowhere/host.log - name another"));
}

TEST_F(HostUsage, NoDisplay)
{
    const std::string strDisplay = std::getenv("DISPLAY");
    ::unsetenv("DISPLAY");
    EXPECT_THAT(Complaint({Good()}), HasSubstr("no window can be opened here"));
    ::setenv("DISPLAY", ":987", 1);
    EXPECT_THAT(Complaint({Good()}), HasSubstr("no window can be opened here"));
    ::setenv("DISPLAY", strDisplay.c_str(), 1);
}

TEST_F(HostUsage, HelpAndVersionNeedNothing)
{
    const Ended help = RunToEnd(Host({"--help"}));
    EXPECT_EQ(help.nExitCode, 0);
    EXPECT_THAT(
        help.strOutput,
        HasSubstr(
            "0 done, 1 some capture was neither delivered nor a duplicate, or not whole, 2 wrong"));
    const Ended version = RunToEnd(Host({"--version"}));
    EXPECT_EQ(version.nExitCode, 0);
    EXPECT_THAT(version.strOutput, StartsWith("tarvane-host "));
}

// What goes beside --plugin is named with it, and nowhere else what does not.
TEST_F(HostUsage, HelpShowsWhatAUserNeedsAndHelpAllTheRest)
{
    const std::set<std::string> first{"--help",       "--help-all",       "--version", "--position",
                                      "--speed",      "--capture-folder", "--track",   "--headless",
                                      "--results",    "--record",         "--bundle",  "--plugin",
                                      "--ack-timeout"};
    const std::string strHelp = RunToEnd(Host({"--help"})).strOutput;
    EXPECT_EQ(OptionsIn(strHelp), first);
    EXPECT_THAT(strHelp, HasSubstr("\n  SOUND_FILE TEXT ... "));
    const Ended all = RunToEnd(Host({"--help-all"}));
    EXPECT_EQ(all.nExitCode, 0);
    std::set<std::string> options = first;
    options.insert({"--commands", "--log", "--stalls", "--count-objects", "--once", "--misbehave"});
    EXPECT_EQ(OptionsIn(all.strOutput), options);
    EXPECT_THAT(all.strOutput, HasSubstr("\nFor programs that drive this one:\n"));
    EXPECT_THAT(all.strOutput, HasSubstr("\nMisbehaviour, for tests:\n"));
    EXPECT_THAT(all.strOutput, testing::Not(HasSubstr("Excludes:")));
    for (const Tarvane::SignalFaultKind& kind : Tarvane::SignalFaultKinds())
    {
        EXPECT_THAT(all.strOutput, HasSubstr(std::string(kind.szName) + ": "));
    }
}

TEST_F(HostUsage, ACommandThatRaisesIsRefusedAndTheNextIsObeyed)
{
    Tarvane::CHostClient host(
        Host({"--bundle", RAISING_VIEW_BUNDLE, "--capture-folder", folder / "captures"}));
    EXPECT_THROW(host.Ask("arm", kLong), Tarvane::CHostRefusal);
    EXPECT_EQ(host.Ask("state", kLong)["armed"], false);
}

// Further hosts would call it under that name, and it could wait for such a call for ever.
TEST_F(HostUsage, NoNameIsRegisteredWithOtherApplications)
{
    Tarvane::CHostClient host(
        Host({"--bundle", MUTE_VIEW_BUNDLE, "--capture-folder", folder / "captures"}));
    // "tarvane-host", as the file of whoever has the name is called; its lines are a port and a
    // process.
    const std::string strOwner = FileText("/tmp/GNUstepSecure" + std::to_string(::getuid()) +
                                          "/NSMessagePort/names/dGFydmFuZS1ob3N0");
    EXPECT_THAT(strOwner, testing::Not(HasSubstr("\n" + std::to_string(host.Process().Pid()))));
}
