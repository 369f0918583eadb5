#include "signal/TakeJournal.h"

#include "signal/TakeFolder.h"
#include "tests/apps/support/FailingCalls.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <boost/crc.hpp>
#include <gmock/gmock.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

namespace
{

constexpr const char* kJournalUuid = "01234567-89ab-4cde-8f01-23456789abcd";

CTake TakeAt(double dPosition)
{
    CTake take;
    take.file = "/takes/take.wav";
    take.dPosition = dPosition;
    take.dRate = 48000;
    take.nFrames = 480;
    return take;
}

std::string BytesOf(const fs::path& file)
{
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
}

void Write(const fs::path& file, const std::string& strBytes)
{
    std::ofstream(file, std::ios::binary) << strBytes;
}

std::vector<double> PositionsIn(const fs::path& folder)
{
    std::vector<double> positions;
    for (const CJournalTake& take : CTakeJournal(folder, kJournalUuid).Open())
    {
        positions.push_back(take.dPosition);
    }
    return positions;
}

// A journal of four takes, a line each, left as by a process that was killed.
struct LeftJournal
{
    LeftJournal()
    {
        CTakeJournal journal(folder.Path(), kJournalUuid);
        path = journal.Path();
        for (const double dPosition : positions)
        {
            EXPECT_NE(journal.Moved(TakeAt(dPosition)), 0U);
        }
        strBytes = BytesOf(path);
    }
    CTemporaryFolder folder;
    const std::vector<double> positions = {100, 200, 300, 400};
    fs::path path;
    std::string strBytes;
};

CTake LossyTakeAt(double dPosition)
{
    CTake take = TakeAt(dPosition);
    take.nLostFrames = 960;
    return take;
}

// As if each line had been written at another time.
void SetTimes(const fs::path& journal, std::int64_t nSecondsSince1970)
{
    std::istringstream lines(BytesOf(journal));
    std::string strBytes;
    for (std::string strLine; std::getline(lines, strLine);)
    {
        std::string strJson = strLine.substr(strLine.find('{'));
        const std::string strKey = "\"time\":";
        const std::size_t nTime = strJson.find(strKey);
        if (nTime != std::string::npos)
        {
            const std::size_t nFrom = nTime + strKey.size();
            strJson.replace(nFrom, strJson.find('}', nFrom) - nFrom,
                            std::to_string(nSecondsSince1970));
        }
        boost::crc_32_type crc;
        crc.process_bytes(strJson.data(), strJson.size());
        char szCrc[16];
        std::snprintf(szCrc, sizeof szCrc, "%08x ", static_cast<unsigned>(crc.checksum()));
        strBytes += szCrc + strJson + "\n";
    }
    Write(journal, strBytes);
}

// An index of this test's own, of four folders.
struct LeftIndex
{
    LeftIndex() : strStateBefore(std::getenv("XDG_STATE_HOME"))
    {
        ::setenv("XDG_STATE_HOME", state.Path().c_str(), 1);
        for (const fs::path& folder : folders)
        {
            NoteJournalFolder(folder);
        }
        path = TakeStateFolder() / "capture-folders";
        strBytes = BytesOf(path);
    }
    ~LeftIndex() { ::setenv("XDG_STATE_HOME", strStateBefore.c_str(), 1); }
    LeftIndex(const LeftIndex&) = delete;
    LeftIndex& operator=(const LeftIndex&) = delete;

    const std::string strStateBefore;
    CTemporaryFolder state;
    const std::vector<fs::path> folders = {"/takes/1", "/takes/2", "/takes/3", "/takes/4"};
    fs::path path;
    std::string strBytes;
};

// One bit anywhere in a file that has a line for each entry.
template <typename Entries, typename Read>
void ExpectFlawsToCostTheirLine(const fs::path& path, const Entries& entries, const Read& read)
{
    const std::string strBytes = BytesOf(path);
    for (std::size_t nByte = 0; nByte < strBytes.size(); ++nByte)
    {
        std::string strFlawed = strBytes;
        strFlawed[nByte] = static_cast<char>(strFlawed[nByte] ^ (1 << (nByte % 8)));
        Write(path, strFlawed);
        // The end of a line joins it to the next.
        const std::size_t nLost = strBytes[nByte] == '\n' && nByte + 1 < strBytes.size() ? 2 : 1;
        const auto left = read();
        ASSERT_GE(left.size() + nLost, entries.size()) << nByte;
        ASSERT_THAT(left, testing::IsSubsetOf(entries)) << nByte << ": a flaw was believed";
    }
}

} // namespace

