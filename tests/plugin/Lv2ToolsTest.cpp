// What the tools for plug-ins say of ours.
#include "tests/plugin/RealHosts.h"

using namespace TarvaneTest;
using namespace testing;

namespace
{

class Lv2Tools : public Test
{
protected:
    CHostSurroundings surroundings;
};

} // namespace

TEST_F(Lv2Tools, TheDescriptionIsValid)
{
    EXPECT_THAT(OutputOf({"lv2_validate", LV2_FOLDER "/tarvane-link.lv2/manifest.ttl",
                          LV2_FOLDER "/tarvane-link.lv2/link.ttl"}),
                AllOf(HasSubstr("Found 0 errors"), Not(HasSubstr("warning"))));
}

TEST_F(Lv2Tools, EachPlugInIsListedWithItsPortsAndItsWindow)
{
    for (const auto& [strName, nPorts] :
         std::vector<std::pair<std::string, int>>{{"mono", 6}, {"stereo", 8}, {"eight", 20}})
    {
        Tarvane::CChildProcess info({"lv2info", "https://tarvane.org/lv2/link#" + strName});
        info.CloseInput();
        EXPECT_EQ(info.WaitForEnd(kLong), 0);
        EXPECT_EQ(info.ErrorOutput(), "");
        EXPECT_THAT(info.Output(), HasSubstr("Port " + std::to_string(nPorts - 1) + ":"));
        EXPECT_THAT(info.Output(), Not(HasSubstr("Port " + std::to_string(nPorts) + ":")));
        EXPECT_THAT(info.Output(), HasSubstr("ui#X11UI"));
        EXPECT_THAT(info.Output(), HasSubstr("reported by port 3"));
    }
}

TEST_F(Lv2Tools, ABenchRunsEachOfThemWithoutAWordOfError)
{
    Tarvane::CChildProcess bench({"lv2bench", "-n", "65536"});
    bench.CloseInput();
    EXPECT_EQ(bench.WaitForEnd(kLong), 0);
    for (const char* szName : {"link#mono", "link#stereo", "link#eight"})
        EXPECT_THAT(bench.Output(), HasSubstr(szName));
    // Others of this machine may ask for what a bench does not have.
    EXPECT_THAT(bench.ErrorOutput(), Not(HasSubstr("tarvane")));
    EXPECT_TRUE(surroundings.TakeFiles().empty());
}
