// Servers that are absent, hang, die or answer what they should not.

#include "tests/apps/link/ProgramFixture.h"

#include <csignal>

using namespace TarvaneTest;
using namespace ScriptedServer;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

using ProgramFailureTest = ProgramTest;

// Every command that is an operation of the link, with what it needs.
const std::vector<std::vector<std::string>> kCommands{
    {"tracks"},
    {"offset"},
    {"updates"},
    {"export"},
    {"render"},
    {"send", "/a.wav", "--track", "0", "--position", "0", "--start", "0", "--end", "1"},
    {"duplicate", "/a.wav", "--track", "0", "--position", "0", "--start", "0", "--end", "1"},
    {"align", "--guide-track", "0", "--guide-start", "0", "--guide-end", "1", "--dub-track", "0",
     "--dub-start", "0", "--dub-end", "1", "--aligned-track", "0"},
    {"spread", "--track", "0", "--start", "0", "--end", "1", "--output-track", "0"},
    {"clear", "0"},
    {"run", "print(1)"},
    {"watch", "--count", "1"},
    {"doctor"}};

// What a command stays below however slow the machine, unless its timeout is not heeded: the
// platform's own is a minute.
constexpr std::chrono::seconds kFarBeyond{50};

} // namespace

TEST_F(ProgramFailureTest, AbsentServer)
{
    for (const auto& arguments : kCommands)
    {
        const Ended ended = RunLink(arguments);
        EXPECT_EQ(ended.nExitCode, 3) << arguments[0];
        if (arguments[0] != "doctor")
        {
            EXPECT_THAT(ended.strError,
                        StartsWith("Error - Tarvane not running.\nLocate and launch Tarvane.\n"));
        }
    }
}

TEST_F(ProgramFailureTest, DoctorTellsTheBussOwnWordsAndTheLikelyCause)
{
    const std::string strText = RunLink({"doctor"}).strOutput;
    EXPECT_THAT(strText, HasSubstr(" Came back: status -600. Nobody receives events"));
    EXPECT_THAT(strText, HasSubstr(" The bus says: org.freedesktop.DBus.Error.NameHasNoOwner: "));
    EXPECT_THAT(strText, EndsWith("TARVANE_AE_TRACE=1 in the environment, or --trace, shows every "
                                  "event and reply.\n"));
    const Child server = StartScripted({"=>status:-10000"});
    EXPECT_THAT(RunLink({"doctor"}).strOutput,
                HasSubstr(" Came back: status -10000. The server's handler failed: "));
}

TEST_F(ProgramFailureTest, AbsentBus)
{
    m_bus.Kill();
    EXPECT_EQ(RunLink({"tracks"}).nExitCode, 3);
    const Ended doctor = RunLink({"doctor"});
    EXPECT_EQ(doctor.nExitCode, 3);
    EXPECT_THAT(doctor.strOutput, StartsWith("problem  bus             there is no session bus"));
}

TEST_F(ProgramFailureTest, MuteBus)
{
    m_bus.Freeze();
    const auto start = std::chrono::steady_clock::now();
    const Ended doctor = RunLink({"doctor", "--timeout", "0.3"});
    EXPECT_EQ(doctor.nExitCode, 4);
    EXPECT_THAT(doctor.strOutput, HasSubstr("the session bus does not answer"));
    EXPECT_EQ(RunLink({"updates", "--timeout", "0.3"}).nExitCode, 4);
    EXPECT_LT(std::chrono::steady_clock::now() - start, kFarBeyond);
    m_bus.Thaw();
}

TEST_F(ProgramFailureTest, HungServer)
{
    const Child server = StartServer({"--track", "Vox"});
    server->Stop();
    for (const auto& arguments : kCommands)
    {
        const auto start = std::chrono::steady_clock::now();
        std::vector<std::string> withTimeout = arguments;
        withTimeout.insert(withTimeout.end(), {"--timeout", "0.2"});
        const Ended ended = RunLink(withTimeout);
        EXPECT_EQ(ended.nExitCode, 4) << arguments[0];
        if (arguments[0] != "doctor")
        {
            EXPECT_THAT(ended.strError, StartsWith("AEError ID:-1712\n"));
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, kFarBeyond);
    }
    // The command that hangs is named, by the doctor and while anybody waits.
    EXPECT_THAT(RunLink({"doctor", "--timeout", "0.2"}).strOutput,
                ContainsRegex("did not answer within the timeout: .*, since ..:..:.., for . s"));
    EXPECT_THAT(RunLink({"tracks", "--timeout", "4"}).strError,
                ContainsRegex("^tarvane-link: still no answer to GetTrackCount, .*, "
                              "since ..:..:.., for 2 s; the server hangs"));
    server->Continue();
    EXPECT_EQ(RunLink({"tracks"}).nExitCode, 0);
}

