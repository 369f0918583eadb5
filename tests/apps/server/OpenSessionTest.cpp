#include "apps/server/Server.h"

#include "apps/support/AtomicFile.h"
#include "apps/support/CommandLine.h"
#include "tests/apps/server/FullSession.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>

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
        return OpenSession(&store, m_options);
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
    CSession session = Open();
    session.MoveDisplay(DocumentKind::Script, 99);
    CSessionStore(m_file).Save(session);
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

TEST_F(OpenSessionOf, AFileOfTheEarlierFormIsConvertedAtOnce)
{
    std::ofstream(m_file) << TarvaneTest::szFullText;
    TarvaneTest::ExpectFullSession(Open());
    CSessionStore store(m_file);
    TarvaneTest::ExpectFullSession(store.Load().value());
    EXPECT_FALSE(store.HasEarlierForm());
}

TEST_F(OpenSessionOf, AFileOfTheEarlierFormThatIsRefusedIsNotConverted)
{
    std::ofstream(m_file) << TarvaneTest::szFullText;
    m_options.trackNames = {"Other"};
    EXPECT_THAT(UsageError(), HasSubstr("exists and says otherwise than --track"));
    EXPECT_EQ(ReadFile(m_file, 10000), TarvaneTest::szFullText);
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
    EXPECT_EQ(RenderFolderFor(&store, m_options), m_folder / "session.audio");
    m_options.strRenderFolder = "made";
    EXPECT_EQ(RenderFolderFor(&store, m_options), std::filesystem::current_path() / "made");
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
    EXPECT_EQ(RenderFolderFor(nullptr, m_options), "/state/tarvane-server/audio");
    const CWithVariable noState("XDG_STATE_HOME", nullptr);
    EXPECT_EQ(RenderFolderFor(nullptr, m_options),
              "/home/somebody/.local/state/tarvane-server/audio");
    const CWithVariable noHome("HOME", nullptr);
    const std::filesystem::path made = RenderFolderFor(nullptr, m_options).parent_path();
    EXPECT_EQ(std::filesystem::status(made).permissions(), std::filesystem::perms::owner_all);
    EXPECT_NE(RenderFolderFor(nullptr, m_options).parent_path(), made) << "nobody can foresee it";
    std::filesystem::remove(made);
}

TEST_F(OpenSessionOf, WithoutAFileThereIsANewSession)
{
    m_options.trackNames = {"Vox"};
    EXPECT_EQ(OpenSession(nullptr, m_options).GetDocument(DocumentKind::Script).tracks.size(), 1u);
    EXPECT_TRUE(m_folder.Files().empty());
}

} // namespace
} // namespace Tarvane::Server
