// What becomes of a capture when the server fails at each point of its delivery. A host that opens
// asks twice for the tracks; a capture asks once when it is armed and once when it ends, and is
// then delivered by three commands: duplicate?, offset?, send.
#include "tests/apps/host/EndToEndFixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

constexpr int kDuplicateCommand = 5;
constexpr int kOffsetCommand = 6;
constexpr int kSendCommand = 7;
constexpr int kCommandsOfADelivery[] = {kDuplicateCommand, kOffsetCommand, kSendCommand};

constexpr const char* kNotRunning = "Error - Tarvane not running.";
constexpr const char* kLaunch = "Locate and launch Tarvane.";
constexpr const char* kNoSession = "No Tarvane session is selected";

class DeliveryFaults : public EndToEnd
{
protected:
    ~DeliveryFaults() override { unsetenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS"); }

    // Takes effect in hosts that start from now on.
    void ShortenTimeout() { setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", "30", 1); }

    void StartServerWith(const std::vector<std::string>& options)
    {
        std::vector<std::string> command{SERVER_PROGRAM, "--session", SessionFile(), "--log",
                                         folder / "server.log"};
        command.insert(command.end(), options.begin(), options.end());
        server.emplace(command);
        ASSERT_TRUE(server->WaitForLine("ready", kLong)) << server->ErrorOutput();
    }

    void StartServerThat(const std::string& strFault, int nEvent)
    {
        StartServerWith({"--track", "Dialogue", "--link-offset", "2.0", "--misbehave",
                         strFault + "@" + std::to_string(nEvent)});
    }

    void StartHost() { host.emplace(HostCommand({"--speed", "max"})); }

    json CaptureOne(double dPosition = 100) { return host->Capture(One(), dPosition, kLong); }

    // How often the server was asked something.
    size_t Asked(const std::string& strFunction) const
    {
        const std::string strLog = FileText(folder / "server.log");
        size_t nCount = 0;
        for (size_t nAt = strLog.find(strFunction); nAt != std::string::npos;
             nAt = strLog.find(strFunction, nAt + 1))
            ++nCount;
        return nCount;
    }

    size_t AcknowledgesOf(int nElement) const
    {
        const std::string strLog = FileText(folder / "host.log");
        const std::string strLine =
            "64008 TNProperty_ElementDone: nElement " + std::to_string(nElement) + ",";
        size_t nCount = 0;
        for (size_t nAt = strLog.find(strLine); nAt != std::string::npos;
             nAt = strLog.find(strLine, nAt + 1))
            ++nCount;
        return nCount;
    }

    void ExpectNotDelivered(const json& capture, int nElement, const std::string& strMessage,
                            const std::string& strAdvice)
    {
        EXPECT_EQ(capture["outcome"], "not delivered");
        EXPECT_EQ(capture["ack"]["nElement"], nElement);
        EXPECT_EQ(capture["ack"]["fNotDelivered"], 1);
        EXPECT_EQ(capture["message"], strMessage);
        EXPECT_EQ(capture["advice"], strAdvice);
        EXPECT_EQ(AcknowledgesOf(nElement), 1U);
        EXPECT_TRUE(std::filesystem::exists(capture["dub"].get<std::string>()));
    }

    // The server is there again: the same host delivers, once.
    void ExpectNextCaptureWorks(double dPosition, int nElement)
    {
        const json capture = CaptureOne(dPosition);
        EXPECT_EQ(capture["outcome"], "delivered") << capture;
        EXPECT_EQ(AcknowledgesOf(nElement), 1U);
        ASSERT_FALSE(Regions().empty());
        EXPECT_EQ(Regions().back().nPosition, 96000 + dPosition);
    }

    std::optional<CHostClient> host;
};

} // namespace

TEST_F(DeliveryFaults, OffsetMovesTheRegionAndNotTheDuplicateCheck)
{
    StartServerWith({"--track", "Dialogue", "--link-offset", "2.0"});
    StartHost();
    EXPECT_EQ(CaptureOne()["outcome"], "delivered");
    ASSERT_THAT(Regions(), SizeIs(1));
    EXPECT_EQ(Regions()[0].nPosition, 96100);
    const std::string strLog = FileText(folder / "server.log");
    EXPECT_THAT(strLog, HasSubstr("one-001.wav\",100,0,4800)"));
    EXPECT_THAT(strLog, HasSubstr("one-001.wav\", true, false, 96100,0,4800)"));
    EXPECT_THAT(strLog, HasSubstr("MoveDisplayToPosition(96100)"));
    EXPECT_EQ(Asked("CheckForDuplicateRegion("), 1U);
    EXPECT_EQ(Asked("GetLinkSMPTEOffset("), 1U);
    EXPECT_EQ(Asked("AddAudioRegion("), 1U);
    EXPECT_EQ(AcknowledgesOf(0), 1U);
}

TEST_F(DeliveryFaults, ServerThatEndsDuringACommandDeliversNothingAndTheNextCaptureWorks)
{
    for (const int nCommand : kCommandsOfADelivery)
    {
        SCOPED_TRACE(nCommand);
        std::filesystem::remove(SessionFile());
        std::filesystem::remove(folder / "host.log");
        StartServerThat("exit-before-effect", nCommand);
        StartHost();
        ExpectNotDelivered(CaptureOne(), 0, kNotRunning, kLaunch);
        EXPECT_TRUE(server->WaitForEnd(kLong));
        EXPECT_THAT(Regions(), IsEmpty());

        StartServerWith({});
        ExpectNextCaptureWorks(100, 1);
        EXPECT_THAT(Regions(), SizeIs(1));
        host.reset();
        server.reset();
    }
}

// The one that is worse than a failure: the region stands, and nobody was told.
TEST_F(DeliveryFaults, RegionOfALostReplyIsFoundAgainAsADuplicate)
{
    StartServerThat("exit-after-effect", kSendCommand);
    StartHost();
    ExpectNotDelivered(CaptureOne(), 0, kNotRunning, kLaunch);
    EXPECT_TRUE(server->WaitForEnd(kLong));
    ASSERT_THAT(Regions(), SizeIs(1));

    StartServerWith({});
    const json again = CaptureOne();
    EXPECT_EQ(again["outcome"], "duplicate");
    EXPECT_EQ(again["message"], "Same audio captured previously.");
    EXPECT_EQ(again["advice"], "This capture has been cancelled");
    EXPECT_EQ(again["ack"]["fNotDelivered"], 1);
    EXPECT_EQ(AcknowledgesOf(1), 1U);
    EXPECT_THAT(Regions(), SizeIs(1));
    EXPECT_EQ(Asked("AddAudioRegion("), 1U);
}

TEST_F(DeliveryFaults, ServerThatHangsDuringACommandTimesOutAndTheNextCaptureWorks)
{
    ShortenTimeout();
    for (const int nCommand : kCommandsOfADelivery)
    {
        SCOPED_TRACE(nCommand);
        std::filesystem::remove(SessionFile());
        std::filesystem::remove(folder / "host.log");
        StartServerThat("hang", nCommand);
        StartHost();
        ExpectNotDelivered(CaptureOne(), 0, "AEError ID:-1712", "");
        EXPECT_THAT(Regions(), IsEmpty());

        KillServer();
        StartServerWith({});
        ExpectNextCaptureWorks(100, 1);
        EXPECT_THAT(Regions(), SizeIs(1));
        host.reset();
        server.reset();
    }
}

TEST_F(DeliveryFaults, StoppedServerTimesOutAndGoesOnWhereItStood)
{
    ShortenTimeout();
    StartServerWith({"--track", "Dialogue", "--link-offset", "2.0"});
    StartHost();
    server->Stop();
    const json lost = CaptureOne();
    EXPECT_EQ(lost["outcome"], "not delivered");
    EXPECT_EQ(lost["message"], "AEError ID:-1712");
    EXPECT_EQ(AcknowledgesOf(0), 1U);
    server->Continue();
    ExpectNextCaptureWorks(200, 1);
}

TEST_F(DeliveryFaults, ServerThatStartsLateIsFoundWithoutARestartOfTheHost)
{
    StartHost();
    EXPECT_THAT(host->Ready()["tracks"], IsEmpty());
    EXPECT_EQ(host->Ready()["message"], kNotRunning);
    EXPECT_EQ(host->Ready()["advice"], kLaunch);
    ExpectNotDelivered(CaptureOne(), 0, kNotRunning, kLaunch);

    StartServerWith({"--track", "Dialogue", "--link-offset", "2.0"});
    ExpectNextCaptureWorks(100, 1);
}

TEST_F(DeliveryFaults, WithoutTracksOrADocumentNothingIsSent)
{
    const std::vector<std::vector<std::string>> servers = {
        {}, {"--track", "Dialogue", "--no-document"}};
    for (const auto& options : servers)
    {
        SCOPED_TRACE(options.size());
        std::filesystem::remove(SessionFile());
        std::filesystem::remove(folder / "host.log");
        StartServerWith(options);
        StartHost();
        EXPECT_THAT(host->Ready()["tracks"], IsEmpty());
        EXPECT_EQ(host->Ready()["message"], kNoSession);
        ExpectNotDelivered(CaptureOne(), 0, kNoSession, "");
        EXPECT_EQ(Asked("CheckForDuplicateRegion("), 0U);
        EXPECT_EQ(Asked("AddAudioRegion("), 0U);
        host.reset();
        server.reset();
    }
}

// The server refuses the place with a Lua error. The link goes by the status of the command alone
// and acknowledges the capture as delivered, which is how the link is defined.
TEST_F(DeliveryFaults, ScriptErrorOfTheServerIsNoFailureOfTheCommand)
{
    StartServerWith({"--track", "Dialogue", "--link-offset", "2.0"});
    StartHost();
    const json capture = CaptureOne(1e17);
    EXPECT_EQ(capture["ack"]["fNotDelivered"], 0);
    EXPECT_EQ(AcknowledgesOf(0), 1U);
    EXPECT_THAT(Regions(), IsEmpty());
    EXPECT_EQ(Asked("CheckForDuplicateRegion("), 1U);
    EXPECT_EQ(Asked("GetLinkSMPTEOffset("), 1U);
    EXPECT_EQ(Asked("AddAudioRegion("), 1U);
    EXPECT_THAT(FileText(folder / "server.log"), HasSubstr("100000000000096000"));
    ExpectNextCaptureWorks(100, 1);
}

TEST_F(DeliveryFaults, TwoHundredTracksInManyScriptsEachTakeTheirOwnCapture)
{
    std::vector<std::string> options{"--link-offset", "2.0"};
    std::vector<std::string> names;
    const char* kNames[] = {"Dialogue", "Дорожка", "音轨",  "トラック", "트랙",
                            "מסלול",    "مسار",    "Ίχνος", "é ü ß",    "🎤 𝄞"};
    for (int i = 0; i < 200; ++i)
    {
        // Tracks 150 and 151 have one name.
        names.push_back(i == 151 ? names.back()
                                 : std::string(kNames[i % 10]) + " " + std::to_string(i));
        options.insert(options.end(), {"--track", names.back()});
    }
    StartServerWith(options);
    StartHost();
    EXPECT_EQ(host->Ready()["tracks"].get<std::vector<std::string>>(), names);
    for (const int nTrack : {199, 151, 9, 150})
    {
        host->Ask("track " + std::to_string(nTrack), kLong);
        EXPECT_EQ(CaptureOne(1000 * nTrack)["outcome"], "delivered");
        const auto session = Session();
        const auto& document = session.GetDocument(Server::DocumentKind::Script);
        EXPECT_EQ(document.regions.back().nTrackId, document.tracks.at(nTrack).nId);
    }
    EXPECT_THAT(Regions(), SizeIs(4));
}