TEST_F(ProgramFailureTest, ServerThatHangsInACommand)
{
    const Child server = StartServer({"--track", "Vox", "--misbehave", "hang@2"});
    EXPECT_EQ(RunLink({"tracks"}).nExitCode, 0);
    EXPECT_EQ(RunLink({"tracks", "--timeout", "0.2"}).nExitCode, 4);
}

TEST_F(ProgramFailureTest, ServerThatDiesInTheMiddle)
{
    for (const char* szFault : {"exit-before-effect@1", "exit-after-effect@1"})
    {
        const Child server = StartServer({"--track", "Vox", "--misbehave", szFault});
        const Ended ended = RunLink({"clear", "0"});
        EXPECT_EQ(ended.nExitCode, 5);
        EXPECT_THAT(ended.strError, StartsWith("AEError ID:-609\ntarvane-link: the server or the "
                                               "bus went away"));
        EXPECT_TRUE(server->WaitForEnd(kAnyTime));
        EXPECT_EQ(RunLink({"clear", "0"}).nExitCode, 3);
    }
}

TEST_F(ProgramFailureTest, ServerThatDiesUnderEachCommand)
{
    for (const auto& arguments : kCommands)
    {
        const Child server = StartServer({"--track", "Vox", "--misbehave", "exit-before-effect@1"});
        const Ended ended = RunLink(arguments);
        EXPECT_EQ(ended.nExitCode, 5) << arguments[0];
        if (arguments[0] != "doctor")
        {
            EXPECT_THAT(ended.strError, StartsWith("AEError ID:-609\n")) << arguments[0];
        }
        EXPECT_TRUE(server->WaitForEnd(kAnyTime)) << arguments[0];
    }
}

TEST_F(ProgramFailureTest, ServerThatDiesUnderTheDoctor)
{
    const Child server = StartServer({"--track", "Vox", "--misbehave", "exit-before-effect@30"});
    const Ended ended = RunLink({"doctor"});
    EXPECT_EQ(ended.nExitCode, 5);
    EXPECT_THAT(ended.strOutput, HasSubstr("problem  functions"));
}

TEST_F(ProgramFailureTest, AnswersThatContradictThemselves)
{
    for (const char* szAnswer : {"GetTrackName=>5\n1\nVox\n", "GetTrackName=>x\ny\n",
                                 "GetTrackName=>3\n1\n\n", "GetTrackName=>\xEF\xBF\xBD\n-1\n"})
    {
        const Child server = StartScripted({szAnswer});
        const Ended ended = RunLink({"tracks", "--json"});
        EXPECT_EQ(ended.nExitCode, 5) << szAnswer;
        EXPECT_THAT(ended.strError, HasSubstr("Assertion failed"));
        EXPECT_THAT(ended.strError, EndsWith("--trace shows the answer.\n"));
        EXPECT_EQ(ended.Json()["outcome"], "no-answer");
    }
}

// A host ends by it as the link requires, and its user learns by whom.
TEST_F(ProgramFailureTest, HostNamesTheServerThatContradictsItself)
{
    const Child server = StartScripted({"GetTrackName=>5\n1\nVox\n"});
    const std::string strTake = m_folder / "take.wav";
    WriteSound(strTake, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 4800);
    const Ended ended = ToItsEnd(std::make_unique<Tarvane::CChildProcess>(
        std::vector<std::string>{HOST_PROGRAM, "--headless", "--speed", "max", "--capture-folder",
                                 m_folder.Path(), strTake}));
    EXPECT_EQ(ended.nExitCode, 128 + SIGABRT);
    EXPECT_THAT(ended.strError, HasSubstr("Assertion failed"));
    EXPECT_THAT(ended.strError,
                HasSubstr("The server's last answer, to GetTrackCount, GetTrackID, GetTrackName:\n"
                          "5\n1\nVox\n"));
    EXPECT_THAT(ended.strError, HasSubstr("It came from process " + std::to_string(server->Pid()) +
                                          ", " SCRIPTED_SERVER_PROGRAM ".\n"));
}

