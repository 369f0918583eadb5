#include "apps/server/sound/Fingerprinting.h"

#include "apps/server/database/SessionStore.h"
#include "apps/server/sound/Duplicates.h"
#include "tests/apps/server/sound/FileRead.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::BytesRead;
using TarvaneTest::MakeSound;
using TarvaneTest::Noise;
using TarvaneTest::Settle;

constexpr std::int64_t kFrames = 200'000;
constexpr std::int64_t kBytes = kFrames * 3; // of 24 bits
// One for each way of taking the samples.
constexpr int kFormats[] = {SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_FLOAT,
                            SF_FORMAT_WAV | SF_FORMAT_DOUBLE};

class Fingerprinting : public testing::Test
{
protected:
    std::filesystem::path Made() const
    {
        CSessionStore(m_file).Save(CSession({"Vox"}, 0));
        return m_file;
    }

    Region RegionOf(const std::string& strPath) const
    {
        Region region;
        region.nTrackId = 1;
        region.strPath = strPath;
        region.nEnd = kFrames;
        region.nSampleRate = 48000;
        return region;
    }

    Region Take(const std::string& strName, const std::vector<double>& samples,
                int nFormat = SF_FORMAT_WAV | SF_FORMAT_PCM_24) const
    {
        return RegionOf(MakeSound(m_folder / strName, samples, 1, 48000, nFormat));
    }

    Fingerprint Of(const Region& region)
    {
        const auto fingerprint = FingerprintOf(m_session, region);
        EXPECT_TRUE(fingerprint) << region.strPath;
        return fingerprint.value_or(Fingerprint());
    }

    // What it costs to ask once more.
    std::int64_t Reads(const Region& region)
    {
        const std::int64_t nBefore = BytesRead();
        FingerprintOf(m_session, region);
        return BytesRead() - nBefore;
    }

    // Of a file that has not been touched for a while.
    void Keep(const Region& region)
    {
        Settle(region.strPath);
        FingerprintOf(m_session, region);
        ASSERT_TRUE(m_session.HasNotedFingerprints());
        m_session.SaveFingerprints();
        ASSERT_FALSE(m_session.HasNotedFingerprints());
    }

    bool HasDuplicateOf(const Region& captured)
    {
        m_session.Begin();
        const bool fHas = HasDuplicate(m_session, captured);
        m_session.Rollback();
        return fHas;
    }

    void Add(const Region& region)
    {
        m_session.Begin();
        m_session.AddRegion(region);
        m_session.Commit();
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "session";
    CSessionDatabase m_session{Made()};
    std::vector<double> m_samples = Noise(kFrames);
};

TEST_F(Fingerprinting, IsOfTheSamplesAndNotOfTheName)
{
    for (const int nFormat : kFormats)
    {
        SCOPED_TRACE(nFormat);
        const Fingerprint one = Of(Take("one.wav", m_samples, nFormat));
        EXPECT_EQ(Of(Take("other.wav", m_samples, nFormat)), one);
        for (const std::size_t nFrame : {std::size_t(0), std::size_t(kFrames - 1)})
        {
            std::vector<double> samples = m_samples;
            samples[nFrame] = samples[nFrame] == 0.5 ? 0.25 : 0.5;
            const Fingerprint changed = Of(Take("other.wav", samples, nFormat));
            EXPECT_EQ(changed.nForm, one.nForm);
            EXPECT_NE(changed.strContent, one.strContent) << nFrame;
        }
    }
}

TEST_F(Fingerprinting, FloatsAreComparedWhateverFileTheyAreIn)
{
    const Fingerprint one = Of(Take("one.wav", m_samples, SF_FORMAT_WAV | SF_FORMAT_FLOAT));
    EXPECT_EQ(Of(Take("one.aiff", m_samples, SF_FORMAT_AIFF | SF_FORMAT_FLOAT)), one);
    EXPECT_NE(Of(Take("two.wav", m_samples, SF_FORMAT_WAV | SF_FORMAT_DOUBLE)).nForm, one.nForm);
}

TEST_F(Fingerprinting, FormsThatCannotBeComparedAreToldApart)
{
    const Fingerprint one = Of(Take("one.wav", m_samples));
    for (const int nFormat : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_AIFF | SF_FORMAT_PCM_24,
                              SF_FORMAT_FLAC | SF_FORMAT_PCM_24, SF_FORMAT_WAV | SF_FORMAT_FLOAT})
        EXPECT_NE(Of(Take("other", m_samples, nFormat)).nForm, one.nForm) << std::hex << nFormat;
}

