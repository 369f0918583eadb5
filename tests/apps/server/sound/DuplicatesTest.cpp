#include "apps/server/sound/Duplicates.h"

#include "apps/server/sound/SoundFiles.h"
#include "tests/apps/server/database/MadeSession.h"
#include "tests/apps/server/sound/FileRead.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::BytesRead;
using TarvaneTest::CMadeSession;
using TarvaneTest::MakeSound;
using TarvaneTest::Noise;

constexpr PositionRange Range(std::int64_t nFirst, std::int64_t nLast)
{
    return {nFirst, nLast};
}

TEST(AddedPositions, WholeOffsetsOnOneSideOfZeroGiveOnePlace)
{
    EXPECT_EQ(AddedPositions(100, 0.0), Range(100, 100));
    EXPECT_EQ(AddedPositions(100, 96000.0), Range(96100, 96100));
    EXPECT_EQ(AddedPositions(-100, 0.0), Range(-100, -100));
    EXPECT_EQ(AddedPositions(-100, -50.0), Range(-150, -150));
}

TEST(AddedPositions, FractionalOffsetsReachTheNextPlace)
{
    // 100 <= d < 101 and 0.5: from 100.5 to just below 101.5.
    EXPECT_EQ(AddedPositions(100, 0.5), Range(100, 101));
    EXPECT_EQ(AddedPositions(100, -0.5), Range(99, 100));
    // -101 < d <= -100 and 0.5: from just above -100.5 to -99.5.
    EXPECT_EQ(AddedPositions(-100, 0.5), Range(-100, -99));
    EXPECT_EQ(AddedPositions(-100, -0.5), Range(-101, -100));
}

TEST(AddedPositions, ZeroStandsForBothSidesOfIt)
{
    EXPECT_EQ(AddedPositions(0, 0.0), Range(0, 0));
    EXPECT_EQ(AddedPositions(0, 10.0), Range(9, 10));
    EXPECT_EQ(AddedPositions(0, -10.0), Range(-10, -9));
    EXPECT_EQ(AddedPositions(0, 0.5), Range(0, 1));
    EXPECT_EQ(AddedPositions(0, 10.5), Range(9, 11));
    EXPECT_EQ(AddedPositions(0, 1.0), Range(0, 1));
    EXPECT_EQ(AddedPositions(0, -1.0), Range(-1, 0));
}

TEST(AddedPositions, SumsAcrossZeroAreCutTowardZero)
{
    EXPECT_EQ(AddedPositions(-10, 10.0), Range(0, 0));
    EXPECT_EQ(AddedPositions(10, -10.0), Range(0, 0));
    EXPECT_EQ(AddedPositions(10, -12.0), Range(-2, -1));
    EXPECT_EQ(AddedPositions(-10, 12.0), Range(1, 2));
    EXPECT_EQ(AddedPositions(10, -10.5), Range(0, 0));
    EXPECT_EQ(AddedPositions(10, -11.0), Range(-1, 0));
    EXPECT_EQ(AddedPositions(-10, 11.0), Range(0, 1));
}

TEST(AddedPositions, AreWhatAClientComputes)
{
    // Every d in quarters, and as near to each end of its interval as the sum still tells it apart.
    const double dNear = std::ldexp(1.0, -20);
    for (double dOffset : {0.0, 0.25, 0.5, -0.25, -0.75, 3.0, -3.0, 2.5, -2.5, 7.75, -7.75})
    {
        for (std::int64_t nQuery = -9; nQuery <= 9; nQuery++)
        {
            std::set<std::int64_t> positions;
            for (double dPlace = -11.0; dPlace <= 11.0; dPlace += 0.25)
            {
                for (double d : {dPlace - dNear, dPlace, dPlace + dNear})
                {
                    if (static_cast<std::int64_t>(d) == nQuery)
                        positions.insert(static_cast<std::int64_t>(dOffset + d));
                }
            }
            const PositionRange range = AddedPositions(nQuery, dOffset);
            EXPECT_EQ(range, Range(*positions.begin(), *positions.rbegin()))
                << nQuery << " with " << dOffset;
            EXPECT_EQ(range.nLast - range.nFirst + 1, std::int64_t(positions.size()));
        }
    }
}

TEST(AddedPositions, FarOutStaysWithinRange)
{
    EXPECT_EQ(AddedPositions(kLargestPosition, 1e12),
              Range(kLargestPosition + 1'000'000'000'000, kLargestPosition + 1'000'000'000'000));
    EXPECT_EQ(AddedPositions(-kLargestPosition, -1e12),
              Range(-kLargestPosition - 1'000'000'000'000, -kLargestPosition - 1'000'000'000'000));
}

