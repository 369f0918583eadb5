// The takes that wait on this machine, with real journals and the real server.

#include "signal/CaptureCore.h"
#include "signal/TakeJournal.h"
#include "tests/apps/link/ProgramFixture.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

namespace
{

constexpr std::uint32_t kRate = 48000;
constexpr std::uint32_t kFrames = 4800;
constexpr double kOffset = 1.25 * kRate; // of the server, samples

// A host without a view, so that its takes wait.
class CHostWithoutView
{
public:
    explicit CHostWithoutView(const fs::path& captures) : m_core(Settings(captures)) {}

    void Capture(double dPosition)
    {
        std::vector<float> samples(kFrames);
        for (std::size_t n = 0; n < samples.size(); ++n)
            samples[n] = static_cast<float>(std::sin(dPosition + static_cast<double>(n)));
        const float* pSamples = samples.data();
        m_core.SetArmed(true);
        m_core.Process({true, false, 1, dPosition}, &pSamples, kFrames);
        m_core.WaitUntilWritten();
    }
    void EndTake()
    {
        m_core.EndTake();
        m_core.WaitUntilWritten();
    }

private:
    static CCaptureSettings Settings(const fs::path& captures)
    {
        fs::create_directories(captures);
        CCaptureSettings settings;
        settings.captureFolder = captures;
        settings.format.nChannels = 1;
        settings.format.nRate = kRate;
        return settings;
    }

    CCaptureCore m_core;
};

class TakesTest : public RealServerTest
{
protected:
    // What a host leaves that is closed with its takes undelivered.
    void LeaveTakesAt(const std::vector<double>& positions) const
    {
        CHostWithoutView host(m_captures);
        for (const double dPosition : positions)
        {
            host.Capture(dPosition);
            host.EndTake();
        }
    }
    // What one leaves that is killed while it captures.
    void LeaveUnfinishedTakeAt(double dPosition) const
    {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t nChild = ::fork();
        if (nChild == 0)
        {
            CHostWithoutView host(m_captures);
            host.Capture(dPosition);
            (void)!::write(ends[1], "x", 1);
            for (;;)
                ::pause();
        }
        char c = 0;
        ::close(ends[1]);
        EXPECT_EQ(::read(ends[0], &c, 1), 1);
        ::close(ends[0]);
        ::kill(nChild, SIGKILL);
        ::waitpid(nChild, nullptr, 0);
    }

    static nlohmann::json Waiting() { return RunLink({"takes", "--json"}).Json()["takes"]; }
    std::string File(int nTake) const
    {
        return (m_captures / ("take-00" + std::to_string(nTake) + ".wav")).string();
    }
    std::string TakesFinding(const char* szWhat) const { return Doctor()["takes"][szWhat]; }
    // Its findings by their names.
    static nlohmann::json Doctor()
    {
        nlohmann::json findings;
        for (const auto& finding : RunLink({"doctor", "--json"}).Findings())
            findings[finding["check"].get<std::string>()] = finding;
        return findings;
    }

    const fs::path m_captures = m_folder / "captures";
};

} // namespace

