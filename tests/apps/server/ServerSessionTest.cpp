// What the session file holds when a server ends in any way.
#include "apps/server/database/SessionStore.h"
#include "apps/server/session/SessionBlocks.h"
#include "apps/support/file/AtomicFile.h"
#include "tests/apps/server/ServerFixture.h"
#include "tests/apps/server/database/FullSession.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <random>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace TarvaneTest
{
namespace
{

using namespace Tarvane::Server;
using Tarvane::ReadFile;
using testing::HasSubstr;

class ServerSession : public ServerFixture
{
protected:
    static constexpr std::filesystem::perms kReadAndEnter =
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec;

    // Permissions bind the superuser as well.
    static std::vector<std::string> UnprivilegedPrefix()
    {
        if (geteuid() != 0)
            return {};
        return {"setpriv", "--bounding-set", "-dac_override,-dac_read_search,-fowner", "--"};
    }
    static Ended RunUnprivileged(const std::vector<std::string>& options)
    {
        return RunToEnd(options, UnprivilegedPrefix());
    }

    // No file of the server and of its processes grows beyond so many bytes.
    static void LimitFiles(pid_t nServer, rlim_t nBytes)
    {
        std::vector<pid_t> processes{nServer};
        const std::string strServer = std::to_string(nServer);
        std::ifstream children("/proc/" + strServer + "/task/" + strServer + "/children");
        for (pid_t nChild = 0; children >> nChild;)
            processes.push_back(nChild);
        const rlimit limit{nBytes, RLIM_INFINITY};
        for (const pid_t nProcess : processes)
            prlimit(nProcess, RLIMIT_FSIZE, &limit, nullptr);
    }

    std::vector<std::int64_t> StoredPositions() const
    {
        const std::optional<CSession> session = CSessionStore(m_strSession).Load();
        std::vector<std::int64_t> positions;
        for (const Region& region : session->GetDocument(DocumentKind::Script).regions)
            positions.push_back(region.nPosition);
        return positions;
    }
};

TEST_F(ServerSession, ANewOneIsOnDiskWhenTheServerIsReady)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox", "--link-offset", "1"});
    EXPECT_EQ(CSessionStore(m_strSession).Load()->LinkOffset(), 1.0);
}

TEST_F(ServerSession, GoesOnAfterARestart)
{
    const std::vector<std::string> options{"--session", m_strSession,    "--track",
                                           "Vox",       "--link-offset", "2.5"};
    {
        const Child server = Start(options);
        EXPECT_EQ(SendScript(Add(1000)).error, std::nullopt);
    }
    // The same command line, and one that names the file alone.
    for (const std::vector<std::string>& again :
         {options, std::vector<std::string>{"--session", m_strSession}})
    {
        const Child server = Start(again);
        EXPECT_EQ(SendScript("SelectScriptDocument() print(GetTrackName(GetTrackID(0)), "
                             "GetLinkSMPTEOffset(), GetUpdateCount())")
                      .result,
                  "Vox\t2.5\t2\n");
    }
    EXPECT_EQ(StoredPositions(), std::vector<std::int64_t>{1000});
}

TEST_F(ServerSession, OptionsThatSayOtherwiseAreRefused)
{
    Start({"--session", m_strSession, "--track", "Vox"});
    const std::string strBefore = ReadFile(m_strSession, 1 << 20);
    for (const std::vector<std::string>& more :
         {std::vector<std::string>{"--track", "Guitar"}, {"--link-offset", "3"}})
    {
        std::vector<std::string> options{"--session", m_strSession};
        options.insert(options.end(), more.begin(), more.end());
        const Ended server = RunToEnd(options);
        EXPECT_EQ(server.nExitCode, 2);
        EXPECT_THAT(server.strError, HasSubstr("exists and says otherwise than " + more[0]));
    }
    EXPECT_EQ(ReadFile(m_strSession, 1 << 20), strBefore);
}

TEST_F(ServerSession, AFlawedFileIsNamedAndKeptAside)
{
    const std::vector<std::string> contents{"", "not a session",
                                            "{\"form\": \"Tarvane Link session\"}",
                                            EncodeSession(CSession({"Vox"}, 0)).substr(0, 90)};
    std::string strKept = m_strSession + ".flawed";
    for (std::size_t n = 0; n < contents.size(); n++)
    {
        std::ofstream(m_strSession) << contents[n];
        if (n > 0)
            strKept = m_strSession + ".flawed-" + std::to_string(n + 1);
        const Child server = Start({"--session", m_strSession, "--track", "Vox"});
        EXPECT_THAT(server->ErrorOutput(),
                    HasSubstr("tarvane-server: the session file " + m_strSession + " is flawed: "));
        EXPECT_THAT(server->ErrorOutput(),
                    HasSubstr("; it is kept as " + strKept + ", and a new session begins\n"));
        EXPECT_EQ(SendScript(Add(1000)).error, std::nullopt);
        EXPECT_EQ(StoredPositions(), std::vector<std::int64_t>{1000});
    }
    EXPECT_EQ(ReadFile(m_strSession + ".flawed", 1000), contents[0]);
    for (std::size_t n = 1; n < contents.size(); n++)
        EXPECT_EQ(ReadFile(m_strSession + ".flawed-" + std::to_string(n + 1), 1000), contents[n]);
}

TEST_F(ServerSession, AFlawedFileThatCannotBeKeptAsideIsLeftAsItIs)
{
    std::ofstream(m_strSession) << "not a session";
    std::ofstream(Path(".session.lock")) << "";
    std::filesystem::permissions(m_folder.Path(), kReadAndEnter);
    const Ended server = RunUnprivileged({"--session", m_strSession});
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms::owner_all);
    EXPECT_EQ(server.nExitCode, 1);
    EXPECT_THAT(server.strError, HasSubstr("cannot give a second name to " + m_strSession));
    EXPECT_EQ(ReadFile(m_strSession, 1000), "not a session");
}

