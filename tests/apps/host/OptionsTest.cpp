#include "apps/host/Options.h"

#include "tests/apps/support/ManualPage.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <gmock/gmock.h>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace
{

class HostOptionsTest : public testing::Test
{
protected:
    HostOptionsTest()
    {
        fs::create_directory(folder / "View.bundle");
        options.strBundle = folder / "View.bundle";
        options.strCaptureFolder = folder / "captures";
    }

    std::string Sound(const std::string& strName, size_t nFrames, int nRate)
    {
        WriteSound(folder / strName, SF_FORMAT_WAV | SF_FORMAT_PCM_16, nFrames, 1, nRate);
        return folder / strName;
    }

    std::string Refusal() const
    {
        try
        {
            MakePlan(options);
            return "";
        }
        catch (const CUsageError& error)
        {
            return error.what();
        }
    }

    CTemporaryFolder folder;
    HostOptions options;
};

} // namespace

TEST_F(HostOptionsTest, FilesLieOneBehindTheOtherFromZero)
{
    options.files = {Sound("a.wav", 1000, 48000), Sound("b.wav", 500, 48000),
                     Sound("c.wav", 10, 48000)};
    const HostPlan plan = MakePlan(options);
    ASSERT_EQ(plan.sources.size(), 3U);
    EXPECT_EQ(plan.sources[0].dPosition, 0.0);
    EXPECT_EQ(plan.sources[1].dPosition, 1000.0);
    EXPECT_EQ(plan.sources[2].dPosition, 1500.0);
    EXPECT_EQ(plan.sources[1].file, folder / "b.wav");
}

TEST_F(HostOptionsTest, PositionsAreForTheFirstFilesAndTheRestFollow)
{
    options.files = {Sound("a.wav", 1000, 48000), Sound("b.wav", 500, 48000),
                     Sound("c.wav", 10, 48000)};
    options.positions = {96000, -20.5};
    const HostPlan plan = MakePlan(options);
    EXPECT_EQ(plan.sources[0].dPosition, 96000.0);
    EXPECT_EQ(plan.sources[1].dPosition, -20.5);
    EXPECT_EQ(plan.sources[2].dPosition, 479.5);
}

TEST_F(HostOptionsTest, AFileBehindOneOfAnotherRateStartsAtItsEndInItsOwnSamples)
{
    options.files = {Sound("a.wav", 48001, 48000), Sound("b.wav", 10, 44100)};
    EXPECT_EQ(MakePlan(options).sources[1].dPosition, 44101.0);
}

TEST_F(HostOptionsTest, MorePositionsThanFilesAreRefused)
{
    options.files = {Sound("a.wav", 10, 48000)};
    options.positions = {0, 1};
    EXPECT_THAT(Refusal(), HasSubstr("more positions than sound files"));
}

TEST_F(HostOptionsTest, WhoNotifiesThoseThatHaveLeftIsNotRecorded)
{
    options.files = {Sound("a.wav", 10, 48000)};
    for (const SignalFault fault : {SignalFault::ListenersKept, SignalFault::NotifiesAfterDisposal})
    {
        options.faults = {fault, SignalFault::Storm};
        options.strRecord = "new.jsonl";
        EXPECT_THAT(Refusal(), HasSubstr("cannot be recorded"));
        options.strRecord.clear();
        EXPECT_THAT(Refusal(), testing::Not(HasSubstr("cannot be recorded")));
    }
    options.faults = {SignalFault::Storm};
    options.strRecord = "new.jsonl";
    EXPECT_THAT(Refusal(), testing::Not(HasSubstr("cannot be recorded")));
}

TEST_F(HostOptionsTest, SpeedIsANumberAboveZeroOrMax)
{
    for (const auto& [strSpeed, dSpeed] :
         {std::pair("1", 1.0), std::pair("0.5", 0.5), std::pair("20", 20.0), std::pair("max", 0.0)})
    {
        options.strSpeed = strSpeed;
        EXPECT_EQ(MakePlan(options).settings.dSpeed, dSpeed) << strSpeed;
    }
    for (const char* szSpeed : {"0", "-1", "fast", "", "1x", "inf", "nan"})
    {
        options.strSpeed = szSpeed;
        EXPECT_THAT(Refusal(), HasSubstr("is no speed")) << szSpeed;
    }
}

