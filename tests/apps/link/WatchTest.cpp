// What a watch reports, look by look.

#include "tests/apps/link/LinkFixture.h"

#include <sstream>

using namespace TarvaneTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

// A server whose state changes from look to look: each answers both questions of a look, until the
// next one is at hand.
class WatchTest : public LinkTest
{
protected:
    struct State
    {
        std::string strUpdates;
        std::string strTracks;
        OSErr status = noErr;
    };

    void Play(const std::vector<State>& states)
    {
        m_events.m_whileSending = [this, states]
        {
            const bool fCount = m_events.Scripts().back() == "print(GetUpdateCount())\n";
            m_nLook += fCount;
            const State& state = states.at(std::min(m_nLook, states.size()) - 1);
            m_events.Play({state.status,
                           Events::TextBytes(fCount ? state.strUpdates : state.strTracks),
                           std::nullopt});
        };
    }

    static std::vector<nlohmann::json> Lines(const std::string& strText)
    {
        std::vector<nlohmann::json> lines;
        std::istringstream stream(strText);
        for (std::string strLine; std::getline(stream, strLine);)
            lines.push_back(nlohmann::json::parse(strLine));
        return lines;
    }

    std::size_t m_nLook = 0;
};

Ran Watch(const std::string& strCount, std::vector<std::string> more = {})
{
    more.insert(more.begin(), {"watch", "--interval", "0", "--count", strCount});
    return RunLink(more);
}

} // namespace

TEST_F(WatchTest, FirstLookIsAReport)
{
    Play({{"7\n", "3\n1\nVox\nGuide\n"}});
    const Ran ran = Watch("1");
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.strOutput, "updates 7, tracks 2\n0\tVox\n1\tGuide\n");
    EXPECT_EQ(ran.strError, "");
}

TEST_F(WatchTest, OnlyChangesAreReported)
{
    Play({{"7\n", "2\n1\nVox\n"},
          {"7\n", "2\n1\nVox\n"},
          {"8\n", "2\n1\nVox\n"},
          {"8\n", "2\n1\nVox\n"},
          {"8\n", "2\n1\nDub\n"}});
    const Ran ran = Watch("3");
    EXPECT_EQ(ran.strOutput, "updates 7, tracks 1\n0\tVox\n"
                             "updates 8, tracks 1\n"
                             "updates 8, tracks 1\n0\tDub\n");
    EXPECT_EQ(m_nLook, 5U);
}

TEST_F(WatchTest, AServerThatGoesAndComesBackIsReported)
{
    Play({{"7\n", "2\n1\nVox\n"}, {"", "", -600}, {"", "", -600}, {"0\n", "2\n1\nVox\n"}});
    const Ran ran = Watch("3", {"--json"});
    EXPECT_EQ(ran.nExitCode, 0);
    const auto lines = Lines(ran.strOutput);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["updates"], 7);
    EXPECT_EQ(lines[0]["tracks"], nlohmann::json::array({"Vox"}));
    EXPECT_EQ(lines[1]["outcome"], "not-running");
    EXPECT_FALSE(lines[1].contains("updates"));
    EXPECT_EQ(lines[1]["advice"], "Locate and launch Tarvane.");
    EXPECT_EQ(lines[2]["updates"], 0);
    EXPECT_THAT(ran.strError, StartsWith("Error - Tarvane not running.\n"));
}

TEST_F(WatchTest, EndsWithTheCodeOfTheLastLook)
{
    Play({{"7\n", "2\n1\nVox\n"}, {"", "", -1712}});
    EXPECT_EQ(Watch("2").nExitCode, 4);
}

TEST_F(WatchTest, AServerThatDoesNotAnswerIsAskedOnceALook)
{
    Play({{"", "", -1712}});
    EXPECT_EQ(Watch("1").nExitCode, 4);
    EXPECT_EQ(m_events.Commands().size(), 1U);
}

TEST_F(WatchTest, NoDocumentIsAReport)
{
    Play({{"7\n", "1\n0\n"}});
    const Ran ran = Watch("1");
    EXPECT_EQ(ran.nExitCode, 1);
    EXPECT_EQ(ran.strOutput, "updates 7, tracks 0\n");
    EXPECT_EQ(ran.strError, "No Tarvane session is selected\n");
}
