// What the page of a recording shows, and that nothing in it can be more than text.

#include "apps/replay/Page.h"

#include "apps/replay/PageText.h"
#include "apps/replay/RecordingReader.h"
#include "tests/apps/replay/RecordingText.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace Tarvane::Replay;
using namespace TarvaneTest;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

std::string Page(const std::string& strLines)
{
    std::istringstream stream(HeaderLine() + strLines);
    return DrawPage(ReadRecording(stream, "x"));
}

std::size_t Count(const std::string& strText, const std::string& strPart)
{
    std::size_t nCount = 0;
    for (std::size_t nAt = 0; (nAt = strText.find(strPart, nAt)) != std::string::npos; ++nAt)
        ++nCount;
    return nCount;
}

std::string PropertyLine(const std::string& strKind, const std::string& strMore)
{
    return R"({"time":1,"kind":")" + strKind +
           R"(","property":64010,"name":"kTNProperty_CurrentCaptureLength","scope":0,"element":3,)" +
           R"("thread":"other")" + strMore + "}\n";
}

} // namespace

TEST(Page, IsWholeInItselfAndHasNoScript)
{
    const std::string strPage = Page(ExchangeLines(1, "list()", "1"));
    EXPECT_THAT(strPage, StartsWith(std::string(kPageStart)));
    EXPECT_THAT(strPage, AllOf(HasSubstr("charset=\"utf-8\""), HasSubstr("</html>\n"),
                               HasSubstr(">plug-in<"), HasSubstr(">view<"), HasSubstr(">server<")));
    EXPECT_THAT(strPage,
                AllOf(Not(HasSubstr("<script")), Not(HasSubstr("src=")), Not(HasSubstr("href=")),
                      Not(HasSubstr("url(")), Not(HasSubstr("@import"))));
    EXPECT_THAT(strPage, AllOf(HasSubstr("by hand"), HasSubstr("2026-03-01T12:34:56.789012Z")));
}

TEST(Page, EventsRunFromViewToServerAndRepliesBack)
{
    const std::string strPage = Page(ExchangeLines(7, "list()\nprint(\"it\")", "one\ntwo\n"));
    EXPECT_THAT(strPage, HasSubstr("<line class=\"good\" x1=\"580\" y1=\"25\" x2=\"1001\""));
    EXPECT_THAT(strPage, HasSubstr("<line class=\"good answer\" x1=\"1010\" y1=\"25\" x2=\"589\""));
    EXPECT_THAT(strPage, HasSubstr(">7: list<"));
    EXPECT_THAT(strPage, HasSubstr(">7: 1.000 ms, one / two<"));
    EXPECT_EQ(Count(strPage, "<details>"), 2U);
    EXPECT_THAT(strPage, HasSubstr("list()\nprint(&quot;it&quot;)\n</pre>"));
    EXPECT_THAT(strPage, HasSubstr(">0.007000 s<"));
}

TEST(Page, LabelsSayWhatIsAskedAndWhatIsAnswered)
{
    EXPECT_THAT(Page(ExchangeLines(1, "if(SelectScriptDocument()) then add(1) end", "")),
                AllOf(HasSubstr(">1: add<"), HasSubstr(", nothing printed<")));
    EXPECT_THAT(Page(ExchangeLines(1, "SelectScriptDocument()", "1")),
                HasSubstr(">1: SelectScriptDocument<"));
    EXPECT_THAT(Page(ExchangeLines(1, "x = 1\ny = 2", "1")), HasSubstr(">1: x = 1 / y = 2<"));
}

TEST(Page, PropertiesRunBetweenPlugInAndView)
{
    EXPECT_THAT(Page(PropertyLine("notification", "")),
                AllOf(HasSubstr("class=\"good signal\" x1=\"150\" y1=\"25\" x2=\"571\""),
                      HasSubstr(">64010 CurrentCaptureLength<"), HasSubstr("thread other")));
    EXPECT_THAT(Page(PropertyLine("read", R"(,"status":0,"fields":{"seconds":1.5})")),
                AllOf(HasSubstr("class=\"good answer\" x1=\"150\""),
                      HasSubstr(">64010 CurrentCaptureLength: seconds 1.5<"),
                      HasSubstr("element 3")));
    EXPECT_THAT(Page(PropertyLine("write", R"(,"status":0,"hex":"0102")")),
                AllOf(HasSubstr("class=\"good\" x1=\"580\" y1=\"25\" x2=\"159\""),
                      HasSubstr("bytes 0102")));
}

