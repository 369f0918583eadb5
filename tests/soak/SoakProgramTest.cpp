#include "apps/support/process/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace
{

constexpr std::chrono::minutes kLong{12};
constexpr const char* kOptions = "--seed 2026 --minutes 3 --views 2 --plug-ins 1 --deliveries 1600 "
                                 "--round 200 --server-kills 36 --host-kills 14 --view-kills 16 "
                                 "--bus-restarts 8 --disk-fills 8 --allow 16384";

std::vector<std::string> SoakCommand(const std::string& strOptions)
{
    std::vector<std::string> command{WITH_DESKTOP, "--private", SOAK_PROGRAM};
    std::istringstream options(strOptions);
    command.insert(command.end(), std::istream_iterator<std::string>(options), {});
    return command;
}

// Of a view that captures one take after the other: the first, once others stand behind it. True
// when it was there.
bool RemoveFirstTake(const fs::path& folder)
{
    constexpr std::size_t kOthers = 2;
    std::error_code ignored;
    std::set<fs::path> takes;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored))
    {
        if (entry.path().extension() == ".wav")
            takes.insert(entry.path());
    }
    return takes.size() > kOthers && fs::remove(*takes.begin(), ignored);
}

} // namespace

TEST(SoakProgram, EveryInvariantHoldsInThreeMinutesWithAFixedSeed)
{
    // The sanitizer keeps what is freed for later checks; with little of that, growth can be seen.
    const char* const szOptions = std::getenv("ASAN_OPTIONS");
    const std::string strOptions = szOptions != nullptr ? std::string(szOptions) + ":" : "";
    setenv("ASAN_OPTIONS", (strOptions + "quarantine_size_mb=1").c_str(), 1);
    Tarvane::CChildProcess soak(SoakCommand(kOptions));
    const auto nCode = soak.WaitForEnd(kLong);
    if (szOptions != nullptr)
        setenv("ASAN_OPTIONS", szOptions, 1);
    ASSERT_TRUE(nCode.has_value()) << soak.Output() << soak.ErrorOutput();
    EXPECT_EQ(*nCode, 0) << soak.Output() << soak.ErrorOutput();
    EXPECT_THAT(soak.Output(), HasSubstr("server kills          36\n"));
    EXPECT_THAT(soak.Output(), HasSubstr("host kills            14\n"));
    EXPECT_THAT(soak.Output(), HasSubstr("view kills            16\n"));
    EXPECT_THAT(soak.Output(), HasSubstr("bus restarts          8\n"));
    EXPECT_THAT(soak.Output(), HasSubstr("disk fills            8\n"));
    EXPECT_THAT(soak.Output(), HasSubstr("every invariant holds\n"));
}

// Its verdict is worth something only if it can be another.
TEST(SoakProgram, ATakeThatGoesIsFoundAndTheEvidenceKept)
{
    const TarvaneTest::CTemporaryFolder folder;
    const fs::path work = folder / "work";
    Tarvane::CChildProcess soak(
        SoakCommand("--views 1 --plug-ins 0 --deliveries 12 --round 6 --server-kills 0 "
                    "--host-kills 0 --view-kills 0 --bus-restarts 0 --disk-fills 0 --allow 1048576 "
                    "--keep " +
                    work.string()));
    while (soak.IsRunning() && !RemoveFirstTake(work / "captures/view-0"))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const auto nCode = soak.WaitForEnd(kLong);
    EXPECT_EQ(nCode, 1) << soak.ErrorOutput();
    EXPECT_THAT(soak.Output(), HasSubstr("\nBROKEN file-kept: host 0, element 0, "));
    EXPECT_THAT(soak.Output(), HasSubstr("\nBROKEN file-kept: region on track "));
    EXPECT_THAT(soak.Output(), HasSubstr("\nthe evidence is in " + work.string() + "\n"));
    EXPECT_THAT(soak.Output(), testing::Not(HasSubstr("every invariant holds")));
    for (const char* szFile : {"plan.txt", "round-0/session.tarvane", "round-0/server.log",
                               "round-0/host-0.log", "round-0/attempts.txt"})
        EXPECT_GT(fs::file_size(work / szFile), 0U) << szFile;
    EXPECT_FALSE(fs::exists(work / "round-1")) << "it went on";
}
