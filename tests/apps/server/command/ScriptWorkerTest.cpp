#include "apps/server/command/ScriptWorker.h"

#include "apps/server/database/SessionStore.h"
#include "tests/apps/server/CommandFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <fstream>
#include <poll.h>
#include <random>
#include <thread>
#include <unistd.h>

namespace Tarvane::Server
{
namespace
{

class ScriptWorker : public TarvaneTest::CommandFixture
{
protected:
    static Execution Run(CScriptWorker& worker, const std::string& strScript,
                         const Trouble& trouble = {})
    {
        worker.Begin(strScript, trouble);
        return Next(worker).execution;
    }

    static WorkerReport Next(CScriptWorker& worker)
    {
        for (;;)
        {
            pollfd wanted{worker.Descriptor(), POLLIN, 0};
            poll(&wanted, 1, -1);
            if (std::optional<WorkerReport> report = worker.Receive())
                return *std::move(report);
        }
    }

    std::string Adding() const
    {
        return "SelectScriptDocument() AddAudioRegion(GetTrackID(0), \"" + m_strTake +
               "\", true, false, 0,0,100)";
    }

    WorkerSettings WithLimit(std::int64_t nMilliseconds) const
    {
        WorkerSettings settings = m_settings;
        settings.limits.nMilliseconds = nMilliseconds;
        return settings;
    }

    std::filesystem::path Made() const
    {
        CSessionStore(m_folder / "session").Save(CSession({"Vox"}, 0));
        return m_folder / "session";
    }

    std::size_t StoredRegions() const
    {
        return CSessionStore(m_file).Load()->GetDocument(DocumentKind::Script).regions.size();
    }

