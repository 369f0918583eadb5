#include "apps/server/Server.h"

#include "apps/server/database/SessionDatabase.h"
#include "apps/server/session/SessionBlocks.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/program/CommandLine.h"
#include "tests/apps/server/database/FullSession.h"
#include "tests/apps/support/FailingCalls.h"
#include "tests/apps/support/FullDisk.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <unistd.h>

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

class OpenSessionOf : public testing::Test
{
protected:
    CSession Open()
    {
        CSessionStore store(m_file);
        OpenSession(store, m_options);
        return store.Load().value();
    }

    std::string UsageError()
    {
        try
        {
            Open();
            return "opened";
        }
        catch (const CUsageError& error)
        {
            return error.what();
        }
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "session";
    const CSessionStore m_none{m_folder / "none"};
    Options m_options;
};

TEST_F(OpenSessionOf, ANewFileHoldsTheNewSession)
{
    m_options.trackNames = {"Vox"};
    m_options.linkOffset = 2.5;
    EXPECT_EQ(Open().LinkOffset(), 2.5);
    const CSession stored = *CSessionStore(m_file).Load();
    EXPECT_EQ(stored.LinkOffset(), 2.5);
    EXPECT_EQ(stored.GetDocument(DocumentKind::Script).tracks.at(0).strName, "Vox");
}

TEST_F(OpenSessionOf, AnExistingSessionGoesOn)
{
    m_options.trackNames = {"Vox"};
    Open();
    CSessionDatabase session(m_file);
    session.Begin();
    session.MoveDisplay(DocumentKind::Script, 99);
    session.Commit();
    EXPECT_EQ(Open().GetDocument(DocumentKind::Script).dDisplayPosition, 99);
    m_options = {};
    EXPECT_EQ(Open().GetDocument(DocumentKind::Script).dDisplayPosition, 99);
}

TEST_F(OpenSessionOf, OptionsThatSayOtherwiseAreRefused)
{
    m_options.trackNames = {"Vox"};
    Open();
    m_options.trackNames = {"Vox", "Guitar"};
    EXPECT_THAT(UsageError(), HasSubstr("exists and says otherwise than --track"));
    m_options.trackNames = {"Vox"};
    m_options.linkOffset = 1.0;
    EXPECT_THAT(UsageError(), HasSubstr("exists and says otherwise than --link-offset"));
    m_options.linkOffset = 0.0;
    EXPECT_EQ(UsageError(), "opened");
}

TEST_F(OpenSessionOf, AFlawedFileIsKeptAsideAndANewSessionBegins)
{
    std::ofstream(m_file) << "{}";
    m_options.trackNames = {"Vox"};
    testing::internal::CaptureStderr();
    EXPECT_EQ(Open().GetDocument(DocumentKind::Script).tracks.size(), 1u);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tarvane-server: the session file " + m_file.string() +
                  " is flawed: this is no session of this program; it is kept as " +
                  m_file.string() + ".flawed, and a new session begins\n");
    EXPECT_EQ(ReadFile(m_folder / "session.flawed", 100), "{}");
    EXPECT_EQ(CSessionStore(m_file).Load()->GetDocument(DocumentKind::Script).tracks.size(), 1u);
}

TEST_F(OpenSessionOf, AFileOfALaterProgramIsRefusedAndStays)
{
    const std::string strLater = R"({"form": "Tarvane Link session", "version": 3})";
    std::ofstream(m_file) << strLater;
    EXPECT_THAT(UsageError(), HasSubstr("is of a later program"));
    EXPECT_EQ(ReadFile(m_file, 100), strLater);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "session.flawed"));
}

TEST_F(OpenSessionOf, AFileOfAnEarlierFormIsConvertedAtOnceAndKept)
{
    for (const std::string& strEarlier :
         {std::string(TarvaneTest::szFullText), EncodeSession(TarvaneTest::FullSession())})
    {
        std::filesystem::remove(m_file);
        std::ofstream(m_file) << strEarlier;
        testing::internal::CaptureStderr();
        TarvaneTest::ExpectFullSession(Open());
        const std::string strTold = testing::internal::GetCapturedStderr();
        EXPECT_THAT(strTold, HasSubstr("was of an earlier form; it is a database from now on"));
        EXPECT_TRUE(CSessionStore(m_file).IsDatabase());
        const std::string strKept = strTold.substr(strTold.rfind(' ') + 1);
        EXPECT_EQ(ReadFile(strKept.substr(0, strKept.size() - 1), 10000), strEarlier);
    }
    EXPECT_TRUE(std::filesystem::exists(m_folder / "session.earlier"));
    EXPECT_TRUE(std::filesystem::exists(m_folder / "session.earlier-2"));
}

