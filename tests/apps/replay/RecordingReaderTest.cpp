// What is taken from a recording, whole or damaged.

#include "apps/replay/RecordingReader.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/replay/RecordingText.h"

#include <gmock/gmock.h>

#include <random>
#include <sstream>

using namespace Tarvane;
using namespace Tarvane::Replay;
using namespace TarvaneTest;
using testing::HasSubstr;
using testing::SizeIs;

namespace
{

Recording Read(const std::string& strText)
{
    std::istringstream stream(strText);
    return ReadRecording(stream, "take.jsonl");
}

// Of the one flaw behind the header.
std::string FlawOf(const std::string& strLine)
{
    const Recording recording = Read(HeaderLine() + strLine + "\n");
    EXPECT_EQ(recording.nFlaws, 1U) << strLine;
    EXPECT_THAT(recording.lines, SizeIs(0)) << strLine;
    return recording.strFirstFlaw;
}

std::string Refusal(const std::string& strText)
{
    try
    {
        Read(strText);
    }
    catch (const CUsageError& error)
    {
        return error.what();
    }
    return "taken";
}

// With the member set to the JSON text, or without it when that is empty.
std::string Changed(const std::string& strLine, const char* szMember, const std::string& strJson)
{
    nlohmann::json line = nlohmann::json::parse(strLine);
    line.erase(szMember);
    if (!strJson.empty())
        line[szMember] = nlohmann::json::parse(strJson);
    return line.dump();
}

} // namespace

TEST(RecordingReader, TakesEventsWithTheirReplies)
{
    const Recording recording =
        Read(HeaderLine() + EventLine(3, 1204500, "print(1)") +
             ReplyLine(3, 1205000, {{"Rslt", TextParameter("1\n")}}, 0, 412));
    EXPECT_EQ(recording.strProgram, "by hand");
    EXPECT_EQ(recording.strStarted, "2026-03-01T12:34:56.789012Z");
    EXPECT_EQ(recording.nFlaws, 0U);
    EXPECT_THAT(recording.lines, SizeIs(2));
    ASSERT_THAT(recording.exchanges, SizeIs(1));
    const Exchange& exchange = recording.exchanges[0];
    EXPECT_EQ(exchange.nNumber, 3);
    EXPECT_EQ(exchange.nTime, 1204500);
    EXPECT_EQ(exchange.nTarget, OSType('TkNe'));
    EXPECT_EQ(exchange.nClass, AEEventClass('TKNE'));
    EXPECT_EQ(exchange.nId, AEEventID('LCmd'));
    EXPECT_EQ(exchange.Script(), "print(1)");
    EXPECT_EQ(exchange.event.at(keyDirectObject).strBytes,
              std::string("p\0r\0i\0n\0t\0(\0001\0)\0", 16));
    EXPECT_EQ(exchange.nTook, 412);
    EXPECT_EQ(exchange.reply.at('Rslt').Text(), "1\n");
    EXPECT_TRUE(exchange.fEnded);
}

TEST(RecordingReader, BytesCountWhereTheyStandBesideAText)
{
    const Recording recording =
        Read(HeaderLine() + EventLine(1, 0, "x") +
             ReplyLine(1, 1,
                       {{"Rslt", {{"type", "utxt"}, {"text", "?"}, {"hex", "00d8"}}},
                        {"Blob", {{"type", "0x00000001"}, {"hex", "ff"}}}}));
    EXPECT_EQ(recording.exchanges[0].reply.at('Rslt').strBytes, std::string("\0\xD8", 2));
    EXPECT_EQ(recording.exchanges[0].reply.at('Blob').nType, DescType(1));
    EXPECT_EQ(recording.exchanges[0].reply.at('Blob').Text(), "ff");
}

TEST(RecordingReader, EventWithoutAReplyHasNotEnded)
{
    const Recording recording = Read(HeaderLine() + EventLine(1, 0, "x"));
    EXPECT_FALSE(recording.exchanges.at(0).fEnded);
}

