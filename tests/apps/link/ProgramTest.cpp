// Command line to session, with the real server.

#include "tests/apps/link/ProgramFixture.h"
#include "tests/apps/support/SoundFixture.h"

using namespace TarvaneTest;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

class RealServerTest : public ProgramTest
{
protected:
    RealServerTest()
    {
        WriteSound(m_strTake, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 4800);
        m_server = StartServer({"--session", m_strSession, "--track", "Vox", "--track",
                                "V\xC3\xB6x \xE5\xA3\xB0", "--link-offset", "1.25"});
    }

    nlohmann::json Session() const
    {
        Tarvane::CChildProcess listing({SERVER_PROGRAM, "--list-session", m_strSession, "--json"});
        EXPECT_EQ(listing.WaitForEnd(kAnyTime), 0) << listing.ErrorOutput();
        return nlohmann::json::parse(listing.Output());
    }

    const std::string m_strSession = (m_folder / "session").string();
    const std::string m_strTake = (m_folder / "take 1.wav").string();
    Child m_server;
};

} // namespace

TEST_F(RealServerTest, ListsTracks)
{
    const Ended ended = RunLink({"tracks"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput, "0\tVox\n1\tV\xC3\xB6x \xE5\xA3\xB0\n");
    EXPECT_EQ(ended.strError, "");
}

TEST_F(RealServerTest, SendsAFileToTheSession)
{
    const Ended sent = RunLink({"send", m_strTake, "--track", "1", "--position", "48000"});
    EXPECT_EQ(sent.nExitCode, 0) << sent.strError;
    const std::string strSession = Session().dump();
    EXPECT_THAT(strSession, AllOf(HasSubstr(m_strTake), HasSubstr("48000"), HasSubstr("4800")));
}

TEST_F(RealServerTest, FindsADuplicateOfWhatWasSent)
{
    const std::vector<std::string> place{m_strTake, "--track", "1",    "--start",
                                         "10",      "--end",   "4000", "--position"};
    auto command = [&](const std::string& strName, const std::string& strPosition)
    {
        std::vector<std::string> arguments{strName};
        arguments.insert(arguments.end(), place.begin(), place.end());
        arguments.push_back(strPosition);
        return RunLink(arguments);
    };
    EXPECT_EQ(command("duplicate", "0").strOutput, "new\n");
    // The host's position 0, a second and a quarter on.
    EXPECT_EQ(command("send", "60000").nExitCode, 0);
    EXPECT_EQ(command("duplicate", "0").strOutput, "duplicate\n");
    EXPECT_EQ(command("duplicate", "1").strOutput, "new\n");
}

TEST_F(RealServerTest, TellsOffsetAndUpdates)
{
    EXPECT_EQ(RunLink({"offset"}).strOutput, "1.25\n");
    EXPECT_EQ(RunLink({"updates"}).strOutput, "0\n");
    RunLink({"send", m_strTake, "--track", "0", "--position", "0"});
    EXPECT_NE(RunLink({"updates"}).strOutput, "0\n");
}

TEST_F(RealServerTest, ReportsWhatTheServerRefuses)
{
    const Ended ended = RunLink({"send", m_strTake, "--track", "7", "--position", "0", "--json"});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strError, HasSubstr("there is no track 7"));
    EXPECT_THAT(ended.Json()["lastError"].get<std::string>(), HasSubstr("there is no track 7"));
}

TEST_F(RealServerTest, RunsAScriptFromStandardInput)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"run"}, {"run", "-"}})
    {
        const Child link = StartLink(arguments);
        link->WriteLine("print(\"one\")");
        link->WriteLine("print(\"two\")");
        link->CloseInput();
        const Ended ended = ToItsEnd(link);
        EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
        EXPECT_EQ(ended.strOutput, "one\ntwo\n");
    }
}

TEST_F(RealServerTest, WatchesTheSessionChange)
{
    const Child watch = StartLink({"watch", "--interval", "0.05", "--count", "2", "--json"});
    const auto first = watch->WaitForLine("\"updates\":0", kAnyTime);
    ASSERT_TRUE(first) << watch->ErrorOutput();
    EXPECT_EQ(nlohmann::json::parse(*first)["tracks"].size(), 2U);
    EXPECT_EQ(
        RunLink({"run", "if SelectScriptDocument() then MoveDisplayToPosition(5) end"}).nExitCode,
        0);
    EXPECT_TRUE(watch->WaitForLine("\"updates\":1", kAnyTime)) << watch->ErrorOutput();
    EXPECT_EQ(ToItsEnd(watch).nExitCode, 0);
}

TEST_F(RealServerTest, WatchOutlivesTheServer)
{
    const Child watch = StartLink({"watch", "--interval", "0.05"});
    ASSERT_TRUE(watch->WaitForLine("1\t", kAnyTime)) << watch->ErrorOutput();
    m_server.reset();
    m_server = StartServer({"--track", "Other"});
    ASSERT_TRUE(watch->WaitForLine("0\tOther", kAnyTime)) << watch->ErrorOutput();
    watch->Terminate();
    const Ended ended = ToItsEnd(watch);
    EXPECT_THAT(ended.strError, testing::AnyOf("", StartsWith("Error - Tarvane not running.\n"),
                                               StartsWith("AEError ID:-609\n")));
}

TEST_F(RealServerTest, TraceShowsEveryEventOutAndIn)
{
    const Ended ended = RunLink({"--trace", "run", "print(\"V\xC3\xB6x\")"});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_EQ(ended.strOutput, "V\xC3\xB6x\n");
    EXPECT_THAT(ended.strError,
                ContainsRegex("^[0-9T:.-]+Z event 1 out to 'TkNe', 'TKNE' 'LCmd', 24 bytes\n"
                              "  '----' 'utxt' 24 bytes\n"
                              "    print\\(\"V\xC3\xB6x\"\\)\n"
                              "[0-9T:.-]+Z event 1 in status 0, 8 bytes, after [0-9.]+ ms\n"
                              "  'Rslt' 'utxt' 8 bytes\n"
                              "    V\xC3\xB6x\n$"));
}

TEST_F(RealServerTest, DoctorFindsTheServerWell)
{
    const Ended ended = RunLink({"doctor", "--capture-folder", m_folder.Path().string(), "--json"});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strOutput;
    for (const auto& finding : ended.Findings())
    {
        const std::string strCheck = finding["check"];
        if (strCheck != "functions" && strCheck != "rates" && strCheck != "speed")
        {
            EXPECT_EQ(finding["verdict"], "ok") << finding;
        }
    }
    EXPECT_THAT(m_folder.Files(), testing::Not(testing::Contains(StartsWith("tarvane-link"))));
    EXPECT_EQ(RunLink({"updates"}).strOutput, "0\n");
}

TEST_F(ProgramTest, NoDocumentIsToldByTracksAndDoctor)
{
    const Child server = StartServer({"--no-document"});
    const Ended tracks = RunLink({"tracks"});
    EXPECT_EQ(tracks.nExitCode, 1);
    EXPECT_EQ(tracks.strError, "No Tarvane session is selected\n");
    const Ended doctor = RunLink({"doctor"});
    EXPECT_EQ(doctor.nExitCode, 1);
    EXPECT_THAT(doctor.strOutput, HasSubstr("problem  document"));
}

TEST_F(ProgramTest, HelpAndVersionNeedNoBus)
{
    m_bus.Kill();
    EXPECT_EQ(RunLink({"--help"}).nExitCode, 0);
    EXPECT_THAT(RunLink({"--version"}).strOutput, StartsWith("tarvane-link "));
}
