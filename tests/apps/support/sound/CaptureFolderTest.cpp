#include "apps/support/sound/CaptureFolder.h"

#include "apps/support/program/CommandLine.h"
#include "signal/TakeFile.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

namespace
{

void CopyAll(CSoundReader& source, CTakeFile& file)
{
    CSampleBlock block(SampleTypeOf(source.Info().format), source.Info().channels, 512);
    while (const size_t nFrames = source.Read(block))
    {
        file.Write(block.Data(), nFrames);
    }
}

fs::path Dub(const fs::path& source, const fs::path& folder)
{
    CSoundReader reader(source);
    CTakeFile file(folder, TakeFormatFor(reader), 0);
    CopyAll(reader, file);
    file.Publish();
    return file.Path();
}

std::string Refusal(const fs::path& source, const fs::path& folder)
{
    try
    {
        CheckCapturePath(folder, CSoundReader(source));
        CheckCaptureFolder(folder);
        return "";
    }
    catch (const CUsageError& error)
    {
        return error.what();
    }
}

class CaptureForm : public testing::TestWithParam<int>
{
};

} // namespace

TEST_P(CaptureForm, KeepsFormRateChannelsAndEverySample)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "source", GetParam(), 1300, 2, 44100);
    const Sound source = ReadSound(folder / "source");
    const Sound dub = ReadSound(Dub(folder / "source", captures.Path()));
    EXPECT_EQ(dub.info.format, source.info.format);
    EXPECT_EQ(dub.info.samplerate, 44100);
    EXPECT_EQ(dub.info.channels, 2);
    ASSERT_EQ(dub.samples.size(), 2600U);
    EXPECT_EQ(dub.samples, source.samples);
}

INSTANTIATE_TEST_SUITE_P(
    All, CaptureForm,
    testing::Values(SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                    SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_PCM_32,
                    SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_WAV | SF_FORMAT_DOUBLE,
                    SF_FORMAT_WAV | SF_FORMAT_ULAW, SF_FORMAT_WAV | SF_FORMAT_ALAW,
                    SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, SF_FORMAT_AIFF | SF_FORMAT_PCM_24,
                    SF_FORMAT_AIFF | SF_FORMAT_FLOAT, SF_FORMAT_FLAC | SF_FORMAT_PCM_24,
                    SF_FORMAT_CAF | SF_FORMAT_ALAC_24, SF_FORMAT_W64 | SF_FORMAT_PCM_24));

TEST(CaptureFolder, ALossyFormIsKeptAsWhatItDecodesTo)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 5000);
    const Sound source = ReadSound(folder / "a.ogg");
    const fs::path path = Dub(folder / "a.ogg", captures.Path());
    EXPECT_EQ(path.filename(), "a-001.wav");
    const Sound dub = ReadSound(path);
    EXPECT_EQ(dub.info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_EQ(dub.samples, source.samples);
}

TEST(CaptureFolder, FloatsBeyondFullScaleAreNotClipped)
{
    CTemporaryFolder folder, captures;
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    const float loud[] = {-3.5F, 2.25F, 1e-30F};
    SNDFILE* pFile = sf_open((folder / "loud.wav").c_str(), SFM_WRITE, &info);
    ASSERT_NE(pFile, nullptr);
    sf_writef_float(pFile, loud, 3);
    sf_close(pFile);
    EXPECT_THAT(ReadSound(Dub(folder / "loud.wav", captures.Path())).samples,
                ElementsAre(-3.5, 2.25, double(1e-30F)));
}

TEST(CaptureFolder, NeverTakesANameThatExists)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    std::ofstream(captures / "a-001.wav") << "mine";
    EXPECT_EQ(Dub(folder / "a.wav", captures.Path()), captures / "a-002.wav");
    EXPECT_EQ(Dub(folder / "a.wav", captures.Path()), captures / "a-003.wav");
    std::string strMine;
    std::ifstream(captures / "a-001.wav") >> strMine;
    EXPECT_EQ(strMine, "mine");
    EXPECT_THAT(captures.Files(), ElementsAre("a-001.wav", "a-002.wav", "a-003.wav"));
}