TEST(TakeJournal, KeepsWhatIsOpenAndForgetsWhatIsSettled)
{
    CTemporaryFolder folder;
    CTakeJournal journal(folder.Path(), kJournalUuid);
    EXPECT_THAT(folder.Files(), IsEmpty()) << "made with its first line";
    const std::uint64_t nFirst = journal.Moved(TakeAt(1));
    for (double dPosition : {2, 3, 4, 5, 6})
    {
        journal.Moved(TakeAt(dPosition));
    }
    EXPECT_TRUE(journal.Ended(nFirst, "delivered", "", 0));
    EXPECT_TRUE(journal.Ended(nFirst + 1, "duplicate", "", 0));
    EXPECT_TRUE(journal.Ended(nFirst + 2, "refused", "no \"room\"\n", 0));
    EXPECT_TRUE(journal.Ended(nFirst + 3, "unreachable", "", 0));
    EXPECT_TRUE(journal.Ended(nFirst + 4, "placed without the offset", "", 96000));
    EXPECT_TRUE(journal.Ended(nFirst + 5, CTakeJournal::kForgotten, "", 0));
    const auto open = journal.Open();
    ASSERT_THAT(open, SizeIs(2));
    EXPECT_EQ(open[0].dPosition, 3);
    EXPECT_EQ(open[0].strOutcome, "refused");
    EXPECT_EQ(open[0].strWords, "no \"room\"\n");
    EXPECT_EQ(open[1].dPosition, 4);
}