TEST(RecordingReader, OnlyRecordingsOfThisFormatAreTaken)
{
    EXPECT_THAT(Refusal(""), HasSubstr("take.jsonl is no recording"));
    EXPECT_THAT(Refusal("{}\n"), HasSubstr("is no recording"));
    EXPECT_THAT(Refusal("[1]\n"), HasSubstr("is no recording"));
    EXPECT_THAT(Refusal(std::string("\0\xFF\xFE", 3)), HasSubstr("is no recording"));
    EXPECT_THAT(Refusal(Changed(HeaderLine(), "format", "7")), HasSubstr("is no recording"));
    EXPECT_THAT(Refusal(Changed(HeaderLine(), "version", "2")), HasSubstr("later format"));
    EXPECT_THAT(Refusal(Changed(HeaderLine(), "version", "0")), HasSubstr("is damaged"));
    EXPECT_THAT(Refusal(Changed(HeaderLine(), "version", "")), HasSubstr("is damaged"));
    EXPECT_THAT(Refusal(Changed(HeaderLine(), "program", "7")), HasSubstr("is damaged"));
}

TEST(RecordingReader, UnknownKindsAndMembersArePassedOver)
{
    const Recording recording = Read(HeaderLine() + "{\"time\":1,\"kind\":\"news\"}\n" +
                                     Changed(EventLine(1, 0, "x"), "more", "[1]") + "\n");
    EXPECT_EQ(recording.nFlaws, 0U);
    EXPECT_THAT(recording.lines, SizeIs(1));
}

TEST(RecordingReader, GoodLinesAreUsedAndTheFirstFlawIsNamed)
{
    const std::string strWhole =
        HeaderLine() + ExchangeLines(1, "a()", "1") + "nonsense\n\n" + ExchangeLines(2, "b()", "2");
    // Cut within the last line.
    const Recording recording = Read(strWhole.substr(0, strWhole.size() - 20));
    EXPECT_EQ(recording.nFlaws, 3U);
    EXPECT_EQ(recording.strFirstFlaw, "line 4: it is no whole line of JSON");
    ASSERT_THAT(recording.exchanges, SizeIs(2));
    EXPECT_TRUE(recording.exchanges[0].fEnded);
    EXPECT_FALSE(recording.exchanges[1].fEnded);
}

TEST(RecordingReader, LineDeeperThanAnyRecorderWritesIsAFlaw)
{
    const auto nested = [](std::size_t nDepth)
    {
        return HeaderLine() +
               Changed(EventLine(1, 0, "x"), "more",
                       std::string(nDepth, '[') + std::string(nDepth, ']')) +
               "\n";
    };
    EXPECT_EQ(Read(nested(10)).nFlaws, 0U);
    EXPECT_EQ(Read(nested(20)).nFlaws, 1U);
    EXPECT_EQ(Read(HeaderLine() + std::string(1 << 20, '[')).nFlaws, 1U);
}

TEST(RecordingReader, LineThatSaysTooLittleOrNonsenseIsAFlaw)
{
    const std::string strEvent = EventLine(1, 0, "x");
    const std::string strRead =
        R"({"time":1,"kind":"read","property":64009,"name":"n","scope":0,"element":0,)"
        R"("thread":"main","status":0,"fields":{"track":1}})";
    EXPECT_THAT(FlawOf("7"), HasSubstr("line 2: it is no JSON object"));
    for (const char* szMember : {"time", "kind", "number", "target", "class", "id", "parameters"})
        EXPECT_THAT(FlawOf(Changed(strEvent, szMember, "")), HasSubstr(szMember));
    for (const char* szMember : {"property", "name", "element", "thread", "status"})
        EXPECT_THAT(FlawOf(Changed(strRead, szMember, "")), HasSubstr(szMember));
    for (const char* szNumber :
         {"-1", "1.5", "1e300", "18446744073709551615", "\"1\"", "null", "true"})
        EXPECT_THAT(FlawOf(Changed(strEvent, "time", szNumber)), HasSubstr("\"time\"")) << szNumber;
    FlawOf(Changed(strEvent, "number", "0"));
    FlawOf(Changed(strEvent, "target", "\"TkN\""));
    FlawOf(Changed(strEvent, "parameters", "[]"));
    FlawOf(Changed(strEvent, "parameters", R"({"----":7})"));
    FlawOf(Changed(strEvent, "parameters", R"({"----":{"type":"utxt"}})"));
    FlawOf(Changed(strEvent, "parameters", R"({"----":{"type":"utxt","hex":"0"}})"));
    FlawOf(Changed(strEvent, "parameters", R"({"---":{"type":"utxt","text":"x"}})"));
    FlawOf(Changed(strRead, "status", "1e10"));
    FlawOf(Changed(strRead, "property", "4294967296"));
    FlawOf(Changed(strRead, "hex", "\"x\""));
    FlawOf(Changed(strRead, "fields", "[]"));
    FlawOf(Changed(strRead, "fields", R"({"track":[]})"));
    FlawOf(Changed(strRead, "fields", R"({"track":{"text":"x"}})"));
    FlawOf(Changed(strRead, "count", "-1"));
    FlawOf(R"({"time":1,"kind":"lost"})");
}

