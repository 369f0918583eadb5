// What comes into the file, when, and what becomes of it when the disk or the process fails.

#include "apps/support/recording/Recorder.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tarvane;
using namespace TarvaneTest;
using Kind = SeenProperty::Kind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace
{

class RecorderTest : public testing::Test
{
protected:
    std::vector<nlohmann::json> Lines() const
    {
        std::vector<nlohmann::json> lines;
        std::ifstream file(m_strFile);
        for (std::string strLine; std::getline(file, strLine);)
            lines.push_back(nlohmann::json::parse(strLine));
        return lines;
    }

    // Without the first line.
    std::vector<std::string> Kinds() const
    {
        std::vector<std::string> kinds;
        for (const nlohmann::json& line : Lines())
        {
            if (line.contains("kind"))
                kinds.push_back(line["kind"]);
        }
        return kinds;
    }

    static SeenProperty Notification(AudioUnitPropertyID nId)
    {
        return {Kind::Notification, nId, 0, 0, false, 0, {}};
    }
    static SeenEvent Event(UInt32 nNumber) { return {nNumber, 'TkNe', 'TKNE', 'LCmd', {}}; }

    const CTemporaryFolder m_folder;
    const std::string m_strFile = m_folder / "recording.jsonl";
};

} // namespace

TEST_F(RecorderTest, FirstLineSaysWhatTheFileIs)
{
    CRecorder recorder(m_strFile, "tarvane-host");
    const nlohmann::json line = Lines().at(0);
    EXPECT_EQ(line["format"], "tarvane-recording");
    EXPECT_EQ(line["version"], 1);
    EXPECT_EQ(line["program"], "tarvane-host");
    EXPECT_THAT(line["started"].get<std::string>(),
                testing::MatchesRegex("20..-..-..T..:..:..[.]......Z"));
    EXPECT_TRUE(line.contains("programVersion"));
}

TEST_F(RecorderTest, FileThatIsThereIsLeftAsItIs)
{
    std::ofstream(m_strFile) << "precious";
    EXPECT_THROW(CRecorder(m_strFile, "x"), CUsageError);
    std::ifstream file(m_strFile);
    std::string strText;
    std::getline(file, strText);
    EXPECT_EQ(strText, "precious");
}

TEST_F(RecorderTest, FileThatCannotBeMadeIsSaidSo)
{
    try
    {
        CRecorder recorder(m_folder / "none/recording", "x");
        ADD_FAILURE();
    }
    catch (const CUsageError& error)
    {
        EXPECT_THAT(error.what(), HasSubstr("No such file or directory"));
    }
}

TEST_F(RecorderTest, EventsAreInTheFileAtOnce)
{
    CRecorder recorder(m_strFile, "x");
    recorder.Add(Event(1));
    EXPECT_THAT(Kinds(), ElementsAre("event"));
    recorder.Add(SeenReply{1, 0, 5, {}});
    EXPECT_THAT(Kinds(), ElementsAre("event", "reply"));
}

TEST_F(RecorderTest, WhatRepeatsIsCountedIntoOneLine)
{
    {
        CRecorder recorder(m_strFile, "x");
        for (int n = 0; n < 1000; ++n)
        {
            recorder.Add(Notification(64010));
            recorder.Add({Kind::Read, 64010, 0, 0, true, 0, std::string(8, char(n))});
        }
        recorder.Add(Event(1));
    }
    // Slow machines see some seconds go by; a line for each of 2000 would be wrong on any.
    const auto lines = Lines();
    EXPECT_LT(lines.size(), 200U);
    EXPECT_EQ(lines.back()["kind"], "event");
    std::size_t nNotifications = 0, nReads = 0;
    long long nBefore = 0;
    for (const nlohmann::json& line : lines)
    {
        if (!line.contains("kind"))
            continue;
        const std::size_t nCount = line.value("count", 1);
        nNotifications += line["kind"] == "notification" ? nCount : 0;
        nReads += line["kind"] == "read" ? nCount : 0;
        EXPECT_GE(line["time"], nBefore);
        EXPECT_GE(line.value("last", line["time"].get<long long>()), line["time"]);
        nBefore = line["time"];
    }
    EXPECT_EQ(nNotifications, 1000U);
    EXPECT_EQ(nReads, 1000U);
}

