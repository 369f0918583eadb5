// What the doctor finds, and what it says to do.

#include "apps/link/doctor/Contract.h"
#include "tests/apps/link/LinkFixture.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"

#include <cctype>
#include <filesystem>
#include <set>
#include <unistd.h>

using namespace TarvaneTest;
using Tarvane::Link::BusState;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{

constexpr char szSample[] = "V\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99";

// A server without a fault. A test adds what is wrong with it first: the first rule counts.
class DoctorTest : public LinkTest
{
protected:
    Ran Examine(std::vector<std::string> options = {})
    {
        Answer("print(\"V", std::string(szSample) + "\n");
        Answer("GetLinkVersion()", "1.2.3\n");
        Answer("local nothing", "");
        AnswerError("error(", "[string \"script\"]:1: asked for by tarvane-link");
        Answer("print(1)", "1\n");
        Answer("print(type(", "function\n");
        Answer("GetTrackCount() > 0", "true\n");
        Answer("GetTrackCount()", "2\n");
        Answer("GetSampleRate()", "48000.0\n");
        options.insert(options.begin(), {"doctor", "--json"});
        return RunLink(options);
    }

    // Answers about files as a server does that reads them.
    void ReadFiles()
    {
        const auto byRules = m_events.m_whileSending;
        m_events.m_whileSending = [this, byRules]
        {
            const std::string strScript = m_events.Scripts().back();
            const std::string strBefore = "CheckForDuplicateRegion(GetTrackID(0), \"";
            const std::size_t nCall = strScript.find(strBefore);
            const std::size_t nEnd = strScript.find("\",0,0,100)");
            if (nCall == std::string::npos || nEnd == std::string::npos)
                return byRules();
            const std::size_t nPath = nCall + strBefore.size();
            m_asked.push_back(strScript.substr(nPath, nEnd - nPath));
            if (std::filesystem::exists(m_asked.back()))
                m_events.Print("0\n");
            else
                m_events.PrintWithError("", "the file does not exist");
        };
    }

    static nlohmann::json Find(const Ran& ran, const std::string& strCheck)
    {
        for (const auto& finding : ran.Findings())
        {
            if (finding["check"] == strCheck)
                return finding;
        }
        ADD_FAILURE() << "nothing was found about " << strCheck;
        return {};
    }

    static void ExpectFinding(const Ran& ran, const std::string& strCheck,
                              const std::string& strVerdict, const std::string& strPart)
    {
        const auto finding = Find(ran, strCheck);
        EXPECT_EQ(finding["verdict"], strVerdict) << finding;
        EXPECT_THAT(finding["text"].get<std::string>(), HasSubstr(strPart));
        EXPECT_TRUE(strVerdict == "ok" || strVerdict == "unknown" || finding["advice"] != "")
            << finding;
    }

    static std::vector<std::string> Told(const Ran& ran, const std::string& strCheck)
    {
        return Find(ran, strCheck)["told"];
    }

    static std::vector<std::string> Checks(const Ran& ran)
    {
        std::vector<std::string> names;
        for (const auto& finding : ran.Findings())
            names.push_back(finding["check"]);
        return names;
    }

    CTemporaryFolder m_folder;
    std::vector<std::string> m_asked;
};

// The words before an opening parenthesis, but for print and if.
std::set<std::string> CalledIn(const std::vector<std::string>& scripts)
{
    const auto isLetter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    std::set<std::string> names;
    for (const std::string& strScript : scripts)
    {
        for (std::size_t nAt = strScript.find('('); nAt != std::string::npos;
             nAt = strScript.find('(', nAt + 1))
        {
            std::size_t nStart = nAt;
            while (nStart > 0 && isLetter(strScript[nStart - 1]))
                nStart--;
            names.insert(strScript.substr(nStart, nAt - nStart));
        }
    }
    for (const char* szOther : {"", "print", "if"})
        names.erase(szOther);
    return names;
}

} // namespace