TEST_F(ProgramFailureTest, GarbageForANumberIsZero)
{
    const Child server = StartScripted({"GetUpdateCount=>many\n", "GetLinkSMPTEOffset=>\x01\x02"});
    EXPECT_EQ(RunLink({"updates"}).strOutput, "0\n");
    EXPECT_EQ(RunLink({"offset"}).strOutput, "0\n");
}

TEST_F(ProgramFailureTest, RepliesThatAreNone)
{
    const Child server =
        StartScripted({"silent=>silent", "number=>numbers:1\n", "refuse=>status:-1234",
                       "unknown=>status:-1708", "busy=>status:-600", "die=>die"});
    for (const auto& [szScript, szWords] :
         {std::pair("silent", "AEError ID:-1701\n"), std::pair("number", "AEError ID:-1700\n"),
          std::pair("refuse", "AEError ID:-1234\n"), std::pair("unknown", "AEError ID:-1708\n")})
    {
        const Ended ended = RunLink({"run", szScript});
        EXPECT_EQ(ended.nExitCode, 5) << szScript;
        EXPECT_THAT(ended.strError, StartsWith(szWords));
    }
    EXPECT_EQ(RunLink({"run", "busy"}).nExitCode, 3);
    EXPECT_EQ(RunLink({"run", "die"}).nExitCode, 5);
}

TEST_F(ProgramFailureTest, AHundredKilobytes)
{
    const Child server = StartScripted({"much=>bytes:102400", "xxxx=>long\n"});
    const Ended ended = RunLink({"run", "much"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput, std::string(102400, 'b') + "\n");
    EXPECT_EQ(RunLink({"run", "much", "--json"}).Json()["result"], ended.strOutput);
    EXPECT_EQ(RunLink({"run", "-- " + std::string(100000, 'x')}).strOutput, "long\n");
}

TEST_F(ProgramFailureTest, AHundredKilobytesAreNoList)
{
    const Child server = StartScripted({"GetTrackName=>bytes:102400"});
    EXPECT_EQ(RunLink({"tracks"}).nExitCode, 5);
}

// What reads a number reads 0, what reads a list finds none, and the rest reads nothing.
TEST_F(ProgramFailureTest, AHundredKilobytesForEachCommand)
{
    const Child server = StartScripted({"=>bytes:102400"});
    for (const auto& arguments : kCommands)
    {
        const std::string& strCommand = arguments[0];
        const bool fList = strCommand == "tracks" || strCommand == "export" ||
                           strCommand == "render" || strCommand == "watch";
        const Ended ended = RunLink(arguments);
        EXPECT_EQ(ended.nExitCode, fList ? 5 : strCommand == "doctor" ? 1 : 0) << strCommand;
        EXPECT_THAT(ended.strOutput.size(), testing::Lt(103000U)) << strCommand;
    }
    EXPECT_EQ(RunLink({"updates"}).strOutput, "0\n");
    EXPECT_EQ(RunLink({"offset"}).strOutput, "0\n");
}

TEST_F(ProgramFailureTest, AHundredThousandTracks)
{
    const Child server = StartScripted({"GetTrackName=>tracks:100000", "GetUpdateCount=>1\n"});
    const Ended ended = RunLink({"tracks"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_THAT(ended.strOutput, StartsWith("0\tTrack 0\n1\tTrack 1\n"));
    EXPECT_THAT(ended.strOutput, EndsWith("\n99999\tTrack 99999\n"));
    EXPECT_EQ(RunLink({"tracks", "--json"}).Json()["tracks"].size(), 100000U);
    EXPECT_THAT(RunLink({"watch", "--count", "1"}).strOutput,
                StartsWith("updates 1, tracks 100000\n0\tTrack 0\n"));
}

TEST_F(ProgramFailureTest, AnErrorTextInEveryScript)
{
    const Child server = StartScripted({"=>error:out of \xE5\xA3\xB0"});
    for (const auto& arguments : kCommands)
    {
        EXPECT_EQ(RunLink(arguments).nExitCode, 1) << arguments[0];
    }
}

TEST_F(ProgramFailureTest, DoctorAgainstAServerThatKnowsNothing)
{
    const Child server =
        StartScripted({"print(\"V=>V\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99\n", "type(=>nil\n"});
    const Ended ended = RunLink({"doctor"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, HasSubstr("problem  functions       the server lacks 28 of 28"));
    EXPECT_THAT(ended.strOutput, HasSubstr("problem  document        the server has no document"));
}