TEST(TakeJournal, GoesWhenNothingInItIsOpen)
{
    CTemporaryFolder folder;
    {
        CTakeJournal journal(folder.Path(), kJournalUuid);
        const std::uint64_t nTake = journal.Moved(TakeAt(1));
        EXPECT_THAT(folder.Files(), SizeIs(1));
        journal.Ended(nTake, "delivered", "", 0);
    }
    EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST(TakeJournal, TellsADayLongOfWhatWasLostBehindATakeThatIsSettled)
{
    CTemporaryFolder folder;
    {
        CTakeJournal journal(folder.Path(), kJournalUuid);
        for (const char* szOutcome : {"delivered", CTakeJournal::kForgotten})
        {
            journal.Ended(journal.Moved(LossyTakeAt(7)), szOutcome, "", 0);
        }
        journal.Ended(journal.Moved(TakeAt(8)), "delivered", "", 0);
    }
    const CTakeJournal left(folder.Path(), kJournalUuid);
    EXPECT_THAT(left.Open(), IsEmpty());
    const auto losses = left.Losses();
    ASSERT_THAT(losses, SizeIs(1)) << "not of the one that is forgotten";
    EXPECT_EQ(losses[0].dPosition, 7);
    EXPECT_EQ(losses[0].nLostFrames, 960U);
    const std::int64_t nNow = losses[0].nFinishedTime;
    EXPECT_GT(nNow, 0);

    constexpr std::int64_t kHour = 3600;
    SetTimes(left.Path(), nNow - 23 * kHour);
    EXPECT_TRUE(CTakeJournal(folder.Path(), kJournalUuid).Hold());
    EXPECT_THAT(left.Losses(), SizeIs(1));
    SetTimes(left.Path(), nNow - 25 * kHour);
    EXPECT_THAT(left.Losses(), IsEmpty());
    EXPECT_TRUE(CTakeJournal(folder.Path(), kJournalUuid).Hold());
    EXPECT_THAT(folder.Files(), IsEmpty()) << "its next holder takes it away";
}

TEST(TakeJournal, WhatIsLostLaterChangesNothingElseOfATake)
{
    CTemporaryFolder folder;
    CTakeJournal journal(folder.Path(), kJournalUuid);
    const std::uint64_t nSettled = journal.Moved(TakeAt(7));
    journal.Ended(nSettled, "delivered", "", 0);
    const std::uint64_t nWaiting = journal.Moved(TakeAt(8));
    journal.Finished(nSettled, LossyTakeAt(7));
    journal.Finished(nWaiting, LossyTakeAt(8));
    const auto open = journal.Open();
    ASSERT_THAT(open, SizeIs(1));
    EXPECT_EQ(open[0].dPosition, 8);
    EXPECT_EQ(open[0].nLostFrames, 960U);
    EXPECT_THAT(journal.Losses(), SizeIs(2));
}

TEST(TakeJournal, StaysWhenItCannotBeReadAtItsEnd)
{
    const LeftJournal left;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    {
        CTakeJournal journal(left.folder.Path(), kJournalUuid);
        ASSERT_TRUE(journal.Hold());
        rlimit none = before;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(PositionsIn(left.folder.Path()), left.positions);
}

TEST(TakeJournal, WhatIsNoJournalIsHeldByNobodyAndStaysAsItIs)
{
    const LeftJournal left;
    const auto expectLeft = [&](const char* szWhat)
    {
        {
            CTakeJournal journal(left.folder.Path(), kJournalUuid);
            EXPECT_FALSE(journal.Hold()) << szWhat;
            EXPECT_EQ(journal.Moved(TakeAt(1)), 0U) << szWhat;
            EXPECT_THAT(journal.Open(), IsEmpty()) << szWhat;
        }
        EXPECT_FALSE(CTakeJournal::IsHeld(left.path)) << szWhat;
        EXPECT_TRUE(fs::exists(fs::symlink_status(left.path))) << szWhat;
        fs::remove(left.path);
    };
    fs::resize_file(left.path, (64 << 20) + 1);
    expectLeft("one that is too large to be ours");
    mkfifo(left.path.c_str(), 0600);
    expectLeft("a pipe");
    fs::create_directory(left.path);
    expectLeft("a folder");
    fs::create_symlink("elsewhere", left.path);
    expectLeft("a link");
}

TEST(TakeJournal, CutOffAnywhereItLosesTheLineThatIsCutAndNoOther)
{
    const LeftJournal left;
    for (std::size_t nSize = 0; nSize <= left.strBytes.size(); ++nSize)
    {
        Write(left.path, left.strBytes.substr(0, nSize));
        std::vector<double> whole;
        const std::string strKept = left.strBytes.substr(0, nSize + 1); // a line end may be missing
        for (std::size_t n = 0, nEnd = 0; (nEnd = strKept.find('\n', nEnd)) != std::string::npos;
             ++nEnd, ++n)
        {
            whole.push_back(left.positions[n]);
        }
        ASSERT_EQ(PositionsIn(left.folder.Path()), whole) << nSize;
    }
}

TEST(TakeJournal, FlawedAnywhereItLosesTheLineThatIsFlawedAndNoOther)
{
    const LeftJournal left;
    ExpectFlawsToCostTheirLine(left.path, left.positions,
                               [&] { return PositionsIn(left.folder.Path()); });
}

TEST(TakeJournal, ALineBehindOneThatIsCutOffStandsOnItsOwn)
{
    const LeftJournal left;
    Write(left.path, left.strBytes.substr(0, left.strBytes.size() - 5));
    CTakeJournal journal(left.folder.Path(), kJournalUuid);
    ASSERT_TRUE(journal.Hold());
    journal.Moved(TakeAt(500));
    EXPECT_THAT(PositionsIn(left.folder.Path()), ElementsAre(100, 200, 300, 500));
}

TEST(TakeJournal, IsOneInstancesAtATime)
{
    const LeftJournal left;
    CTakeJournal first(left.folder.Path(), kJournalUuid), second(left.folder.Path(), kJournalUuid);
    EXPECT_TRUE(first.Hold());
    EXPECT_FALSE(second.Hold());
    EXPECT_EQ(second.Moved(TakeAt(1)), 0U);
    EXPECT_THAT(second.Failure(), testing::HasSubstr("another instance"));
}

TEST(TakeJournal, TakesAPathOfAnyBytes)
{
    CTemporaryFolder folder;
    CTakeJournal journal(folder.Path(), kJournalUuid);
    CTake take = TakeAt(1);
    for (const char* szFile : {"/a \"b\"\n\\c.wav", "/Caf\xE9.wav", "/\xF0\x9F\x8E\xB5.wav"})
    {
        take.file = szFile;
        const std::uint64_t nTake = journal.Moved(take);
        ASSERT_THAT(journal.Open(), SizeIs(1));
        EXPECT_EQ(journal.Open()[0].file, szFile);
        journal.Ended(nTake, "delivered", "", 0);
    }
}

TEST(TakeJournal, KnowsAUuid)
{
    EXPECT_TRUE(CTakeJournal::IsUuid(kJournalUuid));
    EXPECT_TRUE(CTakeJournal::IsUuid(CTakeJournal::NewUuid()));
    EXPECT_NE(CTakeJournal::NewUuid(), CTakeJournal::NewUuid());
    for (const char* szNone :
         {"", "01234567-89ab-4cde-8f01-23456789abc", "../../../../../../../../etc/passwd-1234",
          "01234567-89ab-4cde-8f01-23456789abcg", "01234567x89ab-4cde-8f01-23456789abcd"})
    {
        EXPECT_FALSE(CTakeJournal::IsUuid(szNone)) << szNone;
    }
}

TEST(TakeJournal, EveryFolderWithAJournalIsInTheIndexOnce)
{
    CTemporaryFolder first, second;
    for (int nRound = 0; nRound < 2; ++nRound)
    {
        for (const fs::path& folder : {first.Path(), second.Path()})
        {
            CTakeJournal(folder, kJournalUuid).Moved(TakeAt(1));
        }
    }
    const auto folders = JournalFolders();
    EXPECT_EQ(std::count(folders.begin(), folders.end(), first.Path()), 1);
    EXPECT_EQ(std::count(folders.begin(), folders.end(), second.Path()), 1);
    EXPECT_THAT(CTakeJournal::In(first.Path()), SizeIs(1));
}

TEST(TakeJournal, AnIndexThatIsCutOffAnywhereLosesTheFolderThatIsCutAndNoOther)
{
    const LeftIndex left;
    for (std::size_t nSize = 0; nSize <= left.strBytes.size(); ++nSize)
    {
        Write(left.path, left.strBytes.substr(0, nSize));
        const std::string strKept = left.strBytes.substr(0, nSize + 1); // a line end may be missing
        std::vector<fs::path> whole = left.folders;
        whole.resize(static_cast<std::size_t>(std::count(strKept.begin(), strKept.end(), '\n')));
        ASSERT_EQ(JournalFolders(), whole) << nSize;
        NoteJournalFolder("/takes/new");
        whole.emplace_back("/takes/new");
        ASSERT_EQ(JournalFolders(), whole) << nSize << ": behind a line that is cut off";
    }
}

TEST(TakeJournal, AnIndexThatIsFlawedAnywhereLosesTheFolderThatIsFlawedAndNoOther)
{
    const LeftIndex left;
    ExpectFlawsToCostTheirLine(left.path, left.folders, [] { return JournalFolders(); });
}

TEST(TakeJournal, AFolderThatIsInTheIndexTwiceIsOneFolder)
{
    const LeftIndex left;
    Write(left.path, left.strBytes + left.strBytes);
    EXPECT_EQ(JournalFolders(), left.folders);
}

TEST(TakeJournal, AFolderThatTheIndexHasLostIsInItAgainWhenItsJournalIsHeld)
{
    const LeftIndex index;
    const LeftJournal left;
    for (const char* szLost : {"", "no index of ours\n"})
    {
        Write(index.path, szLost);
        ASSERT_THAT(JournalFolders(), IsEmpty());
        CTakeJournal journal(left.folder.Path(), kJournalUuid);
        EXPECT_TRUE(journal.Hold());
        EXPECT_THAT(JournalFolders(), ElementsAre(left.folder.Path()));
    }
}

TEST(TakeJournal, WritesNothingWhereALinkPoints)
{
    const LeftIndex index;
    const CTemporaryFolder folder;
    CTakeJournal journal(folder.Path(), kJournalUuid);
    fs::create_symlink(folder / "aim", journal.Path());
    EXPECT_EQ(journal.Moved(TakeAt(1)), 0U);
    EXPECT_FALSE(fs::exists(folder / "aim"));
    fs::remove(index.path);
    fs::create_symlink(folder / "aim", index.path);
    NoteJournalFolder("/takes/5");
    EXPECT_FALSE(fs::exists(folder / "aim"));
}

TEST(TakeJournal, ATakeWhoseFolderIsAwayIsNotGone)
{
    const CTemporaryFolder folder;
    CTakeJournal journal(folder.Path(), kJournalUuid);
    for (const bool fFinished : {true, false})
    {
        CJournalTake take;
        take.fFinished = fFinished;
        take.strStem = "take";
        take.file = folder / "disk" / "take-001.wav";
        EXPECT_THROW(RecoverTake(take, journal), std::runtime_error) << fFinished;
        std::ofstream(folder / "disk") << "no folder";
        EXPECT_THROW(RecoverTake(take, journal), std::runtime_error) << fFinished;
        fs::remove(folder / "disk");
        fs::create_directory(folder / "disk");
        EXPECT_FALSE(RecoverTake(take, journal)) << fFinished;
        fs::remove(folder / "disk");
    }
}

TEST(TakeJournal, ManyWritersOfTheIndexDoNotSpoilIt)
{
    CTemporaryFolder folder;
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < 8; ++nThread)
    {
        threads.emplace_back(
            [&, nThread]
            {
                for (int n = 0; n < 20; ++n)
                {
                    NoteJournalFolder(folder / (std::to_string(nThread) + "-" + std::to_string(n)));
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    const auto folders = JournalFolders();
    for (int nThread = 0; nThread < 8; ++nThread)
    {
        for (int n = 0; n < 20; ++n)
        {
            EXPECT_EQ(std::count(folders.begin(), folders.end(),
                                 folder / (std::to_string(nThread) + "-" + std::to_string(n))),
                      1);
        }
    }
}

TEST(TakeJournal, ALineIsWrittenWhenTheDiskHasIt)
{
    CTemporaryFolder folder;
    CTakeJournal journal(folder.Path(), kJournalUuid);
    const std::uint64_t nTake = journal.Moved(TakeAt(100));
    ASSERT_NE(nTake, 0U);
    CFailingCall fail("fsync", 1, EIO);
    EXPECT_FALSE(journal.Ended(nTake, "refused", "no room", 0));
    EXPECT_TRUE(fail.HasFailed());
    EXPECT_NE(journal.Failure(), "");
    EXPECT_TRUE(journal.CatchUp());
}
