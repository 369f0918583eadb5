#include "tests/TarvaneLinkShared/ScriptFixture.h"
#include "tests/support/LiveObjects.h"

#include <cstring>

using TarvaneTests::ScriptedAppleEvents;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

namespace
{
std::string Repeat(int nTimes, const char* szText)
{
    std::string text;
    for (int i = 0; i < nTimes; ++i)
        text += szText;
    return text;
}

ScriptedAppleEvents::Bytes Units(std::u16string_view text)
{
    return ScriptedAppleEvents::TextBytes(text);
}

class SendCommand : public ScriptFixture
{
};
} // namespace

TEST_F(SendCommand, IsOneEventWithFixedIdsAndModes)
{
    Send("print(1)", 77);

    EXPECT_THAT(
        m_events.Lines(),
        ElementsAre("AECreateDesc('sign', 4 bytes) -> 1",
                    "AECreateAppleEvent('TKNE', 'LCmd', target 1, return -1, transaction 0) -> 2",
                    "AEPutParamPtr(2, '----', 'utxt', 16 bytes)",
                    "AECreateDesc('null', 0 bytes) -> 3",
                    "AESend(2, mode 0x23, priority 0, 77 ticks) -> 4",
                    "AEGetParamPtr(4, 'Rslt', 'utxt', 200 bytes)",
                    "AEGetParamPtr(4, 'Errr', 'utxt', 200 bytes) = -1701", "AEDisposeDesc(1)",
                    "AEDisposeDesc(2)", "AEDisposeDesc(4)"));
}

TEST_F(SendCommand, AddressesTheServerByItsSignatureAsANativeNumber)
{
    Send("");

    const std::uint32_t nSignature = 0x546B4E65; // TkNe
    ScriptedAppleEvents::Bytes expected(sizeof(nSignature));
    std::memcpy(expected.data(), &nSignature, sizeof(nSignature));
    EXPECT_EQ(m_events.Records()[0].m_bytes, expected);
}

TEST_F(SendCommand, SendsNativeUtf16WithoutMarkOrTerminator)
{
    Send("A\xC3\xA9\n");

    EXPECT_EQ(m_events.Records()[2].m_bytes, Units(u"Aé\n"));
    EXPECT_EQ(m_events.Records()[2].m_bytes.size(), 6u);
}

TEST_F(SendCommand, SendsCharactersBeyondTheBasicPlaneAsSurrogatePairs)
{
    Send("\xF0\x9F\x8E\x99");

    EXPECT_EQ(m_events.Records()[2].m_bytes, Units(u"\xD83C\xDF99"));
}

TEST_F(SendCommand, EmptyScriptSendsAParameterOfZeroBytes)
{
    Send("");

    EXPECT_EQ(m_events.Lines()[2], "AEPutParamPtr(2, '----', 'utxt', 0 bytes)");
    EXPECT_EQ(m_nStatus, 0);
}

