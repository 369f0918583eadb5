#include "apps/server/command/CommandQueue.h"

#include "apps/server/database/SessionStore.h"
#include "tests/apps/server/CommandFixture.h"
#include "tests/apps/support/FailingCalls.h"

#include <CoreFoundation/CoreFoundation.h>
#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <limits>

namespace Tarvane::Server
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

// A script that ends by the bound alone.
constexpr const char* kEndless = "while true do end";

class CommandQueue : public TarvaneTest::CommandFixture
{
protected:
    static SandboxLimits Limits(std::int64_t nMilliseconds = 1000)
    {
        SandboxLimits limits;
        limits.nInstructions = std::numeric_limits<std::int64_t>::max();
        limits.nMilliseconds = nMilliseconds;
        return limits;
    }

    void Add(CCommandQueue& queue, std::int64_t nClient, const std::string& strScript)
    {
        Command command;
        command.nClient = nClient;
        command.strScript = strScript;
        command.begin = [this, nClient]
        {
            m_begun.push_back(nClient);
            return Trouble{};
        };
        command.end = [this, nClient](const CommandReply& reply)
        {
            m_ended.push_back(nClient);
            m_replies.push_back(reply);
        };
        queue.Add(std::move(command));
    }

    void RunUntil(std::size_t nEnded) const
    {
        while (m_ended.size() < nEnded)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
    }

    static void RunFor(std::chrono::milliseconds time)
    {
        const auto later = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < later)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
    }

    std::string Adding(std::int64_t nPosition) const
    {
        return "SelectScriptDocument() AddAudioRegion(GetTrackID(0), \"" + m_strTake +
               "\", true, false, " + std::to_string(nPosition) + ",0,100)";
    }

    std::vector<std::int64_t> m_begun;
    std::vector<std::int64_t> m_ended;
    std::vector<CommandReply> m_replies;
    // Settings for a session that is made anew.
    WorkerSettings Made(const SandboxLimits& limits) const
    {
        CSessionStore(m_file).Save(CSession({"Vox"}, 0));
        return {m_file, IdentityOf(m_file), m_folder / "made", true, limits, {}};
    }

    Document Stored() const
    {
        return CSessionStore(m_file).Load()->GetDocument(DocumentKind::Script);
    }

    const std::filesystem::path m_file = m_folder / "session";
    const WorkerSettings m_patient = Made(Limits());
};

TEST_F(CommandQueue, AnswersWhatWasPrintedAndKeepsWhatChanged)
{
    CCommandQueue queue(m_patient);
    Add(queue, 1, Adding(0));
    Add(queue, 1, "SelectScriptDocument() print(GetRegionCount(GetTrackID(0)))");
    RunUntil(2);
    EXPECT_EQ(m_replies[0].strError, "");
    EXPECT_EQ(m_replies[1].strResult, "1\n");
    EXPECT_EQ(Stored().regions.size(), 1u);
}

