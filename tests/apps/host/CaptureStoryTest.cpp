#include "apps/host/CaptureStory.h"

#include <gmock/gmock.h>

using namespace Tarvane;
using testing::HasSubstr;
using testing::Not;

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
    entry.server.fWithoutOffset = true;
    entry.server.placeMissed = 192100;
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
}

TEST(CaptureStory, TheServersWordsAreToldAsPlainText)
{
    CCaptureEntry entry = NotDelivered("AEError ID:-1701");
    entry.server.strRefusal = "the disk \x1b[2J is full";
    EXPECT_THAT(TellCapture(entry), HasSubstr("  server says  the disk .[2J is full\n"));
    EXPECT_EQ(DescribeCapture(entry)["refusal"], entry.server.strRefusal);
    EXPECT_THAT(TellCapture(Entry()), Not(HasSubstr("server says")));
}

TEST(ServerWords, AreThoseAboutTheCaptureAndItsOwnOffset)
{
    const auto offset = [](const char* szResult, OSErr nStatus = 0) {
        return SeenCommand{"print(GetLinkSMPTEOffset())", szResult, "", nStatus, nStatus == 0};
    };
    const auto add = [](const char* szPath, const char* szError)
    {
        return SeenCommand{"AddAudioRegion(idTrack, \"" + std::string(szPath) + "\", true)", "",
                           szError, 0, *szError == '\0'};
    };
    const CCaptureReport report = Entry().report;
    const std::vector<SeenCommand> refused{offset("2.0\n"), add("/out/other.wav", "no"),
                                           offset("2.0\n"), add("/out/hello-001.wav", "full")};
    EXPECT_EQ(WordsAbout(report, refused).strRefusal, "full");
    EXPECT_FALSE(WordsAbout(report, refused).fWithoutOffset);
    const std::vector<SeenCommand> misplaced{offset("2.0\n"), add("/out/other.wav", ""),
                                             offset("", -1712), add("/out/hello-001.wav", "")};
    const ServerWords words = WordsAbout(report, misplaced);
    EXPECT_EQ(words.strRefusal, "");
    EXPECT_TRUE(words.fWithoutOffset);
    EXPECT_EQ(words.placeMissed, 2.0 * 48000 + 96100);
    const ServerWords never = WordsAbout(report, {offset(""), add("/out/hello-001.wav", "")});
    EXPECT_TRUE(never.fWithoutOffset);
    EXPECT_FALSE(never.placeMissed);
    EXPECT_FALSE(
        WordsAbout(report, {offset("2.0\n"), add("/out/hello-001.wav", "")}).fWithoutOffset);
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
        {"placeMissed", nullptr}};
    EXPECT_EQ(DescribeCapture(Entry()), expected);
    EXPECT_TRUE(DescribeCapture(InState(CaptureState::Waiting))["ack"].is_null());
}

TEST(CaptureStory, ANameThatIsNoUtf8DoesNotThrow)
{
    EXPECT_EQ(JsonText(nlohmann::json("a\xFF.wav")), "\"a\xEF\xBF\xBD.wav\"");
}
