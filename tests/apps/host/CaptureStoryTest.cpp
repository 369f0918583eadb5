#include "apps/host/CaptureStory.h"

#include <gmock/gmock.h>

using namespace Tarvane;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

CCaptureEntry Entry()
{
    CCaptureEntry entry;
    entry.report.state = CaptureState::Acknowledged;
    entry.report.source = "/sounds/hello.wav";
    entry.report.nElement = 4;
    entry.report.nNumber = 4;
    entry.report.nTrack = 1;
    entry.report.dub = "/out/hello-001.wav";
    entry.report.dSampleRate = 48000;
    entry.report.times.dPosition = 96100;
    entry.report.times.dEnd = 68545;
    entry.report.pAck = TNElementAck{4, 1, 0, 1};
    entry.words.strTrack = "ADR";
    return entry;
}

CCaptureEntry NotDelivered(const std::string& strMessage)
{
    CCaptureEntry entry = Entry();
    entry.report.pAck->fNotDelivered = 1;
    entry.words.strMessage = strMessage;
    return entry;
}

CCaptureEntry InState(CaptureState state)
{
    CCaptureEntry entry = Entry();
    entry.report.state = state;
    entry.report.pAck.reset();
    return entry;
}

} // namespace

TEST(CaptureStory, TheAcknowledgeAndTheWordsMakeTheOutcome)
{
    EXPECT_EQ(Entry().Outcome(), CaptureOutcome::Delivered);
    EXPECT_EQ(NotDelivered("Same audio captured previously.").Outcome(), CaptureOutcome::Duplicate);
    EXPECT_EQ(NotDelivered("Error - Tarvane not running.").Outcome(), CaptureOutcome::NotDelivered);
    EXPECT_EQ(NotDelivered("").Outcome(), CaptureOutcome::NotDelivered);
    EXPECT_EQ(InState(CaptureState::Empty).Outcome(), CaptureOutcome::Empty);
    EXPECT_EQ(InState(CaptureState::Failed).Outcome(), CaptureOutcome::Failed);
    EXPECT_EQ(InState(CaptureState::Waiting).Outcome(), CaptureOutcome::NotAcknowledged);
}

TEST(CaptureStory, OnlyDeliveredAndDuplicateAreGood)
{
    EXPECT_TRUE(Entry().IsGood());
    EXPECT_TRUE(NotDelivered("Same audio captured previously.").IsGood());
    EXPECT_FALSE(NotDelivered("").IsGood());
    EXPECT_FALSE(InState(CaptureState::Empty).IsGood());
    EXPECT_FALSE(InState(CaptureState::Failed).IsGood());
    EXPECT_FALSE(InState(CaptureState::Waiting).IsGood());
}

TEST(CaptureStory, ADeliveredOneAloneHasAWordForTheTitle)
{
    EXPECT_EQ(WordOfDelivery(Entry()), "1.428 s delivered to ADR");
    EXPECT_EQ(WordOfDelivery(NotDelivered("Same audio captured previously.")), "");
    EXPECT_EQ(WordOfDelivery(NotDelivered("")), "");
    for (const auto state : {CaptureState::Empty, CaptureState::Failed, CaptureState::Waiting})
    {
        EXPECT_EQ(WordOfDelivery(InState(state)), "");
    }
}

TEST(CaptureStory, AMisplacedCaptureIsNotGoodAndSaysWhereItShouldStand)
{
    CCaptureEntry entry = Entry();
    entry.report.outcome = TakeOutcome::PlacedWithoutOffset;
    entry.report.dExpectedPosition = 192100;
    EXPECT_FALSE(entry.IsGood());
    EXPECT_EQ(entry.Outcome(), CaptureOutcome::Delivered);
    EXPECT_EQ(WordOfDelivery(entry), "");
    EXPECT_THAT(
        TellCapture(entry),
        HasSubstr("  misplaced    placed without the offset, which the server did not tell; "
                  "it should stand at sample 192100\n"));
    EXPECT_EQ(DescribeCapture(entry)["withoutOffset"], true);
    EXPECT_EQ(DescribeCapture(entry)["placeMissed"], 192100);
    EXPECT_TRUE(DescribeCapture(Entry())["placeMissed"].is_null());
    entry.report.dExpectedPosition = 0;
    EXPECT_THAT(TellCapture(entry), HasSubstr("which the server did not tell\n"));
    EXPECT_TRUE(DescribeCapture(entry)["placeMissed"].is_null());
}

TEST(CaptureStory, TheServersWordsAreToldAsPlainText)
{
    CCaptureEntry entry = NotDelivered("AEError ID:-1701");
    entry.report.outcome = TakeOutcome::Refused;
    entry.report.strWords = "the disk \x1b[2J is full";
    EXPECT_THAT(TellCapture(entry), HasSubstr("  server says  the disk .[2J is full\n"));
    EXPECT_EQ(DescribeCapture(entry)["refusal"], entry.report.strWords);
    entry = Entry();
    entry.report.strWords = "a word beside the result";
    EXPECT_THAT(TellCapture(entry), Not(HasSubstr("server says")));
}

TEST(CaptureStory, WhatNoServerGotWaitsForOne)
{
    CCaptureEntry entry = NotDelivered("Error - Tarvane not running.");
    entry.report.outcome = TakeOutcome::Unreachable;
    EXPECT_THAT(TellCapture(entry), HasSubstr("  waits        for a server\n"));
    EXPECT_EQ(DescribeCapture(entry)["fate"], "unreachable");
    EXPECT_THAT(TellCapture(Entry()), Not(HasSubstr("waits")));
}

