// The plug-in in Ardour, without a window: takes of what its transport does lie where it was
// played.
#include "tests/plugin/RealHosts.h"

#include <map>
#include <sstream>
#include <string_view>

using namespace TarvaneTest;
using namespace testing;
using Tarvane::CChildProcess;

namespace
{

// The host's own fades, in frames of a rate: after every start, and at a loop's end.
constexpr std::int64_t FadeIn(std::int64_t nRate)
{
    return nRate / 8;
}
constexpr std::int64_t FadeOut(std::int64_t nRate)
{
    return nRate / 16;
}

struct CSetting
{
    int nRate, nChannels;
    const char* szVariant;
    int nSeconds;              // of audio; behind it there are two more for the punch range
    std::string_view strSteps; // of ardour.lua, an export at last
};

// A session of the timeline's audio, and the host that plays it.
class CArdourSession
{
public:
    explicit CArdourSession(const CSetting& setting)
        : m_nFrames(std::int64_t{setting.nSeconds} * setting.nRate)
    {
        std::filesystem::create_directory(surroundings.folder / "host");
        const std::string strAudio = surroundings.folder / "known.wav";
        OutputOf({TIMELINE_FILE_PROGRAM, "write", strAudio, std::to_string(setting.nRate),
                  std::to_string(setting.nChannels),
                  std::to_string(m_nFrames + 2 * setting.nRate)});
        Set("FOLDER", surroundings.folder / "host");
        Set("AUDIO", strAudio);
        Set("FRAMES", std::to_string(m_nFrames));
        Set("RATE", std::to_string(setting.nRate));
        Set("CHANNELS", std::to_string(setting.nChannels));
        Set("PLUGIN", std::string("https://tarvane.org/lv2/link#") + setting.szVariant);
        Set("STATE", "");
    }

    void Load() { Set("STATE", "load"); }
    void Start(const std::string& strSteps)
    {
        Set("STEPS", strSteps);
        host.emplace(std::vector<std::string>{"ardour7-lua", ARDOUR_SCRIPT});
    }
    // Once the steps are done, and that many regions are with the server. The exit code says
    // nothing: the host crashes at times when all is done.
    void End(std::size_t nRegions)
    {
        EXPECT_TRUE(surroundings.RegionsCome(nRegions));
        host->WriteLine("");
        EXPECT_TRUE(host->WaitForEnd(kLong).has_value());
    }
    std::int64_t Frames() const { return m_nFrames; }

    CHostSurroundings surroundings;
    std::optional<CChildProcess> host;

private:
    static void Set(const std::string& strName, const std::string& strValue)
    {
        ::setenv(("LINK_" + strName).c_str(), strValue.c_str(), 1);
    }