class Duplicates : public testing::Test
{
protected:
    // Region and capture: frames 10 to 60 of one sound in two files, at 1000.
    Duplicates()
    {
        m_captured.strPath = MakeSound(m_folder / "new.wav", Noise(100));
        m_captured.nTrackId = 1;
        m_captured.nStart = 10;
        m_captured.nEnd = 60;
        m_captured.nPosition = 1000;
        m_captured.nSampleRate = 48000;
        m_region = m_captured;
        m_region.nId = 7;
        m_region.strPath = MakeSound(m_folder / "old.wav", Noise(100));
    }

    bool Has(double dLinkOffset = 0.0)
    {
        CMadeSession session({"Vox", "Guitar"}, dLinkOffset);
        session.AddRegion(m_region);
        return HasDuplicate(session, m_captured);
    }

    TarvaneTest::CTemporaryFolder m_folder;
    Region m_region;
    Region m_captured;
};

TEST_F(Duplicates, TheSameAudioUnderAnotherNameIsOne)
{
    EXPECT_TRUE(Has());
}

TEST_F(Duplicates, TheSameFileIsOne)
{
    m_region.strPath = m_captured.strPath;
    EXPECT_TRUE(Has());
}

TEST_F(Duplicates, AnEmptyDocumentHasNone)
{
    CMadeSession session({"Vox"}, 0.0);
    EXPECT_FALSE(HasDuplicate(session, m_captured));
}

TEST_F(Duplicates, EverySampleOfTheRegionCounts)
{
    for (std::size_t nFrame : {10u, 35u, 59u})
    {
        std::vector<double> samples = Noise(100);
        samples[nFrame] = samples[nFrame] == 0.5 ? 0.25 : 0.5;
        MakeSound(m_folder / "old.wav", samples);
        EXPECT_FALSE(Has()) << nFrame;
    }
}

TEST_F(Duplicates, SamplesOutsideTheRegionDoNotCount)
{
    std::vector<double> samples = Noise(100);
    samples[9] = samples[60] = 0.123;
    MakeSound(m_folder / "old.wav", samples);
    EXPECT_TRUE(Has());
}

TEST_F(Duplicates, LongRegionsAreComparedToTheirEnd)
{
    std::vector<double> samples = Noise(300'000);
    m_captured.nEnd = m_region.nEnd = 300'000;
    MakeSound(m_folder / "new.wav", samples);
    MakeSound(m_folder / "old.wav", samples);
    EXPECT_TRUE(Has());
    samples.back() = samples.back() == 0.5 ? 0.25 : 0.5;
    MakeSound(m_folder / "old.wav", samples);
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, TheFormOfTheFileDoesNotCount)
{
    for (int nFormat : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_AIFF | SF_FORMAT_PCM_32,
                        SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_FLOAT})
    {
        MakeSound(m_folder / "old.wav", Noise(100), 1, 48000, nFormat);
        EXPECT_TRUE(Has()) << std::hex << nFormat;
    }
}

