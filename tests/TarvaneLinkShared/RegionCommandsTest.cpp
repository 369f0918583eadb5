#include "tests/TarvaneLinkShared/ScriptFixture.h"
#include "utils/FileIO/FileName.h"

namespace
{
// Written out once more: a script that changes by a byte is another wire format.
constexpr char szExport[] =
    "if(SelectScriptDocument()) then\n\tidRegion = GetSelectedRegionID()\n\tif "
    "IsNullRegionID(idRegion) == 0 then\n\t\tstrFile = "
    "ExportRegion(idRegion)\n\t\tprint(2)\n\t\tprint(0)\n\t\tprint(strFile)\n\telse\n\t\tprint(1)"
    "\n\t\tprint(1)\n\tend\nelse\n\tprint(1)\n\tprint(0)\nend\n";
constexpr char szAudioSuiteExport[] =
    "if(SelectAudioSuiteDocument()) then\n   idProcess = FindLastProcessCreated()\n   if "
    "IsNullProcessID(idProcess) == 0 then\n        SelectProcess(idProcess)\n       idRegion = "
    "GetSelectedRegionID()\n       if IsNullRegionID(idRegion) == 0 then\n           strFile = "
    "ExportRegion(idRegion)\n           print(2)\n           print(0)\n           print(strFile)\n "
    "      else\n           print(1)\n           print(1)\n       end\n   else\n       print(1)\n  "
    "     print(2)\n   end\nelse\n\tprint(1)\n\tprint(0)\nend\n";
constexpr char szRender[] =
    "if(SelectScriptDocument()) then\n\tidRegion = GetSelectedRegionID()\n\tif "
    "IsNullRegionID(idRegion) == 0 then\n\t\tdSampleRate = "
    "GetSampleRate()\n\t\tRegionRender(idRegion)\n\t\tdStart = "
    "GetRegionStartPosition(idRegion)\n\t\tdEnd = "
    "GetRegionEndPosition(idRegion)\n\t\tprint(4)\n\t\tprint('0')\n\t\tprint(dSampleRate)"
    "\n\t\tprint(dStart)\n\t\tprint(dEnd)\n\telse\n\t\tprint(1)\n\t\tprint(1)"
    "\n\tend\nelse\n\tprint(1)\n\tprint(0)\nend\n";
constexpr char szAudioSuiteRender[] =
    "if(SelectAudioSuiteDocument()) then\n   idProcess = FindLastProcessCreated()\n   if "
    "IsNullProcessID(idProcess) == 0 then\n        SelectProcess(idProcess)\n       idRegion = "
    "GetSelectedRegionID()\n       if IsNullRegionID(idRegion) == 0 then\n           dSampleRate = "
    "GetSampleRate()\n           RegionRender(idRegion)\n           dStart = "
    "GetRegionStartPosition(idRegion)\n           dEnd = GetRegionEndPosition(idRegion)\n          "
    " print(4)\n           print('0')\n           print(dSampleRate)\n           print(dStart)\n   "
    "        print(dEnd)\n       else\n           print(1)\n           print(1)\n       end\n   "
    "else\n       print(1)\n       print(2)\n   end\nelse\n\tprint(1)\n\tprint(0)\nend\n";

class RegionExport : public ScriptFixture
{
protected:
    CFileName m_file{"/old/kept.wav"};
};

class RegionRender : public ScriptFixture
{
protected:
    bool Render(long nSampleRate = -1)
    {
        return m_script.RenderSelectedRegion(false, nSampleRate, &m_nStart, &m_nEnd);
    }

    long long m_nStart = -7;
    long long m_nEnd = -8;
};

struct Missing
{
    const char* m_szPrinted;
    const char* m_szWords;
};
constexpr Missing kMissing[] = {
    {"1\n0\n", "No Tarvane session is selected"},
    {"1\n1\n", "No Tarvane region is selected"},
    {"1\n2\n", "No Tarvane Process exists"},
    {"1\n3\n", "server's words"},
    {"1\n-1\n", "server's words"},
};
} // namespace