TEST_F(LinkTest, TheContractIsWhatTheScriptsCall)
{
    CTarvaneScript link;
    CFileName file("/a.wav");
    std::vector<std::string> tracks;
    long long nPlace = 0;
    for (bool fAudioSuite : {false, true})
    {
        link.ListTracks(fAudioSuite, &tracks);
        link.ExportSelectedRegion(fAudioSuite, -1, &file);
        link.RenderSelectedRegion(fAudioSuite, -1, &nPlace, &nPlace);
        link.CreateGDX(fAudioSuite, 0, 0, 0, 0, 0, 0, 0);
        link.CreateSpreader(fAudioSuite, 0, 0, 0, 0, 0);
        link.ClearTrack(fAudioSuite, 0);
        link.CheckDuplicateRegion(fAudioSuite, 0, &file, 0, 0, 0);
        link.GetLinkSMPTEOffset(fAudioSuite);
        link.SendFile(fAudioSuite, 0, &file, 0, 0, 0, 0);
    }
    link.GetUpdateCount();
    std::set<std::string> listed;
    for (const auto& function : Tarvane::Link::ContractFunctions())
        listed.insert(function.szName);
    EXPECT_EQ(listed, CalledIn(m_events.Scripts()));
    EXPECT_EQ(listed.size(), Tarvane::Link::ContractFunctions().size());
}

TEST_F(DoctorTest, AGoodServerIsFound)
{
    ReadFiles();
    const Ran ran = Examine({"--capture-folder", m_folder.Path().string(), "--rate", "48000"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_EQ(ran.Json()["outcome"], "done");
    EXPECT_THAT(Checks(ran),
                ElementsAre("bus", "server", "version", "silence", "errors", "speed", "functions",
                            "document", "capture-folder", "rates", "takes", "losses"));
    for (const auto& finding : ran.Findings())
    {
        EXPECT_EQ(finding["verdict"], "ok") << finding;
        EXPECT_THAT(finding["told"], IsEmpty()) << finding;
    }
}

TEST_F(DoctorTest, NothingIsChangedInTheServer)
{
    ReadFiles();
    Examine({"--capture-folder", m_folder.Path().string()});
    const std::set<std::string> harmless{
        "SelectScriptDocument", "GetTrackCount",  "GetTrackID", "CheckForDuplicateRegion",
        "GetSampleRate",        "GetLinkVersion", "type",       "error"};
    for (const std::string& strName : CalledIn(m_events.Scripts()))
        EXPECT_TRUE(harmless.count(strName)) << strName;
}

TEST_F(DoctorTest, FindingsReadAsLines)
{
    AnswerStatus("", -600);
    const Ran ran = RunLink({"doctor"});
    EXPECT_EQ(ran.nExitCode, 3);
    EXPECT_EQ(
        ran.strOutput,
        "ok       bus             the bus works\n"
        "problem  server          no server receives events on this bus\n"
        "                         -> Start the server, in this session; tarvane-server is "
        "one.\n"
        "                         Sent: \"print(\"V\xC3\xB6x \xE5\xA3\xB0 "
        "\xF0\x9F\x8E\x99\")\\n\"\n"
        "                         Came back: status -600. Nobody receives events under the "
        "server's name: it is not running, is on another bus, or has asked for another name.\n"
        "ok       takes           no take waits that no running host would send\n"
        "ok       losses          no disk has lost frames within a day\n"
        "TARVANE_AE_TRACE=1 in the environment, or --trace, shows every event and reply.\n");
}

TEST_F(DoctorTest, WhereNothingFailsNoExchangeIsTold)
{
    Examine();
    const Ran ran = RunLink({"doctor"});
    EXPECT_EQ(ran.nExitCode, 0);
    EXPECT_THAT(ran.strOutput, Not(HasSubstr("Sent: ")));
    EXPECT_THAT(ran.strOutput, Not(HasSubstr("TARVANE_AE_TRACE")));
}

TEST_F(DoctorTest, TheServersVersionIsTold)
{
    ExpectFinding(Examine(), "version", "ok", "the server's version is \"1.2.3\"");
}

TEST_F(DoctorTest, AVersionIsAskedForOnlyWhereTheServerHasTheFunction)
{
    Answer("if type(GetLinkVersion) == 'function' then\nprint(GetLinkVersion())\nend\n", "");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "version", "ok", "no version to tell");
}

TEST_F(DoctorTest, AVersionThatFailsIsAWarning)
{
    AnswerError("GetLinkVersion()", "not today");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "version", "warning", "does not tell its version");
    EXPECT_THAT(Told(ran, "version"),
                ElementsAre(testing::StartsWith("Sent: \"if type(GetLinkVersion)"),
                            "Came back: 'Rslt' \"\", 'Errr' \"not today\""));
}

