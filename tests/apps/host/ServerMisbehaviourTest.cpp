// What the view makes of a server that misbehaves: words, acknowledge and the session. No reply
// stops the host, and every element is acknowledged once.
#include "tests/apps/host/DeliveryFixture.h"

#include <thread>

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

class ServerMisbehaviour : public DeliveryFaults
{
protected:
    // A server that misbehaves, and a host that knows nothing of it.
    void StartBoth(const std::string& strFaults, const std::vector<std::string>& options = {})
    {
        host.reset();
        server.reset();
        std::filesystem::remove(SessionFile());
        std::filesystem::remove(folder / "host.log");
        std::filesystem::remove(folder / "server.log");
        std::vector<std::string> command{"--track",       "Dialogue", "--track",     "ADR",
                                         "--link-offset", "2.0",      "--misbehave", strFaults};
        command.insert(command.end(), options.begin(), options.end());
        StartServerWith(command);
        StartHost();
    }

    void ExpectDeliveredAt(double dPosition)
    {
        const json capture = CaptureOne();
        EXPECT_EQ(capture["outcome"], "delivered") << capture;
        EXPECT_EQ(AcknowledgesOf(0), 1U);
        ASSERT_THAT(Regions(), SizeIs(1));
        EXPECT_EQ(Regions()[0].nPosition, dPosition);
    }

    void ExpectRefused()
    {
        const json capture = CaptureOne();
        EXPECT_EQ(capture["ack"]["fNotDelivered"], 1) << capture;
        EXPECT_EQ(AcknowledgesOf(0), 1U);
        EXPECT_THAT(Regions(), IsEmpty());
    }

    // Not acknowledged as delivered, and yet in the session: there the next capture finds it.
    void ExpectFoundAgain()
    {
        const json capture = CaptureOne();
        EXPECT_EQ(capture["outcome"], "not delivered") << capture;
        EXPECT_EQ(AcknowledgesOf(0), 1U);
        ASSERT_THAT(Regions(), SizeIs(1));
        EXPECT_EQ(CaptureOne()["outcome"], "duplicate");
        EXPECT_THAT(Regions(), SizeIs(1));
    }

    json State() { return host->Ask("state", kLong); }
};

} // namespace

TEST_F(ServerMisbehaviour, RepliesWithoutAResultAreFailedCommands)
{
    const std::map<std::string, std::string> words{{"no-result", "AEError ID:-1701"},
                                                   {"wrong-type", "AEError ID:-1700"}};
    for (const auto& [strFault, strWords] : words)
    {
        SCOPED_TRACE(strFault);
        StartBoth(strFault);
        EXPECT_THAT(host->Ready()["tracks"], IsEmpty());
        EXPECT_EQ(host->Ready()["message"], strWords);
        EXPECT_EQ(host->Ready()["advice"], "");
        StartBoth(strFault + "@7-7");
        ExpectFoundAgain();
        StartBoth(strFault + "@5-5");
        ExpectDeliveredAt(96100);
        StartBoth(strFault + "@6-6");
        ExpectDeliveredAt(100);
    }
}

TEST_F(ServerMisbehaviour, ACaptureThatIsPlacedWithoutTheOffsetEndsTheHostWithCode1)
{
    StartServerWith(
        {"--track", "Dialogue", "--link-offset", "2.0", "--misbehave", "no-result@6-6"});
    const Ended outcome = RunHost({One(), "--position", "100"});
    EXPECT_EQ(outcome.nExitCode, 1) << outcome.strError;
    const json captures = CapturesIn(folder / "out");
    ASSERT_THAT(captures, SizeIs(1));
    EXPECT_EQ(captures[0]["outcome"], "delivered");
    EXPECT_EQ(captures[0]["withoutOffset"], true);
    ASSERT_THAT(Regions(), SizeIs(1));
    EXPECT_EQ(Regions()[0].nPosition, 100);
    EXPECT_THAT(outcome.strOutput, HasSubstr("placed without the offset"));
}

TEST_F(ServerMisbehaviour, EmptyResultsAreNoDuplicateAndNoOffset)
{
    StartBoth("empty-result@5-7");
    ExpectDeliveredAt(100);
    StartBoth("empty-result");
    EXPECT_THAT(host->Ready()["tracks"], IsEmpty());
    EXPECT_EQ(host->Ready()["message"], kNoSession);
}

TEST_F(ServerMisbehaviour, ErrorTextBesideAGoodResultIsShownAndStopsNothing)
{
    StartBoth("error-beside-result");
    EXPECT_THAT(host->Ready()["tracks"], ElementsAre("Dialogue", "ADR"));
    EXPECT_EQ(host->Ready()["message"], "this error was planned");
    ExpectDeliveredAt(96100);
    EXPECT_EQ(State()["message"], "this error was planned");
}