    const std::filesystem::path m_file = Made();
    const WorkerSettings m_settings{m_file, IdentityOf(m_file), m_folder / "made", true, {}, {}};
};

TEST_F(ScriptWorker, RunsOneScriptAfterAnother)
{
    CScriptWorker worker(m_settings);
    for (const char* szNumber : {"1", "2", "3"})
    {
        const Execution execution = Run(worker, "print(" + std::string(szNumber) + ")");
        EXPECT_EQ(execution.reply.strResult, szNumber + std::string("\n"));
        EXPECT_FALSE(execution.reply.fChanged);
        EXPECT_TRUE(worker.IsAlive());
    }
}

TEST_F(ScriptWorker, WhatItChangedIsOnDiskAndItGoesOn)
{
    CScriptWorker worker(m_settings);
    for (std::size_t nRegion = 1; nRegion <= 3; nRegion++)
    {
        const Execution execution = Run(worker, Adding());
        EXPECT_EQ(execution.reply.strError, "");
        EXPECT_TRUE(execution.reply.fChanged);
        EXPECT_EQ(execution.nUpdateCount, static_cast<std::int64_t>(2 * nRegion));
        EXPECT_EQ(StoredRegions(), nRegion);
    }
    EXPECT_EQ(Run(worker, "print(GetUpdateCount())").reply.strResult, "6\n");
}

TEST_F(ScriptWorker, EndedInAChangeItHasChangedNothing)
{
    CScriptWorker worker(m_settings);
    worker.Begin(Adding() + " for n = 1, 9000000 do end", {});
    worker.Kill("it was ended");
    const std::optional<WorkerReport> report = worker.Receive();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->fEnded);
    EXPECT_EQ(report->execution.reply.strError, "it was ended");
    EXPECT_FALSE(worker.IsAlive());
    EXPECT_EQ(StoredRegions(), 0u);
    CScriptWorker other(m_settings);
    EXPECT_EQ(Run(other, Adding()).reply.strError, "");
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(ScriptWorker, EndedAtAnyInstantItsReportSaysWhatIsOnDisk)
{
    std::mt19937 random(20261122);
    std::uniform_int_distribution<int> microseconds(0, 6000);
    std::size_t nStored = 0;
    for (int nRound = 0; nRound < 40; nRound++)
    {
        CScriptWorker worker(m_settings);
        worker.Begin(Adding(), {});
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        worker.Kill("it was ended");
        std::optional<WorkerReport> report = worker.Receive();
        while (report && !report->fEnded && !report->execution.reply.fChanged)
            report = worker.Receive();
        ASSERT_TRUE(report);
        nStored += report->execution.reply.fChanged ? 1 : 0;
        ASSERT_EQ(StoredRegions(), nStored) << "round " << nRound;
    }
    RecordProperty("saved", static_cast<int>(nStored));
}

TEST_F(ScriptWorker, AFileThatIsGoneIsMadeAnew)
{
    CScriptWorker worker(m_settings);
    Run(worker, Adding());
    std::filesystem::remove(m_file);
    EXPECT_EQ(Run(worker, Adding()).reply.strError, "");
    EXPECT_EQ(StoredRegions(), 2u);
    EXPECT_EQ(Run(worker, Adding()).reply.strError, "");
    EXPECT_EQ(StoredRegions(), 3u);
}

TEST_F(ScriptWorker, OfAFileThatIsGoneNothingThatIsLeftBesideItGetsIntoTheNewOne)
{
    CScriptWorker worker(m_settings);
    Run(worker, Adding());
    std::filesystem::remove(m_file);
    ASSERT_TRUE(std::filesystem::exists(m_file.string() + "-wal"));
    EXPECT_EQ(Run(worker, Adding()).reply.strError, "");
    worker.Kill("as a crash would");
    EXPECT_EQ(CSessionDatabase(m_file).Flaw(), std::nullopt);
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(ScriptWorker, AFileThatIsGoneAndCannotBeMadeAnewIsMadeAsSoonAsItCan)
{
    CScriptWorker worker(m_settings);
    Run(worker, Adding());
    const std::filesystem::path inTheWay = m_file.string() + ".saving";
    std::filesystem::create_directories(inTheWay / "full");
    std::filesystem::remove(m_file);
    const CommandReply reply = Run(worker, Adding()).reply;
    EXPECT_THAT(reply.strError, testing::HasSubstr("cannot be made anew"));
    EXPECT_TRUE(reply.fRefused);
    std::filesystem::remove_all(inTheWay);
    EXPECT_EQ(Run(worker, Adding()).reply.strError, "");
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(ScriptWorker, AFileThatAnotherProgramHasPutThereIsLeftAndBothAreKept)
{
    CScriptWorker worker(m_settings);
    Run(worker, Adding());
    std::filesystem::remove(m_file);
    std::ofstream(m_file) << "of somebody else";
    for (int nTry = 0; nTry < 2; nTry++)
    {
        const CommandReply reply = Run(worker, Adding()).reply;
        EXPECT_THAT(reply.strError, testing::HasSubstr("was changed by another program"));
        EXPECT_TRUE(reply.fRefused);
        EXPECT_EQ(Run(worker, "print(GetUpdateCount())").reply.strResult, "2\n");
    }
    std::string strContent;
    std::getline(std::ifstream(m_file), strContent);
    EXPECT_EQ(strContent, "of somebody else");
    const std::string strKept = "session.kept-" + std::to_string(getpid());
    EXPECT_EQ(CSessionStore(m_folder / strKept).Load()->UpdateCount(), 2);
    CScriptWorker later(m_settings);
    const CommandReply reply = Run(later, Adding()).reply;
    EXPECT_THAT(reply.strError, testing::HasSubstr("was changed by another program"));
    EXPECT_TRUE(reply.fRefused);
}

TEST_F(ScriptWorker, AChangeOfAFileThatIsReplacedMeanwhileIsToBeMadeAgain)
{
    CScriptWorker worker(m_settings);
    SQLite::Database other(m_file.string(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");
    worker.Begin(Adding(), {});
    ASSERT_TRUE(Next(worker).fBlocked) << "it is in the middle of its script";
    std::filesystem::remove(m_file);
    std::ofstream(m_file) << "of somebody else";
    other.exec("ROLLBACK");
    worker.TryAgain(true);
    const Execution execution = Next(worker).execution;
    EXPECT_TRUE(execution.fConflict);
    EXPECT_FALSE(execution.reply.fChanged);
    EXPECT_THAT(Run(worker, Adding()).reply.strError,
                testing::HasSubstr("was changed by another program"));
}

TEST_F(ScriptWorker, WhatItWasWritingGoesWithIt)
{
    std::filesystem::create_directory(m_folder / "made");
    const std::filesystem::path others =
        m_folder / "made" / (".being-written-" + std::to_string(getpid()) + "-abcdef.wav");
    std::ofstream(others) << "somebody is at it";
    const std::string strLong = MakeSound(m_folder / "long.wav", Noise(4'000'000));
    CScriptWorker worker(m_settings);
    Run(worker, "SelectScriptDocument() AddAudioRegion(GetTrackID(0), \"" + strLong +
                    "\", true, false, 0,0,4000000)");
    worker.Begin("SelectScriptDocument() ExportRegion(GetSelectedRegionID())", {});
    const auto files = [this]
    {
        return std::distance(std::filesystem::directory_iterator(m_folder / "made"),
                             std::filesystem::directory_iterator());
    };
    while (files() < 2)
        std::this_thread::yield();
    worker.Kill("it was ended");
    worker.Receive();
    EXPECT_TRUE(std::filesystem::exists(others));
    EXPECT_EQ(files(), 1) << "the whole file, if it was quicker, would have another name";
}

TEST_F(ScriptWorker, RefusalsAndTroubleTravel)
{
    CScriptWorker worker(m_settings);
    const Execution refused = Run(worker, "SelectScriptDocument() DeleteRegion(5)");
    EXPECT_TRUE(refused.reply.fRefused);
    EXPECT_EQ(refused.reply.strError, "DeleteRegion: the document has no region with the id 5");
    EXPECT_EQ(Run(worker, "print(SelectScriptDocument())", {true, {}}).reply.strResult, "false\n");
}

TEST_F(ScriptWorker, LongResultsComeWhole)
{
    CScriptWorker worker(m_settings);
    const Execution execution = Run(worker, "for n = 1, 4096 do print(('x'):rep(1023)) end");
    EXPECT_EQ(execution.reply.strResult.size(), std::size_t(4) << 20);
}

TEST_F(ScriptWorker, WhatTakesLongWithinOneInstructionIsEnded)
{
    const WorkerSettings settings = WithLimit(100);
    CScriptWorker worker(settings);
    // All keys have one place in the table when it grows for the 131,073rd.
    const Execution execution =
        Run(worker, "local t = {} for n = 1, 140000 do t[n * 262143] = 1 end");
    EXPECT_EQ(execution.reply.strError, ProcessorTimeText(100));
    EXPECT_FALSE(execution.reply.fChanged);
    EXPECT_FALSE(worker.IsAlive()) << "it noticed by itself";
}

TEST_F(ScriptWorker, TimeIsCountedForEachScript)
{
    const WorkerSettings settings = WithLimit(300);
    CScriptWorker worker(settings);
    const std::string strSome = "for n = 1, 500000 do end print('done')";
    for (int n = 0; n < 40; n++)
        ASSERT_EQ(Run(worker, strSome).reply.strResult, "done\n") << n;
}

} // namespace
} // namespace Tarvane::Server
