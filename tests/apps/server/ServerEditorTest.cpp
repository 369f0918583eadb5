// A server that puts what comes in into an editor's session.
#include "tests/apps/editor/FakeAudacity.h"
#include "tests/apps/server/ServerFixture.h"

#include <fstream>
#include <iterator>

namespace TarvaneTest
{
namespace
{

using testing::HasSubstr;
using testing::Not;

class ServerEditor : public ServerFixture
{
protected:
    Child StartWithArdour()
    {
        return Start(
            {"--session", m_strSession, "--track", "Vox", "--editor", "ardour:" + Path("edit")});
    }

    Child StartWithAudacity()
    {
        std::filesystem::create_directories(Path("pipes"));
        return Start({"--session", m_strSession, "--track", "Vox", "--track", "Guitar",
                      "--link-offset", "1.25", "--editor", "audacity:" + Path("edit.aup3")},
                     {"env", "TARVANE_AUDACITY_PIPES=" + Path("pipes")});
    }

    std::string ArdourText() const
    {
        std::ifstream file(Path("edit/edit.ardour"));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t RegionsInArdour() const
    {
        const std::string strText = ArdourText();
        std::size_t nCount = 0;
        for (std::size_t n = 0; (n = strText.find("<Region ", n)) != std::string::npos; n++)
            nCount++;
        return nCount;
    }
    // At 48000 samples per second.
    static std::string PlaceOf(std::int64_t nPosition)
    {
        return "@a" + std::to_string(nPosition * 5880) + "\"";
    }
    static std::optional<std::string> RegionsHere()
    {
        return SendScript("SelectScriptDocument() print(GetRegionCount(GetTrackID(0)))").result;
    }
};

TEST_F(ServerEditor, ATakeThatIsAnsweredForStandsInTheEditorsSession)
{
    const Child server = StartWithArdour();
    EXPECT_EQ(SendScript(Add(12345)).error, std::nullopt);
    EXPECT_THAT(ArdourText(), HasSubstr(PlaceOf(12345)));
    EXPECT_EQ(SendScript(Add(23456)).error, std::nullopt);
    EXPECT_THAT(ArdourText(), HasSubstr(PlaceOf(23456)));
    EXPECT_EQ(RegionsInArdour(), 2U);
}

TEST_F(ServerEditor, ATakeThatTheEditorRefusesIsInNeitherAndLeavesNoResult)
{
    const Child server = StartWithArdour();
    EXPECT_EQ(SendScript(Add(100)).error, std::nullopt);
    // What it writes goes through this name.
    std::filesystem::create_directory(Path("edit/edit.ardour.saving"));
    const CScriptAnswer answer = SendScript(Add(5));
    EXPECT_EQ(answer.result, std::nullopt);
    EXPECT_THAT(answer.error.value_or(""),
                HasSubstr("nothing was changed, for the editor did not take it: "));
    EXPECT_EQ(RegionsHere(), "1\n");
    EXPECT_EQ(RegionsInArdour(), 1U);
    std::filesystem::remove(Path("edit/edit.ardour.saving"));
    EXPECT_EQ(SendScript(Add(5)).error, std::nullopt);
    EXPECT_EQ(RegionsHere(), "2\n");
    EXPECT_EQ(RegionsInArdour(), 2U);
}

TEST_F(ServerEditor, ATakeThatTheEditorCanNeverTakeIsHereAloneAndNamed)
{
    const Child server = StartWithArdour();
    EXPECT_EQ(SendScript(Add(100)).error, std::nullopt);
    EXPECT_EQ(SendScript(Add(-5)).error, std::nullopt);
    EXPECT_EQ(RegionsHere(), "2\n");
    EXPECT_EQ(RegionsInArdour(), 1U);
    server->End(kAnyTime);
    EXPECT_THAT(server->ErrorOutput(),
                HasSubstr("the region take does not go to Ardour: it begins before the timeline"));
}

TEST_F(ServerEditor, ControlCharactersOfANameAreToldAsPoints)
{
    std::filesystem::rename(m_strTake, Path("a\x1b[2Jb.wav"));
    const Child server = StartWithArdour();
    EXPECT_EQ(SendScript("SelectScriptDocument() AddAudioRegion(GetTrackID(0), \"" +
                         Path("a\\27[2Jb.wav") + "\", true, false, -5,0,100)")
                  .error,
              std::nullopt);
    server->End(kAnyTime);
    EXPECT_THAT(server->ErrorOutput(), HasSubstr("the region a.[2Jb does not go to Ardour"));
}

TEST_F(ServerEditor, WhatCameBeforeIsPutInAtTheStartAndOnce)
{
    {
        const Child server = Start({"--session", m_strSession, "--track", "Vox"});
        EXPECT_EQ(SendScript(Add(777)).error, std::nullopt);
    }
    for (int nStart = 0; nStart < 2; nStart++)
    {
        const Child server = StartWithArdour();
        EXPECT_THAT(ArdourText(), HasSubstr(PlaceOf(777)));
        EXPECT_EQ(RegionsInArdour(), 1U);
    }
}

TEST_F(ServerEditor, WhatIsDeletedHereStaysThere)
{
    const Child server = StartWithArdour();
    EXPECT_EQ(SendScript(Add(100)).error, std::nullopt);
    EXPECT_EQ(
        SendScript("SelectScriptDocument() DeleteRegion(GetRegionID(GetTrackID(0), 0))").error,
        std::nullopt);
    EXPECT_EQ(RegionsHere(), "0\n");
    EXPECT_EQ(RegionsInArdour(), 1U);
}

TEST_F(ServerEditor, ItKeepsEveryRuleThatItKeepsWithoutAnEditor)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox", "--track", "Guitar",
                                "--link-offset", "1.25", "--editor", "ardour:" + Path("edit")});
    // Programs lie beside one another.
    const auto folder = std::filesystem::path(SERVER_PROGRAM).parent_path();
    Tarvane::CChildProcess conform({folder / "tarvane-conform", "server"});
    EXPECT_EQ(conform.WaitForEnd(std::chrono::seconds(200)), 0) << conform.Output();
    EXPECT_THAT(conform.Output(), HasSubstr(" 0 broken"));
    EXPECT_GT(RegionsInArdour(), 20U);
}