TEST_F(TakesTest, NothingWaitsAtFirst)
{
    const Ended ended = RunLink({"takes"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput + ended.strError, "");
    const nlohmann::json findings = Doctor();
    EXPECT_EQ(findings["takes"]["verdict"], "ok");
    EXPECT_EQ(findings["losses"]["verdict"], "ok");
}

TEST_F(TakesTest, WhatWaitsIsListedWithItsPlace)
{
    LeaveTakesAt({96000, 200000});
    const Ended ended = RunLink({"takes"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput, File(1) + "\t96000\t48000\t4800\twaiting\n" + File(2) +
                                   "\t200000\t48000\t4800\twaiting\n");
    const nlohmann::json takes = Waiting();
    ASSERT_EQ(takes.size(), 2U);
    EXPECT_EQ(takes[1], (nlohmann::json{{"file", File(2)},
                                        {"position", 200000.0},
                                        {"rate", 48000.0},
                                        {"frames", 4800},
                                        {"lost", 0},
                                        {"state", "waiting"},
                                        {"words", ""}}));
    EXPECT_EQ(TakesFinding("verdict"), "warning");
    EXPECT_THAT(TakesFinding("text"), HasSubstr("2 takes wait for a server, the first " + File(1) +
                                                " from sample 96000, waiting"));
}

TEST_F(TakesTest, WhatADiskCouldNotKeepIsTold)
{
    fs::create_directories(m_captures);
    CTake take;
    take.file = File(1);
    take.dPosition = 96000;
    take.dRate = kRate;
    take.nFrames = kFrames;
    take.nLostFrames = 960;
    const std::string strUuid = CTakeJournal::NewUuid();
    const std::uint64_t nTake = CTakeJournal(m_captures, strUuid).Moved(take);
    ASSERT_NE(nTake, 0U);
    constexpr const char* kLoss = "waiting, 960 frames behind it are lost";
    EXPECT_EQ(RunLink({"takes"}).strOutput, File(1) + "\t96000\t48000\t4800\t" + kLoss + "\n");
    EXPECT_THAT(TakesFinding("text"), HasSubstr(kLoss));

    // Also when the take itself has been delivered, and its host is gone.
    {
        CTakeJournal journal(m_captures, strUuid);
        ASSERT_TRUE(journal.Hold());
        ASSERT_TRUE(journal.Ended(nTake, "delivered", "", 0));
    }
    EXPECT_EQ(RunLink({"takes"}).strOutput, "");
    const nlohmann::json findings = Doctor();
    EXPECT_EQ(findings["takes"]["verdict"], "ok");
    EXPECT_EQ(findings["losses"]["verdict"], "warning");
    EXPECT_EQ(
        findings["losses"]["text"],
        "within a day a disk was too slow or too full for what followed 1 take, the last time "
        "for what followed " +
            File(1) + ", 960 frames from sample 100800 on");
    EXPECT_THAT(findings["losses"]["advice"], HasSubstr("Play that again"));
}

TEST_F(TakesTest, OneIsSentToItsPlaceOnATrackAndWaitsNoMore)
{
    LeaveTakesAt({96000, 200000});
    const Ended ended = RunLink({"takes", "--send", File(2), "--track", "1"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_EQ(ended.strOutput, "delivered\n");
    const auto regions = Track(1)["regions"];
    ASSERT_EQ(regions.size(), 1U);
    EXPECT_EQ(regions[0]["file"], File(2));
    EXPECT_EQ(regions[0]["position"], kOffset + 200000);
    EXPECT_EQ(regions[0]["end"], 4800);
    EXPECT_EQ(Waiting().size(), 1U);
    const Ended again = RunLink({"takes", "--send", File(2)});
    EXPECT_EQ(again.nExitCode, 2);
    EXPECT_THAT(again.strError, HasSubstr("no take " + File(2) + " waits"));
    EXPECT_EQ(Track(1)["regions"].size(), 1U);
}

TEST_F(TakesTest, WhatTheServerHasAlreadyIsNotDoubled)
{
    LeaveTakesAt({96000});
    EXPECT_EQ(RunLink({"send", File(1), "--track", "0", "--position", "156000"}).nExitCode, 0);
    EXPECT_EQ(RunLink({"takes", "--send", File(1)}).strOutput, "duplicate\n");
    EXPECT_EQ(Track(0)["regions"].size(), 1U);
    EXPECT_EQ(Waiting().size(), 0U);
}

TEST_F(TakesTest, AForgottenOneKeepsItsFile)
{
    LeaveTakesAt({96000});
    EXPECT_EQ(RunLink({"takes", "--forget", File(1)}).nExitCode, 0);
    EXPECT_EQ(Waiting().size(), 0U);
    EXPECT_TRUE(fs::exists(File(1)));
    EXPECT_EQ(Track(0)["regions"].size(), 0U);
}

TEST_F(TakesTest, AnUnfinishedOneIsMendedAndSent)
{
    LeaveUnfinishedTakeAt(96000);
    const nlohmann::json takes = Waiting();
    ASSERT_EQ(takes.size(), 1U);
    EXPECT_EQ(takes[0]["state"], "not finished");
    EXPECT_EQ(takes[0]["position"], 96000);
    EXPECT_THAT(TakesFinding("text"), HasSubstr("not finished"));
    const Ended ended = RunLink({"takes", "--send", takes[0]["file"]});
    EXPECT_EQ(ended.strOutput, "delivered\n") << ended.strError;
    const auto region = Track(0)["regions"][0];
    EXPECT_EQ(region["file"], File(1));
    EXPECT_EQ(region["end"], 4800);
    EXPECT_EQ(region["position"], kOffset + 96000);
}

TEST_F(TakesTest, ThoseOfARunningHostAreLeftToIt)
{
    CHostWithoutView host(m_captures);
    host.Capture(96000);
    host.EndTake();
    EXPECT_EQ(Waiting()[0]["state"], "held by a running host");
    EXPECT_EQ(TakesFinding("verdict"), "ok");
    for (const char* szOption : {"--send", "--forget"})
    {
        const Ended ended = RunLink({"takes", szOption, File(1)});
        EXPECT_EQ(ended.nExitCode, 2);
        EXPECT_THAT(ended.strError, HasSubstr("is a running host's"));
    }
    EXPECT_EQ(Waiting().size(), 1U);
    EXPECT_EQ(Track(0)["regions"].size(), 0U);
}

TEST_F(TakesTest, WithoutAServerItGoesOnWaiting)
{
    LeaveUnfinishedTakeAt(96000);
    m_server.reset();
    const Ended ended = RunLink({"takes", "--send", Waiting()[0]["file"]});
    EXPECT_EQ(ended.nExitCode, 3);
    EXPECT_THAT(ended.strError, HasSubstr("Tarvane not running"));
    const nlohmann::json takes = Waiting();
    ASSERT_EQ(takes.size(), 1U);
    EXPECT_EQ(takes[0]["file"], File(1)) << "mended meanwhile";
    EXPECT_EQ(takes[0]["frames"], 4800);
    EXPECT_EQ(takes[0]["state"], "waiting");
}

TEST_F(TakesTest, ARefusedOneGoesOnWaiting)
{
    LeaveTakesAt({96000});
    EXPECT_EQ(RunLink({"takes", "--send", File(1), "--track", "7"}).nExitCode, 1);
    EXPECT_EQ(Waiting().size(), 1U);
}
