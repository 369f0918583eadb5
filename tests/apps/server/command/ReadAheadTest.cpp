#include "apps/server/command/ReadAhead.h"

#include "apps/server/command/CommandQueue.h"
#include "apps/server/database/SessionStore.h"
#include "apps/server/sound/Fingerprinting.h"
#include "tests/apps/server/sound/FileRead.h"
#include "tests/apps/server/sound/SoundMaker.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <chrono>

namespace Tarvane::Server
{
namespace
{

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::int64_t kLong = kLongStretch + 1;
// Of a test with the process that reads, which locks the file when it is the last to close it.
constexpr int kPatience = 30'000; // milliseconds

class ReadAhead : public testing::Test
{
protected:
    ReadAhead() { CSessionStore(m_file).Save(CSession({"Vox"}, 0)); }

    WorkerSettings Settings(const Access& access = {}) const
    {
        return {m_file, IdentityOf(m_file), m_folder / "made", true, {}, access};
    }

    std::string Sound(const std::string& strName, std::int64_t nFrames) const
    {
        const std::string strPath = TarvaneTest::MakeSound(
            m_folder / strName, TarvaneTest::Noise(static_cast<std::size_t>(nFrames)));
        TarvaneTest::Settle(strPath);
        return strPath;
    }

    void Add(const std::string& strPath, std::int64_t nFrames) const
    {
        Region region;
        region.nTrackId = 1;
        region.strPath = strPath;
        region.nEnd = nFrames;
        region.nSampleRate = 48000;
        CSessionDatabase session(m_file);
        session.Begin();
        session.AddRegion(region);
        session.Commit();
    }

    // The files whose fingerprints the session keeps, by their inodes.
    std::vector<std::uint64_t> Kept() const
    {
        std::vector<std::uint64_t> inodes;
        SQLite::Database database(m_file.string(), SQLite::OPEN_READONLY, kPatience);
        SQLite::Statement rows(database, "SELECT inode FROM fingerprints");
        while (rows.executeStep())
            inodes.push_back(static_cast<std::uint64_t>(rows.getColumn(0).getInt64()));
        return inodes;
    }

    static std::uint64_t Inode(const std::string& strPath) { return StateOf(strPath)->nInode; }

    // Until as many are kept, or there is no hope any more.
    void RunUntilKept(std::size_t nCount, std::chrono::seconds longest = 30s) const
    {
        const auto end = std::chrono::steady_clock::now() + longest;
        while (Kept().size() < nCount && std::chrono::steady_clock::now() < end)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "session";
};

TEST_F(ReadAhead, WhatIsAddedIsRead)
{
    const std::string strBefore = Sound("before.wav", kLong), strOne = Sound("one.wav", kLong),
                      strOther = Sound("other.wav", kLong);
    Add(strBefore, kLong);
    CReadAhead readAhead(Settings(), 10ms);
    Add(strOne, kLong);
    readAhead.Changed(IdentityOf(m_file));
    RunUntilKept(1);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strOne)));
    Add(strOther, kLong);
    readAhead.Changed(IdentityOf(m_file));
    RunUntilKept(2);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strOne), Inode(strOther)));
}

TEST_F(ReadAhead, WhatIsShortOrGoneIsPassedOver)
{
    const std::string strShort = Sound("short.wav", kLongStretch), strGone = Sound("gone", kLong),
                      strLong = Sound("long.wav", kLong);
    CReadAhead readAhead(Settings(), 10ms);
    Add(strShort, kLongStretch);
    Add(strGone, kLong);
    std::filesystem::remove(strGone);
    Add(strLong, kLong);
    readAhead.Changed(IdentityOf(m_file));
    RunUntilKept(1);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strLong)));
}

TEST_F(ReadAhead, EachIsReadOnce)
{
    const std::string strOne = Sound("one.wav", kLong), strOther = Sound("other.wav", kLong);
    CReadAhead readAhead(Settings(), 10ms);
    Add(strOne, kLong);
    readAhead.Changed(IdentityOf(m_file));
    RunUntilKept(1);
    SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE, kPatience)
        .exec("DELETE FROM fingerprints");
    Add(strOther, kLong);
    readAhead.Changed(IdentityOf(m_file));
    RunUntilKept(1);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strOther)));
}

