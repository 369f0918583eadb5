// All that is installed, in a bare folder: it runs from there, and others build with it. What the
// packages add (stripping, their dependencies) is not looked at.
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

using namespace Tarvane;
using TarvaneTest::CTemporaryFolder;
using TarvaneTest::Ended;
using TarvaneTest::RunToEnd;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
namespace fs = std::filesystem;

namespace
{

std::string TextOf(const fs::path& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

class Installed : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        folder = std::make_unique<CTemporaryFolder>();
        for (const char* szComponent : {"runtime", "lv2", "tools", "dev"})
        {
            const Ended ended = RunToEnd({CMAKE_PROGRAM, "--install", BUILD_FOLDER, "--prefix",
                                          Root(), "--component", szComponent});
            ASSERT_EQ(ended.nExitCode, 0) << ended.strError;
        }
        fs::create_directory(Captures());
        ::setenv("TMPDIR", Captures().c_str(), 1);
        ::setenv("XDG_STATE_HOME", State().c_str(), 1);
    }
    static void TearDownTestSuite()
    {
        ::unsetenv("TMPDIR");
        folder.reset();
    }

    // Of what is no user's: where the example captures to, and what is noted of its takes.
    static fs::path Captures() { return *folder / "captures"; }
    static fs::path State() { return *folder / "state"; }

    static fs::path Root() { return *folder / "usr"; }
    static fs::path Program(const std::string& strName) { return Root() / "bin" / strName; }

    static std::vector<std::string> Programs()
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Root() / "bin"))
            names.push_back(entry.path().filename());
        return names;
    }

    // A copy of the example outside our sources, built with what is installed; no warning passes.
    static fs::path Built(const std::string& strExample)
    {
        const fs::path sources = *folder / strExample;
        fs::copy(fs::path(EXAMPLES_FOLDER) / strExample, sources);
        const fs::path build = sources / "build";
        Ended ended = RunToEnd({CMAKE_PROGRAM, "-S", sources, "-B", build, "-G", "Ninja",
                                "-DCMAKE_PREFIX_PATH=" + Root().string(),
                                "-DCMAKE_CXX_COMPILER=g++", "-DCMAKE_CXX_FLAGS=-Werror"});
        EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
        ended = RunToEnd({CMAKE_PROGRAM, "--build", build});
        EXPECT_EQ(ended.nExitCode, 0) << ended.strOutput << ended.strError;
        return build;
    }

    static std::unique_ptr<CTemporaryFolder> folder;
};
std::unique_ptr<CTemporaryFolder> Installed::folder;

// A server that is installed, on a bus of its own.
struct Server
{
    explicit Server(const fs::path& program, const fs::path& session)
        : process({program, "--session", session, "--track", "Vox", "--track", "R\u00e4ume"})
    {
        EXPECT_TRUE(process.WaitForLine("ready", std::chrono::seconds(60)))
            << process.ErrorOutput();
    }

    TarvaneTests::PrivateBus bus;
    CChildProcess process;
};

} // namespace

TEST_F(Installed, EveryProgramRunsWithNothingFromTheBuild)
{
    ASSERT_THAT(Programs(),
                testing::UnorderedElementsAre("tarvane-conform", "tarvane-demo", "tarvane-host",
                                              "tarvane-link", "tarvane-palette", "tarvane-replay",
                                              "tarvane-server", "tarvane-session"));
    for (const std::string& strName : Programs())
    {
        const Ended ended = RunToEnd({Program(strName), "--version"});
        EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
        EXPECT_THAT(ended.strOutput, StartsWith(strName + " " VERSION));
        EXPECT_THAT(RunToEnd({"ldd", fs::canonical(Program(strName))}).strOutput,
                    AllOf(Not(HasSubstr(BUILD_FOLDER)), Not(HasSubstr("not found"))));
    }
}

TEST_F(Installed, EveryProgramHasAManualPageAndCompletions)
{
    const fs::path share = Root() / "share";
    for (const std::string& strName : Programs())
    {
        EXPECT_EQ(RunToEnd({"gzip", "-t", share / "man/man1" / (strName + ".1.gz")}).nExitCode, 0);
        EXPECT_THAT(TextOf(share / "bash-completion/completions" / strName),
                    EndsWith(" " + strName + "\n"));
        EXPECT_THAT(TextOf(Root() / ZSH_FOLDER / ("_" + strName)),
                    StartsWith("#compdef " + strName + "\n"));
        EXPECT_THAT(TextOf(share / "fish/vendor_completions.d" / (strName + ".fish")),
                    HasSubstr(" -l version "));
    }
}

