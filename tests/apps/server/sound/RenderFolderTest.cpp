#include "apps/server/sound/RenderFolder.h"

#include "apps/server/sound/SoundFiles.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/FailingCalls.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <fstream>
#include <limits>
#include <unistd.h>

namespace Tarvane::Server
{
namespace
{

using namespace TarvaneTest;
using testing::ElementsAre;
using testing::HasSubstr;

class RenderFolder : public testing::Test
{
protected:
    RenderFolder()
    {
        m_region.nId = 7;
        m_region.strPath = MakeSound(m_folder / "take.wav", Noise(100));
        m_region.nStart = 10;
        m_region.nEnd = 60;
    }

    std::string ErrorOfWriting()
    {
        try
        {
            m_made.Write(m_region);
            return "written";
        }
        catch (const CSoundFileError& error)
        {
            return error.what();
        }
    }

    CTemporaryFolder m_folder;
    CRenderFolder m_made{m_folder / "deep" / "made"};
    Region m_region;
};

TEST_F(RenderFolder, TheFileTellsWhereItsFirstSampleLies)
{
    for (const auto& [nPosition, nTold] :
         {std::pair(480000LL, 480010LL), std::pair(5000000000LL, 5000000010LL),
          std::pair(-100000LL, 0LL)})
    {
        m_region.nPosition = nPosition;
        SF_INFO info{};
        SNDFILE* pFile = sf_open(m_made.Write(m_region).c_str(), SFM_READ, &info);
        ASSERT_NE(pFile, nullptr);
        SF_BROADCAST_INFO broadcast{};
        EXPECT_TRUE(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast));
        sf_close(pFile);
        EXPECT_EQ(broadcast.time_reference_low |
                      static_cast<long long>(broadcast.time_reference_high) << 32,
                  nTold);
    }
}

TEST_F(RenderFolder, TheFileHoldsTheRegionAndNothingElse)
{
    const std::string strPath = m_made.Write(m_region);
    EXPECT_EQ(strPath, (m_folder / "deep/made/take-region-7.wav").string());
    const std::vector<double> all = Noise(100);
    EXPECT_EQ(ReadSamples(strPath), std::vector<double>(all.begin() + 10, all.begin() + 60));
    EXPECT_THAT(m_folder.Files(), ElementsAre("deep/made/take-region-7.wav", "take.wav"));
}

TEST_F(RenderFolder, RateAndChosenChannelsAreKept)
{
    const std::vector<double> all = Noise(300);
    MakeSound(m_region.strPath, all, 3, 44100);
    m_region.channels = {0, 2};
    CSoundFile file(m_made.Write(m_region));
    EXPECT_EQ(file.SampleRate(), 44100);
    EXPECT_EQ(file.Channels(), 2);
    std::vector<double> samples;
    file.Read(samples, 2);
    EXPECT_EQ(samples, (std::vector<double>{all[30], all[32], all[33], all[35]}));
}

TEST_F(RenderFolder, EverySampleOfEveryFormIsExact)
{
    m_region.nStart = 0;
    m_region.nEnd = 100;
    const struct
    {
        int nFormat;
        int nMade;
    } forms[] = {
        {SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SF_FORMAT_PCM_16},
        {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_PCM_16},
        {SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_PCM_24},
        {SF_FORMAT_AIFF | SF_FORMAT_PCM_32, SF_FORMAT_PCM_32},
        {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_FLOAT},
        {SF_FORMAT_WAV | SF_FORMAT_DOUBLE, SF_FORMAT_DOUBLE},
        {SF_FORMAT_WAV | SF_FORMAT_ULAW, SF_FORMAT_FLOAT},
    };
    for (const auto& form : forms)
    {
        MakeSound(m_region.strPath, Noise(100), 1, 48000, form.nFormat);
        const std::string strPath = m_made.Write(m_region);
        EXPECT_EQ(ReadSamples(strPath), ReadSamples(m_region.strPath)) << std::hex << form.nFormat;
        EXPECT_EQ(CSoundFile(strPath).SampleForm(), form.nMade) << std::hex << form.nFormat;
    }
}

TEST_F(RenderFolder, FullScaleStaysFullScale)
{
    m_region.nStart = 0;
    m_region.nEnd = 3;
    const double dMost = 2147483647.0 / 2147483648.0;
    MakeSound(m_region.strPath, {-1.0, dMost, 0.0}, 1, 48000, SF_FORMAT_WAV | SF_FORMAT_PCM_32);
    EXPECT_THAT(ReadSamples(m_made.Write(m_region)), ElementsAre(-1.0, dMost, 0.0));
}

TEST_F(RenderFolder, NoFileIsEverReplaced)
{
    std::filesystem::create_directories(m_folder / "deep/made");
    std::ofstream(m_folder / "deep/made/take-region-7.wav") << "somebody's";
    EXPECT_EQ(m_made.Write(m_region), (m_folder / "deep/made/take-region-7-2.wav").string());
    EXPECT_EQ(m_made.Write(m_region), (m_folder / "deep/made/take-region-7-3.wav").string());
    EXPECT_EQ(std::filesystem::file_size(m_folder / "deep/made/take-region-7.wav"), 10u);
}

TEST_F(RenderFolder, LongNamesAreCutBetweenCharacters)
{
    std::string strLong;
    for (int n = 0; n < 80; n++)
        strLong += "\u20ac";
    m_region.strPath = MakeSound(m_folder / (strLong + ".wav"), Noise(100));
    const std::filesystem::path path = m_made.Write(m_region);
    EXPECT_EQ(path.filename().string(), strLong.substr(0, 198) + "-region-7.wav");
}

TEST_F(RenderFolder, NamesThatBreakScriptsAndListsAreMended)
{
    m_region.strPath = MakeSound(m_folder / "a\nb\"c\\d\x7f.wav", Noise(100));
    const std::filesystem::path path = m_made.Write(m_region);
    EXPECT_EQ(path.filename().string(), "a_b_c_d_-region-7.wav");
}

TEST_F(RenderFolder, FailuresLeaveNoFile)
{
    m_region.nEnd = 101;
    EXPECT_THAT(ErrorOfWriting(), HasSubstr("is too short by now"));
    m_region.nEnd = 60;
    m_region.channels = {1};
    EXPECT_THAT(ErrorOfWriting(), HasSubstr("has no channel 1 any more"));
    m_region.channels.clear();
    for (int nCall : {1, 2})
    {
        const CFailingCall failing("fsync", nCall, EIO);
        EXPECT_THAT(ErrorOfWriting(), HasSubstr("cannot sync"));
    }
    // Of the last failure the file has its name already.
    EXPECT_THAT(m_folder.Files(), ElementsAre("deep/made/take-region-7.wav", "take.wav"));
    std::filesystem::remove(m_region.strPath);
    EXPECT_THAT(ErrorOfWriting(), HasSubstr("does not exist"));
}

TEST_F(RenderFolder, LinksOfOthersAreNotFollowed)
{
    std::ofstream(m_folder / "precious") << "as it was";
    std::filesystem::create_directories(m_folder / "deep/made");
    for (const std::string& strName :
         {".being-written-" + std::to_string(getpid()) + ".wav", std::string("take-region-7.wav")})
        std::filesystem::create_symlink(m_folder / "precious", m_folder / "deep/made" / strName);
    EXPECT_EQ(m_made.Write(m_region), (m_folder / "deep/made/take-region-7-2.wav").string());
    EXPECT_EQ(std::filesystem::file_size(m_folder / "precious"), 9u);
}

TEST_F(RenderFolder, AFolderThatCannotBeMadeIsAnError)
{
    std::ofstream(m_folder / "deep") << "a file";
    EXPECT_THAT(ErrorOfWriting(), HasSubstr("cannot make the folder"));
}

} // namespace
} // namespace Tarvane::Server