TEST_F(HostOptionsTest, CapturesGoToTheResultsFolderUnlessSaidOtherwise)
{
    options.strResults = folder / "out";
    EXPECT_EQ(MakePlan(options).settings.captureFolder, folder / "captures");
    options.strCaptureFolder.clear();
    EXPECT_EQ(MakePlan(options).settings.captureFolder, folder / "out/captures");
    options.strResults.clear();
    EXPECT_EQ(MakePlan(options).settings.captureFolder, fs::current_path() / "captures");
}

TEST_F(HostOptionsTest, PlanningTouchesNothing)
{
    options.files = {Sound("a.wav", 10, 48000)};
    options.strResults = folder / "out";
    MakePlan(options);
    EXPECT_FALSE(fs::exists(folder / "captures"));
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(HostOptionsTest, WithoutAHandThereMustBeAFile)
{
    options.fHeadless = true;
    EXPECT_THAT(Refusal(), HasSubstr("nothing to capture"));
    options.fCommands = true;
    EXPECT_EQ(Refusal(), "");
}

TEST_F(HostOptionsTest, AMissingBundleIsRefusedByName)
{
    options.strBundle = folder / "None.bundle";
    EXPECT_THAT(Refusal(), HasSubstr("there is no bundle " + (folder / "None.bundle").string()));
}

TEST_F(HostOptionsTest, ACaptureFolderWhosePathsWouldNotFitIsRefused)
{
    options.files = {Sound("a.wav", 10, 48000)};
    options.strCaptureFolder = folder / std::string(1010, 'd');
    EXPECT_THAT(Refusal(), HasSubstr("longer than 1023 bytes"));
}

TEST_F(HostOptionsTest, ACaptureFolderThatCannotBeMadeIsRefused)
{
    std::ofstream(folder / "file").flush();
    EXPECT_THROW(MakeCaptureFolder(folder / "file/captures"), CUsageError);
    EXPECT_THROW(MakeCaptureFolder(folder / "file"), CUsageError);
    EXPECT_NO_THROW(MakeCaptureFolder(folder / "new/captures"));
    EXPECT_TRUE(fs::is_directory(folder / "new/captures"));
}

namespace
{

class HostCommandLine : public testing::Test
{
protected:
    HostCommandLine()
    {
        DeclareOptions(m_app, m_options);
        AddCommonOptions(m_app, "some capture was neither delivered nor a duplicate, or not whole");
    }

    CLI::App m_app{"", "tarvane-host"};
    HostOptions m_options;
};

} // namespace

TEST_F(HostCommandLine, TakesEachOption)
{
    m_app.parse(
        "--position 480 --position -1.5 --bundle b --track 3 --capture-folder c --speed 2 "
        "--headless --commands --stalls --count-objects --results r --log l --ack-timeout 2.5 "
        "--misbehave storm,record-short one.wav two.wav");
    EXPECT_EQ(m_options.positions, (std::vector<double>{480, -1.5}));
    EXPECT_EQ(m_options.strBundle, "b");
    EXPECT_EQ(m_options.nTrack, 3);
    EXPECT_EQ(m_options.strCaptureFolder, "c");
    EXPECT_EQ(m_options.strSpeed, "2");
    EXPECT_TRUE(m_options.fHeadless);
    EXPECT_TRUE(m_options.fCommands);
    EXPECT_TRUE(m_options.fStalls);
    EXPECT_TRUE(m_options.fCountObjects);
    EXPECT_EQ(m_options.strResults, "r");
    EXPECT_EQ(m_options.strLog, "l");
    EXPECT_EQ(m_options.dAckTimeout, 2.5);
    EXPECT_EQ(m_options.faults, (SignalFaults{SignalFault::RecordShort, SignalFault::Storm}));
    EXPECT_EQ(m_options.files, (std::vector<std::string>{"one.wav", "two.wav"}));
}

TEST_F(HostCommandLine, ManualPageHasEveryOption)
{
    ExpectManualDescribes(m_app, HOST_MANUAL);
}

TEST_F(HostCommandLine, ManualPageHasEveryFault)
{
    const std::string strPage = ManualPage(HOST_MANUAL);
    for (const SignalFaultKind& kind : SignalFaultKinds())
    {
        EXPECT_THAT(strPage,
                    testing::ContainsRegex("\n\\.BR? [a-z\", -]*" + std::string(kind.szName)));
    }
}