TEST_F(ServerSession, ListingNamesAFlawedFileAndLeavesItAsItIs)
{
    std::ofstream(m_strSession) << "not a session";
    const std::vector<std::string> before = m_folder.Files();
    const Ended server = RunToEnd({"--list-session", m_strSession});
    EXPECT_EQ(server.nExitCode, 2);
    EXPECT_THAT(server.strError, HasSubstr("the session file " + m_strSession + " is flawed: "));
    EXPECT_EQ(m_folder.Files(), before);
    EXPECT_EQ(ReadFile(m_strSession, 1000), "not a session");
}

TEST_F(ServerSession, AFileOfTheEarlierFormIsConvertedWhenTheServerIsReady)
{
    std::ofstream(m_strSession) << szFullText;
    {
        const Child server = Start({"--session", m_strSession});
        CSessionStore store(m_strSession);
        ExpectFullSession(store.Load().value());
        EXPECT_TRUE(store.IsDatabase());
        EXPECT_EQ(SendScript("SelectScriptDocument() print(GetTrackName(GetTrackID(1)), "
                             "GetUpdateCount())")
                      .result,
                  "Guitar\t5\n");
    }
    EXPECT_EQ(m_folder.Files(), (std::vector<std::string>{".session.lock", "session",
                                                          "session.earlier", "take.wav"}));
}

TEST_F(ServerSession, AConversionOnAFullDiskLeavesTheEarlierForm)
{
    std::ofstream(m_strSession) << szFullText;
    const Ended server = RunToEnd({"--session", m_strSession}, {"prlimit", "--fsize=100", "--"});
    EXPECT_EQ(server.nExitCode, 1);
    EXPECT_THAT(server.strError, HasSubstr("cannot write"));
    EXPECT_EQ(ReadFile(m_strSession, 10000), szFullText);
}

TEST_F(ServerSession, AServerKilledInAConversionLeavesOneOfTheTwoForms)
{
    // How long a start takes here, so that the instants are spread over it.
    const auto started = std::chrono::steady_clock::now();
    Start({"--session", m_strSession});
    const std::chrono::duration<double> start = std::chrono::steady_clock::now() - started;
    std::mt19937 random(20260302);
    std::uniform_real_distribution<double> seconds(0, start.count());
    int nConverted = 0;
    for (int nRound = 0; nRound < 20; nRound++)
    {
        std::ofstream(m_strSession, std::ios::trunc) << szFullText;
        const Child server = StartAnyway({"--session", m_strSession});
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds(random)));
        kill(server->Pid(), SIGKILL);
        server->WaitForEnd(kAnyTime);
        CSessionStore store(m_strSession);
        ExpectFullSession(store.Load().value());
        nConverted += store.IsDatabase();
    }
    RecordProperty("converted", nConverted);
}

