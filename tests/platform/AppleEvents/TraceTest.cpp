// What TARVANE_AE_TRACE records of the events that a process sends.

#include "tests/platform/AppleEvents/EventFixture.h"
#include "tests/support/DecimalComma.h"

#include <gmock/gmock.h>

#include <cstdlib>

using namespace AppleEventTests;
using namespace TestReceiver;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace
{

constexpr const char* kVariable = "TARVANE_AE_TRACE";

class TraceTest : public ReceiverTest
{
protected:
    TraceTest() { setenv(kVariable, "1", 1); }
    ~TraceTest() override { unsetenv(kVariable); }

    // Sends the units as text, which come back in 'Aaaa', and returns what was recorded.
    static std::string TraceOf(const std::u16string& units)
    {
        Desc event = NewEvent(kEcho);
        AEPutParamPtr(&event, 'Aaaa', typeUnicodeText, units.data(),
                      Size(units.size() * sizeof(char16_t)));
        Desc reply;
        testing::internal::CaptureStderr();
        EXPECT_EQ(noErr, SendAndWait(event, reply));
        return testing::internal::GetCapturedStderr();
    }
};

} // namespace

TEST_F(TraceTest, ShowsTheEventAndTheReply)
{
    EXPECT_THAT(TraceOf(u"one\n\tV\u00F6x \u58F0 \U0001F399\n"),
                ContainsRegex("^[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+\\.[0-9][0-9][0-9]Z event "
                              "[0-9]+ out to 'Tst1', 'Test' 'Echo', 28 bytes\n"
                              "  'Aaaa' 'utxt' 28 bytes\n"
                              "    one\n"
                              "    \tV\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99\n"
                              "[0-9T:.-]+Z event [0-9]+ in status 0, 28 bytes, after "
                              "[0-9]+\\.[0-9][0-9][0-9] ms\n"
                              "  'Aaaa' 'utxt' 28 bytes\n"
                              "    one\n"
                              "    \tV\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99\n$"));
}

TEST_F(TraceTest, ShowsWhatIsNoText)
{
    const std::u16string surrogates{u'a', 0xDC00, 0xD800, u'b', 0xD83C};
    EXPECT_THAT(TraceOf(surrogates), HasSubstr("\n    a\xEF\xBF\xBD\xEF\xBF\xBD"
                                               "b\xEF\xBF\xBD\n"));
    EXPECT_THAT(TraceOf(u"bell\a escape\x1B[2J csi\u009B delete\x7F"),
                HasSubstr("\n    bell. escape.[2J csi. delete.\n"));
    EXPECT_THAT(TraceOf(u""), HasSubstr("'Aaaa' 'utxt' 0 bytes\n"));
}

TEST_F(TraceTest, ShowsOtherTypesBySizeAlone)
{
    Desc event = NewEvent(kEcho);
    Put(event, 'Aaaa', typeChar, "secret");
    Desc reply;
    testing::internal::CaptureStderr();
    EXPECT_EQ(noErr, SendAndWait(event, reply));
    const std::string trace = testing::internal::GetCapturedStderr();
    EXPECT_THAT(trace, HasSubstr("'Aaaa' 'TEXT' 6 bytes\n"));
    EXPECT_THAT(trace, Not(HasSubstr("\n    ")));
}

TEST_F(TraceTest, ShowsFailures)
{
    Desc event = NewEvent(kEcho, 'None');
    Desc reply;
    testing::internal::CaptureStderr();
    EXPECT_EQ(procNotFound, SendAndWait(event, reply));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                ContainsRegex("Z event [0-9]+ in status -600, 0 bytes, after [0-9.]+ ms\n$"));
}

TEST_F(TraceTest, HasADecimalPointWhateverTheLocale)
{
    const TarvaneTests::DecimalComma german;
    EXPECT_THAT(TraceOf(u"x"), ContainsRegex(", after [0-9]+\\.[0-9][0-9][0-9] ms\n"));
}

TEST_F(TraceTest, AnyOtherValueRecordsNothing)
{
    for (const char* const value : {"", "0", "yes", "11", " 1"})
    {
        setenv(kVariable, value, 1);
        EXPECT_EQ(TraceOf(u"x"), "") << value;
    }
    unsetenv(kVariable);
    EXPECT_EQ(TraceOf(u"x"), "");
}