TEST_F(ServerMisbehaviour, TextWithHalvesOfCharactersReadsEmpty)
{
    StartBoth("lone-surrogates@5-7");
    ExpectDeliveredAt(100);
    StartBoth("lone-surrogates");
    EXPECT_THAT(host->Ready()["tracks"], IsEmpty());
    EXPECT_EQ(host->Ready()["message"], kNoSession);
}

TEST_F(ServerMisbehaviour, SixteenMegabytesAreReadLikeAnyReply)
{
    StartBoth("huge-reply");
    EXPECT_THAT(host->Ready()["tracks"], ElementsAre("Dialogue", "ADR"));
    ExpectDeliveredAt(96100);
}

TEST_F(ServerMisbehaviour, DocumentThatVanishesBetweenTwoCommandsTakesNothing)
{
    StartBoth("document-vanishes@6");
    ExpectRefused();
    EXPECT_THAT(State()["tracks"], IsEmpty());
    EXPECT_EQ(State()["message"], kNoSession);
}

TEST_F(ServerMisbehaviour, TrackThatVanishesBeforeItsCaptureTakesNothing)
{
    StartBoth("track-vanishes@5");
    host->Ask("track 1", kLong);
    ExpectRefused();
    EXPECT_THAT(State()["tracks"], ElementsAre("Dialogue"));
    EXPECT_EQ(State()["selected"], 0) << "the last track, for want of the chosen one";
}

TEST_F(ServerMisbehaviour, PlaceAndNotTheNameIsTheTrack)
{
    StartBoth("tracks-move@5");
    ExpectDeliveredAt(96100);
    EXPECT_EQ(TrackOf(Regions()[0]), "ADR (renamed)");
    EXPECT_THAT(State()["tracks"], ElementsAre("ADR (renamed)", "Dialogue (renamed)"));
}

TEST_F(ServerMisbehaviour, CommandWithoutAReplyHasFailedWhateverItDid)
{
    ShortenTimeout();
    StartBoth("no-reply@5-5");
    ExpectDeliveredAt(96100);
    StartBoth("no-reply@6-6");
    ExpectDeliveredAt(100);
    StartBoth("no-reply@7-7");
    ExpectFoundAgain();
}

TEST_F(ServerMisbehaviour, ReplyAfterTheTimeoutIsNoOtherCommands)
{
    ShortenTimeout();
    StartBoth("late-reply@7-7", {"--delay", "1"});
    EXPECT_EQ(CaptureOne()["outcome"], "not delivered");
    EXPECT_EQ(AcknowledgesOf(0), 1U);
    while (Asked(" event 8 out") == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(CaptureOne()["outcome"], "duplicate");
    EXPECT_THAT(Regions(), SizeIs(1));
}

TEST_F(ServerMisbehaviour, RefusalWithAResultCountsAsDelivered)
{
    StartBoth("refusal-with-result,track-vanishes@5");
    host->Ask("track 1", kLong);
    const json capture = CaptureOne();
    EXPECT_EQ(capture["ack"]["fNotDelivered"], 0) << capture;
    EXPECT_THAT(Regions(), IsEmpty());
}

TEST_F(ServerMisbehaviour, ServerThatStartsSlowlyIsFoundOnceItIsThere)
{
    StartHost();
    EXPECT_EQ(host->Ready()["message"], kNotRunning);
    StartServerWith({"--track", "Dialogue", "--link-offset", "2.0", "--misbehave", "slow-start",
                     "--delay", "0.2"});
    ExpectNextCaptureWorks(100, 0);
}

TEST_F(ServerMisbehaviour, FloodOfTheServersOwnEventsHoldsUpNoDelivery)
{
    StartBoth("event-flood");
    ExpectDeliveredAt(96100);
}

TEST_F(ServerMisbehaviour, ChangesThatAreNotCountedChangeNothingForTheView)
{
    StartBoth("frozen-counter");
    ExpectDeliveredAt(96100);
}

TEST_F(ServerMisbehaviour, WhateverHappensEachElementIsAcknowledgedOnce)
{
    ShortenTimeout();
    StartBoth("no-reply,no-result,wrong-type,empty-result,error-beside-result,lone-surrogates,"
              "huge-reply,document-vanishes,tracks-move",
              {"--seed", "20"});
    for (int nElement = 0; nElement < 12; ++nElement)
    {
        const json capture = CaptureOne(nElement * 10000);
        EXPECT_TRUE(capture["outcome"] == "delivered" || capture["outcome"] == "not delivered" ||
                    capture["outcome"] == "duplicate")
            << capture;
        EXPECT_EQ(AcknowledgesOf(nElement), 1U);
    }
    EXPECT_GT(Asked(" faults "), 5U);
    host->Ask("quit", kLong);
    EXPECT_THAT(host->Process().WaitForEnd(kLong), testing::AnyOf(0, 1))
        << host->Process().ErrorOutput();
}
