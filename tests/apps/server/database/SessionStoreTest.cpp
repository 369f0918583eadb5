#include "apps/server/database/SessionStore.h"

#include "apps/server/database/SessionDatabase.h"
#include "apps/server/session/SessionBlocks.h"
#include "apps/support/file/AtomicFile.h"
#include "tests/apps/server/database/FullSession.h"
#include "tests/apps/support/FailingCalls.h"
#include "tests/apps/support/FullDisk.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <system_error>
#include <unistd.h>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::CFailingCall;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::size_t kAny = 1 << 20;

class SessionStore : public testing::Test
{
protected:
    std::int64_t StoredUpdates()
    {
        const std::optional<CSession> session = CSessionStore(m_file).Load();
        return session ? session->UpdateCount() : -1;
    }

    // A session with so many updates.
    static CSession SessionAt(int nUpdates)
    {
        TarvaneTest::CMadeSession session({"Vox"}, 0);
        for (int nUpdate = 1; nUpdate <= nUpdates; nUpdate++)
            session.MoveDisplay(DocumentKind::Script, nUpdate);
        return session.Content();
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "session";
};

TEST_F(SessionStore, NoFileIsNoSession)
{
    EXPECT_FALSE(CSessionStore(m_file).Load().has_value());
    EXPECT_THAT(m_folder.Files(), ElementsAre());
}

TEST_F(SessionStore, WhatIsSavedIsLoaded)
{
    CSessionStore(m_file).Save(SessionAt(3));
    EXPECT_EQ(StoredUpdates(), 3);
    EXPECT_THAT(m_folder.Files(), ElementsAre("session"));
}

TEST_F(SessionStore, AnEarlierFormBeyondTheLimitIsNotReadIntoMemory)
{
    const std::string strBinary = EncodeSession(SessionAt(0));
    std::ofstream(m_file, std::ios::binary | std::ios::trunc) << strBinary;
    EXPECT_EQ(StoredUpdates(), 0);
    std::filesystem::resize_file(m_file, kLargestSessionFile + 1);
    try
    {
        CSessionStore(m_file).Load();
        FAIL();
    }
    catch (const CSessionFlaw& flaw)
    {
        FAIL() << "a file too large is no flawed one: " << flaw.what();
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_THAT(error.what(), HasSubstr("File too large"));
        EXPECT_THAT(error.what(), HasSubstr(m_file.string()));
    }
}

TEST_F(SessionStore, AFlawedFileIsNamedAndLeftAsItIs)
{
    std::ofstream(m_file) << "not a session";
    CSessionStore store(m_file);
    try
    {
        store.Load();
        FAIL();
    }
    catch (const CSessionFlaw& flaw)
    {
        EXPECT_EQ(flaw.what(), "the session file " + m_file.string() +
                                   " is flawed: offset 0: it does not begin with \"[TNE Binary "
                                   "Session File]\"");
    }
    EXPECT_EQ(ReadFile(m_file, kAny), "not a session");
    EXPECT_THAT(m_folder.Files(), ElementsAre("session"));
}

TEST_F(SessionStore, FlawedFilesAreKeptEachUnderANameOfItsOwn)
{
    for (const char* szContent : {"first flaw", "second flaw"})
    {
        std::ofstream(m_file) << szContent;
        CSessionStore store(m_file);
        EXPECT_THROW(store.Load(), CSessionFlaw);
        store.KeepFlawed();
        store.Save(SessionAt(1));
    }
    EXPECT_EQ(StoredUpdates(), 1);
    EXPECT_EQ(ReadFile(m_folder / "session.flawed", kAny), "first flaw");
    EXPECT_EQ(ReadFile(m_folder / "session.flawed-2", kAny), "second flaw");
}

TEST_F(SessionStore, AFileOfALaterProgramIsNoFlaw)
{
    std::ofstream(m_file) << R"({"form": "Tarvane Link session", "version": 3})";
    CSessionStore store(m_file);
    try
    {
        store.Load();
        FAIL();
    }
    catch (const CSessionTooNew& version)
    {
        EXPECT_THAT(version.what(), HasSubstr("the session file " + m_file.string() +
                                              " is of a later program: its version is 3"));
    }
}

TEST_F(SessionStore, EarlierFormsAreReadAndLeftAsTheyAre)
{
    for (const std::string& strEarlier :
         {std::string(TarvaneTest::szFullText), EncodeSession(TarvaneTest::FullSession())})
    {
        std::ofstream(m_file) << strEarlier;
        CSessionStore store(m_file);
        TarvaneTest::ExpectFullSession(store.Load().value());
        EXPECT_FALSE(store.IsDatabase());
        EXPECT_EQ(ReadFile(m_file, kAny), strEarlier);
    }
    CSessionStore store(m_file);
    store.Save(SessionAt(1));
    EXPECT_TRUE(store.IsDatabase());
}

TEST_F(SessionStore, ALogThatIsLeftOverIsNotTakenForTheNewSessions)
{
    CSessionStore(m_file).Save(SessionAt(1));
    std::string strLog;
    {
        CSessionDatabase database(m_file);
        database.Begin();
        database.MoveDisplay(DocumentKind::Script, 99);
        database.Commit();
        strLog = ReadFile(m_folder / "session-wal", kAny);
        ASSERT_FALSE(strLog.empty());
    }
    std::ofstream(m_folder / "session-wal") << strLog;
    CSessionStore(m_file).Save(SessionAt(7));
    EXPECT_EQ(StoredUpdates(), 7);
    EXPECT_THAT(m_folder.Files(), ElementsAre("session"));
}

TEST_F(SessionStore, WhatCouldNotBeLoadedAgainIsNotSaved)
{
    CSessionStore store(m_file);
    store.Save(SessionAt(1));
    Document unsound;
    unsound.markerAreas = {{1, 99, 0, 1}};
    EXPECT_THROW(store.Save(CSession::Restore({unsound, Document()}, 0, 2, 2)), CSessionFlaw);
    EXPECT_EQ(StoredUpdates(), 1);
}

TEST_F(SessionStore, AFailedSaveLeavesTheSessionBefore)
{
    CSessionStore store(m_file);
    store.Save(SessionAt(1));
    for (const char* szCall : {"fsync", "rename"})
    {
        const CFailingCall failing(szCall, 1, ENOSPC);
        EXPECT_THROW(store.Save(SessionAt(2)), std::system_error);
        EXPECT_EQ(StoredUpdates(), 1) << szCall;
    }
    const TarvaneTest::CFullDisk full(5000);
    EXPECT_THROW(store.Save(SessionAt(2)), std::runtime_error);
    EXPECT_EQ(StoredUpdates(), 1);
    EXPECT_THAT(m_folder.Files(), ElementsAre("session"));
}

TEST_F(SessionStore, ALinkKeepsPointingAtTheFile)
{
    std::filesystem::create_directory(m_folder / "elsewhere");
    CSessionStore(m_folder / "elsewhere" / "real").Save(SessionAt(1));
    std::filesystem::create_symlink(m_folder / "elsewhere" / "real", m_file);
    CSessionStore(m_file).Save(SessionAt(2));
    EXPECT_TRUE(std::filesystem::is_symlink(m_file));
    EXPECT_EQ(CSessionStore(m_folder / "elsewhere" / "real").Load()->UpdateCount(), 2);
}

TEST_F(SessionStore, OneServerAtATimeHoldsTheLock)
{
    CSessionStore other(m_file);
    {
        CSessionStore store(m_file);
        store.Lock();
        try
        {
            other.Lock();
            FAIL();
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_EQ(error.what(), "the session " + m_file.string() +
                                        " is in use by another server; end that one first");
        }
    }
    CSessionStore(m_file).Lock();
}

TEST_F(SessionStore, TheLockIsNotMadeWhereALinkPoints)
{
    std::filesystem::create_symlink(m_folder / "aim", m_folder / ".session.lock");
    EXPECT_THROW(CSessionStore(m_folder / "session").Lock(), std::system_error);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "aim"));
}

TEST_F(SessionStore, AFolderThatIsMissingIsAnError)
{
    CSessionStore store(m_folder / "none" / "session");
    EXPECT_THROW(store.Lock(), std::system_error);
    EXPECT_THROW(store.Save(SessionAt(1)), std::runtime_error);
}

} // namespace
} // namespace Tarvane::Server
