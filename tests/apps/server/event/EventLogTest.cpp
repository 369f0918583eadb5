#include "apps/server/event/EventLog.h"

#include "apps/support/file/AtomicFile.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cctype>
#include <string_view>

namespace Tarvane::Server
{
namespace
{

// True for a text that begins with a time as the log writes it.
bool BeginsWithTime(std::string_view text)
{
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd.dddZ";
    if (text.size() < form.size())
        return false;
    for (std::size_t nPlace = 0; nPlace < form.size(); nPlace++)
    {
        const bool fDigit = std::isdigit(static_cast<unsigned char>(text[nPlace])) != 0;
        if (form[nPlace] == 'd' ? !fDigit : text[nPlace] != form[nPlace])
            return false;
    }
    return true;
}

class EventLog : public testing::Test
{
protected:
    // The log with "TIME" in the place of every time.
    std::string Text()
    {
        const std::string strLog = ReadFile(m_file, 1 << 20);
        std::string strText;
        for (std::size_t nPlace = 0; nPlace < strLog.size(); nPlace++)
        {
            const bool fTime = BeginsWithTime(std::string_view(strLog).substr(nPlace));
            strText += fTime ? "TIME" : std::string(1, strLog[nPlace]);
            nPlace += fTime ? std::string_view("dddd-dd-ddTdd:dd:dd.ddd").size() : 0;
        }
        return strText;
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::string m_file = (m_folder / "log").string();
};

TEST_F(EventLog, EventsAndAnswersAreRecordedAtOnce)
{
    CEventLog log(m_file);
    log.In(1, "print(1)\nprint(2)\n");
    EXPECT_EQ(Text(), "TIME event 1 in\n    print(1)\n    print(2)\n");
    log.Out(1, {"1\n2\n", ""});
    EXPECT_EQ(Text(), "TIME event 1 in\n    print(1)\n    print(2)\n"
                      "TIME event 1 out\n  result\n    1\n    2\n  error\n");
    log.Out(2, {"", "no such track"});
    EXPECT_THAT(Text(),
                testing::EndsWith("TIME event 2 out\n  result\n  error\n    no such track\n"));
}

TEST_F(EventLog, PlannedFaultsAreRecorded)
{
    CEventLog log(m_file);
    log.Faults(1, {});
    log.Faults(2, {"hang", "no-result"});
    EXPECT_EQ(Text(), "TIME event 2 faults hang no-result\n");
}

TEST_F(EventLog, NoScriptCanWriteARecordOfItsOwn)
{
    CEventLog log(m_file);
    log.In(1, "a\r2026-03-01T12:34:56.789Z event 9 out\nb");
    EXPECT_EQ(Text(), "TIME event 1 in\n    a\n    TIME event 9 out\n    b\n");
}

TEST_F(EventLog, AnExistingLogIsContinued)
{
    CEventLog(m_file).In(1, "a");
    CEventLog(m_file).In(1, "b");
    EXPECT_EQ(Text(), "TIME event 1 in\n    a\nTIME event 1 in\n    b\n");
}

TEST_F(EventLog, ALogThatCannotBeOpenedIsRefused)
{
    EXPECT_THROW(CEventLog((m_folder / "none" / "log").string()), std::runtime_error);
}

TEST_F(EventLog, AFullDiskIsToldOnceAndStopsNothing)
{
    CEventLog log("/dev/full");
    testing::internal::CaptureStderr();
    log.In(1, "a");
    log.Out(1, {"", ""});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tarvane-server: the log could not be written; records are missing in it\n");
}

TEST_F(EventLog, NoNameIsNoLog)
{
    CEventLog log("");
    log.In(1, "a");
    log.Out(1, {"", ""});
    EXPECT_TRUE(m_folder.Files().empty());
}

TEST_F(EventLog, ARefusalHasNoResultAndAChangeNamesItsSender)
{
    CEventLog log(m_file);
    log.Out(1, {"", "no \x1b[31mfile", true});
    log.Change(2, 4711, "/usr/bin/a\nTIME event 9 out");
    EXPECT_EQ(Text(),
              "TIME event 1 out\n  no result\n  error\n    no .[31mfile\n"
              "TIME event 2 changed the session, sent by 4711 /usr/bin/a.TIME event 9 out\n");
}

} // namespace
} // namespace Tarvane::Server