TEST_F(Duplicates, ASampleThatIsNoNumberEqualsItself)
{
    std::vector<double> samples = Noise(100);
    samples[20] = std::numeric_limits<double>::quiet_NaN();
    for (const char* szName : {"new.wav", "old.wav"})
        MakeSound(m_folder / szName, samples, 1, 48000, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_TRUE(Has());
}

TEST_F(Duplicates, ZeroEqualsItsNegative)
{
    std::vector<double> samples = Noise(100);
    samples[20] = 0.0;
    MakeSound(m_folder / "new.wav", samples, 1, 48000, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    samples[20] = -0.0;
    MakeSound(m_folder / "old.wav", samples, 1, 48000, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_TRUE(Has());
    samples[21] = samples[21] == 0.5 ? 0.25 : 0.5;
    MakeSound(m_folder / "old.wav", samples, 1, 48000, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, AnotherStretchOfTheSameFileIsComparedToo)
{
    std::vector<double> samples = Noise(100);
    std::copy(samples.begin() + 10, samples.begin() + 40, samples.begin() + 60);
    m_region.strPath = MakeSound(m_folder / "new.wav", samples);
    m_captured.nEnd = 40;
    m_region.nStart = 60;
    m_region.nEnd = 90;
    m_region.nPosition = 950;
    EXPECT_TRUE(Has());
    m_region.nStart = 50;
    m_region.nEnd = 80;
    m_region.nPosition = 960;
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, AFileThatIsThereAlreadyIsNotReadThrough)
{
    constexpr std::int64_t kFrames = 2'000'000;
    m_region.strPath = MakeSound(m_folder / "new.wav", Noise(kFrames));
    std::filesystem::create_hard_link(m_region.strPath, m_folder / "link.wav");
    m_region.strPath = m_folder / "link.wav";
    m_captured.nEnd = m_region.nEnd = kFrames;
    const std::int64_t nBefore = BytesRead();
    EXPECT_TRUE(Has());
    EXPECT_LT(BytesRead() - nBefore, kFrames);
}

TEST_F(Duplicates, TrackRateAndLengthCount)
{
    m_region.nTrackId = 2;
    EXPECT_FALSE(Has());
    m_region.nTrackId = 1;
    m_region.nSampleRate = 44100;
    EXPECT_FALSE(Has());
    m_region.nSampleRate = 48000;
    m_region.nEnd = 59;
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, AFileWhoseRateHasChangedIsNotTheSame)
{
    MakeSound(m_folder / "old.wav", Noise(100), 1, 44100);
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, ChannelsCount)
{
    std::vector<double> stereo;
    for (double dSample : Noise(100))
        stereo.insert(stereo.end(), {dSample, dSample});
    MakeSound(m_folder / "old.wav", stereo, 2);
    EXPECT_FALSE(Has());
    m_region.channels = {1};
    EXPECT_TRUE(Has());
    m_region.channels = {0, 1};
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, EachChannelIsCompared)
{
    std::vector<double> samples = Noise(200);
    MakeSound(m_folder / "new.wav", samples, 2);
    MakeSound(m_folder / "old.wav", samples, 2);
    EXPECT_TRUE(Has());
    samples[2 * 59 + 1] = samples[2 * 59 + 1] == 0.5 ? 0.25 : 0.5;
    MakeSound(m_folder / "old.wav", samples, 2);
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, ThePlaceIsTheHostsPlusTheOffset)
{
    m_region.nPosition = 97000;
    EXPECT_FALSE(Has());
    EXPECT_TRUE(Has(2.0));
    m_region.nPosition = 1000;
    EXPECT_FALSE(Has(2.0));
}

TEST_F(Duplicates, NeighboursOfThePlaceAreNotThePlace)
{
    for (std::int64_t nPosition : {96999, 97001})
    {
        m_region.nPosition = nPosition;
        EXPECT_FALSE(Has(2.0)) << nPosition;
    }
}

TEST_F(Duplicates, AFractionalOffsetAllowsBothPlacesItMayMean)
{
    // 48000 * 0.00001 = 0.48 samples.
    for (std::int64_t nPosition : {999, 1000, 1001, 1002})
    {
        m_region.nPosition = nPosition;
        EXPECT_EQ(Has(0.00001), nPosition == 1000 || nPosition == 1001) << nPosition;
    }
}

TEST_F(Duplicates, NegativePositionsAreCutTowardZero)
{
    m_captured.nPosition = -1000;
    for (std::int64_t nPosition : {-1001, -1000, -999, -998})
    {
        m_region.nPosition = nPosition;
        EXPECT_EQ(Has(), nPosition == -1000) << nPosition;
        EXPECT_EQ(Has(0.00001), nPosition == -1000 || nPosition == -999) << nPosition;
        EXPECT_EQ(Has(-0.00001), nPosition == -1001 || nPosition == -1000) << nPosition;
    }
}

TEST_F(Duplicates, TheRateOfTheFileScalesTheOffset)
{
    for (const char* szName : {"new.wav", "old.wav"})
        MakeSound(m_folder / szName, Noise(100), 1, 44100);
    m_captured.nSampleRate = m_region.nSampleRate = 44100;
    m_region.nPosition = 1000 + 88200;
    EXPECT_TRUE(Has(2.0));
}

TEST_F(Duplicates, AnotherStretchOfAnotherFileCanBeTheSameAudioInTheSamePlace)
{
    const std::vector<double> samples = Noise(100);
    MakeSound(m_folder / "old.wav", {samples.begin() + 5, samples.end()});
    m_region.nStart = 5;
    m_region.nEnd = 55;
    EXPECT_FALSE(Has());
    m_region.nPosition = 1005;
    EXPECT_TRUE(Has());
}

TEST_F(Duplicates, ARegionWhoseFileIsGoneOrCutIsNoDuplicate)
{
    MakeSound(m_folder / "old.wav", std::vector<double>(59, 0.5));
    EXPECT_FALSE(Has());
    const std::vector<double> samples = Noise(100);
    MakeSound(m_folder / "old.wav", {samples.begin(), samples.begin() + 59});
    EXPECT_FALSE(Has());
    std::filesystem::remove(m_folder / "old.wav");
    EXPECT_FALSE(Has());
    m_region.channels = {1};
    MakeSound(m_folder / "old.wav", samples);
    EXPECT_FALSE(Has());
}

TEST_F(Duplicates, ACaptureThatCannotBeReadIsAnError)
{
    std::filesystem::remove(m_folder / "new.wav");
    EXPECT_THROW(Has(), CSoundFileError);
}

} // namespace
} // namespace Tarvane::Server