TEST(Page, RepeatsAreCounted)
{
    EXPECT_THAT(
        Page(PropertyLine("notification", R"(,"count":92,"last":2046065)")),
        AllOf(HasSubstr("CurrentCaptureLength, 92 times"), HasSubstr("92 times until 2.046065 s")));
}

TEST(Page, FailuresHaveTheirColourAndTheirMark)
{
    for (const std::string& strLines :
         {EventLine(1, 1, "x()") + ReplyLine(1, 2, nlohmann::json::object(), -1712),
          EventLine(1, 1, "x()") + ReplyLine(1, 2, {{"Errr", TextParameter("no such track")}}),
          EventLine(1, 1, "x()"), PropertyLine("read", R"(,"status":-10877)")})
    {
        const std::string strPage = Page(strLines);
        EXPECT_EQ(Count(strPage, "<line class=\"bad"), 1U) << strLines;
        EXPECT_EQ(Count(strPage, "\"label wrong\""), 1U) << strLines;
        EXPECT_EQ(Count(strPage, ">\xE2\x9C\x98 "), 1U) << strLines;
    }
    EXPECT_THAT(
        Page(EventLine(1, 1, "x") + ReplyLine(1, 2, {{"Errr", TextParameter("no such track")}})),
        AllOf(HasSubstr("no such track"), HasSubstr("1 of them failed")));
    EXPECT_THAT(Page(EventLine(1, 1, "x") +
                     ReplyLine(1, 2, {{"Errr", TextParameter("")}, {"Rslt", TextParameter("ok")}})),
                AllOf(HasSubstr("0 of them failed"), Not(HasSubstr("<line class=\"bad"))));
}