TEST_F(SendCommand, PassesTheDefaultTimeoutOn)
{
    Send("");

    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(SendCommand, ScriptThatIsNotUtf8IsNotSent)
{
    Send("print(\"\xFF\xFE\")");

    EXPECT_EQ(m_nStatus, -50);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-50");
    EXPECT_EQ(m_result, nullptr);
    EXPECT_TRUE(m_events.Commands().empty());
    EXPECT_EQ(m_events.Count(Call::PutParamPtr), 0);
    EXPECT_EQ(m_events.Count(Call::DisposeDesc), 3);
}

TEST_F(SendCommand, NoScriptAtAllIsNotSent)
{
    Send(nullptr);

    EXPECT_EQ(m_nStatus, -50);
    EXPECT_EQ(m_result, nullptr);
    EXPECT_TRUE(m_events.Commands().empty());
}

TEST_F(SendCommand, AnswersWhatWasPrintedAsUtf8)
{
    m_events.Print("2\n1\nVo\xC3\xA7 \xE5\xA3\xB0 \xF0\x9F\x8E\x99\n");
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_STREQ(m_result.get(), "2\n1\nVo\xC3\xA7 \xE5\xA3\xB0 \xF0\x9F\x8E\x99\n");
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(SendCommand, AnswersAnEmptyBufferWhenNothingWasPrinted)
{
    m_events.Print("");
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_STREQ(m_result.get(), "");
}

namespace
{
struct ReplySize
{
    std::size_t m_nBytes;
    std::vector<std::string> m_reads; // of 'Rslt'
};

std::ostream& operator<<(std::ostream& stream, const ReplySize& size)
{
    return stream << size.m_nBytes << " bytes";
}

class ReplyOfSize : public ScriptFixture, public ::testing::WithParamInterface<ReplySize>
{
};
} // namespace

TEST_P(ReplyOfSize, IsReadOnceUpTo200BytesAndElseOnceMore)
{
    const std::size_t nUnits = GetParam().m_nBytes / 2;
    auto bytes = Units(std::u16string(nUnits, u'a'));
    bytes.resize(GetParam().m_nBytes, 0xEE);
    m_events.Play({noErr, bytes, std::nullopt});
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_EQ(std::string(m_result.get()), std::string(nUnits, 'a'));
    const auto lines = m_events.Lines();
    const auto pFirst = lines.begin() + 5;
    EXPECT_THAT(std::vector<std::string>(pFirst, pFirst + GetParam().m_reads.size()),
                ElementsAreArray(GetParam().m_reads));
    EXPECT_EQ(m_events.Count(Call::GetParamPtr),
              static_cast<int>(GetParam().m_reads.size()) + 1 /* 'Errr' */);
}

#define FIRST_READ "AEGetParamPtr(4, 'Rslt', 'utxt', 200 bytes)"
INSTANTIATE_TEST_SUITE_P(
    Sizes, ReplyOfSize,
    ::testing::Values(ReplySize{0, {FIRST_READ}}, ReplySize{2, {FIRST_READ}},
                      ReplySize{199, {FIRST_READ}}, ReplySize{200, {FIRST_READ}},
                      ReplySize{201, {FIRST_READ, "AEGetParamPtr(4, 'Rslt', 'utxt', 404 bytes)"}},
                      ReplySize{202, {FIRST_READ, "AEGetParamPtr(4, 'Rslt', 'utxt', 406 bytes)"}},
                      ReplySize{102400,
                                {FIRST_READ, "AEGetParamPtr(4, 'Rslt', 'utxt', 204802 bytes)"}}),
    [](const auto& info) { return std::to_string(info.param.m_nBytes) + "Bytes"; });

TEST_F(SendCommand, ReadsALongErrorTextInTwoSteps)
{
    m_events.PrintWithError("1\n0\n", std::string(101, 'e'));
    Send("x");

    EXPECT_EQ(m_script.m_strLastError, std::string(101, 'e'));
    EXPECT_EQ(m_events.Lines()[6], "AEGetParamPtr(4, 'Errr', 'utxt', 200 bytes)");
    EXPECT_EQ(m_events.Lines()[7], "AEGetParamPtr(4, 'Errr', 'utxt', 406 bytes)");
}

TEST_F(SendCommand, TextThatGrowsBetweenTheReadsIsReadTwiceAndCutToItsBuffer)
{
    m_events.PrintWithError(std::string(101, 'a'), std::string(102, 'e'));
    m_events.ReportMoreWhenReadAgain(1 << 20);
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_EQ(std::string(m_result.get()), std::string(101, 'a'));
    EXPECT_EQ(m_script.m_strLastError, std::string(102, 'e'));
    EXPECT_EQ(m_events.Count(Call::GetParamPtr), 4);
}

TEST_F(SendCommand, StringsThatItMakesAreReleased)
{
    const auto exchange = [this]
    {
        m_events.PrintWithError("1\n0\n", "server's words");
        Send("print(1)");
        ASSERT_EQ(m_script.m_strLastError, "server's words");
    };
    exchange();
    const long nBefore = LiveObjects();
    for (int n = 0; n < 10; ++n)
        exchange();
    EXPECT_EQ(LiveObjects(), nBefore);
}

TEST_F(SendCommand, HoldsNinetyNineCharactersOfThreeBytesInAShortReply)
{
    const std::string printed = Repeat(99, "\xE5\xA3\xB0");
    m_events.Print(printed);
    Send("x");

    EXPECT_EQ(std::string(m_result.get()), printed);
}

TEST_F(SendCommand, AHundredCharactersOfThreeBytesDoNotFitAndReadEmpty)
{
    m_events.Print(Repeat(100, "\xE5\xA3\xB0"));
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_STREQ(m_result.get(), "");
}

TEST_F(SendCommand, HoldsAnyLongReplyOfThreeByteCharacters)
{
    const std::string printed = Repeat(101, "\xE5\xA3\xB0");
    m_events.Print(printed);
    Send("x");

    EXPECT_EQ(std::string(m_result.get()), printed);
}

TEST_F(SendCommand, ReplyWithAnUnpairedSurrogateReadsEmpty)
{
    m_events.Play({noErr, Units(u"1\n\xD83C\n"), std::nullopt});
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_STREQ(m_result.get(), "");
}

TEST_F(SendCommand, ErrorTextWithAnUnpairedSurrogateIsNone)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "kept";
    m_events.Play({noErr, Units(u"1\n"), Units(u"bad \xDF99")});
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_EQ(m_script.m_strLastError, "kept");
    EXPECT_TRUE(m_script.m_fUserError);
}

namespace
{
struct Failure
{
    const char* m_szName;
    Call m_call;
    int m_nOccurrence;
    OSErr m_status;
    int m_nCalls; // made before the descriptors are given back
    std::vector<int> m_disposed;
};

std::ostream& operator<<(std::ostream& stream, const Failure& failure)
{
    return stream << failure.m_szName;
}

class FailingStep : public ScriptFixture, public ::testing::WithParamInterface<Failure>
{
protected:
    void SetUp() override
    {
        m_events.Print(std::string(101, 'a')); // two reads
        m_events.Fail(GetParam().m_call, GetParam().m_nOccurrence, GetParam().m_status);
    }
};
} // namespace

TEST_P(FailingStep, EndsTheCommandWithItsStatusAndGivesEverythingBackInOrder)
{
    Send("x");

    EXPECT_EQ(m_nStatus, GetParam().m_status);
    EXPECT_EQ(m_result, nullptr);
    const auto lines = m_events.Lines();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(GetParam().m_nCalls) + 3);
    std::vector<std::string> disposals;
    for (const int nDescriptor : GetParam().m_disposed)
        disposals.push_back("AEDisposeDesc(" + std::to_string(nDescriptor) + ")");
    EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
                ElementsAreArray(disposals));
}