TEST(CaptureFolder, WhatIsNotPublishedStaysUnderAHiddenName)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1000);
    {
        CSoundReader reader(folder / "a.wav");
        CTakeFile file(captures.Path(), TakeFormatFor(reader), 0);
        CopyAll(reader, file);
    }
    ASSERT_EQ(captures.Files().size(), 1U);
    EXPECT_EQ(captures.Files().front().front(), '.');
    EXPECT_EQ(ReadSound(captures / captures.Files().front()).samples,
              ReadSound(folder / "a.wav").samples);
}

TEST(CaptureFolder, WithoutASampleThereIsNoFile)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1000);
    {
        const CTakeFile file(captures.Path(), TakeFormatFor(CSoundReader(folder / "a.wav")), 0);
        EXPECT_THAT(captures.Files(), testing::SizeIs(1));
    }
    EXPECT_THAT(captures.Files(), IsEmpty());
}

TEST(CaptureFolder, AFolderThatIsNoneIsRefused)
{
    CTemporaryFolder folder;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    EXPECT_THAT(Refusal(folder / "a.wav", folder / "none"),
                HasSubstr("there is no capture folder"));
    EXPECT_THAT(Refusal(folder / "a.wav", folder / "a.wav"),
                HasSubstr("there is no capture folder"));
}

TEST(CaptureFolder, APathThatNoScriptCanCarryIsRefused)
{
    CTemporaryFolder folder;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    for (const char* szName : {"a\"b", "a\\b", "a\nb", "a\xFFz"})
    {
        fs::create_directory(folder / szName);
        EXPECT_THAT(Refusal(folder / "a.wav", folder / szName), HasSubstr("name another"))
            << szName;
    }
}

TEST(CaptureFolder, TheRootFolderIsRefused)
{
    CTemporaryFolder folder;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    EXPECT_THAT(Refusal(folder / "a.wav", "/"), HasSubstr("root folder"));
}

TEST(CaptureFolder, BytesOfTheSourcesNameThatAreNoUtf8AreReplaced)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "Caf\xE9.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    EXPECT_EQ(Dub(folder / "Caf\xE9.wav", captures.Path()), captures / "Caf\uFFFD-001.wav");
}

TEST(CaptureFolder, SuchCharactersInTheSourcesNameAreReplaced)
{
    CTemporaryFolder folder, captures;
    WriteSound(folder / "say \"hi\" \\ Ä.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    EXPECT_EQ(Dub(folder / "say \"hi\" \\ Ä.wav", captures.Path()),
              captures / "say _hi_ _ Ä-001.wav");
}

TEST(CaptureFolder, AVeryLongNameIsCutBetweenCharacters)
{
    CTemporaryFolder folder, captures;
    std::string strName = "x";
    while (strName.size() < 249)
    {
        strName += "ä";
    }
    WriteSound(folder / (strName + ".wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    const std::string strDub =
        Dub(folder / (strName + ".wav"), captures.Path()).filename().string();
    EXPECT_EQ(strDub, strName.substr(0, 229) + "-001.wav");
}

TEST(CaptureFolder, APathThatDoesNotFitTheRecordIsRefused)
{
    CTemporaryFolder folder;
    WriteSound(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    fs::path deep = folder.Path();
    // "/a-999999.wav" needs 13 bytes and the record holds 1023.
    while (deep.string().size() < 1010)
    {
        const size_t nLeft = 1010 - deep.string().size() - 1;
        deep /= std::string(nLeft > 200 ? 150 : nLeft, 'd');
        fs::create_directory(deep);
    }
    ASSERT_EQ(deep.string().size(), 1010U);
    EXPECT_EQ(Refusal(folder / "a.wav", deep), "");
    WriteSound(folder / "ab.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10);
    EXPECT_THAT(Refusal(folder / "ab.wav", deep), HasSubstr("longer than 1023 bytes"));
}
