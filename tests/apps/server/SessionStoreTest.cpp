#include "apps/server/SessionStore.h"

#include "apps/server/SessionBlocks.h"
#include "apps/support/AtomicFile.h"
#include "tests/apps/server/FullSession.h"
#include "tests/apps/support/FailingCalls.h"
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
        CSession session({"Vox"}, 0);
        for (int nUpdate = 1; nUpdate <= nUpdates; nUpdate++)
            session.MoveDisplay(DocumentKind::Script, nUpdate);
        return session;
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

TEST_F(SessionStore, TheFileIsABinarySession)
{
    CSessionStore(m_file).Save(SessionAt(3));
    EXPECT_EQ(ReadFile(m_file, kAny), EncodeSession(SessionAt(3)));
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

TEST_F(SessionStore, TheEarlierFormIsReadAndTheNextSaveWritesTodays)
{
    std::ofstream(m_file) << TarvaneTest::szFullText;
    CSessionStore store(m_file);
    const CSession session = store.Load().value();
    TarvaneTest::ExpectFullSession(session);
    EXPECT_TRUE(store.HasEarlierForm());
    EXPECT_EQ(ReadFile(m_file, kAny), TarvaneTest::szFullText) << "loading writes nothing";
    store.Save(session);
    EXPECT_FALSE(store.HasEarlierForm());
    CSessionStore again(m_file);
    TarvaneTest::ExpectFullSession(again.Load().value());
    EXPECT_FALSE(again.HasEarlierForm());
    EXPECT_EQ(ReadFile(m_file, kAny), EncodeSession(TarvaneTest::FullSession()));
}

TEST_F(SessionStore, AConversionThatFailsLeavesTheEarlierForm)
{
    for (const auto& [szCall, nCall] :
         {std::pair("write", 1), {"fsync", 1}, {"rename", 1}, {"fsync", 2}})
    {
        std::ofstream(m_file) << TarvaneTest::szFullText;
        CSessionStore store(m_file);
        const CSession session = store.Load().value();
        {
            const CFailingCall failing(szCall, nCall, ENOSPC);
            EXPECT_THROW(store.Save(session), std::system_error);
        }
        EXPECT_EQ(ReadFile(m_file, kAny), TarvaneTest::szFullText) << szCall << nCall;
        EXPECT_TRUE(store.HasEarlierForm());
    }
}

TEST_F(SessionStore, WhatCouldNotBeLoadedAgainIsNotSaved)
{
    CSessionStore store(m_file);
    store.Save(SessionAt(1));
    CSession unsound = SessionAt(2);
    unsound.AddMarkerArea(DocumentKind::Script, {kNullId, 99, 0, 1});
    EXPECT_THROW(store.Save(unsound), CSessionFlaw);
    EXPECT_EQ(StoredUpdates(), 1);
}

TEST_F(SessionStore, AFileThatAnotherProgramHasPutThereIsLeftAndBothAreKept)
{
    CSessionStore store(m_file);
    store.Save(SessionAt(3));
    std::filesystem::remove(m_file);
    std::ofstream(m_file) << "of somebody else";
    for (const int nUpdates : {4, 5})
    {
        try
        {
            store.Save(SessionAt(nUpdates));
            FAIL() << "it was written over";
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_THAT(error.what(), HasSubstr("was changed by another program"));
        }
    }
    EXPECT_EQ(ReadFile(m_file, kAny), "of somebody else");
    const std::string strKept = "session.kept-" + std::to_string(getpid());
    EXPECT_THAT(m_folder.Files(), ElementsAre("session", strKept));
    EXPECT_EQ(CSessionStore(m_folder / strKept).Load()->UpdateCount(), 3);
}

TEST_F(SessionStore, AFileThatIsGoneIsWrittenAnew)
{
    CSessionStore store(m_file);
    store.Save(SessionAt(3));
    std::filesystem::remove(m_file);
    store.Save(SessionAt(4));
    EXPECT_EQ(StoredUpdates(), 4);
}

TEST_F(SessionStore, AFailedSaveLeavesTheSessionBefore)
{
    CSessionStore store(m_file);
    store.Save(SessionAt(1));
    for (const char* szCall : {"write", "fsync", "rename"})
    {
        const CFailingCall failing(szCall, 1, ENOSPC);
        EXPECT_THROW(store.Save(SessionAt(2)), std::system_error);
        EXPECT_EQ(StoredUpdates(), 1) << szCall;
    }
}

TEST_F(SessionStore, ASaveThatFailsAfterTheExchangeIsPutBack)
{
    CSessionStore(m_file).Save(SessionAt(1));
    CSessionStore store(m_file);
    store.Load();
    {
        const CFailingCall failing("fsync", 2, EIO);
        EXPECT_THROW(store.Save(SessionAt(2)), std::system_error);
    }
    EXPECT_EQ(StoredUpdates(), 1);
    store.Save(SessionAt(3));
    {
        const CFailingCall failing("fsync", 2, EIO);
        EXPECT_THROW(store.Save(SessionAt(4)), std::system_error);
    }
    EXPECT_EQ(StoredUpdates(), 3);
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

TEST_F(SessionStore, AFolderThatIsMissingIsAnError)
{
    CSessionStore store(m_folder / "none" / "session");
    EXPECT_THROW(store.Lock(), std::system_error);
    EXPECT_THROW(store.Save(SessionAt(1)), std::system_error);
}

} // namespace
} // namespace Tarvane::Server