TEST_F(ServerSession, AReadOnlyFolderIsFoundAtTheStartAndCanStillBeListed)
{
    CSessionStore(m_strSession).Save(FullSession());
    const std::string strBefore = ReadFile(m_strSession, 1 << 20);
    std::filesystem::permissions(m_folder.Path(), kReadAndEnter);
    const Ended server = RunUnprivileged({"--session", m_strSession});
    const Ended listing = RunUnprivileged({"--list-session", m_strSession});
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms::owner_all);
    EXPECT_EQ(server.nExitCode, 1);
    EXPECT_THAT(server.strError, HasSubstr("Permission denied"));
    EXPECT_EQ(listing.nExitCode, 0);
    EXPECT_THAT(listing.strOutput, HasSubstr("Guitar"));
    EXPECT_EQ(ReadFile(m_strSession, 1 << 20), strBefore);
}

TEST_F(ServerSession, AFolderThatBecomesReadOnlyDoesNotConcernTheOpenSession)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox"}, UnprivilegedPrefix());
    std::filesystem::permissions(m_folder.Path(), kReadAndEnter);
    const CScriptAnswer answer = SendScript(Add(0));
    const std::vector<std::int64_t> stored = StoredPositions();
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms::owner_all);
    EXPECT_EQ(answer.error, std::nullopt);
    EXPECT_EQ(stored, std::vector<std::int64_t>{0});
}

TEST_F(ServerSession, AFileThatCannotBeWrittenIsFoundAtTheStart)
{
    const Ended server = RunToEnd({"--session", Path("none/session")});
    EXPECT_EQ(server.nExitCode, 1);
    EXPECT_THAT(server.strError, HasSubstr("No such file or directory"));
}

TEST_F(ServerSession, AFullDiskUndoesTheChangeAndTellsTheClient)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox"});
    EXPECT_EQ(SendScript(Add(0)).error, std::nullopt);
    LimitFiles(server->Pid(), 100);
    for (int nTry = 0; nTry < 2; nTry++)
    {
        const CScriptAnswer answer = SendScript(Add(1000));
        EXPECT_EQ(answer.nStatus, noErr);
        EXPECT_EQ(answer.result, std::nullopt);
        EXPECT_THAT(answer.error.value_or(""), HasSubstr("nothing was changed, for the session "
                                                         "could not be saved: "));
        EXPECT_EQ(StoredPositions(), std::vector<std::int64_t>{0});
        EXPECT_EQ(SendScript("print(GetUpdateCount())").result, "2\n");
    }
    LimitFiles(server->Pid(), RLIM_INFINITY);
    EXPECT_EQ(SendScript(Add(1000)).error, std::nullopt);
    EXPECT_EQ(StoredPositions(), (std::vector<std::int64_t>{0, 1000}));
}

TEST_F(ServerSession, AFlawDeepInTheFileIsFoundAndKeptAside)
{
    {
        const Child server = Start({"--session", m_strSession, "--track", "Vox"});
        EXPECT_EQ(SendScript(Add(0)).error, std::nullopt);
        ASSERT_EQ(kill(server->Pid(), SIGTERM), 0);
        EXPECT_EQ(server->WaitForEnd(kAnyTime), 0);
    }
    SQLite::Database(m_strSession, SQLite::OPEN_READWRITE)
        .exec("PRAGMA ignore_check_constraints = ON; UPDATE regions SET stop = -1");
    const Child server = Start({"--session", m_strSession, "--track", "Vox"});
    // No change is made before all has been looked at.
    EXPECT_EQ(SendScript(Add(2000)).error, std::nullopt);
    EXPECT_THAT(server->ErrorOutput(),
                HasSubstr("is flawed: CHECK constraint failed in regions; it is kept as " +
                          m_strSession + ".flawed, and a new session begins\n"));
    EXPECT_EQ(StoredPositions(), std::vector<std::int64_t>{2000});
    EXPECT_TRUE(std::filesystem::exists(m_strSession + ".flawed"));
}

TEST_F(ServerSession, WhatWasReplacedBehindTheServerIsLeftAsItIs)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox"});
    EXPECT_EQ(SendScript(Add(0)).error, std::nullopt);
    std::filesystem::remove(m_strSession);
    std::ofstream(m_strSession) << "of somebody else";
    const CScriptAnswer answer = SendScript(Add(1000));
    EXPECT_EQ(answer.result, std::nullopt);
    EXPECT_THAT(answer.error.value_or(""), HasSubstr("was changed by another program"));
    ASSERT_EQ(kill(server->Pid(), SIGTERM), 0);
    EXPECT_EQ(server->WaitForEnd(kAnyTime), 0);
    EXPECT_EQ(ReadFile(m_strSession, 1000), "of somebody else");
    const std::string strKept = m_strSession + ".kept-" + std::to_string(server->Pid());
    EXPECT_EQ(CSessionStore(strKept).Load()->UpdateCount(), 2);
}