TEST_F(Installed, ADesktopFindsTheProgramsThatHaveAWindow)
{
    for (const std::string strName : {"host", "palette"})
    {
        const std::string strId = "org.tarvane." + strName;
        const fs::path share = Root() / "share";
        EXPECT_THAT(TextOf(share / "applications" / (strId + ".desktop")),
                    AllOf(HasSubstr("\nExec=tarvane-" + strName), HasSubstr("\nIcon=" + strId)));
        EXPECT_THAT(TextOf(share / "metainfo" / (strId + ".metainfo.xml")),
                    HasSubstr("<id>" + strId + "</id>"));
        EXPECT_TRUE(fs::exists(share / "icons/hicolor/scalable/apps" / (strId + ".svg")));
        EXPECT_FALSE(fs::is_empty(Root() / LIBRARY_FOLDER / "tarvane-link/bin/Resources" /
                                  ("tarvane-" + strName)));
    }
}

TEST_F(Installed, TheDemonstrationTakesItsRecordingsThroughTheWholeLink)
{
    const TarvaneTests::PrivateBus bus;
    const Ended ended = RunToEnd(
        {Program("tarvane-demo"), "--headless", "--speed", "max", "--out", *folder / "out"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.strOutput, HasSubstr("holds exactly these 2 regions"));
}

TEST_F(Installed, Lv2HostsFindThePlugIn)
{
    ::setenv("LV2_PATH", (Root() / "lib/lv2").c_str(), 1);
    const Ended ended = RunToEnd({"lv2info", "https://tarvane.org/lv2/link#stereo"});
    ::unsetenv("LV2_PATH");
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.strOutput, HasSubstr("Name:              Tarvane Link\n"));
    EXPECT_THAT(ended.strOutput, HasSubstr((Root() / "lib/lv2/tarvane-link.lv2/link.so").string()));
}

TEST_F(Installed, HeadersNameOnlyHeadersThatAreInstalledToo)
{
    const fs::path headers = Root() / HEADER_FOLDER;
    const std::regex include("# *(include|import) +\"([^\"]+)\"");
    size_t nSeen = 0;
    for (const auto& entry : fs::recursive_directory_iterator(headers))
    {
        const std::string strText = entry.is_directory() ? "" : TextOf(entry.path());
        for (std::sregex_iterator found(strText.begin(), strText.end(), include), end; found != end;
             ++found, ++nSeen)
        {
            EXPECT_TRUE(fs::exists(headers / (*found)[2].str()))
                << entry.path() << " includes " << (*found)[2];
        }
    }
    EXPECT_GT(nSeen, 20u);
}

TEST_F(Installed, AProgramOfItsOwnReadsASessionAndAsksAServer)
{
    const fs::path build = Built("session-and-script");
    const Server server(Program("tarvane-server"), *folder / "server.session");
    const Ended ended = RunToEnd({build / "session-and-script", *folder / "tracks.session"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_EQ(ended.strOutput, "Vox\nR\u00e4ume\n");
    EXPECT_THAT(
        RunToEnd({Program("tarvane-session"), "dump", *folder / "tracks.session"}).strOutput,
        HasSubstr("Vox"));
}

TEST_F(Installed, PkgConfigSaysWhatAProgramNeeds)
{
    const fs::path description = Root() / LIBRARY_FOLDER / "pkgconfig/tarvane-link.pc";
    const Ended flags = RunToEnd({"pkg-config", "--cflags", "--libs", description});
    ASSERT_EQ(flags.nExitCode, 0) << flags.strError;
    const fs::path program = *folder / "by-pkg-config";
    const Ended built =
        RunToEnd({"sh", "-c",
                  "exec g++ -std=c++20 -Wall -Wextra -Werror -o \"$1\" \"$2\" " +
                      flags.strOutput.substr(0, flags.strOutput.find('\n')),
                  "sh", program, fs::path(EXAMPLES_FOLDER) / "session-and-script/main.cpp"});
    ASSERT_EQ(built.nExitCode, 0) << built.strError;

    const Server server(Program("tarvane-server"), *folder / "other.session");
    EXPECT_EQ(RunToEnd({program, *folder / "others.session"}).strOutput, "Vox\nR\u00e4ume\n");
}

TEST_F(Installed, ThePlugInToBeginWithKeepsEveryRuleAndDelivers)
{
    const fs::path plugIn = Built("plug-in") / "my-plug-in.so";
    fs::remove_all(State());
    const Ended ended = RunToEnd({Program("tarvane-conform"), "plugin", plugIn});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_THAT(ended.strOutput, AllOf(HasSubstr(" kept, 0 broken, 0 not examined\nSHOULD: "),
                                       EndsWith(" kept, 0 broken, 0 not examined\n")));
    EXPECT_TRUE(fs::is_empty(Captures()));
    EXPECT_FALSE(fs::exists(State()));

    const Server server(Program("tarvane-server"), *folder / "plug-in.session");
    const Ended hosted =
        RunToEnd({Program("tarvane-host"), "--plugin", plugIn, "--headless", "--track", "1"});
    EXPECT_EQ(hosted.nExitCode, 0) << hosted.strError;
    EXPECT_THAT(hosted.strOutput, AllOf(HasSubstr("  sent to      track 1 \"R\u00e4ume\"\n"),
                                        HasSubstr("  outcome      delivered\n")));
}