TEST(Page, ServersLaneIsABarWhileAnEventIsUnderWay)
{
    const std::string strPage = Page(EventLine(1, 1, "x()") + PropertyLine("notification", "") +
                                     ReplyLine(1, 900'000, nlohmann::json::object()));
    // The notification, the gap and the reply.
    EXPECT_EQ(Count(strPage, "<rect class=\"open\""), 3U);
    EXPECT_THAT(strPage, HasSubstr("+ 0.899999 s"));
}

TEST(Page, DamageAndLostLinesAreShown)
{
    const std::string strPage = Page("nonsense\n{\"time\":5,\"kind\":\"lost\",\"count\":12}\n");
    EXPECT_THAT(strPage, HasSubstr("damaged, line 2: it is no whole line of JSON"));
    EXPECT_THAT(strPage, HasSubstr("12 lines are missing here"));
}

TEST(Page, TakePlacedWithoutTheOffsetIsTold)
{
    const std::string strAsk = "print(GetLinkSMPTEOffset())";
    const std::string strAdd = "AddAudioRegion(idTrack, \"/a/take.wav\", true, false, 500,0,9)";
    const std::string strRead =
        R"({"time":1,"kind":"read","property":64002,"name":"TNProperty_ElementInfo","scope":0,)"
        R"("element":0,"thread":"main","status":0,"fields":{"szDubPath":"/a/take.wav",)"
        R"("tDub.dPosition":500.0,"dSampleRate":48000.0}})"
        "\n";
    const std::string strUntold =
        EventLine(3, 3, strAsk) + ReplyLine(3, 4, {{"Errr", TextParameter("cannot")}});
    const std::string strAdded = ExchangeLines(4, strAdd, "");
    const std::string strWords = "take.wav was placed without the offset";

    const std::string strPage =
        Page(ExchangeLines(1, strAsk, "2.5\n") + strRead + strUntold + strAdded);
    EXPECT_THAT(strPage, AllOf(HasSubstr(strWords + ", which the server did not tell; it should "
                                                    "stand at sample 120500.</p>"),
                               HasSubstr("Takes placed without the offset: 1.")));
    // Nobody knows the place when the server never told its offset, or the take is not there.
    for (const std::string& strLines :
         {strRead + strUntold + strAdded, ExchangeLines(1, strAsk, "2.5\n") + strUntold + strAdded})
        EXPECT_THAT(Page(strLines), HasSubstr(strWords + ", which the server did not tell.</p>"));
    // Told, not asked, and not added.
    for (const std::string& strLines :
         {strRead + ExchangeLines(1, strAsk, "2.5\n") + strAdded, strRead + strAdded,
          strUntold + EventLine(4, 4, strAdd) + ReplyLine(4, 5, {{"Errr", TextParameter("no")}}),
          strUntold + EventLine(4, 4, strAdd) + ReplyLine(4, 5, nlohmann::json::object(), -1712)})
        EXPECT_THAT(Page(strLines), Not(HasSubstr("without the offset")));
}

TEST(Page, CommandThatHangsIsNamed)
{
    const std::string strLines = EventLine(7, 1'000, "SelectScriptDocument() add(1)") +
                                 R"({"time":2001000,"kind":"waiting","number":7})" + "\n";
    EXPECT_THAT(Page(strLines),
                AllOf(HasSubstr("Still no answer to 7: add, for 2.000000 s now.</p>"),
                      HasSubstr("ends without an answer to 7: add, which has gone out at "
                                "0.001000 s.</p>")));
    EXPECT_THAT(Page(strLines + ReplyLine(7, 60'000'000, nlohmann::json::object(), -1712)),
                AllOf(HasSubstr("no answer (status -1712)"), Not(HasSubstr("ends without"))));
    EXPECT_THAT(Page(R"({"time":1,"kind":"waiting","number":7})"
                     "\n"),
                HasSubstr("its event is not in the recording"));
}

TEST(Page, NothingInATextIsMarkup)
{
    const std::string strEvil = "x</pre></script><script>alert('1')</script>&amp;\"";
    nlohmann::json parameters{{"Rslt", TextParameter(strEvil)}, {"Errr", TextParameter(strEvil)}};
    std::string strLines = EventLine(1, 1, strEvil) + ReplyLine(1, 2, parameters);
    strLines += R"({"time":3,"kind":"read","property":1,"name":"</text><script>","scope":0,)"
                R"("element":0,"thread":"<b>","status":0,"fields":{"<i>":"<u>"}})"
                "\n";
    const std::string strPage = Page(strLines);
    for (const char* szMarkup : {"<script", "</script", "<b>", "<i>", "<u>", "x</pre>"})
        EXPECT_THAT(strPage, Not(HasSubstr(szMarkup)));
    EXPECT_THAT(strPage,
                HasSubstr("&lt;script&gt;alert(&#39;1&#39;)&lt;/script&gt;&amp;amp;&quot;"));
}

TEST(Page, HeaderIsNoMarkupEither)
{
    std::istringstream stream(
        R"({"format":"tarvane-recording","version":1,"started":"<s>","program":"</title><script>"})"
        "\n<q>\n");
    const std::string strPage = DrawPage(ReadRecording(stream, "x"));
    EXPECT_THAT(strPage, AllOf(Not(HasSubstr("<s>")), Not(HasSubstr("<script"))));
}

TEST(PageText, ControlAndDirectionCharactersAreWrittenOut)
{
    EXPECT_EQ(Escaped(std::string("a\0b\x1B[2J\n\t", 9)), "a\\u{0}b\\u{1b}[2J\n\t");
    EXPECT_EQ(Escaped("\x7F\xC2\x9B\xC2\xA0"), "\\u{7f}\\u{9b}\xC2\xA0");
    EXPECT_EQ(Escaped("\xE2\x80\xAE"
                      "gnp\xEF\xBF\xBF"),
              "\\u{202e}gnp\\u{ffff}");
    EXPECT_EQ(Escaped("V\xC3\xB6x \xF0\x9F\x8E\x99"), "V\xC3\xB6x \xF0\x9F\x8E\x99");
    // A lone surrogate has become this by now; a stray byte does here.
    EXPECT_EQ(Escaped("\xEF\xBF\xBD\xFF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(PageText, LabelsAreCutBetweenCharacters)
{
    EXPECT_EQ(Shortened("\xC3\xB6\xC3\xB6\xC3\xB6", 3), "\xC3\xB6\xC3\xB6\xC3\xB6");
    EXPECT_EQ(Shortened("\xC3\xB6\xC3\xB6\xC3\xB6", 2), "\xC3\xB6\xC3\xB6...");
    EXPECT_EQ(Shortened("3\n1\nVox\n", 40), "3 / 1 / Vox");
}
