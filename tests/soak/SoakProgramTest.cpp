#include "apps/support/process/ChildProcess.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

using testing::HasSubstr;

namespace
{

constexpr std::chrono::minutes kLong{12};
constexpr const char* kOptions = "--seed 2026 --minutes 3 --views 2 --plug-ins 1 --deliveries 1600 "
                                 "--round 200 --server-kills 36 --host-kills 14 --view-kills 16 "
                                 "--bus-restarts 8 --disk-fills 8 --allow 16384";

} // namespace

TEST(SoakProgram, EveryInvariantHoldsInThreeMinutesWithAFixedSeed)
{
    // The sanitizer keeps what is freed for later checks; with little of that, growth can be seen.
    const char* const szOptions = std::getenv("ASAN_OPTIONS");
    const std::string strOptions = szOptions != nullptr ? std::string(szOptions) + ":" : "";
    setenv("ASAN_OPTIONS", (strOptions + "quarantine_size_mb=1").c_str(), 1);
    std::vector<std::string> command{WITH_DESKTOP, "--private", SOAK_PROGRAM};
    std::istringstream options(kOptions);
    command.insert(command.end(), std::istream_iterator<std::string>(options), {});
    Tarvane::CChildProcess soak(command);
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