    const std::int64_t m_nFrames;
};

// ---- All that a transport does, at one rate

struct Mono44100
{
    static constexpr CSetting kSetting{44100, 1, "mono", 6,
                                       "transport@64 loop@1024 punch@256 export@441"};
};
struct Stereo48000
{
    static constexpr CSetting kSetting{48000, 2, "stereo", 20,
                                       "transport@333 loop@64 punch@64 export@1024"};
};
struct Eight96000
{
    static constexpr CSetting kSetting{96000, 8, "eight", 6,
                                       "transport@256 loop@256 punch@1024 export@64"};
};

using ArdourSettings = Types<Mono44100, Stereo48000, Eight96000>;

struct CNames
{
    template <typename Setting> static std::string GetName(int)
    {
        return std::to_string(Setting::kSetting.nRate) + "_" + Setting::kSetting.szVariant;
    }
};

// One host plays all steps, with the period that each of them names; each case looks at one step.
template <typename Setting> class ArdourAt : public Test
{
protected:
    static void SetUpTestSuite()
    {
        CArdourSession session(Setting::kSetting);
        session.surroundings.StartServer();
        session.Start(std::string(Setting::kSetting.strSteps));
        // The host frees memory twice at times when it has exported. Then it exports once more.
        std::string strSaid;
        int nCrashes = 0;
        while (!session.host->WaitForLine("done", kLong * 3))
        {
            strSaid += session.host->Output();
            ASSERT_THAT(strSaid, HasSubstr("step punch")) << session.host->ErrorOutput();
            ASSERT_LT(++nCrashes, 4) << session.host->ErrorOutput();
            session.host->WaitForEnd(kLong);
            session.Load();
            const auto nExport = Setting::kSetting.strSteps.find("export");
            session.Start(std::string(Setting::kSetting.strSteps.substr(nExport)));
        }
        strSaid += session.host->Output();

        const auto files = session.surroundings.TakeFiles();
        std::size_t nTake = 0;
        std::istringstream lines(strSaid);
        for (std::string strLine; std::getline(lines, strLine);)
        {
            std::istringstream words(strLine);
            std::string strStep, strName;
            std::size_t nTakes = 0;
            CStep step;
            if (!(words >> strStep >> strName >> step.nPeriod >> nTakes) || strStep != "step")
                continue;
            for (; nTake < nTakes; ++nTake)
                step.takes.push_back(ReadTake(files.at(nTake)));
            // What there is of those exports is delivered too.
            while (nCrashes > 0 && strName == "export" && step.takes.size() > 1)
            {
                s_steps["crashed"].takes.push_back(step.takes.front());
                step.takes.erase(step.takes.begin());
            }
            s_steps[strName] = std::move(step);
        }
        session.End(UniqueTakes().size());
        s_regions = session.surroundings.Regions();
    }
    static void TearDownTestSuite() { s_steps.clear(); }

    struct CStep
    {
        std::int64_t nPeriod = 0;
        std::vector<CTakeFile> takes;
    };

    // Without those of the same audio in the same place, as passes of a loop are. By file.
    static std::map<std::string, const CTakeFile*> UniqueTakes()
    {
        std::vector<const CTakeFile*> all;
        for (const auto& [strName, step] : s_steps)
            for (const CTakeFile& take : step.takes)
                all.push_back(&take);
        std::sort(all.begin(), all.end(),
                  [](auto pOne, auto pOther) { return pOne->file < pOther->file; });
        std::map<std::string, const CTakeFile*> unique;
        for (const CTakeFile* pTake : all)
        {
            if (std::none_of(unique.begin(), unique.end(),
                             [&](const auto& there) {
                                 return there.second->nPosition == pTake->nPosition &&
                                        there.second->samples == pTake->samples;
                             }))
                unique[pTake->file] = pTake;
        }
        return unique;
    }

    static constexpr std::int64_t kRate = Setting::kSetting.nRate;
    static inline std::map<std::string, CStep> s_steps;
    static inline std::vector<Tarvane::Server::Region> s_regions;
};

TYPED_TEST_SUITE(ArdourAt, ArdourSettings, CNames);

} // namespace

TYPED_TEST(ArdourAt, EverySampleOfAnExportIsCaptured)
{
    const auto& [nPeriod, takes] = this->s_steps["export"];
    ASSERT_EQ(takes.size(), 1U);
    EXPECT_EQ(takes[0].nPosition, 0);
    // The host ends with a whole period.
    const std::int64_t nFrames = TypeParam::kSetting.nSeconds * this->kRate;
    EXPECT_GE(takes[0].Frames(), nFrames);
    EXPECT_LT(takes[0].Frames(), nFrames + nPeriod);
    EXPECT_EQ(takes[0].FlawedFrames(0, nFrames), 0);
}

TYPED_TEST(ArdourAt, EachStretchOfTheTimelineIsATakeAtItsOwnPosition)
{
    const auto& takes = this->s_steps["transport"].takes;
    ASSERT_EQ(takes.size(), 3U) << "where it began, on from where it stopped, and where it jumped";
    EXPECT_EQ(takes[0].nPosition, 12345);
    // It goes on where it was stopped: nothing is missing, nothing twice.
    EXPECT_EQ(takes[1].nPosition, 12345 + takes[0].Frames());
    EXPECT_EQ(takes[2].nPosition, this->kRate * 4 - 1);
    for (const CTakeFile& take : takes)
    {
        EXPECT_GT(take.Frames(), FadeIn(this->kRate) * 2);
        EXPECT_EQ(take.FlawedFrames(FadeIn(this->kRate), take.Frames()), 0) << take.nPosition;
    }
}

TYPED_TEST(ArdourAt, EachPassOfALoopIsATakeOfItsLength)
{
    const auto& takes = this->s_steps["loop"].takes;
    ASSERT_GE(takes.size(), 10U);
    for (std::size_t n = 0; n < 10; ++n)
    {
        EXPECT_EQ(takes[n].nPosition, this->kRate);
        EXPECT_EQ(takes[n].Frames(), this->kRate / 4);
        EXPECT_EQ(takes[n].FlawedFrames(n == 0 ? FadeIn(this->kRate) : 0,
                                        this->kRate / 4 - FadeOut(this->kRate)),
                  0)
            << n;
    }
}

