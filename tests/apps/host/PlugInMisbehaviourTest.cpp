// What the view makes of a plug-in that breaks its side of the protocol.
#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "tests/apps/host/DeliveryFixture.h"

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

class PlugInMisbehaviour : public DeliveryFaults
{
protected:
    void StartBoth(const std::string& strFault, const std::vector<std::string>& options = {})
    {
        StartServerWith({"--track", "Dialogue", "--track", "ADR", "--link-offset", "2.0"});
        std::vector<std::string> all{"--misbehave", strFault};
        all.insert(all.end(), options.begin(), options.end());
        if (options.empty())
            all.insert(all.end(), {"--speed", "max"});
        StartHost(all);
    }

    // As long as a capture whose acknowledge never comes is to be waited for.
    void StartWithoutAck(const std::string& strFault)
    {
        StartBoth(strFault, {"--speed", "max", "--ack-timeout", "2"});
    }

    void ExpectDelivered()
    {
        EXPECT_EQ(CaptureOne()["outcome"], "delivered");
        EXPECT_EQ(AcknowledgesOf(0), 1U);
        ASSERT_THAT(Regions(), SizeIs(1));
        EXPECT_EQ(Regions()[0].nPosition, 96100);
    }

    // By the server, which answers without a result.
    void ExpectRefused()
    {
        const json capture = CaptureOne();
        EXPECT_EQ(capture["ack"]["fNotDelivered"], 1) << capture;
        EXPECT_EQ(AcknowledgesOf(0), 1U);
        EXPECT_EQ(Asked("AddAudioRegion("), 1U);
        EXPECT_THAT(Regions(), IsEmpty());
    }

    void ExpectDroppedInSilence()
    {
        ExpectNotDelivered(CaptureOne(), 0, "", "");
        EXPECT_EQ(Asked("CheckForDuplicateRegion("), 0U);
        EXPECT_EQ(Asked("AddAudioRegion("), 0U);
    }

    void EndHost(int nCode)
    {
        host->Ask("quit", kLong);
        EXPECT_EQ(host->Process().WaitForEnd(kLong), nCode) << host->Process().ErrorOutput();
    }
};

} // namespace

TEST_F(PlugInMisbehaviour, IndexThatIsNeverNegativeIsAnElementEachTime)
{
    StartBoth("index-never-negative");
    EXPECT_EQ(CaptureOne()["outcome"], "delivered");
    // The second pass finds no record, so nothing to send, and acknowledges all the same.
    EXPECT_EQ(Asked("AddAudioRegion("), 1U);
    EXPECT_THAT(Regions(), SizeIs(1));
    EXPECT_THAT(FileText(folder / "host.log"),
                HasSubstr("nElement 0, fHandled 1, fNotDelivered 0, fFinal 1\n"
                          "64008 TNProperty_ElementDone: nElement 0, fHandled 1, fNotDelivered 1, "
                          "fFinal 1\n"
                          "64008 TNProperty_ElementDone: nElement 0, fHandled 1, fNotDelivered 1, "
                          "fFinal 1 - refused with -10851\n"));
}

TEST_F(PlugInMisbehaviour, ElementThatIsNotAnnouncedIsNotDelivered)
{
    StartWithoutAck("elements-unannounced");
    EXPECT_EQ(CaptureOne()["outcome"], "not acknowledged");
    EXPECT_EQ(AcknowledgesOf(0), 0U);
    EXPECT_EQ(Asked("CheckForDuplicateRegion("), 0U);
}

TEST_F(PlugInMisbehaviour, RecordThatIsCutShortIsAnEmptyRegion)
{
    StartBoth("record-short");
    ExpectDroppedInSilence();
}

TEST_F(PlugInMisbehaviour, PathsWithoutAnEndEndWithTheirFields)
{
    StartBoth("paths-unterminated");
    ExpectRefused();
    const std::string strPath = folder / "captures/one-001.wav";
    EXPECT_THAT(FileText(folder / "server.log"),
                HasSubstr("\"" + strPath + std::string(kTNPathSize - strPath.size(), 'x') + "\""));
}

TEST_F(PlugInMisbehaviour, PositionThatIsNoNumberIsZero)
{
    StartBoth("nan-position");
    EXPECT_EQ(CaptureOne()["outcome"], "delivered");
    ASSERT_THAT(Regions(), SizeIs(1));
    EXPECT_EQ(Regions()[0].nPosition, 0);
}

TEST_F(PlugInMisbehaviour, InfinitePositionIsSentAsTheLastOne)
{
    StartBoth("infinite-position");
    ExpectRefused();
    EXPECT_THAT(FileText(folder / "server.log"), HasSubstr("true, false, 9223372036854775807,0,"));
}

TEST_F(PlugInMisbehaviour, RegionOfNoNumbersIsEmpty)
{
    StartBoth("nan-region");
    ExpectDroppedInSilence();
}