TEST(RecordingReader, RepliesBelongToOneEventEach)
{
    const std::string strReply = ReplyLine(1, 1, nlohmann::json::object());
    EXPECT_THAT(FlawOf(strReply.substr(0, strReply.size() - 1)), HasSubstr("its event is not"));
    const std::string strEvent = EventLine(1, 0, "x");
    EXPECT_THAT(Read(HeaderLine() + strEvent + strEvent).strFirstFlaw,
                HasSubstr("line 3: there is an event of this number"));
    EXPECT_THAT(Read(HeaderLine() + strEvent + strReply + strReply).strFirstFlaw,
                HasSubstr("line 4: there is a reply to this event"));
    EXPECT_THAT(Read(HeaderLine() + strEvent + Changed(strReply, "status", "40000")).strFirstFlaw,
                HasSubstr("status"));
}

TEST(RecordingReader, DeepNestingIsHarmless)
{
    const std::string strDeep(1'000'000, '[');
    FlawOf(strDeep);
    FlawOf(strDeep + std::string(1'000'000, ']'));
    FlawOf("{\"time\":" + strDeep + std::string(1'000'000, ']') + "}");
}

TEST(RecordingReader, AnyFlippedByteIsSurvived)
{
    const std::string strWhole =
        HeaderLine() + ExchangeLines(1, "a(\"\xC3\xB6\")", "1\n") +
        R"({"time":1,"kind":"read","property":64009,"name":"n","scope":0,"element":0,)"
        R"("thread":"main","status":0,"fields":{"track":1},"count":1,"last":2})"
        "\n";
    std::mt19937 random(7);
    for (std::size_t nAt = 0; nAt < strWhole.size(); ++nAt)
    {
        std::string strDamaged = strWhole;
        strDamaged[nAt] = static_cast<char>(strDamaged[nAt] ^ (1u << random() % 8));
        std::istringstream stream(strDamaged);
        try
        {
            const Recording recording = ReadRecording(stream, "x");
            EXPECT_LE(recording.lines.size(), 3U);
        }
        catch (const CUsageError&)
        {
            EXPECT_LT(nAt, HeaderLine().size());
        }
    }
}

TEST(RecordingReader, MapsReplaceInEventsAndReplies)
{
    Recording recording =
        Read(HeaderLine() + ExchangeLines(1, "a(\"/old/x\",\"/old/y\")", "/old\n") +
             EventLine(2, 5, "x") +
             ReplyLine(2, 6, {{"Rslt", {{"type", "TEXT"}, {"hex", "2f6f6c64"}}}}));
    ReplaceInTexts(recording, "/old", "/a/new/old");
    EXPECT_EQ(recording.exchanges[0].Script(), "a(\"/a/new/old/x\",\"/a/new/old/y\")");
    EXPECT_EQ(recording.exchanges[0].reply.at('Rslt').Text(), "/a/new/old\n");
    EXPECT_EQ(recording.exchanges[1].reply.at('Rslt').strBytes, "/old");
}
