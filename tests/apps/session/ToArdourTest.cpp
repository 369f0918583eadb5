// The program puts a session into one of Ardour.
#include "tests/apps/server/sound/SoundMaker.h"
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

class ToArdour : public Test
{
protected:
    ToArdour()
    {
        MakeSound(folder / "take.wav", Noise(4000), 2);
        session.AddTrack(1, "Vox");
        session.AddTrack(2, "Guitar");
    }

    void Save() { std::ofstream(folder / "s.session", std::ios::binary) << session.Bytes(); }

    // The exit code and what was printed, on either stream.
    std::pair<int, std::string> Run(std::vector<std::string> more = {})
    {
        std::vector<std::string> command{SESSION_PROGRAM, "to-ardour", folder / "s.session",
                                         folder / "edit"};
        command.insert(command.end(), more.begin(), more.end());
        const Ended ended = RunToEnd(command);
        return {ended.nExitCode, ended.strOutput + ended.strError};
    }
    std::string Text() const
    {
        std::ifstream file(folder / "edit/edit.ardour");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    CTemporaryFolder folder;
    CServerSession session;
};

} // namespace

TEST_F(ToArdour, ARegionBeginsWhereItsFirstSampleLies)
{
    // The file at 1000, of it the samples from 100 on; 5880 ticks a sample.
    session.AddRegion(7, 2, folder / "take.wav", 100, 1100, 1000, 48000, true, {1});
    Save();
    EXPECT_EQ(Run(), std::pair(0, (folder / "edit/edit.ardour").string() + "\n"));
    EXPECT_THAT(Text(), HasSubstr("start=\"a588000\" length=\"a5880000@a6468000\""));
    EXPECT_THAT(Text(), HasSubstr("Region name=\"take\" muted=\"1\""));
    EXPECT_THAT(Text(), ContainsRegex("Source name=\"take.wav\".* channel=\"1\""));
    EXPECT_THAT(Text(), Not(HasSubstr("channel=\"0\"")));
    EXPECT_THAT(Text(), HasSubstr("sample-rate=\"48000\""));
    EXPECT_LT(Text().find("Playlist id=\"101\" name=\"Vox\""),
              Text().find("name=\"Guitar\" type=\"audio\""));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "edit/interchange/edit/audiofiles/take.wav"));
}

TEST_F(ToArdour, FilesAreCopiedAndARateIsGivenOnRequest)
{
    Save();
    const auto [nCode, strOutput] = Run();
    EXPECT_EQ(nCode, 2);
    EXPECT_THAT(strOutput, HasSubstr("no region and so no sample rate"));
    EXPECT_EQ(Run({"--rate", "96000"}).first, 0);
    EXPECT_THAT(Text(), HasSubstr("sample-rate=\"96000\""));

    std::filesystem::remove_all(folder / "edit");
    CServerSession other;
    other.AddTrack(1, "Vox");
    other.AddRegion(7, 1, folder / "take.wav", 0, 10, 0);
    std::ofstream(folder / "s.session", std::ios::binary) << other.Bytes();
    EXPECT_EQ(Run({"--copy"}).first, 0);
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "edit/interchange/edit/audiofiles/take.wav"));
}

TEST_F(ToArdour, WhatIsNoWholeSessionOfTheServersIsRefused)
{
    const auto refused = [&](const std::string& strBytes)
    {
        std::ofstream(folder / "s.session", std::ios::binary) << strBytes;
        const auto [nCode, strOutput] = Run();
        EXPECT_EQ(nCode, 2);
        EXPECT_FALSE(std::filesystem::exists(folder / "edit"));
        return strOutput;
    };
    session.AddRegion(7, 2, folder / "take.wav", 0, 10, 0);
    const std::string strBytes = session.Bytes();
    EXPECT_THAT(refused(strBytes.substr(0, strBytes.size() - 5)), HasSubstr("is damaged: offset"));

    CParameterBlock other;
    other.AddParameter("A", 1);
    EXPECT_THAT(refused(SaveSession(other)), HasSubstr("no session of tracks and regions"));

    CServerSession stray;
    stray.AddTrack(1, "Vox");
    stray.AddRegion(7, 3, folder / "take.wav", 0, 10, 0);
    EXPECT_THAT(refused(stray.Bytes()), HasSubstr("a region is on no track"));
}