TEST_F(ServerEditor, ATakeThatIsAnsweredForStandsInAudacity)
{
    const Child server = StartWithAudacity();
    CFakeAudacity audacity(Path("pipes"));
    EXPECT_EQ(SendScript(Add(48000)).error, std::nullopt);
    EXPECT_THAT(audacity.Tracks(), testing::ElementsAre("Vox|take|1.000000|48000|100|1"));
    EXPECT_EQ(SendScript(Add(96000)).error, std::nullopt);
    EXPECT_THAT(audacity.Tracks(), testing::ElementsAre("Vox|take|1.000000|48000|100|1",
                                                        "Vox|take|2.000000|48000|100|1"));
}

TEST_F(ServerEditor, WithoutAnAudacityATakeIsRefusedUntilThereIsOneAndTheServerLives)
{
    const Child server = StartWithAudacity();
    for (const char* szFault : {"", "die SetClip", "cut Import2"})
    {
        std::unique_ptr<CFakeAudacity> pAudacity;
        if (*szFault != '\0')
        {
            pAudacity = std::make_unique<CFakeAudacity>(Path("pipes"));
            pAudacity->Prepare(szFault);
        }
        const CScriptAnswer answer = SendScript(Add(48000));
        EXPECT_EQ(answer.result, std::nullopt) << szFault;
        EXPECT_THAT(answer.error.value_or(""),
                    HasSubstr("nothing was changed, for the editor did not take it: Audacity "))
            << szFault;
        EXPECT_EQ(RegionsHere(), "0\n") << szFault;
    }
    CFakeAudacity audacity(Path("pipes"));
    EXPECT_EQ(SendScript(Add(48000)).error, std::nullopt);
    EXPECT_EQ(RegionsHere(), "1\n");
    EXPECT_THAT(audacity.Tracks(), testing::ElementsAre("Vox|take|1.000000|48000|100|1"));
}

TEST_F(ServerEditor, ItKeepsEveryRuleBesideAnAudacityAsWell)
{
    const Child server = StartWithAudacity();
    CFakeAudacity audacity(Path("pipes"));
    const auto folder = std::filesystem::path(SERVER_PROGRAM).parent_path();
    Tarvane::CChildProcess conform({folder / "tarvane-conform", "server"});
    EXPECT_EQ(conform.WaitForEnd(std::chrono::seconds(200)), 0) << conform.Output();
    EXPECT_THAT(conform.Output(), HasSubstr(" 0 broken"));
    EXPECT_GT(audacity.Tracks().size(), 20U);
}

TEST_F(ServerEditor, AnEditorThatIsUnknownOrCannotBeginEndsTheServer)
{
    const Ended unknown = RunToEnd({"--editor", "abacus:x"});
    EXPECT_EQ(unknown.nExitCode, 2);
    EXPECT_THAT(unknown.strError, HasSubstr("\"abacus:x\" is no editor; there is ardour:FOLDER"));

    {
        const Child server = Start({"--session", m_strSession, "--track", "Vox"});
        EXPECT_EQ(SendScript(Add(777)).error, std::nullopt);
    }
    std::filesystem::create_directory(Path("edit"));
    std::ofstream(Path("edit/mine.txt")) << "mine";
    const Ended foreign =
        RunToEnd({"--session", m_strSession, "--editor", "ardour:" + Path("edit")});
    EXPECT_EQ(foreign.nExitCode, 2);
    EXPECT_THAT(foreign.strError, HasSubstr("holds other files and no session of Ardour"));
    EXPECT_THAT(foreign.strOutput, Not(HasSubstr("ready")));
}

} // namespace
} // namespace TarvaneTest