TEST_F(CommandQueue, AShortQuestionIsBehindNoLongScript)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(10);
    limits.longest = std::chrono::minutes(10);
    CCommandQueue queue(Made(Limits(60'000)), limits);
    for (std::int64_t nClient = 1; nClient <= 7; nClient++)
        Add(queue, nClient, kEndless);
    Add(queue, 8, "print('short')");
    RunUntil(1);
    EXPECT_EQ(m_ended[0], 8);
    EXPECT_EQ(m_replies[0].strResult, "short\n");
}

TEST_F(CommandQueue, OfLongScriptsTheOneGoesOnThatHasRunLeast)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    limits.longest = std::chrono::minutes(10);
    CCommandQueue queue(Made(Limits(20'000)), limits);
    Add(queue, 1, kEndless);
    Add(queue, 2, "for n = 1, 20000000 do end");
    RunUntil(1);
    EXPECT_EQ(m_ended[0], 2);
}

TEST_F(CommandQueue, LongScriptsAllComeToTheirEnd)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    CCommandQueue queue(m_patient, limits);
    for (std::int64_t nClient = 1; nClient <= 3; nClient++)
        Add(queue, nClient, "for n = 1, 5000000 do end print(" + std::to_string(nClient) + ")");
    RunUntil(3);
    for (std::size_t n = 0; n < 3; n++)
        EXPECT_EQ(m_replies[n].strResult, std::to_string(m_ended[n]) + "\n");
}

TEST_F(CommandQueue, ClientsTakeTurnsAndEachIsServedInOrder)
{
    QueueLimits limits;
    limits.turn = std::chrono::minutes(1);
    CCommandQueue queue(m_patient, limits);
    for (int n = 1; n <= 3; n++)
        Add(queue, 1, "print(" + std::to_string(n) + ")");
    Add(queue, 2, "print('other')");
    RunUntil(4);
    EXPECT_THAT(m_ended, ElementsAre(1, 2, 1, 1));
    EXPECT_EQ(m_replies[2].strResult, "2\n");
    EXPECT_EQ(m_replies[3].strResult, "3\n");
}

TEST_F(CommandQueue, ALongScriptIsAnsweredBeforeTheNextOfItsClientBegins)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    CCommandQueue queue(m_patient, limits);
    Add(queue, 1, "for n = 1, 20000000 do end print('first')");
    Add(queue, 1, "print('second')");
    RunUntil(2);
    EXPECT_EQ(m_replies[0].strResult, "first\n");
    EXPECT_EQ(m_replies[1].strResult, "second\n");
}

TEST_F(CommandQueue, AChangeOfASessionThatHasChangedMeanwhileIsMadeAnew)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    CCommandQueue queue(m_patient, limits);
    Add(queue, 1, "for n = 1, 20000000 do end " + Adding(0));
    while (m_begun.empty())
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
    Add(queue, 2, Adding(1000));
    RunUntil(2);
    // Whoever came second began again, and the other may have been ended in the middle.
    EXPECT_GE(m_begun.size(), 3u);
    EXPECT_LE(m_begun.size(), 4u);
    EXPECT_NE(m_ended[0], m_ended[1]);
    EXPECT_EQ(Stored().regions.size(), 2u);
}

TEST_F(CommandQueue, AShortChangeIsBehindNoLongOneThatHasBegun)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(10);
    limits.longest = std::chrono::minutes(10);
    CCommandQueue queue(Made(Limits(60'000)), limits);
    Add(queue, 1, Adding(0) + ' ' + kEndless);
    RunFor(std::chrono::milliseconds(500));
    Add(queue, 2, Adding(1000));
    RunUntil(1);
    EXPECT_EQ(m_ended[0], 2);
    EXPECT_EQ(m_replies[0].strError, "");
    ASSERT_EQ(Stored().regions.size(), 1u);
    EXPECT_EQ(Stored().regions[0].nPosition, 1000);
}

TEST_F(CommandQueue, AQuestionHasNotChangedWhatAnotherClientChangesMeanwhile)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    CCommandQueue queue(m_patient, limits);
    Add(queue, 1, "for n = 1, 20000000 do end print('asked')");
    while (m_begun.empty())
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
    Add(queue, 2, Adding(0));
    RunUntil(2);
    for (std::size_t n = 0; n < 2; n++)
        EXPECT_EQ(m_replies[n].fChanged, m_ended[n] == 2) << m_ended[n];
}

TEST_F(CommandQueue, WhatIsBeingSavedIsEndedNeitherForItsTimeNorForAnother)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    limits.longest = std::chrono::milliseconds(2000);
    WorkerSettings settings = Made(Limits());
    settings.strEditor = "ardour:" + Path("edit");
    const std::string strGo = Path("go");
    const TarvaneTest::CWaitingCall waiting("rename", strGo);
    CCommandQueue queue(settings, limits);
    Add(queue, 1, Adding(0));
    while (m_ended.empty() && !std::filesystem::exists(strGo + ".reached"))
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
    Add(queue, 2, Adding(1000));
    // Time enough, too, for the other to find the session in the middle of a change.
    RunFor(2 * limits.longest);
    EXPECT_TRUE(m_ended.empty());
    std::ofstream{strGo};
    RunUntil(2);
    EXPECT_EQ(std::count(m_begun.begin(), m_begun.end(), 1), 1);
    EXPECT_EQ(m_replies[0].strError, "");
    EXPECT_EQ(m_replies[1].strError, "");
    EXPECT_EQ(Stored().regions.size(), 2u);
}

TEST_F(CommandQueue, WhatWaitsInTheWorldIsEndedToo)
{
    QueueLimits limits;
    limits.longest = std::chrono::milliseconds(1000);
    CCommandQueue queue(Made(Limits(1'000'000)), limits);
    Add(queue, 1, std::string(kEndless) + " DeleteRegion()");
    RunUntil(1);
    EXPECT_EQ(m_replies[0].strError, "the script takes more than 1 seconds");
    EXPECT_TRUE(m_replies[0].fRefused) << "it names a change";
    Add(queue, 1, "print(1)");
    RunUntil(2);
    EXPECT_EQ(m_replies[1].strResult, "1\n");
}

TEST_F(CommandQueue, TheTimesOfAllTurnsCount)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    limits.longest = std::chrono::milliseconds(1000);
    CCommandQueue queue(Made(Limits(1'000'000)), limits);
    Add(queue, 1, kEndless);
    Add(queue, 2, kEndless);
    RunUntil(2);
    for (const CommandReply& reply : m_replies)
        EXPECT_EQ(reply.strError, "the script takes more than 1 seconds");
}