TEST_F(ServerSession, IsExportedAsABinarySessionAndImportedAgain)
{
    CSessionStore(m_strSession).Save(FullSession());
    const std::string strBinary = Path("exported");
    EXPECT_EQ(RunToEnd({"--session", m_strSession, "--export", strBinary}).nExitCode, 0);
    EXPECT_EQ(ReadFile(strBinary, 10000), EncodeSession(FullSession()));
    EXPECT_EQ(RunToEnd({"--session", Path("again"), "--import", strBinary}).nExitCode, 0);
    CSessionStore again(Path("again"));
    EXPECT_TRUE(again.IsDatabase());
    ExpectFullSession(again.Load().value());
}

TEST_F(ServerSession, ExportAndImportReplaceNothing)
{
    CSessionStore(m_strSession).Save(FullSession());
    std::ofstream(Path("other")) << "mine";
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--session", m_strSession, "--export", Path("other")},
          {"--session", m_strSession, "--import", Path("other")},
          {"--session", Path("new"), "--import", Path("other")},
          {"--session", Path("new"), "--import", Path("none")},
          {"--session", Path("none"), "--export", Path("new")},
          {"--export", Path("new")},
          {"--import", m_strSession}})
    {
        const Ended ended = RunToEnd(options);
        EXPECT_EQ(ended.nExitCode, 2) << ended.strError;
        EXPECT_NE(ended.strError, "");
    }
    EXPECT_EQ(ReadFile(Path("other"), 100), "mine");
    ExpectFullSession(CSessionStore(m_strSession).Load().value());
    EXPECT_FALSE(std::filesystem::exists(Path("new")));
}

TEST_F(ServerSession, NothingThatWasAnsweredForIsLostWhenTheServerIsKilled)
{
    std::mt19937 random(20260301);
    std::uniform_int_distribution<int> microseconds(0, 40'000);
    std::vector<std::int64_t> answered;
    std::int64_t nNext = 0;
    int nKilledInACommand = 0;
    for (int nRound = 0; nRound < 15; nRound++)
    {
        const Child server = Start({"--session", m_strSession, "--track", "Vox"});
        std::thread killer(
            [nPid = server->Pid(), delay = std::chrono::microseconds(microseconds(random))]
            {
                std::this_thread::sleep_for(delay);
                kill(nPid, SIGKILL);
            });
        std::int64_t nUnanswered = -1;
        while (nUnanswered < 0)
        {
            const CScriptAnswer answer = SendScript(Add(nNext));
            EXPECT_EQ(answer.error, std::nullopt);
            if (answer.nStatus == noErr)
                answered.push_back(nNext);
            else
                nUnanswered = nNext;
            nNext++;
        }
        killer.join();
        EXPECT_EQ(server->WaitForEnd(kAnyTime), 128 + SIGKILL);

        // The one change without an answer may have got through.
        std::vector<std::int64_t> stored = StoredPositions();
        if (!stored.empty() && stored.back() == nUnanswered)
        {
            nKilledInACommand++;
            answered.push_back(nUnanswered);
        }
        ASSERT_EQ(stored, answered) << "round " << nRound;
    }
    EXPECT_FALSE(answered.empty());
    RecordProperty("killedBetweenSavingAndAnswering", nKilledInACommand);
}

TEST_F(ServerSession, CanBeListedWhileAServerWorksOnIt)
{
    const Child server = Start({"--session", m_strSession, "--track", "Vox"});
    SendScript(Add(48000));
    const Ended text = RunToEnd({"--list-session", m_strSession});
    EXPECT_EQ(text.nExitCode, 0);
    EXPECT_THAT(text.strOutput, HasSubstr("  track 0  Vox\n    region 3  " + m_strTake));
    EXPECT_THAT(text.strOutput, HasSubstr("position  48000  0:00:01.000\n"));

    const Ended json = RunToEnd({"--list-session", m_strSession, "--json"});
    EXPECT_EQ(json.nExitCode, 0);
    const auto listing = nlohmann::json::parse(json.strOutput);
    EXPECT_EQ(listing["documents"][0]["tracks"][0]["regions"][0]["file"], m_strTake);
}

TEST_F(ServerSession, ListingWritesNothing)
{
    Start({"--session", m_strSession});
    const std::vector<std::string> before = m_folder.Files();
    RunToEnd({"--list-session", m_strSession});
    RunToEnd({"--list-session", Path("none")});
    EXPECT_EQ(m_folder.Files(), before);
}

} // namespace
} // namespace TarvaneTest