TEST_F(Fingerprinting, WhatCountsAsEqualIsEqual)
{
    for (const int nFormat : {SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_WAV | SF_FORMAT_DOUBLE})
    {
        SCOPED_TRACE(nFormat);
        m_samples[7] = 0.0;
        m_samples[8] = std::numeric_limits<double>::quiet_NaN();
        const Fingerprint one = Of(Take("one.wav", m_samples, nFormat));
        m_samples[7] = -0.0;
        m_samples[8] = -std::numeric_limits<double>::quiet_NaN();
        EXPECT_EQ(Of(Take("other.wav", m_samples, nFormat)), one);
        m_samples[8] = 0.25;
        EXPECT_NE(Of(Take("other.wav", m_samples, nFormat)), one);
    }
}

TEST_F(Fingerprinting, EachStretchAndEachChannelHasItsOwn)
{
    for (const int nFormat : kFormats)
    {
        SCOPED_TRACE(nFormat);
        Region region =
            RegionOf(MakeSound(m_folder / "stereo.wav", Noise(2 * kFrames), 2, 48000, nFormat));
        Keep(region);
        const Fingerprint whole = Of(region);
        region.channels = {1};
        const Fingerprint right = Of(region);
        EXPECT_NE(right, whole);
        region.channels = {0};
        EXPECT_NE(Of(region), right);
        region.channels = {};
        region.nStart = 1;
        EXPECT_NE(Of(region), whole);
        region.nStart = 0;
        region.nEnd = kFrames - 1;
        EXPECT_NE(Of(region), whole);
    }
}

TEST_F(Fingerprinting, WhatIsKeptIsNotReadAgain)
{
    const Region region = Take("one.wav", m_samples);
    const Fingerprint one = Of(region);
    EXPECT_GT(Reads(region), kBytes) << "nothing is kept yet";
    Keep(region);
    EXPECT_LT(Reads(region), kBytes / 2);
    EXPECT_EQ(Of(region), one);
    EXPECT_FALSE(m_session.HasNotedFingerprints());
}

TEST_F(Fingerprinting, AFileThatHasChangedIsReadAgain)
{
    const Region region = Take("one.wav", m_samples);
    const Fingerprint one = Of(region);
    Keep(region);
    const auto written = std::filesystem::last_write_time(region.strPath);
    m_samples.back() = m_samples.back() == 0.5 ? 0.25 : 0.5;
    Take("one.wav", m_samples);
    std::filesystem::last_write_time(region.strPath, written);
    EXPECT_NE(Of(region), one) << "though size and time of writing are what they were";
}

TEST_F(Fingerprinting, AnotherFileUnderTheNameIsReadToo)
{
    const Region region = Take("one.wav", m_samples);
    const Fingerprint one = Of(region);
    m_samples.back() = m_samples.back() == 0.5 ? 0.25 : 0.5;
    const Region other = Take("other.wav", m_samples);
    Keep(region);
    std::filesystem::rename(other.strPath, region.strPath);
    EXPECT_NE(Of(region), one);
}

TEST_F(Fingerprinting, AFileThatWasChangedJustNowIsNotTrusted)
{
    std::optional<FileState> state;
    do
    {
        EXPECT_TRUE(FingerprintOf(m_session, Take("one.wav", m_samples)));
        state = StateOf(m_folder / "one.wav");
    } while (state->nChanged != std::time(nullptr));
    EXPECT_FALSE(m_session.HasNotedFingerprints());
}

TEST_F(Fingerprinting, AudioThatIsNotThereHasNone)
{
    Region region = Take("one.wav", m_samples);
    region.nEnd++;
    EXPECT_EQ(FingerprintOf(m_session, region), std::nullopt);
    region = Take("one.flac", m_samples, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    region.nEnd++;
    EXPECT_EQ(FingerprintOf(m_session, region), std::nullopt);
    std::filesystem::remove(region.strPath);
    EXPECT_EQ(FingerprintOf(m_session, region), std::nullopt);
}

TEST_F(Fingerprinting, TheSessionIsTheSameWithThem)
{
    const Region region = Take("one.wav", m_samples);
    const std::int64_t nBefore = m_session.UpdateCount();
    Keep(region);
    EXPECT_EQ(CSessionDatabase(m_file).UpdateCount(), nBefore);
    EXPECT_EQ(CSessionDatabase(m_file).Flaw(), std::nullopt);
}

TEST_F(Fingerprinting, ASessionOfBeforeGetsATableForThem)
{
    const Region region = Take("one.wav", m_samples);
    SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE).exec("DROP TABLE fingerprints");
    EXPECT_EQ(CSessionDatabase::Load(m_file).UpdateCount(), 0) << "reading alone needs none";
    CSessionDatabase session(m_file);
    Settle(region.strPath);
    const auto made = FingerprintOf(session, region);
    session.SaveFingerprints();
    EXPECT_EQ(FingerprintOf(session, region), made);
    EXPECT_FALSE(session.HasNotedFingerprints());
}

