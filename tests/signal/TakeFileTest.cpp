#include "signal/TakeFile.h"

#include "tests/apps/support/FailingCalls.h"
#include "tests/signal/CoreUnderTest.h"
#include "tests/signal/FileSizeLimit.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace Tarvane;
using namespace TarvaneTest;
namespace fs = std::filesystem;

namespace
{

constexpr std::uint32_t kChannels = 64;
constexpr std::uint64_t kBlock = 16;
constexpr std::uint64_t kFrameBytes = kChannels * sizeof(float);
constexpr std::uint64_t kFourGigabytes = std::uint64_t{1} << 32;
constexpr double kPosition = 5'000'000'000;

using Block = std::array<float, kBlock * kChannels>;

Block BlockAt(std::int64_t nPosition)
{
    Block block;
    for (std::uint64_t n = 0; n < block.size(); ++n)
    {
        block[n] = SampleAt(nPosition + static_cast<std::int64_t>(n / kChannels),
                            static_cast<std::uint32_t>(n % kChannels));
    }
    return block;
}

// Of this process, open on the file.
int DescriptorOf(const fs::path& file)
{
    struct stat wanted
    {
    };
    EXPECT_EQ(::stat(file.c_str(), &wanted), 0);
    for (int nFile = 3; nFile < 1024; ++nFile)
    {
        struct stat status
        {
        };
        if (::fstat(nFile, &status) == 0 && status.st_ino == wanted.st_ino &&
            status.st_dev == wanted.st_dev)
        {
            return nFile;
        }
    }
    return -1;
}

// A take of 64 channels that is still being written, and larger than 4 GB: a block, silence that
// takes no room on the disk, and another block behind that.
class TakeBeyond4Gigabytes : public testing::Test
{
protected:
    TakeBeyond4Gigabytes() : file(folder.Path(), Format(), kPosition)
    {
        EXPECT_EQ(file.Write(BlockAt(0).data(), kBlock), kBlock);
        // As behind a long silence: the library goes on where the file is written next.
        const off_t nEnd = ::lseek(DescriptorOf(file.Path()),
                                   static_cast<off_t>(kSilence * kFrameBytes), SEEK_CUR);
        EXPECT_GT(nEnd, static_cast<off_t>(kFourGigabytes));
        EXPECT_EQ(file.Write(BlockAt(kBehind).data(), kBlock), kBlock);
    }

    static CTakeFormat Format()
    {
        CTakeFormat format;
        format.nChannels = kChannels;
        format.nFileFormat = TakeFormatFloat();
        return format;
    }

    static void ExpectWhole(const fs::path& path)
    {
        char szForm[5] = {};
        std::ifstream(path, std::ios::binary).read(szForm, 4);
        EXPECT_STREQ(szForm, "RF64");
        SF_INFO info{};
        SNDFILE* pFile = sf_open(path.c_str(), SFM_READ, &info);
        ASSERT_NE(pFile, nullptr) << sf_strerror(nullptr);
        EXPECT_EQ(info.frames, static_cast<sf_count_t>(kBehind + kBlock));
        EXPECT_EQ(info.channels, static_cast<int>(kChannels));
        SF_BROADCAST_INFO broadcast{};
        EXPECT_TRUE(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast));
        EXPECT_EQ(broadcast.time_reference_low | std::uint64_t{broadcast.time_reference_high} << 32,
                  static_cast<std::uint64_t>(kPosition));
        for (const std::uint64_t nFrame : {std::uint64_t{0}, kBehind})
        {
            Block block;
            EXPECT_EQ(sf_seek(pFile, static_cast<sf_count_t>(nFrame), SEEK_SET),
                      static_cast<sf_count_t>(nFrame));
            EXPECT_EQ(sf_readf_float(pFile, block.data(), kBlock), static_cast<sf_count_t>(kBlock));
            EXPECT_EQ(block, BlockAt(static_cast<std::int64_t>(nFrame)));
        }
        sf_close(pFile);
    }

    static constexpr std::uint64_t kSilence = kFourGigabytes / kFrameBytes;
    static constexpr std::uint64_t kBehind = kBlock + kSilence;

    CTemporaryFolder folder;
    CTakeFile file;
};

} // namespace

TEST_F(TakeBeyond4Gigabytes, IsWholeWhenItIsPublished)
{
    file.Publish();
    EXPECT_EQ(file.Failure(), "");
    ExpectWhole(file.Path());
}

TEST_F(TakeBeyond4Gigabytes, HasAHeaderThatIsValidWhileItIsWritten)
{
    ExpectWhole(file.Path());
}

TEST_F(TakeBeyond4Gigabytes, IsMendedWhenItsHostWasKilled)
{
    const CMendedFile mended =
        MendTakeFile(file.Path(), "take", [](ino_t) { FAIL() << "it is mended in its place"; });
    EXPECT_EQ(mended.nFrames, kBehind + kBlock);
    ExpectWhole(mended.path);
}

TEST(TakeFile, BehindTheLastWholeFrameThatAFullDiskTakesNothingIsLeft)
{
    constexpr std::uint64_t kStereoFrame = 2 * 3;
    const CTemporaryFolder folder;
    CTakeFile file(folder.Path(), CTakeFormat(), 0);
    const std::vector<float> samples(2 * 100, 0.25F);
    EXPECT_EQ(file.Write(samples.data(), 100), 100U);
    const std::uint64_t nBefore = fs::file_size(file.Path());
    {
        const CFileSizeLimit full(nBefore + 10 * kStereoFrame + 4);
        EXPECT_EQ(file.Write(samples.data(), 100), 10U);
    }
    EXPECT_EQ(fs::file_size(file.Path()), nBefore + 10 * kStereoFrame);
    EXPECT_EQ(ExamineTakeFile(file.Path()).nFrames, 110U);
    EXPECT_EQ(file.Write(samples.data(), 100), 0U) << "nothing goes behind the gap";
    EXPECT_NE(file.Failure(), "");
}

TEST(TakeFile, IsPublishedWhenTheDiskHasItAndItsName)
{
    CTemporaryFolder folder;
    CTakeFormat format;
    format.nChannels = kChannels;
    for (const int nSync : {1, 2})
    {
        CTakeFile file(folder.Path(), format, kPosition);
        ASSERT_EQ(file.Write(BlockAt(0).data(), kBlock), kBlock);
        CFailingCall fail("fsync", nSync, EIO);
        file.Publish();
        EXPECT_TRUE(fail.HasFailed()) << "the file, and then its folder";
        EXPECT_EQ(file.Failure().empty(), nSync == 2);
    }
}
