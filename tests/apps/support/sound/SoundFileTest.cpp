#include "apps/support/sound/SoundFile.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/stat.h>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::HasSubstr;

namespace
{

std::string Refusal(const std::filesystem::path& path)
{
    try
    {
        CSoundReader reader(path);
        return "";
    }
    catch (const CUsageError& error)
    {
        return error.what();
    }
}

} // namespace

TEST(SoundFile, ReadsBlockByBlockToItsEnd)
{
    CTemporaryFolder folder;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1200, 2);
    CSoundReader reader(folder / "a.wav");
    CSampleBlock block(SampleType::Integer, 2, 512);
    EXPECT_EQ(reader.Read(block), 512U);
    EXPECT_EQ(static_cast<const int*>(block.Data())[0], KnownSamples(1)[0]);
    EXPECT_EQ(reader.Read(block), 512U);
    EXPECT_EQ(reader.Read(block), 176U);
    EXPECT_EQ(reader.Read(block), 0U);
}

TEST(SoundFile, AMissingFileIsRefusedByName)
{
    EXPECT_THAT(Refusal("/nowhere/a.wav"), HasSubstr("there is no file /nowhere/a.wav"));
}

TEST(SoundFile, AFolderAndAPipeAreNoFiles)
{
    CTemporaryFolder folder;
    EXPECT_THAT(Refusal(folder.Path()), HasSubstr("is not a file"));
    ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
    EXPECT_THAT(Refusal(folder / "pipe.wav"), HasSubstr("is not a file"));
}

TEST(SoundFile, WhatIsNoSoundIsRefused)
{
    CTemporaryFolder folder;
    std::ofstream(folder / "text.wav") << "This is a letter and no sound.";
    std::ofstream(folder / "empty.wav").flush();
    EXPECT_THAT(Refusal(folder / "text.wav"), HasSubstr("is not a sound file that can be read"));
    EXPECT_THAT(Refusal(folder / "empty.wav"), HasSubstr("is not a sound file that can be read"));
}

TEST(SoundFile, ASoundFileWithoutASampleIsRefused)
{
    CTemporaryFolder folder;
    WriteSound(folder / "silent.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0);
    EXPECT_THAT(Refusal(folder / "silent.wav"), HasSubstr("holds no sound"));
}