TEST_F(RegionExport, SendsTheScriptOfTheSelectedRegion)
{
    m_script.ExportSelectedRegion(false, -1, &m_file);
    EXPECT_EQ(OnlyScript(), szExport);
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(RegionExport, SendsTheScriptOfTheLastProcess)
{
    m_script.ExportSelectedRegion(true, -1, &m_file);
    EXPECT_EQ(OnlyScript(), szAudioSuiteExport);
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(RegionExport, NamesTheFileThatTheServerWrote)
{
    m_events.Print("2\n0\n/Audio/T\xC3\xB6ne/take 1.wav\n");
    EXPECT_TRUE(m_script.ExportSelectedRegion(false, 48000, &m_file));
    EXPECT_EQ(m_file.GetFullPathString(), "/Audio/T\xC3\xB6ne/take 1.wav");
    EXPECT_EQ(m_script.m_strSelectedRegion1, "");
    EXPECT_EQ(m_script.m_strSelectedRegion2, "File: /Audio/T\xC3\xB6ne/take 1.wav");
    EXPECT_EQ(m_script.m_strLastError, "");
}

TEST_F(RegionExport, SummaryIsThePathAsTheFileNameGivesIt)
{
    m_events.Print("2\n0\n/take.wav\n");
    EXPECT_TRUE(m_script.ExportSelectedRegion(false, -1, &m_file));
    EXPECT_EQ(m_script.m_strSelectedRegion2, "File: take.wav");
}

TEST_F(RegionExport, DoesNotLookAtTheStatusBesideAFile)
{
    m_events.Print("2\n1\n/a/b.wav\n");
    EXPECT_TRUE(m_script.ExportSelectedRegion(false, -1, &m_file));
    EXPECT_EQ(m_file.GetFullPathString(), "/a/b.wav");
    EXPECT_EQ(m_script.m_strLastError, "");
}

TEST_F(RegionExport, DoesNotReadTheRate)
{
    for (const long nRate : {-1L, 0L, 44100L, -2L})
    {
        m_events.Print("2\n48000\n/a/b.wav\n");
        EXPECT_TRUE(m_script.ExportSelectedRegion(false, nRate, &m_file));
        EXPECT_EQ(m_script.m_strLastError, "") << nRate;
        EXPECT_EQ(m_events.Scripts().back(), szExport);
    }
}

TEST_F(RegionExport, TellsWhatIsMissingAndLeavesTheFile)
{
    for (const bool fAudioSuite : {false, true})
        for (const Missing& missing : kMissing)
        {
            SCOPED_TRACE(missing.m_szPrinted);
            m_events.PrintWithError(missing.m_szPrinted, "server's words");
            EXPECT_FALSE(m_script.ExportSelectedRegion(fAudioSuite, -1, &m_file));
            EXPECT_EQ(m_script.m_strLastError, missing.m_szWords);
            EXPECT_EQ(m_script.m_strAdvice, "");
            EXPECT_EQ(m_file.GetFullPathString(), "/old/kept.wav");
            EXPECT_EQ(m_script.m_strSelectedRegion2, "");
        }
}

TEST_F(RegionExport, AnotherCountOfItemsIsAFailureWithoutWords)
{
    for (const char* szPrinted : {"", "0\n", "3\n0\n/a/b.wav\nmore\n"})
    {
        SCOPED_TRACE(szPrinted);
        m_events.Print(szPrinted);
        EXPECT_FALSE(m_script.ExportSelectedRegion(false, -1, &m_file));
        EXPECT_EQ(m_script.m_strLastError, "");
        EXPECT_EQ(m_file.GetFullPathString(), "/old/kept.wav");
    }
}

TEST_F(RegionExport, AFailedCommandLeavesTheFile)
{
    m_events.FailSend(-600);
    EXPECT_FALSE(m_script.ExportSelectedRegion(false, -1, &m_file));
    EXPECT_EQ(m_file.GetFullPathString(), "/old/kept.wav");
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);
}

TEST_F(RegionExport, EmptiesBothSummariesBeforeTheCommand)
{
    m_script.m_strSelectedRegion1 = "one";
    m_script.m_strSelectedRegion2 = "two";
    m_events.m_whileSending = [this]
    {
        EXPECT_EQ(m_script.m_strSelectedRegion1, "");
        EXPECT_EQ(m_script.m_strSelectedRegion2, "");
    };
    m_script.ExportSelectedRegion(false, -1, &m_file);
    EXPECT_EQ(m_events.Commands().size(), 1u);
}

TEST_F(RegionRender, SendsTheScriptOfTheSelectedRegion)
{
    Render();
    EXPECT_EQ(OnlyScript(), szRender);
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(RegionRender, SendsTheScriptOfTheLastProcess)
{
    m_script.RenderSelectedRegion(true, -1, &m_nStart, &m_nEnd);
    EXPECT_EQ(OnlyScript(), szAudioSuiteRender);
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(RegionRender, TellsWhereTheRegionLies)
{
    m_events.Print("4\n0\n44100.0\n4294967297.9\n-12.5\n");
    EXPECT_TRUE(Render());
    EXPECT_EQ(m_nStart, 4294967297);
    EXPECT_EQ(m_nEnd, -12);
    EXPECT_EQ(m_script.m_strSelectedRegion1, "Start: 4294967297 End: -12 Sample Rate: 44100");
    EXPECT_EQ(m_script.m_strSelectedRegion2, "");
    EXPECT_EQ(m_script.m_strLastError, "");
}

TEST_F(RegionRender, DoesNotLookAtTheStatusBesideThreeNumbers)
{
    for (const char* szStatus : {"1", "2", "-1", "failed"})
    {
        m_events.Print(std::string("4\n") + szStatus + "\n44100\n1\n2\n");
        EXPECT_TRUE(Render()) << szStatus;
        EXPECT_EQ(m_nEnd, 2);
        EXPECT_EQ(m_script.m_strLastError, "");
    }
}

TEST_F(RegionRender, EndsAndRatesAreCutToWholeNumbersOfAnySize)
{
    m_events.Print("4\n0\n4294967297.9\n-4294967297.9\n9007199254740993\n");
    EXPECT_TRUE(Render());
    EXPECT_EQ(m_nStart, -4294967297);
    EXPECT_EQ(m_nEnd, 9007199254740993);
    EXPECT_EQ(m_script.m_strSelectedRegion1,
              "Start: -4294967297 End: 9007199254740993 Sample Rate: 4294967297");
    m_events.Print("4\n0\n44100\n9007199254740993\n4294967298.5\n");
    EXPECT_TRUE(Render());
    EXPECT_EQ(m_nStart, 9007199254740993);
    EXPECT_EQ(m_nEnd, 4294967298);
}

TEST_F(RegionRender, ARateIsComparedWithoutItsFraction)
{
    for (const char* szRate : {"44100.0", "44100.9"})
    {
        m_events.Print(std::string("4\n0\n") + szRate + "\n1\n2\n");
        EXPECT_TRUE(Render(44100));
        EXPECT_EQ(m_script.m_strLastError, "") << szRate;
    }
}

TEST_F(RegionRender, AnyRateButMinusOneIsCompared)
{
    const struct
    {
        long m_nRate;
        const char* m_szPrinted;
        const char* m_szWords;
    } cases[] = {
        {-2, "44100", "Warning - Session Sample Rate is: -2 Tarvane Sample rate is: 44100"},
        {0, "44100", "Warning - Session Sample Rate is: 0 Tarvane Sample rate is: 44100"},
        {0, "none", ""},
        {44100, "0", "Warning - Session Sample Rate is: 44100 Tarvane Sample rate is: 0"},
        {44100, "-1", "Warning - Session Sample Rate is: 44100 Tarvane Sample rate is: -1"},
        {44100, "4295011396.9",
         "Warning - Session Sample Rate is: 44100 Tarvane Sample rate is: 4295011396"},
        {4295011396, "44100",
         "Warning - Session Sample Rate is: 4295011396 Tarvane Sample rate is: 44100"},
    };
    for (const auto& tCase : cases)
    {
        m_events.Print(std::string("4\n0\n") + tCase.m_szPrinted + "\n1\n2\n");
        EXPECT_TRUE(Render(tCase.m_nRate));
        EXPECT_EQ(m_script.m_strLastError, tCase.m_szWords);
    }
}

TEST_F(RegionRender, AnotherRateIsAWarningAndStillASuccess)
{
    m_events.PrintWithError("4\n0\n48000\n1\n2\n", "server's words");
    EXPECT_TRUE(Render(44100));
    EXPECT_EQ(m_script.m_strLastError,
              "Warning - Session Sample Rate is: 44100 Tarvane Sample rate is: 48000");
    EXPECT_EQ(m_script.m_strAdvice, "");
    EXPECT_EQ(m_nStart, 1);
    EXPECT_EQ(m_nEnd, 2);
}

TEST_F(RegionRender, WithoutARateThereIsNoWarning)
{
    m_events.Print("4\n0\n48000\n1\n2\n");
    EXPECT_TRUE(Render(-1));
    EXPECT_EQ(m_script.m_strLastError, "");
}

TEST_F(RegionRender, TellsWhatIsMissingAndLeavesThePositions)
{
    for (const bool fAudioSuite : {false, true})
        for (const Missing& missing : kMissing)
        {
            SCOPED_TRACE(missing.m_szPrinted);
            m_events.PrintWithError(missing.m_szPrinted, "server's words");
            EXPECT_FALSE(m_script.RenderSelectedRegion(fAudioSuite, 44100, &m_nStart, &m_nEnd));
            EXPECT_EQ(m_script.m_strLastError, missing.m_szWords);
            EXPECT_EQ(m_script.m_strAdvice, "");
            EXPECT_EQ(m_nStart, -7);
            EXPECT_EQ(m_nEnd, -8);
            EXPECT_EQ(m_script.m_strSelectedRegion1, "");
        }
}

TEST_F(RegionRender, AnotherCountOfItemsIsAFailureWithoutWords)
{
    for (const char* szPrinted :
         {"", "0\n", "2\n0\n48000\n", "3\n0\n48000\n1\n", "5\n0\n48000\n1\n2\n3\n"})
    {
        SCOPED_TRACE(szPrinted);
        m_events.Print(szPrinted);
        EXPECT_FALSE(Render(44100));
        EXPECT_EQ(m_script.m_strLastError, "");
        EXPECT_EQ(m_nStart, -7);
        EXPECT_EQ(m_nEnd, -8);
    }
}

TEST_F(RegionRender, AFailedCommandLeavesThePositionsAndEmptiesTheSummaries)
{
    m_script.m_strSelectedRegion1 = "one";
    m_script.m_strSelectedRegion2 = "two";
    m_events.FailSend(-1712);
    EXPECT_FALSE(Render(44100));
    EXPECT_EQ(m_nStart, -7);
    EXPECT_EQ(m_nEnd, -8);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
    EXPECT_EQ(m_script.m_strSelectedRegion1, "");
    EXPECT_EQ(m_script.m_strSelectedRegion2, "");
}

TEST_F(RegionRender, EmptiesBothSummariesAfterTheCommand)
{
    m_script.m_strSelectedRegion1 = "one";
    m_script.m_strSelectedRegion2 = "two";
    m_events.m_whileSending = [this]
    {
        EXPECT_EQ(m_script.m_strSelectedRegion1, "one");
        EXPECT_EQ(m_script.m_strSelectedRegion2, "two");
    };
    Render();
    EXPECT_EQ(m_events.Commands().size(), 1u);
    EXPECT_EQ(m_script.m_strSelectedRegion1, "");
    EXPECT_EQ(m_script.m_strSelectedRegion2, "");
}