TEST_F(DoctorTest, AStatusIsToldWithItsLikelyCauseAndTheCarriersWords)
{
    strCarriersError = "org.example.Refused: not you";
    for (const auto& [nStatus, strCause] :
         {std::pair<OSErr, std::string>(-10000, "an exception that it did not catch"),
          {-1708, "another object path, interface or method"},
          {-1702, "another signature than the event's"}})
    {
        Rule("print(\"V", {nStatus, std::nullopt, std::nullopt});
        const Ran ran = RunLink({"doctor", "--json"});
        EXPECT_EQ(ran.nExitCode, 5);
        EXPECT_THAT(Told(ran, "server"),
                    ElementsAre("Sent: \"print(\"" + std::string(szSample) + "\")\\n\"",
                                testing::AllOf(HasSubstr("status " + std::to_string(nStatus)),
                                               HasSubstr(strCause)),
                                "The bus says: org.example.Refused: not you"));
        ForgetRules();
    }
}

TEST_F(DoctorTest, WhatWasExchangedIsToldOfEachFindingThatFails)
{
    Answer("print(\"V", "V?x\n");
    Answer("local nothing", "ok\n");
    Answer("error(", "");
    Answer("print(type(GetRegionID))", "nil\n");
    Answer("GetTrackCount() > 0", "true\n");
    Answer("print(GetTrackCount())", "0\n");
    AnswerError("CheckForDuplicateRegion(", "no right");
    const Ran ran = Examine({"--capture-folder", m_folder.Path().string()});
    for (const auto& [strCheck, strSent, strBack] :
         {std::tuple("server", "print(\"V", "'Rslt' \"V?x\\n\", 'Errr' none"),
          {"silence", "local nothing", "'Rslt' \"ok\\n\""},
          {"errors", "error(", "'Rslt' \"\", 'Errr' none"},
          {"functions", "print(type(GetRegionID))", "'Rslt' \"nil\\n\""},
          {"document", "print(GetTrackCount())", "'Rslt' \"0\\n\""},
          {"capture-folder", "CheckForDuplicateRegion(GetTrackID(0), \"", "'Errr' \"no right\""}})
        EXPECT_THAT(Told(ran, strCheck), ElementsAre(HasSubstr(strSent), HasSubstr(strBack)))
            << strCheck;
}

TEST_F(DoctorTest, NoBusIsToldFromNoServer)
{
    busState = {BusState::Absent, "there is no bus", "start one"};
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 3);
    EXPECT_THAT(Checks(ran), ElementsAre("bus", "takes", "losses"));
    ExpectFinding(ran, "bus", "problem", "there is no bus");
    EXPECT_THAT(m_events.Commands(), IsEmpty());
}

TEST_F(DoctorTest, AMuteBusIsATimeout)
{
    busState = {BusState::Mute, "it does not answer", "log in again"};
    EXPECT_EQ(Examine().nExitCode, 4);
}

TEST_F(DoctorTest, AHungServerIsAskedOnce)
{
    AnswerStatus("", -1712);
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 4);
    EXPECT_THAT(Checks(ran), ElementsAre("bus", "server", "takes", "losses"));
    EXPECT_EQ(m_events.Commands().size(), 1U);
}

TEST_F(DoctorTest, AServerThatGoesAwayEndsTheExamination)
{
    AnswerStatus("print(type(GetTrackID))", -609);
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 5);
    ExpectFinding(ran, "functions", "problem", "AEError ID:-609");
    EXPECT_THAT(Checks(ran), ElementsAre("bus", "server", "version", "silence", "errors", "speed",
                                         "functions", "takes", "losses"));
}

TEST_F(DoctorTest, EventsThatTheSystemForbidsAreToldWithTheRemedy)
{
    AnswerStatus("", -1743);
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 5);
    ExpectFinding(ran, "server", "problem", "events to the server are forbidden: AEError ID:-1743");
    EXPECT_THAT(Find(ran, "server")["advice"].get<std::string>(),
                HasSubstr("Privacy & Security, Automation"));
}

