// What becomes of a capture when the server is not there, fails or refuses.
#include "tests/apps/host/DeliveryFixture.h"

#include <algorithm>
#include <utility>

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

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
        ExpectTheLostOneArrivesAndTheNextWorks();
        EXPECT_THAT(Regions(), SizeIs(2));
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
        ExpectTheLostOneArrivesAndTheNextWorks();
        EXPECT_THAT(Regions(), SizeIs(2));
        host.reset();
        server.reset();
    }
}

TEST_F(DeliveryFaults, AServerThatHangsIsNamedAndFreesTheViewWhenItIsKilled)
{
    StartServerWith({"--track", "Dialogue"});
    StartHost();
    server->Stop();
    host->Process().WriteLine("capture \"" + One() + "\" 100");
    const auto deadline = std::chrono::steady_clock::now() + kLong;
    while (Count(host->Process().ErrorOutput(), "The server does not answer: ") == 0)
    {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline) << host->Process().ErrorOutput();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const auto begin = std::chrono::steady_clock::now();
    KillServer();
    const auto answer = host->Process().WaitForLine("\"command\":\"capture\"", kLong);
    // Three commands of a minute each would have been waited for.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(50));
    ASSERT_TRUE(answer);
    const json capture = json::parse(*answer);
    EXPECT_EQ(capture["fate"], "unreachable");
    EXPECT_THAT(capture["silence"].get<std::string>(), ContainsRegex(", since .*, for [0-9]+ s"));
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
    ExpectTheLostOneArrivesAndTheNextWorks();
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
        std::filesystem::remove_all(folder / "captures");
    }
}

// The server refuses the place with a Lua error, and answers without a result.
TEST_F(DeliveryFaults, WhatTheServerRefusesIsNotDelivered)
{
    StartServerWith({"--track", "Dialogue", "--link-offset", "2.0"});
    StartHost();
    const json capture = CaptureOne(1e17);
    EXPECT_EQ(capture["ack"]["fNotDelivered"], 1);
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

TEST_F(DeliveryFaults, CapturesLeaveNoObjectsBehind)
{
    StartServer();
    StartHost({"--speed", "max", "--count-objects"});
    const auto objects = [this] { return host->Ask("objects", kLong)["objects"].get<long>(); };
    double dPosition = 0;
    const auto deliver = [&](int nCaptures)
    {
        for (int nCapture = 0; nCapture < nCaptures; ++nCapture)
            EXPECT_EQ(CaptureOne(dPosition += 10000)["outcome"], "delivered");
    };
    constexpr int kSettling = 20, kRounds = 3, kCaptures = 40;
    deliver(kSettling);
    long nBefore = objects();
    EXPECT_GT(nBefore, 1000) << "a window with its view alone has as many";
    // What is taken out of a pool later, or kept from now on, is counted in one round or another;
    // what each capture leaves is in every one.
    std::vector<long> growth;
    for (int nRound = 0; nRound < kRounds; ++nRound)
    {
        deliver(kCaptures);
        const long nAfter = objects();
        growth.push_back(nAfter - std::exchange(nBefore, nAfter));
    }
    std::sort(growth.begin(), growth.end());
    EXPECT_LT(growth[kRounds / 2], kCaptures * 3 / 4) << testing::PrintToString(growth);
}

TEST_F(DeliveryFaults, ObjectsAreNotCountedUnasked)
{
    StartServer();
    StartHost();
    EXPECT_THROW(host->Ask("objects", kLong), Tarvane::CHostRefusal);
    EXPECT_EQ(host->Everything().back()["error"],
              "nothing is counted - start the host with --count-objects.");
}
