#include "apps/server/sound/SoundFiles.h"

#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/stat.h>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::MakeSound;
using TarvaneTest::Noise;
using testing::HasSubstr;

class SoundFiles : public testing::Test
{
protected:
    static std::string ErrorOfOpening(const std::string& strPath)
    {
        try
        {
            CSoundFile file(strPath);
            return "opened";
        }
        catch (const CSoundFileError& error)
        {
            return error.what();
        }
    }

    TarvaneTest::CTemporaryFolder m_folder;
};

TEST_F(SoundFiles, TellRateChannelsAndLength)
{
    CSoundFile file(MakeSound(m_folder / "a.wav", Noise(200), 2, 44100));
    EXPECT_EQ(file.Frames(), 100);
    EXPECT_EQ(file.Channels(), 2);
    EXPECT_EQ(file.SampleRate(), 44100);
}

TEST_F(SoundFiles, ReadFromAnyFrame)
{
    const std::vector<double> all = Noise(200);
    CSoundFile file(MakeSound(m_folder / "a.wav", all, 2));
    std::vector<double> samples;
    file.Seek(90);
    ASSERT_EQ(file.Read(samples, 5), 5);
    EXPECT_EQ(samples, std::vector<double>(all.begin() + 180, all.begin() + 190));
    EXPECT_EQ(file.Read(samples, 20), 5);
}

TEST_F(SoundFiles, LengthIsCheckedAgainstTheEnd)
{
    CSoundFile file(MakeSound(m_folder / "a.wav", Noise(100)));
    file.RequireFrames(100);
    try
    {
        file.RequireFrames(101);
        FAIL();
    }
    catch (const CSoundFileError& error)
    {
        EXPECT_EQ(error.what(), "the file " + (m_folder / "a.wav").string() +
                                    " is too short: it has 100 frames, and the region ends at 101");
    }
}

TEST_F(SoundFiles, WhatIsMissingOrNoSoundIsRefused)
{
    EXPECT_EQ(ErrorOfOpening(m_folder / "none.wav"),
              "the file " + (m_folder / "none.wav").string() + " does not exist");
    std::ofstream(m_folder / "text.wav") << "no sound at all";
    EXPECT_THAT(ErrorOfOpening(m_folder / "text.wav"), HasSubstr("cannot be read as sound"));
    std::ofstream(m_folder / "empty.wav").flush();
    EXPECT_THAT(ErrorOfOpening(m_folder / "empty.wav"), HasSubstr("cannot be read as sound"));
    EXPECT_EQ(ErrorOfOpening("take.wav"), "\"take.wav\" is not a full path");
    EXPECT_EQ(ErrorOfOpening(""), "\"\" is not a full path");
    EXPECT_THAT(ErrorOfOpening("/dev/null/x"), HasSubstr("cannot be opened: Not a directory"));
}

TEST_F(SoundFiles, FoldersPipesAndDevicesAreRefusedAtOnce)
{
    EXPECT_EQ(ErrorOfOpening(m_folder.Path()), m_folder.Path().string() + " is not a file");
    // Opening a pipe that nobody writes to would wait for ever.
    ASSERT_EQ(mkfifo((m_folder / "pipe.wav").c_str(), 0600), 0);
    EXPECT_THAT(ErrorOfOpening(m_folder / "pipe.wav"), HasSubstr(" is not a file"));
    EXPECT_EQ(ErrorOfOpening("/dev/zero"), "/dev/zero is not a file");
}

TEST_F(SoundFiles, AFileCutShortIsTooShortWhateverItsHeaderSays)
{
    const std::string strPath =
        MakeSound(m_folder / "a.flac", Noise(100000), 1, 48000, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    std::filesystem::resize_file(strPath, std::filesystem::file_size(strPath) / 2);
    CSoundFile file(strPath);
    EXPECT_EQ(file.Frames(), 100000);
    EXPECT_THROW(file.RequireFrames(100000), CSoundFileError);
}

} // namespace
} // namespace Tarvane::Server