TEST_P(FailingStep, IsToldByItsNumberAndLeavesTheAdvice)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "old";
    m_script.m_strAdvice = "advice";
    Send("x");

    EXPECT_EQ(m_script.m_strLastError, "AEError ID:" + std::to_string(GetParam().m_status));
    EXPECT_EQ(m_script.m_strAdvice, "advice");
    EXPECT_TRUE(m_script.m_fUserError);
}

TEST_P(FailingStep, WithAServerThatIsNotRunningIsToldInWords)
{
    m_events.Fail(GetParam().m_call, GetParam().m_nOccurrence, -600);
    Send("x");

    EXPECT_EQ(m_nStatus, -600);
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);
    EXPECT_EQ(m_result, nullptr);
}

const Failure kFailures[] = {
    {"Address", Call::CreateDesc, 1, -108, 1, {0, 0, 0}},
    {"Event", Call::CreateAppleEvent, 1, -1704, 2, {1, 0, 0}},
    {"Parameter", Call::PutParamPtr, 1, -1707, 3, {1, 2, 0}},
    {"Placeholder", Call::CreateDesc, 2, -50, 4, {1, 2, 0}},
    {"Sending", Call::Send, 1, -1712, 5, {1, 2, 0}},
    {"FirstRead", Call::GetParamPtr, 1, -1700, 6, {1, 2, 4}},
    {"SecondRead", Call::GetParamPtr, 2, -32768, 7, {1, 2, 4}},
};
INSTANTIATE_TEST_SUITE_P(Steps, FailingStep, ::testing::ValuesIn(kFailures),
                         [](const auto& info) { return info.param.m_szName; });

TEST_F(SendCommand, ReplyWithoutAResultIsAFailureAndItsErrorIsNotRead)
{
    m_events.Play({noErr, std::nullopt, Units(u"words")});
    Send("x");

    EXPECT_EQ(m_nStatus, -1701);
    EXPECT_EQ(m_result, nullptr);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1701");
    EXPECT_EQ(m_events.Count(Call::GetParamPtr), 1);
}

TEST_F(SendCommand, ATimeoutIsToldByItsNumber)
{
    m_events.FailSend(-1712);
    Send("x");

    EXPECT_EQ(m_nStatus, -1712);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(SendCommand, AnErrorTextOfTheServerIsNoFailure)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "old";
    m_script.m_strAdvice = "advice";
    m_events.PrintWithError("1\n", "Line 1: nil");
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_STREQ(m_result.get(), "1\n");
    EXPECT_EQ(m_script.m_strLastError, "Line 1: nil");
    EXPECT_EQ(m_script.m_strAdvice, "advice");
    EXPECT_FALSE(m_script.m_fUserError);
}

