#include "apps/server/Options.h"

#include "apps/server/faults/Misbehaviour.h"
#include "apps/support/program/CommandLine.h"
#include "tests/apps/support/ManualPage.h"

#include <CLI/CLI.hpp>

#include <gmock/gmock.h>

namespace Tarvane::Server
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

Options Parse(std::vector<std::string> arguments)
{
    CLI::App app("", "tarvane-server");
    Options options;
    DeclareOptions(app, options);
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
    return options;
}

std::string RefusalOf(const std::vector<std::string>& arguments)
{
    try
    {
        Parse(arguments);
        return "read";
    }
    catch (const CLI::ParseError& error)
    {
        return error.what();
    }
}

TEST(Options, NoneIsFine)
{
    const Options options = Parse({});
    EXPECT_EQ(options.strSessionFile, "");
    EXPECT_TRUE(options.trackNames.empty());
    EXPECT_FALSE(options.linkOffset.has_value());
    EXPECT_FALSE(options.fNoDocument);
    EXPECT_TRUE(options.faults.empty());
    EXPECT_FALSE(options.seed.has_value());
    EXPECT_GT(options.dDelay, 60) << "more than a client waits";
}

TEST(Options, AllAreRead)
{
    const Options options = Parse({"--session",
                                   "a.session",
                                   "--track",
                                   "Vox",
                                   "--track",
                                   "Lead Guitar",
                                   "--link-offset",
                                   "-2.5",
                                   "--log",
                                   "-",
                                   "--no-document",
                                   "--misbehave",
                                   "hang@3",
                                   "--misbehave",
                                   "no-reply,exit-after-effect@1",
                                   "--seed",
                                   "7",
                                   "--delay",
                                   "0.5",
                                   "--render-folder",
                                   "made"});
    EXPECT_EQ(options.strSessionFile, "a.session");
    EXPECT_THAT(options.trackNames, ElementsAre("Vox", "Lead Guitar"));
    EXPECT_EQ(options.linkOffset, -2.5);
    EXPECT_EQ(options.strLogFile, "-");
    EXPECT_TRUE(options.fNoDocument);
    EXPECT_EQ(options.strRenderFolder, "made");
    ASSERT_EQ(options.faults.size(), 2u);
    EXPECT_THAT(options.faults[0].faults, ElementsAre(Fault::Hang));
    EXPECT_EQ(options.faults[0].nFirst, 3);
    EXPECT_THAT(options.faults[1].faults, ElementsAre(Fault::NoReply, Fault::ExitAfterEffect));
    EXPECT_EQ(options.seed, 7u);
    EXPECT_EQ(options.dDelay, 0.5);
}

TEST(Options, AListingCanBeJson)
{
    const Options options = Parse({"--list-session", "a.session", "--json"});
    EXPECT_EQ(options.strListedFile, "a.session");
    EXPECT_TRUE(options.fJson);
    EXPECT_THAT(RefusalOf({"--json"}), HasSubstr("--list-session"));
}

TEST(Options, TrackNamesThatBreakTheListAreRefused)
{
    EXPECT_THAT(RefusalOf({"--track", "a\nb"}),
                HasSubstr("a track's name contains a line end or another control character"));
    EXPECT_THAT(RefusalOf({"--track", ""}), HasSubstr("a track's name is empty"));
    EXPECT_THAT(RefusalOf({"--track", std::string(1000, 'x')}), HasSubstr("longer than 999 bytes"));
    EXPECT_THAT(RefusalOf({"--track", "\xff"}), HasSubstr("not UTF-8"));
}

TEST(Options, OneNameFollowsEachTrack)
{
    EXPECT_NE(RefusalOf({"--track", "Vox", "Guitar"}), "read");
}

TEST(Options, OffsetsAreNumbersInReach)
{
    EXPECT_THAT(RefusalOf({"--link-offset", "soon"}), HasSubstr("--link-offset"));
    EXPECT_THAT(RefusalOf({"--link-offset", "nan"}), HasSubstr("within a million seconds"));
    EXPECT_THAT(RefusalOf({"--link-offset", "1e9"}), HasSubstr("within a million seconds"));
}

TEST(Options, UnknownFaultsAndOptionsAreRefused)
{
    EXPECT_THAT(RefusalOf({"--misbehave", "dance@1"}), HasSubstr("there is no fault \"dance\""));
    EXPECT_THAT(RefusalOf({"--seed", "often"}), HasSubstr("--seed"));
    EXPECT_THAT(RefusalOf({"--delay", "-1"}), HasSubstr("--delay"));
    EXPECT_NE(RefusalOf({"--nonsense"}), "read");
    EXPECT_NE(RefusalOf({"extra"}), "read");
    EXPECT_NE(RefusalOf({"--session"}), "read");
}

TEST(Options, ManualPageHasEveryOptionAndFault)
{
    CLI::App app("", "tarvane-server");
    AddCommonOptions(app, "");
    Options options;
    DeclareOptions(app, options);
    TarvaneTest::ExpectManualDescribes(app, SERVER_MANUAL);
    const std::string strPage = TarvaneTest::ManualPage(SERVER_MANUAL);
    for (const FaultKind& kind : FaultKinds())
        EXPECT_THAT(strPage, HasSubstr(std::string(".B ") + kind.szName + "\n"));
}

} // namespace
} // namespace Tarvane::Server