TEST_F(DoctorTest, OfALongAnswerTheBeginningIsShownInWholeCharacters)
{
    Answer("print(\"V", std::string(59, 'a') + "\xC3\xB6" + std::string(100000, 'b'));
    Answer("local nothing", std::string(60, 'c'));
    const Ran ran = Examine();
    ExpectFinding(ran, "server", "problem", "answered \"" + std::string(59, 'a') + "...\"");
    ExpectFinding(ran, "silence", "warning", "answered with \"" + std::string(60, 'c') + "\"");
    EXPECT_LT(ran.strOutput.size(), 5000U);
}

TEST_F(DoctorTest, ACountOfTracksThatIsNoNumberIsAProblem)
{
    Answer("GetTrackCount() > 0", "true\n");
    Answer("GetTrackCount()", "many\n");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 1);
    ExpectFinding(ran, "document", "problem", "answered \"many\\n\"");
}

TEST_F(DoctorTest, ANegativeCountOfTracksIsAProblem)
{
    Answer("GetTrackCount() > 0", "true\n");
    Answer("GetTrackCount()", "-1\n");
    ExpectFinding(Examine(), "document", "problem", "answered \"-1\\n\"");
}

TEST_F(DoctorTest, TextThatComesBackOtherwiseIsAProblem)
{
    Answer("print(\"V", "V?x\n");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 1);
    ExpectFinding(ran, "server", "problem", "\"V?x\\n\"");
}

TEST_F(DoctorTest, APrintWithoutALineEndIsAProblem)
{
    Answer("print(\"V", szSample);
    EXPECT_EQ(Examine().nExitCode, 1);
}

TEST_F(DoctorTest, SilenceWithoutAResultIsAWarning)
{
    Rule("local nothing", {noErr, std::nullopt, std::nullopt});
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "silence", "warning", "without 'Rslt'");
    EXPECT_THAT(Checks(ran), testing::Contains("rates"));
}

TEST_F(DoctorTest, SilenceThatIsFilledIsAWarning)
{
    Answer("local nothing", "ok\n");
    ExpectFinding(Examine(), "silence", "warning", "\"ok\\n\"");
}

TEST_F(DoctorTest, ErrorsThatAreKeptAreAWarning)
{
    Answer("error(", "");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "errors", "warning", "without an error");
}

TEST_F(DoctorTest, ASlowServerIsAWarning)
{
    const auto byRules = m_events.m_whileSending;
    m_events.m_whileSending = [this, byRules]
    {
        if (m_events.Scripts().back() == "print(1)\n")
            usleep(110'000);
        byRules();
    };
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "speed", "warning", "of 20");
}

TEST_F(DoctorTest, MissingFunctionsAreNamedWithTheirCommands)
{
    Answer("print(type(ExportRegion))", "nil\n");
    AnswerError("print(type(GetRegionID))", "no type");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "functions", "warning", "lacks 2 of 28");
    EXPECT_THAT(Find(ran, "functions")["advice"].get<std::string>(),
                HasSubstr("ExportRegion: export\nGetRegionID: clear"));
}

TEST_F(DoctorTest, AFunctionThatCapturesNeedIsAProblem)
{
    Answer("print(type(AddAudioRegion))", "nil\n");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 1);
    ExpectFinding(ran, "functions", "problem", "lacks 1 of 28");
    EXPECT_THAT(Find(ran, "functions")["advice"].get<std::string>(),
                HasSubstr("\nAddAudioRegion: send"));
    EXPECT_THAT(Checks(ran), testing::Contains("rates"));
}

TEST_F(DoctorTest, NoDocumentIsAProblem)
{
    Answer("print(GetTrackCount())", "");
    const Ran ran = Examine();
    EXPECT_EQ(ran.nExitCode, 1);
    ExpectFinding(ran, "document", "problem", "no document");
}

TEST_F(DoctorTest, AWarningDoesNotHideAProblem)
{
    Answer("local nothing", "ok\n");
    Answer("print(GetTrackCount())", "");
    EXPECT_EQ(Examine().nExitCode, 1);
}

TEST_F(DoctorTest, NoTrackIsAProblem)
{
    Answer("print(GetTrackCount())", "0\n");
    ExpectFinding(Examine(), "document", "problem", "no tracks");
}

TEST_F(DoctorTest, AnUncountableDocumentIsAProblem)
{
    AnswerError("print(GetTrackCount())", "locked");
    ExpectFinding(Examine(), "document", "problem", "locked");
}