TEST_F(ReadAhead, AFileThatAnotherProgramPutThereIsLeftAlone)
{
    const std::string strOne = Sound("one.wav", kLong);
    CReadAhead readAhead(Settings(), 10ms);
    const FileIdentity ours = IdentityOf(m_file);
    std::filesystem::rename(m_file, m_folder / "ours");
    CSessionStore(m_file).Save(CSession({"Vox"}, 0));
    Add(strOne, kLong);
    readAhead.Changed(ours);
    RunUntilKept(1, 1s);
    EXPECT_THAT(Kept(), IsEmpty());
}

// What follows goes through the queue, as in the server.
class ReadAheadOfServer : public ReadAhead
{
protected:
    std::string Answer(CCommandQueue& queue, const std::string& strScript)
    {
        std::optional<CommandReply> answer;
        queue.Add({1, "SelectScriptDocument() " + strScript, [] { return Trouble{}; },
                   [&answer](const CommandReply& reply) { answer = reply; }});
        while (!answer)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
        EXPECT_EQ(answer->strError, "");
        return answer->strResult;
    }

    static std::string Place(const std::string& strPath)
    {
        return "GetTrackID(0), \"" + strPath + "\"";
    }
    static std::string Stretch() { return ", 0, 0, " + std::to_string(kLong) + ")"; }

    std::string AskFor(CCommandQueue& queue, const std::string& strPath)
    {
        return Answer(queue, "print(CheckForDuplicateRegion(" + Place(strPath) + Stretch() + ")");
    }
};

TEST_F(ReadAheadOfServer, FollowsTheCommandsThatAdd)
{
    const std::string strTake = Sound("take.wav", kLong);
    CCommandQueue queue(Settings());
    Answer(queue, "AddAudioRegion(" + Place(strTake) + ", true, false" + Stretch());
    RunUntilKept(1);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strTake)));
}

TEST_F(ReadAheadOfServer, GoesOnInASessionThatBeginsAnew)
{
    const std::string strTake = Sound("take.wav", kLong), strOther = Sound("other.wav", kLong);
    CCommandQueue queue(Settings());
    Answer(queue, "AddAudioRegion(" + Place(strTake) + ", true, false" + Stretch());
    queue.StartOver(
        [this]
        {
            std::filesystem::remove(m_file);
            CSessionDatabase::RemoveLog(m_file);
            CSessionStore(m_file).Save(CSession({"Vox"}, 0));
            return Settings();
        });
    Answer(queue, "AddAudioRegion(" + Place(strOther) + ", true, false" + Stretch());
    RunUntilKept(1);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strOther)));
}

TEST_F(ReadAheadOfServer, AQuestionLeavesWhatItRead)
{
    const std::string strTake = Sound("take.wav", kLong), strCopy = Sound("copy.wav", kLong);
    Add(strTake, kLong);
    CCommandQueue queue(Settings());
    EXPECT_EQ(AskFor(queue, strCopy), "1\n");
    RunUntilKept(2);
    EXPECT_THAT(Kept(), UnorderedElementsAre(Inode(strTake), Inode(strCopy)));
}

TEST_F(ReadAheadOfServer, AServerThatMayChangeNothingKeepsNone)
{
    const std::string strTake = Sound("take.wav", kLong), strCopy = Sound("copy.wav", kLong);
    Add(strTake, kLong);
    CCommandQueue queue(Settings({.fReadOnly = true}));
    EXPECT_EQ(AskFor(queue, strCopy), "1\n");
    // The next answer comes after what the first one left.
    EXPECT_EQ(AskFor(queue, strCopy), "1\n");
    EXPECT_THAT(Kept(), IsEmpty());
}

} // namespace
} // namespace Tarvane::Server