TEST(CaptureStory, ADuplicateIsOneWhateverTheViewShowsBehindIt)
{
    CCaptureEntry entry = NotDelivered("");
    entry.report.outcome = TakeOutcome::Duplicate;
    EXPECT_EQ(entry.Outcome(), CaptureOutcome::Duplicate);
}

TEST(CaptureStory, WhatIsTakenUpAgainIsToldAsLater)
{
    CCaptureEntry entry = Entry();
    entry.report.fLate = true;
    EXPECT_THAT(TellCapture(entry), StartsWith("Later, hello.wav\n"));
    entry.report.source.clear();
    EXPECT_THAT(TellCapture(entry), StartsWith("Later, hello-001.wav\n"));
    EXPECT_EQ(DescribeCapture(entry)["late"], true);
    EXPECT_EQ(TellLeftover("Left by an earlier run", entry.report),
              "Left by an earlier run: /out/hello-001.wav, 68545 samples at 48000 Hz from sample "
              "96100.\n");
}

TEST(CaptureStory, ACommandWithoutAnAnswerIsNamed)
{
    CCaptureEntry entry = NotDelivered("AEError ID:-1712");
    EXPECT_THAT(TellCapture(entry), Not(HasSubstr("no answer")));
    entry.strSilence = "AddAudioRegion, since 04:05:12, for 31 s";
    EXPECT_THAT(TellCapture(entry),
                HasSubstr("  no answer    to AddAudioRegion, since 04:05:12, for 31 s\n"));
    EXPECT_EQ(DescribeCapture(entry)["silence"], entry.strSilence);
}

TEST(CaptureStory, LostSamplesAreCounted)
{
    CCaptureEntry entry = Entry();
    EXPECT_THAT(TellCapture(entry), Not(HasSubstr("lost")));
    entry.report.nLostFrames = 77;
    EXPECT_THAT(TellCapture(entry), HasSubstr("  lost         77 samples\n"));
    EXPECT_EQ(DescribeCapture(entry)["lost"], 77);
}

TEST(CaptureStory, ACaptureThatIsNotWholeIsNotGoodWhereverItWent)
{
    CCaptureEntry entry = Entry();
    entry.report.nLostFrames = 77;
    EXPECT_FALSE(entry.IsGood());
    entry = Entry();
    entry.report.strFailure = "the disk is full";
    EXPECT_FALSE(entry.IsGood());
    EXPECT_EQ(entry.Outcome(), CaptureOutcome::Delivered);
}

TEST(CaptureStory, IsToldInPlainLines)
{
    EXPECT_EQ(TellCapture(Entry()), "Capture 5: hello.wav\n"
                                    "  length       1.428 s, 68545 samples at 48000 Hz\n"
                                    "  host's time  sample 96100, 0:00:02.002\n"
                                    "  file         /out/hello-001.wav\n"
                                    "  sent to      track 1 \"ADR\"\n"
                                    "  outcome      delivered\n");
}

TEST(CaptureStory, TellsWhatTheViewSays)
{
    CCaptureEntry entry = NotDelivered("Error - Tarvane not running.");
    entry.words.strAdvice = "Locate and launch Tarvane.";
    entry.words.strTrack.clear();
    EXPECT_THAT(TellCapture(entry), HasSubstr("  sent to      no track is chosen\n"
                                              "  outcome      not delivered\n"
                                              "  view says    Error - Tarvane not running. / "
                                              "Locate and launch Tarvane.\n"));
}

TEST(CaptureStory, AFailureTellsItsReasonAndNoRegion)
{
    CCaptureEntry entry = InState(CaptureState::Failed);
    entry.report.nElement = -1;
    entry.report.strFailure = "no room";
    EXPECT_THAT(TellCapture(entry), HasSubstr("  outcome      failed\n  because      no room\n"));
    EXPECT_THAT(TellCapture(entry), Not(HasSubstr("length")));
}

TEST(CaptureStory, JsonHoldsEveryField)
{
    const nlohmann::json expected = {
        {"source", "/sounds/hello.wav"},
        {"dub", "/out/hello-001.wav"},
        {"frames", 68545.0},
        {"sampleRate", 48000.0},
        {"start", 0.0},
        {"end", 68545.0},
        {"position", 96100.0},
        {"track", 1},
        {"trackName", "ADR"},
        {"element", 4},
        {"ack", {{"nElement", 4}, {"fHandled", 1}, {"fNotDelivered", 0}, {"fFinal", 1}}},
        {"outcome", "delivered"},
        {"failure", ""},
        {"message", ""},
        {"advice", ""},
        {"refusal", ""},
        {"withoutOffset", false},
        {"placeMissed", nullptr},
        {"fate", nullptr},
        {"silence", nullptr},
        {"late", false},
        {"lost", 0}};
    EXPECT_EQ(DescribeCapture(Entry()), expected);
    EXPECT_TRUE(DescribeCapture(InState(CaptureState::Waiting))["ack"].is_null());
}

TEST(CaptureStory, ANameThatIsNoUtf8DoesNotThrow)
{
    EXPECT_EQ(JsonText(nlohmann::json("a\xFF.wav")), "\"a\xEF\xBF\xBD.wav\"");
}