TEST_F(Fingerprinting, TheOldestOfAMillionGoes)
{
    const Region region = Take("one.wav", m_samples);
    const auto number = [this](const std::string& strOne, std::int64_t nStart)
    {
        SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE)
            .exec("UPDATE fingerprints SET id = " + strOne +
                  " WHERE start = " + std::to_string(nStart));
    };
    Region other = region;
    other.nStart = 1;
    Keep(region);
    Keep(other);
    number("8000001", region.nStart);
    number("8999999", other.nStart);
    other.nStart = 2;
    Keep(other);
    EXPECT_LT(Reads(region), kBytes / 2) << "a million with the one that came";
    other.nStart = 3;
    Keep(other);
    EXPECT_GT(Reads(region), kBytes);
}

TEST_F(Fingerprinting, TheQuestionReadsTheNewFileAlone)
{
    const Region region = Take("one.wav", m_samples), captured = Take("new.wav", m_samples);
    Add(region);
    Keep(region);
    const auto reads = [&]
    {
        const std::int64_t nBefore = BytesRead();
        EXPECT_TRUE(HasDuplicateOf(captured));
        return BytesRead() - nBefore;
    };
    // Both beginnings are compared as they are.
    EXPECT_LT(reads(), 2 * 3 * kLongStretch + kBytes * 5 / 4);
    m_session.SaveFingerprints();
    EXPECT_LT(reads(), 2 * 3 * kLongStretch + kBytes / 4);
}

TEST_F(Fingerprinting, ACopyOfACompressedFileIsNotDecoded)
{
    constexpr int kFlac = SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
    // Silence to begin with, which is equal from any frame on.
    std::fill_n(m_samples.begin(), kLongStretch + 2, 0.0);
    const Region region = Take("one.flac", m_samples, kFlac);
    Add(region);
    std::filesystem::copy_file(region.strPath, m_folder / "copy.flac");
    const Region copy = RegionOf(m_folder / "copy.flac");
    Settle(region.strPath);
    Settle(copy.strPath);
    EXPECT_TRUE(HasDuplicateOf(copy));
    EXPECT_FALSE(m_session.HasNotedFingerprints());

    m_samples.back() = m_samples.back() == 0.5 ? 0.25 : 0.5;
    const Region other = Take("other.flac", m_samples, kFlac);
    ASSERT_EQ(std::filesystem::file_size(other.strPath),
              std::filesystem::file_size(region.strPath));
    EXPECT_FALSE(HasDuplicateOf(other));
    // The same file from another frame on.
    Region later = copy;
    later.nStart = 1;
    later.nEnd = kFrames;
    Region inSession = later;
    inSession.nStart = 0;
    inSession.nEnd = kFrames - 1;
    inSession.nPosition = 1;
    Add(inSession);
    EXPECT_FALSE(HasDuplicateOf(later));
}

TEST_F(Fingerprinting, TakesThatDifferFromTheBeginningAreNotReadThrough)
{
    Add(Take("one.wav", Noise(kFrames, 2)));
    const Region captured = Take("new.wav", m_samples);
    const std::int64_t nBefore = BytesRead();
    EXPECT_FALSE(HasDuplicateOf(captured));
    EXPECT_LT(BytesRead() - nBefore, kBytes);
    EXPECT_FALSE(m_session.HasNotedFingerprints());
}

TEST_F(Fingerprinting, ARegionWhoseFileHasChangedIsNoDuplicate)
{
    const Region region = Take("one.wav", m_samples), captured = Take("new.wav", m_samples);
    Add(region);
    Keep(region);
    EXPECT_TRUE(HasDuplicateOf(captured));
    m_samples.back() = m_samples.back() == 0.5 ? 0.25 : 0.5;
    Take("one.wav", m_samples);
    EXPECT_FALSE(HasDuplicateOf(captured));
    std::filesystem::remove(region.strPath);
    EXPECT_FALSE(HasDuplicateOf(captured));
}

TEST_F(Fingerprinting, LongTakesOfUnlikeFormsAreComparedSampleBySample)
{
    Add(Take("one.flac", m_samples, SF_FORMAT_FLAC | SF_FORMAT_PCM_24));
    EXPECT_TRUE(HasDuplicateOf(Take("new.wav", m_samples)));
    m_samples.back() = m_samples.back() == 0.5 ? 0.25 : 0.5;
    EXPECT_FALSE(HasDuplicateOf(Take("new.wav", m_samples)));
}

} // namespace
} // namespace Tarvane::Server