TEST_F(PlugInMisbehaviour, RegionWithoutAnEndIsTheServersToRefuse)
{
    StartBoth("infinite-region");
    ExpectRefused();
    EXPECT_THAT(FileText(folder / "server.log"), HasSubstr(",0,9223372036854775807)"));
}

TEST_F(PlugInMisbehaviour, FileThatIsGoneIsTheServersToRefuse)
{
    StartBoth("file-discarded");
    ExpectRefused();
}

TEST_F(PlugInMisbehaviour, ElementWhoseAcknowledgeIsIgnoredIsDeliveredAgainAndKnown)
{
    StartWithoutAck("ack-ignored");
    EXPECT_EQ(CaptureOne()["outcome"], "not acknowledged");
    EXPECT_THAT(Regions(), SizeIs(1));
    EXPECT_EQ(host->Capture(Two(), 5000, kLong)["outcome"], "not acknowledged");
    EXPECT_EQ(Asked("CheckForDuplicateRegion("), 2U);
    EXPECT_EQ(Asked("AddAudioRegion("), 1U);
    EXPECT_EQ(AcknowledgesOf(0), 2U);
    EXPECT_EQ(AcknowledgesOf(1), 0U) << "it never came to be the element to deliver";
}

// Nothing refills the menu, so the track stays chosen although the server has gone: each of the
// three commands finds nobody.
TEST_F(PlugInMisbehaviour, WithoutAServerADeliveryIsThreeFailingCommands)
{
    TraceHost();
    StartBoth("arm-unreported");
    KillServer();
    const json capture = CaptureOne();
    EXPECT_EQ(capture["outcome"], "not delivered");
    EXPECT_EQ(AcknowledgesOf(0), 1U);
    EXPECT_NE(capture["message"], kNotRunning) << "shown at the next refresh, and not before";
    const json opened = host->Ask("open-menu", kLong);
    EXPECT_EQ(opened["message"], kNotRunning);
    EXPECT_EQ(opened["advice"], kLaunch);
    EndHost(1);
    EXPECT_EQ(Sent(), 2U + 3U + 1U) << "to open the view, to deliver, to open the menu";
    EXPECT_EQ(SentInVain(-600), 3U + 1U);
}

TEST_F(PlugInMisbehaviour, UnreportedArmingLeavesMenuAndSwitchAsTheyAre)
{
    TraceHost();
    StartBoth("arm-unreported");
    ExpectDelivered();
    EndHost(0);
    EXPECT_EQ(Sent(), 2U + 3U);
}

TEST_F(PlugInMisbehaviour, ToggleThatArmsNothingIsSaid)
{
    StartBoth("arm-ignored");
    try
    {
        CaptureOne();
        ADD_FAILURE() << "captured";
    }
    catch (const CHostRefusal& refusal)
    {
        EXPECT_THAT(refusal.what(), HasSubstr("does not arm when it is asked to"));
    }
    EXPECT_EQ(host->Ask("state", kLong)["armed"], false);
    EXPECT_THAT(FileText(folder / "host.log"), HasSubstr("fArm 1, fShift 0 - ignored"));
}

TEST_F(PlugInMisbehaviour, TrackThatIsForgottenIsTheFirstAgainAtTheNextRefill)
{
    StartBoth("track-forgotten");
    EXPECT_EQ(host->Ask("track 1", kLong)["selected"], 1);
    ExpectDelivered();
    EXPECT_EQ(TrackOf(Regions()[0]), "Dialogue");
    EXPECT_EQ(host->Ask("state", kLong)["selected"], 0);
}

TEST_F(PlugInMisbehaviour, SixteenNotifyingThreadsDoNoHarm)
{
    StartBoth("sixteen-threads", {"--speed", "1"});
    ExpectDelivered();
    EndHost(0);
}

TEST_F(PlugInMisbehaviour, MainThreadAnswersDuringAStorm)
{
    WriteSound(folder / "long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000 * 600);
    StartBoth("storm", {(folder / "long.wav").string()});
    EXPECT_EQ(host->Ask("arm", kLong)["armed"], true);
    while (host->Ask("state", kLong)["message"] == "")
    {
    }
    for (int n = 0; n < 50; ++n)
        EXPECT_THAT(host->Ask("state", kLong)["message"], HasSubstr("Capturing Audio: "));
    EXPECT_EQ(host->Ask("disarm", kLong)["armed"], false);
    EXPECT_TRUE(host->Process().WaitForLine("\"outcome\":\"delivered\"", kLong));
}

TEST_F(PlugInMisbehaviour, ViewOutlivesAPlugInThatIsDisposedOfWhileItNotifies)
{
    StartBoth("disposed-while-notifying");
    ExpectDelivered();
    EndHost(0);
}

TEST_F(PlugInMisbehaviour, ManyFaultsComeTogether)
{
    StartBoth("storm,nan-position,file-discarded,disposed-while-notifying");
    ExpectRefused();
    EndHost(1);
}