TEST_F(RecorderTest, RepeatsAreNotHeldBackForLong)
{
    CRecorder recorder(m_strFile, "x");
    recorder.Add(Notification(64010));
    recorder.Add(Notification(64010));
    for (int n = 0; n < 400 && Kinds().size() < 2; ++n)
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    ASSERT_THAT(Lines(), SizeIs(3));
    EXPECT_FALSE(Lines()[1].contains("count"));
    EXPECT_EQ(Lines()[2]["count"], 1);
}

TEST_F(RecorderTest, WritesAndEventsStandBetweenWhatWasBeforeAndBehind)
{
    {
        CRecorder recorder(m_strFile, "x");
        recorder.Add(Notification(64004));
        recorder.Add({Kind::Write, 64009, 0, 0, true, 0, "abcd"});
        recorder.Add({Kind::Write, 64009, 0, 0, true, 0, "abcd"});
        recorder.Add(Notification(64004));
        recorder.Add(Event(1));
        recorder.Add(Notification(64004));
    }
    EXPECT_THAT(Kinds(), ElementsAre("notification", "write", "write", "notification", "event",
                                     "notification"));
}

TEST_F(RecorderTest, LinesOfManyThreadsAreWholeAndInOrder)
{
    {
        CRecorder recorder(m_strFile, "x");
        std::vector<std::thread> threads;
        for (unsigned nThread = 0; nThread < 8; ++nThread)
        {
            threads.emplace_back(
                [&recorder, nThread]
                {
                    for (unsigned n = 0; n < 50; ++n)
                    {
                        recorder.Add(Event(nThread));
                        recorder.Add(Notification(nThread));
                    }
                });
        }
        for (std::thread& thread : threads)
            thread.join();
    }
    long long nBefore = 0;
    std::size_t nEvents = 0, nNotifications = 0;
    for (const nlohmann::json& line : Lines())
    {
        if (!line.contains("kind"))
            continue;
        nEvents += line["kind"] == "event" ? 1 : 0;
        nNotifications += line["kind"] == "notification" ? line.value("count", 1U) : 0;
        EXPECT_GE(line["time"], nBefore);
        nBefore = line["time"];
    }
    EXPECT_EQ(nEvents, 400U);
    EXPECT_EQ(nNotifications, 400U);
}

TEST_F(RecorderTest, EndsWithAWholeLineWhenTheDiskTakesNoMore)
{
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto fnBefore = std::signal(SIGXFSZ, SIG_IGN);
    testing::internal::CaptureStderr();
    {
        CRecorder recorder(m_strFile, "x");
        rlimit tight{1000, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
        for (UInt32 n = 1; n < 30; ++n)
            recorder.Add(Event(n));
        setrlimit(RLIMIT_FSIZE, &before);
        recorder.Add(Event(30));
    }
    std::signal(SIGXFSZ, fnBefore);
    const std::string strError = testing::internal::GetCapturedStderr();
    EXPECT_THAT(strError, HasSubstr("the recording ends here"));
    EXPECT_EQ(strError.find("recording"), strError.rfind("recording")) << "said once";
    // Lines() would fail on half a line.
    const auto lines = Lines();
    EXPECT_GT(lines.size(), 3U);
    EXPECT_EQ(lines.back()["number"], lines.size() - 1);
}

TEST_F(RecorderTest, ProcessThatIsKilledLosesNoEvent)
{
    const pid_t nChild = fork();
    if (nChild == 0)
    {
        CRecorder recorder(m_strFile, "x");
        for (UInt32 n = 1; n <= 20; ++n)
            recorder.Add(Event(n));
        ::kill(getpid(), SIGKILL);
    }
    int nStatus = 0;
    waitpid(nChild, &nStatus, 0);
    EXPECT_TRUE(WIFSIGNALED(nStatus));
    EXPECT_THAT(Kinds(), SizeIs(20));
}

TEST_F(RecorderTest, EventThatWaitsForLongIsNamedWhileItDoes)
{
    CRecorder recorder(m_strFile, "x");
    recorder.Add(Event(1));
    recorder.Add(SeenReply{1, 0, 5, {}});
    recorder.Add(Event(2));
    const auto start = std::chrono::steady_clock::now();
    while (Kinds().size() < 4 && std::chrono::steady_clock::now() - start < std::chrono::minutes(1))
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_GE(std::chrono::steady_clock::now() - start, CRecorder::kLongWait);
    EXPECT_THAT(Kinds(), ElementsAre("event", "reply", "event", "waiting"));
    EXPECT_EQ(Lines().back()["number"], 2);
}