TEST_F(DoctorTest, AudioSuiteExaminesTheOtherDocument)
{
    Answer("SelectAudioSuiteDocument() then\nprint(GetTrackCount())", "5\n");
    ExpectFinding(Examine({"--audio-suite"}), "document", "ok", "5");
}

TEST_F(DoctorTest, TheCaptureFolderIsLeftAsItWas)
{
    ReadFiles();
    const Ran ran = Examine({"--capture-folder", m_folder.Path().string()});
    ExpectFinding(ran, "capture-folder", "ok", m_folder.Path().string());
    EXPECT_THAT(m_folder.Files(), IsEmpty());
    ASSERT_EQ(m_asked.size(), 2U);
    EXPECT_EQ(m_asked[0], m_asked[1]);
    EXPECT_EQ(std::filesystem::path(m_asked[0]).parent_path(), m_folder.Path());
}

TEST_F(DoctorTest, AFolderThatTheServerCannotReadIsAProblem)
{
    AnswerError("CheckForDuplicateRegion(", "permission denied");
    const Ran ran = Examine({"--capture-folder", m_folder.Path().string()});
    EXPECT_EQ(ran.nExitCode, 1);
    ExpectFinding(ran, "capture-folder", "problem", "permission denied");
    EXPECT_THAT(m_folder.Files(), IsEmpty());
}

TEST_F(DoctorTest, AServerThatMissesNoFileLeavesTheFolderUnknown)
{
    Answer("CheckForDuplicateRegion(", "0\n");
    const Ran ran = Examine({"--capture-folder", m_folder.Path().string()});
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "capture-folder", "unknown", "does not miss");
}

TEST_F(DoctorTest, AFolderThatTakesNoFileIsAProblem)
{
    // Nobody can make a file there, not even root.
    const Ran ran = Examine({"--capture-folder", "/proc/self/fd"});
    EXPECT_EQ(ran.nExitCode, 1);
    ExpectFinding(ran, "capture-folder", "problem", "no file can be made in /proc/self/fd");
}

TEST_F(DoctorTest, WithoutATrackTheFolderIsUnknown)
{
    Answer("GetTrackCount() > 0", "false\n");
    ExpectFinding(Examine({"--capture-folder", m_folder.Path().string()}), "capture-folder",
                  "unknown", "without a track");
}

TEST_F(DoctorTest, AFolderThatIsNoneIsWrongUse)
{
    const Ran ran = Examine({"--capture-folder", (m_folder / "missing").string()});
    EXPECT_EQ(ran.nExitCode, 2);
    EXPECT_THAT(ran.strError, HasSubstr("there is no folder"));
}

TEST_F(DoctorTest, AnotherRateIsAWarning)
{
    const Ran ran = Examine({"--rate", "44100"});
    EXPECT_EQ(ran.nExitCode, 0);
    ExpectFinding(ran, "rates", "warning", "the host works at 44100, the server at 48000");
}

TEST_F(DoctorTest, TheNewestCaptureTellsTheHostsRate)
{
    const auto now = std::filesystem::file_time_type::clock::now();
    for (const auto& [strName, nRate, nAge] :
         {std::tuple("old.wav", 96000, 3), std::tuple("new.wav", 44100, 2)})
    {
        WriteSound(m_folder / strName, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10, 1, nRate);
        std::filesystem::last_write_time(m_folder / strName, now - std::chrono::hours(nAge));
    }
    std::filesystem::create_directory(m_folder / "newest");
    Answer("CheckForDuplicateRegion(", "0\n");
    ExpectFinding(Examine({"--capture-folder", m_folder.Path().string()}), "rates", "warning",
                  "the host works at 44100");
}

TEST_F(DoctorTest, ARateThatNobodyTellsIsUnknown)
{
    ExpectFinding(Examine(), "rates", "unknown", "the host's rate is not known");
    ExpectFinding(Examine({"--capture-folder", m_folder.Path().string()}), "rates", "unknown",
                  "the host's rate is not known");
}

TEST_F(DoctorTest, AServerWithoutARateLeavesItUnknown)
{
    AnswerError("print(GetSampleRate())", "nil");
    ExpectFinding(Examine({"--rate", "48000"}), "rates", "unknown", "the server does not tell");
}