TYPED_TEST(ArdourAt, PunchInAndOutInterruptNoTake)
{
    const auto& takes = this->s_steps["punch"].takes;
    ASSERT_EQ(takes.size(), 1U);
    const CTakeFile& take = takes[0];
    const std::int64_t nRangeStart = TypeParam::kSetting.nSeconds * this->kRate + this->kRate / 2;
    EXPECT_EQ(take.nPosition, nRangeStart - this->kRate / 4 - 1);
    // While the track records, what it takes in is heard: silence.
    const std::int64_t nIn = nRangeStart - take.nPosition;
    const std::int64_t nOut = nIn + this->kRate / 4;
    EXPECT_EQ(take.FlawedFrames(FadeIn(this->kRate), nIn), 0);
    EXPECT_GT(take.FlawedFrames(nIn, nOut), this->kRate / 8);
    EXPECT_EQ(take.FlawedFrames(nOut + FadeIn(this->kRate), take.Frames()), 0);
}

TYPED_TEST(ArdourAt, TakesHaveTheHostsRateAndChannels)
{
    ASSERT_GE(this->s_steps.size(), 4U);
    for (const auto& [strName, step] : this->s_steps)
    {
        for (const CTakeFile& take : step.takes)
        {
            EXPECT_EQ(take.nRate, this->kRate);
            EXPECT_EQ(take.nChannels, TypeParam::kSetting.nChannels);
        }
    }
}

TYPED_TEST(ArdourAt, EachTakeStandsOnTheServerOnce)
{
    auto takes = this->UniqueTakes();
    ASSERT_EQ(this->s_regions.size(), takes.size());
    for (const auto& region : this->s_regions)
    {
        ASSERT_EQ(takes.count(region.strPath), 1U) << region.strPath;
        EXPECT_EQ(region.nPosition, takes[region.strPath]->nPosition);
        EXPECT_EQ(region.Length(), takes[region.strPath]->Frames());
        takes.erase(region.strPath);
    }
}

// ---- A host that is killed

TEST(ArdourKilled, ASessionThatIsOpenedAgainHasItsTakesButIsNotArmed)
{
    CArdourSession session({48000, 2, "stereo", 8, ""});
    CHostSurroundings& surroundings = session.surroundings;
    // No server is there; the host is killed in the middle of its second take.
    session.Start("hold@1024");
    ASSERT_TRUE(Comes([&] { return !surroundings.TakeFiles().empty(); }));
    std::uintmax_t nBytes = 0;
    ASSERT_TRUE(Comes(
        [&]
        {
            const auto hidden = surroundings.HiddenFiles();
            nBytes = hidden.empty() ? 0 : std::filesystem::file_size(hidden[0]);
            return nBytes > 200000;
        }));
    session.host->Kill();
    session.host->WaitForEnd(kLong);

    surroundings.StartServer();
    session.Load();
    session.Start("idle@1024");
    ASSERT_TRUE(session.host->WaitForLine("done", kLong)) << session.host->ErrorOutput();
    session.End(2);

    const auto regions = surroundings.Regions();
    std::string strFound;
    for (const auto& region : regions)
        strFound += std::to_string(static_cast<std::int64_t>(region.nPosition)) + "+" +
                    std::to_string(static_cast<std::int64_t>(region.Length())) + " ";
    ASSERT_EQ(regions.size(), 2U) << "each once; what was rolled unarmed is no take: " << strFound;
    EXPECT_EQ(regions[0].nPosition, 12345);
    EXPECT_EQ(regions[1].nPosition, 100001);
    for (const auto& region : regions)
    {
        const CTakeFile take = ReadTake(region.strPath);
        EXPECT_GT(take.Frames(), FadeIn(48000));
        EXPECT_EQ(region.Length(), take.Frames());
        EXPECT_EQ(take.FlawedFrames(FadeIn(48000), take.Frames()), 0);
    }
    // All that was on the disk of the take under way is there.
    EXPECT_GE(std::filesystem::file_size(regions[1].strPath), nBytes);
}