TEST_F(SendCommand, AnEmptyErrorTextChangesNothing)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "first";
    m_script.m_strAdvice = "second";
    m_events.PrintWithError("1\n", "");
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_EQ(m_script.m_strLastError, "first");
    EXPECT_EQ(m_script.m_strAdvice, "second");
    EXPECT_TRUE(m_script.m_fUserError);
}

TEST_F(SendCommand, AnErrorTextThatCannotBeReadIsIgnored)
{
    for (const int nRead : {2, 3})
    {
        SCOPED_TRACE(nRead);
        m_script.m_fUserError = true;
        m_script.m_strLastError = "first";
        m_events.PrintWithError("1\n", std::string(101, 'e'));
        m_events.Fail(Call::GetParamPtr, m_events.Count(Call::GetParamPtr) + nRead, -1700);
        Send("x");

        EXPECT_EQ(m_nStatus, 0);
        EXPECT_STREQ(m_result.get(), "1\n");
        EXPECT_EQ(m_script.m_strLastError, "first");
        EXPECT_TRUE(m_script.m_fUserError);
    }
}

TEST_F(SendCommand, TheMessagesAreEmptyWhileACommandIsOut)
{
    m_script.m_strLastError = "old";
    m_script.m_strAdvice = "advice";
    m_events.m_whileSending = [this]
    {
        EXPECT_EQ(m_script.m_strLastError, "");
        EXPECT_EQ(m_script.m_strAdvice, "");
    };
    Send("x");

    EXPECT_EQ(m_events.Commands().size(), 1u);
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(SendCommand, AFailureWithoutTheUserErrorEmptiesTheAdvice)
{
    m_script.m_strAdvice = "advice";
    m_events.FailSend(-1712);
    Send("x");

    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(SendCommand, AUserErrorOutlivesASuccess)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "first";
    m_script.m_strAdvice = "second";
    m_events.m_whileSending = [this] { EXPECT_EQ(m_script.m_strLastError, "first"); };
    Send("x");

    EXPECT_EQ(m_events.Commands().size(), 1u);
    EXPECT_EQ(m_script.m_strLastError, "first");
    EXPECT_EQ(m_script.m_strAdvice, "second");
    EXPECT_TRUE(m_script.m_fUserError);
}

TEST_F(SendCommand, NotRunningStaysOnAUserErrorAfterTheServerIsBack)
{
    m_script.m_fUserError = true;
    m_events.FailSend(-600);
    Send("x");
    Send("x");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);
    EXPECT_TRUE(m_script.m_fUserError);

    m_script.CreateSpreader(false, 0, 0, 1, 0, 0);
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(SendCommand, NothingIsKeptFromAFailedCommand)
{
    m_events.FailSend(-600);
    m_events.Print("7\n");
    Send("x");
    Send("y");

    EXPECT_EQ(m_nStatus, 0);
    EXPECT_STREQ(m_result.get(), "7\n");
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST(TarvaneScript, StartsWithoutMessages)
{
    const CTarvaneScript script;

    EXPECT_FALSE(script.m_fUserError);
    EXPECT_EQ(script.m_strLastError, "");
    EXPECT_EQ(script.m_strAdvice, "");
    EXPECT_EQ(script.m_strSelectedRegion1, "");
    EXPECT_EQ(script.m_strSelectedRegion2, "");
}

TEST(TarvaneScript, IsAPlainClassWithItsFieldsInOrder)
{
    EXPECT_FALSE(std::is_polymorphic_v<CTarvaneScript>);

    const CTarvaneScript script;
    const auto offset = [&script](const auto& field)
    { return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&script); };
    EXPECT_EQ(offset(script.m_fUserError), 0);
    EXPECT_LT(offset(script.m_fUserError), offset(script.m_strLastError));
    EXPECT_LT(offset(script.m_strLastError), offset(script.m_strAdvice));
    EXPECT_LT(offset(script.m_strAdvice), offset(script.m_strSelectedRegion1));
    EXPECT_LT(offset(script.m_strSelectedRegion1), offset(script.m_strSelectedRegion2));
}
