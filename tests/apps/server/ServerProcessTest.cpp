#include "apps/server/faults/Misbehaviour.h"
#include "tests/apps/server/ServerFixture.h"
#include "tests/apps/support/ManualPage.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace TarvaneTest
{
namespace
{

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string FileText(const std::string& strPath)
{
    std::ostringstream text;
    text << std::ifstream(strPath).rdbuf();
    return text.str();
}

class ServerProcess : public ServerFixture
{
};

TEST_F(ServerProcess, AnswersWithWhatWasPrinted)
{
    const Child server = Start({});
    const CScriptAnswer answer = SendScript("print(1) print('\u00e9\U0001f3a4')");
    EXPECT_EQ(answer.nStatus, noErr);
    EXPECT_EQ(answer.result, "1\n\u00e9\U0001f3a4\n");
    EXPECT_EQ(answer.error, std::nullopt);
}

TEST_F(ServerProcess, TheResultIsThereAndEmptyWhenNothingWasPrinted)
{
    const Child server = Start({});
    for (const char* szScript : {"", "local a = 1"})
    {
        const CScriptAnswer answer = SendScript(szScript);
        EXPECT_EQ(answer.nStatus, noErr);
        EXPECT_EQ(answer.result, "");
        EXPECT_EQ(answer.error, std::nullopt);
    }
}

TEST_F(ServerProcess, AScriptErrorIsNoFailureOfTheEvent)
{
    const Child server = Start({});
    const CScriptAnswer answer = SendScript("print(1) error('no more', 0)");
    EXPECT_EQ(answer.nStatus, noErr);
    EXPECT_EQ(answer.result, "");
    EXPECT_EQ(answer.error, "no more");
}

TEST_F(ServerProcess, BytesThatAreNoTextArriveAsReplacements)
{
    const Child server = Start({});
    EXPECT_EQ(SendScript("print('a\\xffb')").result, "a\ufffdb\n");
    EXPECT_EQ(SendScript("error('\\xff', 0)").error, "\ufffd");
}

TEST_F(ServerProcess, TheLongestResultFitsTheReply)
{
    const Child server = Start({});
    const CScriptAnswer answer = SendScript("for n = 1, 4096 do print(('x'):rep(1023)) end");
    EXPECT_EQ(answer.nStatus, noErr);
    EXPECT_EQ(answer.result.value_or("").size(), std::size_t(4) << 20);
    EXPECT_EQ(SendScript("for n = 1, 4097 do print(('x'):rep(1023)) end").error,
              "the script prints more than 4 MiB");
}

TEST_F(ServerProcess, AHostileScriptEndsAndTheNextOneRuns)
{
    const Child server = Start({});
    for (const char* szScript :
         {"while true do end", "local s = 'x' while true do s = s .. s end",
          "string.rep('', 1 << 62)", "string.find(('a'):rep(999), ('a-'):rep(99) .. 'b')",
          "os.exit(1)", "io.open('/etc/passwd')", "while true do pcall(error) end"})
    {
        const CScriptAnswer answer = SendScript(szScript);
        EXPECT_EQ(answer.nStatus, noErr) << szScript;
        EXPECT_NE(answer.error.value_or(""), "") << szScript;
    }
    EXPECT_EQ(SendScript("print('still here')").result, "still here\n");
}

TEST_F(ServerProcess, EventsThatCarryNoScriptAreRefused)
{
    const Child server = Start({"--session", m_strSession});
    EXPECT_EQ(SendBytes(0, "").nStatus, errAEDescNotFound);
    EXPECT_EQ(SendBytes(typeUTF8Text, "print(1)").nStatus, errAECoercionFail);
    EXPECT_EQ(SendBytes(typeUnicodeText, "odd").nStatus, errAECorruptData);
    EXPECT_EQ(SendBytes(typeUnicodeText, std::string("\x00\xd8", 2)).nStatus, noErr);
    EXPECT_EQ(SendScript("print(1)").result, "1\n");
}

TEST_F(ServerProcess, AnEventThatWantsNoReplyTakesEffect)
{
    const Child server = Start({});
    const std::u16string units = u"SelectScriptDocument() MoveDisplayToPosition(5)";
    const std::string bytes(reinterpret_cast<const char*>(units.data()), units.size() * 2);
    EXPECT_EQ(SendBytes(typeUnicodeText, bytes, kAnyTicks, kAENoReply).nStatus, noErr);
    EXPECT_EQ(SendScript("print(GetUpdateCount())").result, "1\n");
}

TEST_F(ServerProcess, NoDocumentCanBeSelectedWhenThereIsNone)
{
    const Child server = Start({"--no-document", "--track", "Vox"});
    EXPECT_EQ(SendScript("print(SelectScriptDocument(), SelectAudioSuiteDocument())").result,
              "false\tfalse\n");
}

TEST_F(ServerProcess, EndSignalsEndItCleanly)
{
    for (int nSignal : {SIGTERM, SIGINT})
    {
        const Child server = Start({"--session", m_strSession});
        ASSERT_EQ(SendScript("print(1)").nStatus, noErr);
        ASSERT_EQ(kill(server->Pid(), nSignal), 0);
        EXPECT_EQ(server->WaitForEnd(kAnyTime), 0) << server->ErrorOutput();
        EXPECT_EQ(SendScript("print(1)").nStatus, procNotFound);
    }
}

TEST_F(ServerProcess, ASecondServerOfTheBusSaysSoAndEnds)
{
    const Child first = Start({});
    const Ended second = RunToEnd({"--session", m_strSession});
    EXPECT_EQ(second.nExitCode, 1);
    EXPECT_EQ(second.strError,
              "tarvane-server: another server answers on this session bus; end it first\n");
    EXPECT_EQ(second.strOutput, "");
    EXPECT_EQ(SendScript("print('first')").result, "first\n");
}

TEST_F(ServerProcess, ASessionInUseIsLeftAlone)
{
    const Child first = Start({"--session", m_strSession});
    const Ended second = RunToEnd({"--session", m_strSession});
    EXPECT_EQ(second.nExitCode, 1);
    EXPECT_THAT(second.strError, HasSubstr("is in use by another server"));
}

TEST_F(ServerProcess, WithoutABusItSaysSoAndEnds)
{
    const std::string strBus = Bus().Address();
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    const Ended server = RunToEnd({"--session", m_strSession});
    setenv("DBUS_SESSION_BUS_ADDRESS", strBus.c_str(), 1);
    EXPECT_EQ(server.nExitCode, 1);
    EXPECT_THAT(server.strError, StartsWith("tarvane-server: there is no session bus"));
}

TEST_F(ServerProcess, ComesBackWithItsBus)
{
    const Child server = Start({"--track", "Vox"});
    Bus().Kill();
    Bus().Start();
    CScriptAnswer answer;
    for (int nTry = 0; nTry < 600; nTry++)
    {
        answer = SendScript("SelectScriptDocument() print(GetTrackCount())");
        if (answer.nStatus == noErr)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(answer.result, "1\n");
}

TEST_F(ServerProcess, TheLogTellsEveryEventInAndOut)
{
    const std::string strLog = Path("log");
    {
        const Child server = Start({"--log", strLog});
        SendScript("print('one')");
        SendScript("error('two', 0)");
    }
    const std::string strText = FileText(strLog);
    EXPECT_THAT(strText, HasSubstr("Z event 1 in\n    print('one')\n"));
    EXPECT_THAT(strText, HasSubstr("Z event 1 out\n  result\n    one\n  error\n"));
    EXPECT_THAT(strText, HasSubstr("Z event 2 out\n  result\n  error\n    two\n"));
}

TEST_F(ServerProcess, TheLogCanGoToTheOutput)
{
    const Child server = Start({"--log", "-"});
    SendScript("print('one')");
    EXPECT_TRUE(server->WaitForLine("event 1 in", kAnyTime));
    EXPECT_TRUE(server->WaitForLine("    one", kAnyTime));
}

TEST_F(ServerProcess, ALogThatCannotBeOpenedEndsIt)
{
    const Ended server = RunToEnd({"--log", Path("none/log")});
    EXPECT_EQ(server.nExitCode, 1);
    EXPECT_THAT(server.strError, HasSubstr("cannot open the log file"));
}

TEST_F(ServerProcess, WrongUseIsToldInOneLine)
{
    const std::vector<std::vector<std::string>> uses{{"--nonsense"},
                                                     {"--track", "a\nb"},
                                                     {"--track", ""},
                                                     {"--link-offset", "x"},
                                                     {"--link-offset", "inf"},
                                                     {"--misbehave", "dance@1"},
                                                     {"--misbehave", "hang@0"},
                                                     {"--json"},
                                                     {"--list-session", Path("none")},
                                                     {"extra"}};
    for (const std::vector<std::string>& options : uses)
    {
        const Ended server = RunToEnd(options);
        EXPECT_EQ(server.nExitCode, 2) << options[0];
        EXPECT_THAT(server.strError, StartsWith("tarvane-server: "));
        EXPECT_EQ(std::count(server.strError.begin(), server.strError.end(), '\n'), 1)
            << server.strError;
        EXPECT_EQ(server.strOutput, "");
    }
}

TEST_F(ServerProcess, ARefusedChangeHasNoResult)
{
    const Child server = Start({"--track", "Vox"});
    const CScriptAnswer answer =
        SendScript("SelectScriptDocument() AddAudioRegion(GetTrackID(0), \"/missing.wav\", true, "
                   "false, 0,0,100)");
    EXPECT_EQ(answer.nStatus, noErr);
    EXPECT_EQ(answer.result, std::nullopt);
    EXPECT_THAT(answer.error.value_or(""), HasSubstr("/missing.wav does not exist"));
}

TEST_F(ServerProcess, TheLogNamesWhoChangedTheSession)
{
    const std::string strLog = Path("log");
    const Child server = Start({"--track", "Vox", "--log", strLog});
    SendScript("print(1)");
    EXPECT_THAT(FileText(strLog), Not(HasSubstr("changed the session")));
    SendScript(Add(0));
    EXPECT_THAT(FileText(strLog),
                HasSubstr(" event 2 changed the session, sent by " + std::to_string(getpid()) +
                          " " + std::filesystem::read_symlink("/proc/self/exe").string()));
}

TEST_F(ServerProcess, AReadOnlyServerRefusesChanges)
{
    const Child server = Start({"--track", "Vox", "--read-only"});
    EXPECT_THAT(SendScript(Add(0)).error.value_or(""), HasSubstr("--read-only"));
    EXPECT_EQ(SendScript("print(GetUpdateCount())").result, "0\n");
}

TEST_F(ServerProcess, AnEmptySessionNameIsWrongUse)
{
    const Ended ended = RunToEnd({"--session", ""});
    EXPECT_EQ(ended.nExitCode, 2);
    EXPECT_THAT(ended.strError, HasSubstr("a file's name is empty"));
}

TEST_F(ServerProcess, AWorkerHoldsNeitherTheNameNorTheSession)
{
    Child server = Start({"--session", m_strSession});
    ASSERT_EQ(SendScript("print(1)").nStatus, noErr);
    kill(server->Pid(), SIGKILL);
    server->WaitForEnd(kAnyTime);
    EXPECT_EQ(SendScript("print(1)").nStatus, procNotFound);
    server = Start({"--session", m_strSession});
    EXPECT_EQ(SendScript("print(1)").result, "1\n");
}

TEST_F(ServerProcess, HelpAndVersionAreAnswered)
{
    const Ended help = RunToEnd({"--help"});
    EXPECT_EQ(help.nExitCode, 0);
    EXPECT_THAT(help.strOutput, HasSubstr("Exit codes: "));
    const Ended version = RunToEnd({"--version"});
    EXPECT_EQ(version.nExitCode, 0);
    EXPECT_THAT(version.strOutput, StartsWith("tarvane-server "));
}

TEST_F(ServerProcess, HelpShowsWhatAUserNeedsAndHelpAllTheRest)
{
    const std::set<std::string> first{
        "--help",        "--help-all",  "--version",      "--session",       "--track",
        "--link-offset", "--read-only", "--no-delete",    "--render-folder", "--editor",
        "--log",         "--json",      "--list-session", "--export",        "--import"};
    EXPECT_EQ(OptionsIn(RunToEnd({"--help"}).strOutput), first);
    const Ended all = RunToEnd({"--help-all"});
    EXPECT_EQ(all.nExitCode, 0);
    std::set<std::string> options = first;
    options.insert({"--no-document", "--misbehave", "--seed", "--delay"});
    EXPECT_EQ(OptionsIn(all.strOutput), options);
    EXPECT_THAT(all.strOutput, HasSubstr("\nMisbehaviour, for tests:\n"));
    EXPECT_THAT(all.strOutput, HasSubstr("Exit codes: "));
    for (const Tarvane::Server::FaultKind& kind : Tarvane::Server::FaultKinds())
        EXPECT_THAT(all.strOutput, HasSubstr(std::string(kind.szName) + ": "));
}

} // namespace
} // namespace TarvaneTest