TEST_F(OpenSessionOf, AConversionThatFailsLeavesTheEarlierForm)
{
    for (const auto& [szCall, nCall] : {std::pair("fsync", 2), {"rename", 1}})
    {
        std::ofstream(m_file) << TarvaneTest::szFullText;
        const TarvaneTest::CFailingCall failing(szCall, nCall, ENOSPC);
        EXPECT_THROW(Open(), std::runtime_error);
        EXPECT_TRUE(failing.HasFailed());
        EXPECT_EQ(ReadFile(m_file, 10000), TarvaneTest::szFullText) << szCall;
    }
    const TarvaneTest::CFullDisk full(5000);
    EXPECT_THROW(Open(), std::runtime_error);
    EXPECT_EQ(ReadFile(m_file, 10000), TarvaneTest::szFullText);
    EXPECT_THAT(m_folder.Files(),
                testing::ElementsAre(".session.lock", "session", "session.earlier"));
}

TEST_F(OpenSessionOf, ADatabaseThatIsFlawedAtItsHeadIsKeptAside)
{
    Open();
    SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE).exec("DROP TABLE session");
    const std::string strFlawed = ReadFile(m_file, 1 << 20);
    testing::internal::CaptureStderr();
    Open();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("is flawed: no such table"));
    EXPECT_EQ(ReadFile(m_folder / "session.flawed", 1 << 20), strFlawed);
}

TEST_F(OpenSessionOf, ADatabaseThatCannotBeWrittenIsFoundAtOnce)
{
    Open();
    std::filesystem::permissions(m_file, std::filesystem::perms::owner_read);
    // Who may do everything can write it.
    if (geteuid() == 0)
        EXPECT_NO_THROW(Open());
    else
        EXPECT_THROW(Open(), std::system_error);
}

TEST_F(OpenSessionOf, AFileOfTheEarlierFormThatIsRefusedIsNotConverted)
{
    std::ofstream(m_file) << TarvaneTest::szFullText;
    m_options.trackNames = {"Other"};
    EXPECT_THAT(UsageError(), HasSubstr("exists and says otherwise than --track"));
    EXPECT_EQ(ReadFile(m_file, 10000), TarvaneTest::szFullText);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "session.earlier"));
}

TEST_F(OpenSessionOf, AFileInUseIsRefused)
{
    CSessionStore store(m_file);
    store.Lock();
    EXPECT_THROW(Open(), std::runtime_error);
}

TEST_F(OpenSessionOf, MadeAudioGoesBesideTheSession)
{
    const CSessionStore store(m_file);
    m_options.strSessionFile = m_file;
    EXPECT_EQ(RenderFolderFor(store, m_options), m_folder / "session.audio");
    m_options.strRenderFolder = "made";
    EXPECT_EQ(RenderFolderFor(store, m_options), std::filesystem::current_path() / "made");
}

// The environment as it was, once the object goes.
class CWithVariable
{
public:
    CWithVariable(const char* szName, const char* szValue) : m_szName(szName)
    {
        if (const char* szBefore = std::getenv(szName))
            m_before = szBefore;
        szValue != nullptr ? setenv(szName, szValue, 1) : unsetenv(szName);
    }
    ~CWithVariable() { m_before ? setenv(m_szName, m_before->c_str(), 1) : unsetenv(m_szName); }

private:
    const char* m_szName;
    std::optional<std::string> m_before;
};

TEST_F(OpenSessionOf, WithoutASessionMadeAudioGoesWhereNobodyElseCanPutAnything)
{
    const CWithVariable home("HOME", "/home/somebody");
    const CWithVariable state("XDG_STATE_HOME", "/state");
    EXPECT_EQ(RenderFolderFor(m_none, m_options), "/state/tarvane-server/audio");
    const CWithVariable noState("XDG_STATE_HOME", nullptr);
    EXPECT_EQ(RenderFolderFor(m_none, m_options),
              "/home/somebody/.local/state/tarvane-server/audio");
    const CWithVariable noHome("HOME", nullptr);
    const std::filesystem::path made = RenderFolderFor(m_none, m_options).parent_path();
    EXPECT_EQ(std::filesystem::status(made).permissions(), std::filesystem::perms::owner_all);
    EXPECT_NE(RenderFolderFor(m_none, m_options).parent_path(), made) << "nobody can foresee it";
    std::filesystem::remove(made);
}

} // namespace
} // namespace Tarvane::Server