TEST_F(CommandQueue, TheTimeThatOthersHadDoesNotCount)
{
    QueueLimits limits;
    limits.turn = std::chrono::milliseconds(0);
    limits.longest = std::chrono::milliseconds(3000);
    CCommandQueue queue(Made(Limits(700)), limits);
    constexpr std::size_t kClients = 6; // together longer than any one may take
    for (std::size_t nClient = 1; nClient <= kClients; nClient++)
        Add(queue, std::int64_t(nClient), kEndless);
    RunUntil(kClients);
    for (const CommandReply& reply : m_replies)
        EXPECT_EQ(reply.strError, ProcessorTimeText(700));
}

TEST_F(CommandQueue, TheTimeOfWaitingForAChangeDoesNotCount)
{
    QueueLimits limits;
    limits.longest = std::chrono::milliseconds(1000);
    CCommandQueue queue(m_patient, limits);
    {
        SQLite::Database other(m_file.string(), SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        queue.HoldChanges();
        Add(queue, 1, Adding(0));
        RunFor(2 * limits.longest);
        EXPECT_TRUE(m_ended.empty());
    }
    queue.LetChanges();
    RunUntil(1);
    EXPECT_EQ(m_replies[0].strError, "");
    EXPECT_EQ(Stored().regions.size(), 1u);
}

TEST_F(CommandQueue, WhatIsTooMuchToWaitIsRefusedAtOnce)
{
    QueueLimits limits;
    limits.nWaitingBytes = 100;
    CCommandQueue queue(m_patient, limits);
    Add(queue, 1, std::string(60, ' '));
    Add(queue, 1, std::string(60, ' '));
    Add(queue, 1, std::string(60, ' '));
    ASSERT_EQ(m_replies.size(), 1u);
    EXPECT_EQ(m_replies[0].strError, "too many commands are waiting");
    RunUntil(3);
    for (std::size_t nEnded = 4; nEnded <= 8; nEnded++)
    {
        Add(queue, 1, std::string(60, ' '));
        RunUntil(nEnded);
        EXPECT_EQ(m_replies.back().strError, "") << "what has been run counts no more";
    }
}

} // namespace
} // namespace Tarvane::Server
