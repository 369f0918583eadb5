// What a host that watches its view for stalls has to tell. A slow server gives the least that a
// stall lasts; nothing gives the most.
#include "tests/apps/host/DeliveryFixture.h"

using namespace TarvaneTest;
using nlohmann::json;
using testing::HasSubstr;

namespace
{

class StallWatch : public DeliveryFaults
{
protected:
    static constexpr double kDelay = 300; // milliseconds

    // Its answers to these commands come late.
    void StartSlowServer(const std::string& strCommands)
    {
        StartServerWith({"--track", "Dialogue", "--track", "ADR", "--misbehave",
                         "late-reply@" + strCommands, "--delay", "0.3"});
    }

    json Causes() { return host->Ask("stalls", kLong)["stalls"]["causes"]; }
};

} // namespace

TEST_F(StallWatch, AStallLastsAsLongAsTheServerTakes)
{
    StartSlowServer("1-1");
    StartHost({"--speed", "max", "--stalls"});
    EXPECT_GE(Causes()["opening"]["longest"], kDelay);
    host.reset();
    StartSlowServer("7-7");
    StartHost({"--speed", "max", "--stalls"});
    EXPECT_LT(Causes()["opening"]["count"], 2);
    EXPECT_EQ(CaptureOne()["outcome"], "delivered");
    EXPECT_GE(Causes()["delivery"]["longest"], kDelay);
    const json stalls = host->Ask("stalls", kLong)["stalls"];
    EXPECT_GE(stalls["longest"], kDelay);
    EXPECT_GE(stalls["total"], stalls["causes"]["delivery"]["total"]);
}

TEST_F(StallWatch, EveryThingThatTheViewDoesIsCounted)
{
    StartServer();
    StartHost({"--speed", "20", "--stalls"});
    EXPECT_EQ(CaptureOne()["outcome"], "delivered");
    EXPECT_EQ(Causes()["menu"], json());
    host->Ask("open-menu", kLong);
    host->Ask("open-menu", kLong);
    host->Ask("track 1", kLong);
    const json causes = Causes();
    EXPECT_EQ(causes["opening"]["count"], 1);
    EXPECT_EQ(causes["menu"]["count"], 2);
    EXPECT_EQ(causes["track choice"]["count"], 1);
    EXPECT_EQ(causes["toggle"]["count"], 1);
    // When it is armed, when it ends and when it is acknowledged.
    EXPECT_EQ(causes["arming"]["count"], 3);
    EXPECT_EQ(causes["delivery"]["count"], 1);
    EXPECT_GE(causes["progress"]["count"], 1);
    EXPECT_GE(causes["drawing"]["count"], 1);
    EXPECT_FALSE(causes.contains("closing"));
}

TEST_F(StallWatch, TheEndIsToldAndStandsInTheResults)
{
    StartServer();
    const Ended outcome = RunHost({"--stalls", One()});
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strError;
    EXPECT_THAT(outcome.strOutput, HasSubstr("outcome      delivered\n"
                                             "The view kept the main thread "));
    EXPECT_THAT(outcome.strOutput, HasSubstr("\n  closing           1 times "));
    const json results = json::parse(FileText(folder / "out" / "captures.json"));
    EXPECT_EQ(results["captures"].size(), 1U);
    EXPECT_EQ(results["stalls"]["causes"]["closing"]["count"], 1);
    EXPECT_EQ(results["stalls"]["causes"]["delivery"]["count"], 1);
}

TEST_F(StallWatch, NothingIsToldUnasked)
{
    StartServer();
    StartHost();
    EXPECT_THROW(host->Ask("stalls", kLong), Tarvane::CHostRefusal);
    const json answer = host->Everything().back();
    EXPECT_EQ(answer["error"], "nothing is measured - start the host with --stalls.");
    host.reset();
    EXPECT_EQ(RunHost({One()}).strOutput.find("main thread"), std::string::npos);
    EXPECT_FALSE(json::parse(FileText(folder / "out" / "captures.json")).contains("stalls"));
}
