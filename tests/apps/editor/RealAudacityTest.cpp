// What Audacity itself makes of what it is told. Run beside one (scripts/with-audacity), whose
// process AUDACITY_PROCESS tells, and which has nothing open yet; the cases follow on one another.
#include "apps/editor/AudacityEditor.h"
#include "tests/apps/editor/EditorFixture.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>
#include <thread>

using namespace Tarvane::Editor;
using namespace TarvaneTest;
using namespace testing;
namespace fs = std::filesystem;
using std::chrono::seconds;

namespace
{

constexpr std::int64_t kAnchor = 48000;
constexpr std::int64_t kPlace = 123457;
constexpr int kLength = 5000;

// One project for all cases, and the takes that it has had.
class RealAudacity : public testing::Test
{
protected:
    static void SetUpTestSuite() { s_pFolder = std::make_unique<CTemporaryFolder>(); }
    static void TearDownTestSuite() { s_pFolder.reset(); }

    static fs::path In(const std::string& strName) { return *s_pFolder / strName; }
    static CAudacityEditor Editor(std::chrono::milliseconds patience = seconds(40))
    {
        return {In("edit.aup3"), {.patience = patience}};
    }
    static Region Take(const std::string& strName, std::int64_t nPosition, unsigned nSeed,
                       int nChannels = 1, int nRate = 48000)
    {
        Region region;
        region.nId = nSeed;
        region.strFile = MakeSound(In(strName + ".wav"),
                                   Noise(kLength * static_cast<std::size_t>(nChannels), nSeed),
                                   nChannels, nRate, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        region.strName = strName;
        region.nPosition = nPosition;
        region.nLength = kLength;
        region.nRate = nRate;
        return region;
    }
    static Deadline Soon() { return std::chrono::steady_clock::now() + seconds(100); }
    static std::string Tell(const std::string& strCommand)
    {
        return CAudacityPipe("/tmp", Soon(), Soon()).Ask(strCommand);
    }
    static std::size_t CountOf(const std::string& strPart, const std::string& strText)
    {
        std::size_t nCount = 0;
        for (std::size_t n = 0; (n = strText.find(strPart, n)) != std::string::npos; n++)
            nCount++;
        return nCount;
    }
    // Whether the project on disk has this number of seconds, to the last bit.
    static bool HasTime(double dSeconds)
    {
        std::string strBytes(sizeof dSeconds, '\0');
        std::memcpy(strBytes.data(), &dSeconds, sizeof dSeconds);
        return CountOf(strBytes, TextOf(In("edit.aup3")) + TextOf(In("edit.aup3-wal"))) != 0;
    }
    // All that sounds, from the first clip on.
    static std::vector<double> Exported(int nChannels)
    {
        const fs::path file = In("export" + std::to_string(nChannels) + ".wav");
        CAudacityPipe pipe("/tmp", Soon(), Soon());
        pipe.Ask("SelectAll:");
        pipe.Ask("Export2: Filename=" + CAudacityPipe::Quoted(file.string()) +
                 " NumChannels=" + std::to_string(nChannels));
        return ReadSamples(file);
    }

    static std::unique_ptr<CTemporaryFolder> s_pFolder;
};

std::unique_ptr<CTemporaryFolder> RealAudacity::s_pFolder;

} // namespace

TEST_F(RealAudacity, AnExportIsTheTakesWhereTheyWereTold)
{
    Region left = Take("left", kAnchor, 1);
    Region muted = Take("muted", kAnchor + 100, 2);
    muted.fMuted = true;
    // The middle of the second of two channels.
    Region part = Take("part", kPlace, 3, 2);
    part.nStart = 1000;
    part.nLength = 3000;
    part.channels = {1};
    const std::string strName = "V\xc3\xb6x \"1\" \\";
    Editor().Take({{{strName, {left, muted}}, {"Guitar", {part}}}});

    const std::string strTracks = Tell("GetInfo: Type=Tracks");
    EXPECT_EQ(CountOf("\"name\":\"V\xc3\xb6x \\\"1\\\" \\\"", strTracks), 2U) << strTracks;
    EXPECT_EQ(CountOf("\"name\":\"Guitar\"", strTracks), 1U) << strTracks;
    EXPECT_EQ(CountOf("\"mute\":1", strTracks), 1U) << strTracks;

    const std::vector<double> exported = Exported(1);
    const std::vector<double> first = ReadSamples(left.strFile);
    const std::vector<double> second = ReadSamples(part.strFile);
    ASSERT_EQ(exported.size(), static_cast<std::size_t>(kPlace - kAnchor + part.nLength));
    std::size_t nWrong = 0;
    for (std::size_t n = 0; n < exported.size(); n++)
    {
        const auto nInPart = static_cast<std::int64_t>(n) - (kPlace - kAnchor);
        const double dExpected =
            n < first.size() ? first[n]
            : nInPart >= 0   ? second[static_cast<std::size_t>(nInPart + part.nStart) * 2 + 1]
                             : 0;
        nWrong += exported[n] != dExpected;
    }
    EXPECT_EQ(nWrong, 0U) << "of " << exported.size();
}

TEST_F(RealAudacity, PlacesAreKeptToTheLastBitAtAnyRateAndFarAway)
{
    const std::int64_t nFar = std::int64_t(999990) * 48000 + 7;
    Region other = Take("other", 44100 * 5 + 1, 4, 2, 44100);
    EXPECT_FALSE(HasTime(static_cast<double>(nFar) / 48000));
    Editor().Take({{{"Other", {other, Take("far", nFar, 5)}}}});
    EXPECT_TRUE(HasTime(static_cast<double>(nFar) / 48000));
    EXPECT_TRUE(HasTime((44100.0 * 5 + 1) / 44100));
    EXPECT_TRUE(HasTime(static_cast<double>(kPlace) / 48000));
}

TEST_F(RealAudacity, SeveralChannelsComeOntoOneTrackEach)
{
    const std::size_t nBefore = CountOf("\"name\":", Tell("GetInfo: Type=Tracks"));
    Editor().Take({{{"Wide", {Take("wide", 96000, 6, 4)}}}});
    const std::string strTracks = Tell("GetInfo: Type=Tracks");
    EXPECT_EQ(CountOf("\"name\":", strTracks), nBefore + 4);
    EXPECT_EQ(CountOf("\"name\":\"Wide\"", strTracks), 4U) << strTracks;
    EXPECT_EQ(CountOf("\"start\":2,", strTracks), 4U) << strTracks;
}

TEST_F(RealAudacity, WhileItAsksInAWindowATakeIsRefusedAndComesOnceThen)
{
    const std::size_t nBefore = CountOf("\"name\":", Tell("GetInfo: Type=Tracks"));
    CAudacityEditor editor = Editor(seconds(10));
    {
        // It complains in a window, and so this is not answered.
        CAudacityPipe pipe("/tmp", Soon(), Soon());
        pipe.Until(std::chrono::steady_clock::now() + seconds(5));
        EXPECT_THROW(pipe.Ask("OpenProject2: Filename=\"/none/none.aup3\""), CEditorError);
    }
    const Model model{{{"Late", {Take("late", 48000, 7)}}}};
    EXPECT_THROW(editor.Take(model), CEditorError);
    const auto end = std::chrono::steady_clock::now() + seconds(100);
    for (bool fTaken = false; !fTaken && std::chrono::steady_clock::now() < end;)
    {
        ASSERT_EQ(std::system("xdotool key Return"), 0);
        try
        {
            editor.Take(model);
            fTaken = true;
        }
        catch (const CEditorError& error)
        {
            std::this_thread::sleep_for(seconds(1));
        }
    }
    const std::string strTracks = Tell("GetInfo: Type=Tracks");
    EXPECT_EQ(CountOf("\"name\":", strTracks), nBefore + 1) << strTracks;
    EXPECT_EQ(CountOf("\"name\":\"Late\"", strTracks), 1U) << strTracks;
}

// The last one.
TEST_F(RealAudacity, WhenItIsKilledATakeIsRefusedAndWhatItHadIsOnDisk)
{
    ASSERT_NE(std::getenv("AUDACITY_PROCESS"), nullptr);
    ASSERT_EQ(kill(static_cast<pid_t>(std::atol(std::getenv("AUDACITY_PROCESS"))), SIGKILL), 0);
    CAudacityEditor editor = Editor();
    std::string strWhy;
    try
    {
        editor.Take({{{"Vox", {Take("after", 0, 8)}}}});
    }
    catch (const CEditorError& error)
    {
        strWhy = error.what();
    }
    EXPECT_THAT(strWhy, HasSubstr("Audacity does not listen"));
    EXPECT_TRUE(HasTime(static_cast<double>(kPlace) / 48000));
}
