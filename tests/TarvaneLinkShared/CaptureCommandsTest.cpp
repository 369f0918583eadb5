#include "tests/TarvaneLinkShared/ScriptFixture.h"
#include "utils/FileIO/FileName.h"

#include <cmath>

using ::testing::HasSubstr;

namespace
{
constexpr char szPreviously[] = "Same audio captured previously.";
constexpr char szCancelled[] = "This capture has been cancelled";

class CaptureCommands : public ScriptFixture
{
protected:
    bool IsDuplicate() { return m_script.CheckDuplicateRegion(false, 2, &m_file, 1, 2, 3); }
    int Send(double dPosition, double dStart, int nIndexMask = 0)
    {
        return m_script.SendFile(false, 2, &m_file, dPosition, dStart, 3, nIndexMask);
    }

    CFileName m_file{"/Audio/T\xC3\xB6ne/take 1.wav"};
};
} // namespace

TEST_F(CaptureCommands, DuplicateCheckAsksWithWholeSamples)
{
    m_script.CheckDuplicateRegion(false, 7, &m_file, 1234567.9, -0.5, -1.5);
    EXPECT_EQ(OnlyScript(),
              "if SelectScriptDocument() then\n"
              "idTrack = GetTrackID(7)\n"
              "nDuplicate = CheckForDuplicateRegion(idTrack, \"/Audio/T\xC3\xB6ne/take 1.wav\","
              "1234567,0,-1)\n"
              "print(nDuplicate)\n"
              "end\n");
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(CaptureCommands, DuplicateCheckSelectsTheAudioSuiteDocument)
{
    m_script.CheckDuplicateRegion(true, 7, &m_file, 1, 2, 3);
    EXPECT_TRUE(OnlyScript().starts_with("if SelectAudioSuiteDocument() then\nidTrack ="));
}

TEST_F(CaptureCommands, ADuplicateIsToldAndItsWordsAreKept)
{
    m_events.PrintWithError("1\n", "server's words");
    EXPECT_TRUE(IsDuplicate());
    EXPECT_EQ(m_script.m_strLastError, szPreviously);
    EXPECT_EQ(m_script.m_strAdvice, szCancelled);
    EXPECT_TRUE(m_script.m_fUserError);

    std::vector<std::string> tracks;
    m_events.Print("2\n1\nVox\n");
    EXPECT_TRUE(m_script.ListTracks(false, &tracks));
    EXPECT_EQ(m_script.m_strLastError, szPreviously);
    EXPECT_EQ(m_script.m_strAdvice, szCancelled);
}

TEST_F(CaptureCommands, DuplicateIsReadWithoutACountLine)
{
    m_events.Print("1.0\n7\n8\n"); // would stop the process as a counted result
    EXPECT_TRUE(IsDuplicate());
}

TEST_F(CaptureCommands, AnswerIsCutToAWholeNumber)
{
    m_events.Print("1.9\n");
    EXPECT_TRUE(IsDuplicate());
    m_events.Print("0.9\n");
    EXPECT_FALSE(IsDuplicate());
}

TEST_F(CaptureCommands, PositionsBeyond32BitsAreWrittenInFullEverywhere)
{
    m_script.CheckDuplicateRegion(false, 1, &m_file, 4294967301, -4294967302, 4294967303.9);
    EXPECT_THAT(m_events.Scripts().back(), HasSubstr("\",4294967301,-4294967302,4294967303)\n"));
    m_script.SendFile(false, 1, &m_file, -4294967304, 4294967305, 4294967306, 0);
    EXPECT_THAT(m_events.Scripts().back(),
                HasSubstr("true, false, -4294967304,4294967305,4294967306)\n"
                          "MoveDisplayToPosition(1)\n"));
    m_script.SendFile(false, 1, &m_file, 4294967304, 0, 1, 0);
    EXPECT_THAT(m_events.Scripts().back(), HasSubstr("MoveDisplayToPosition(4.29497e+09)\n"));
}

TEST_F(CaptureCommands, AnythingButOneIsNoDuplicate)
{
    for (const char* szPrinted : {"0\n", "2\n", "-1\n", "", "\n", "true\n", "11\n", "nil\n"})
    {
        SCOPED_TRACE(szPrinted);
        m_events.Print(szPrinted);
        EXPECT_FALSE(IsDuplicate());
        EXPECT_FALSE(m_script.m_fUserError);
        EXPECT_EQ(m_script.m_strLastError, "");
        EXPECT_EQ(m_script.m_strAdvice, "");
    }
}

TEST_F(CaptureCommands, AFailedDuplicateCheckIsNoDuplicate)
{
    m_events.FailSend(-600);
    EXPECT_FALSE(IsDuplicate());
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);
    EXPECT_FALSE(m_script.m_fUserError);
}

TEST_F(CaptureCommands, AServerErrorInTheDuplicateCheckIsNoDuplicate)
{
    m_events.PrintWithError("", "no such track");
    EXPECT_FALSE(IsDuplicate());
    EXPECT_EQ(m_script.m_strLastError, "no such track");
}

TEST_F(CaptureCommands, OffsetIsAskedOfEitherDocument)
{
    m_script.GetLinkSMPTEOffset(false);
    m_script.GetLinkSMPTEOffset(true);
    EXPECT_EQ(m_events.Scripts()[0],
              "if SelectScriptDocument() then\nprint(GetLinkSMPTEOffset())\nend\n");
    EXPECT_EQ(m_events.Scripts()[1],
              "if SelectAudioSuiteDocument() then\nprint(GetLinkSMPTEOffset())\nend\n");
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(CaptureCommands, OffsetIsInSecondsAsPrinted)
{
    m_events.Print("-3600.04170837504\n");
    EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), -3600.04170837504);
    m_events.Print("2\n");
    EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), 2.0);
    m_events.PrintWithError("1.5\n", "server's words");
    EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), 1.5);
    EXPECT_EQ(m_script.m_strLastError, "server's words");
}

TEST_F(CaptureCommands, NoOffsetIsZero)
{
    m_events.Print("");
    EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), 0.0);
    m_events.FailSend(-1712);
    EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), 0.0);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
}

TEST_F(CaptureCommands, SendFileAddsARegionAndMovesTheDisplay)
{
    EXPECT_EQ(m_script.SendFile(false, 7, &m_file, 1234.9, 10.5, 99.9, 0), 0);
    EXPECT_EQ(OnlyScript(),
              "if SelectScriptDocument() then\n"
              "idTrack = GetTrackID(7)\n"
              "AddAudioRegion(idTrack, \"/Audio/T\xC3\xB6ne/take 1.wav\", true, false, "
              "1234,10,99)\n"
              "MoveDisplayToPosition(1244.5)\n"
              "end\n");
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(CaptureCommands, SendFileSelectsTheAudioSuiteDocument)
{
    m_script.SendFile(true, 7, &m_file, 0, 1, 2, 0);
    EXPECT_TRUE(OnlyScript().starts_with("if SelectAudioSuiteDocument() then\nidTrack ="));
}

TEST_F(CaptureCommands, NegativePositionsAreCutTowardZero)
{
    Send(-0.5, 0);
    Send(-1.5, 0);
    EXPECT_THAT(m_events.Scripts()[0], HasSubstr("false, 0,0,3)\nMoveDisplayToPosition(0)\n"));
    EXPECT_THAT(m_events.Scripts()[1], HasSubstr("false, -1,0,3)\nMoveDisplayToPosition(-1)\n"));
}

TEST_F(CaptureCommands, DisplayPositionHasSixSignificantDigits)
{
    Send(1234567, 0);
    Send(999999, 0.25);
    Send(999999, 0.5);
    Send(12345, 0.678);
    Send(0, 0.000012345678);
    EXPECT_THAT(m_events.Scripts()[0],
                HasSubstr("false, 1234567,0,3)\nMoveDisplayToPosition(1.23457e+06)\n"));
    EXPECT_THAT(m_events.Scripts()[1], HasSubstr("MoveDisplayToPosition(999999)\n"));
    EXPECT_THAT(m_events.Scripts()[2], HasSubstr("MoveDisplayToPosition(1e+06)\n"));
    EXPECT_THAT(m_events.Scripts()[3], HasSubstr("MoveDisplayToPosition(12345.7)\n"));
    EXPECT_THAT(m_events.Scripts()[4], HasSubstr("MoveDisplayToPosition(1.23457e-05)\n"));
}

TEST_F(CaptureCommands, PositionsBeyond64BitsAreSentAsTheNearest)
{
    m_script.SendFile(false, 7, &m_file, std::nan(""), 1e300, -HUGE_VAL, 0);
    EXPECT_THAT(OnlyScript(), HasSubstr("false, 0,9223372036854775807,-9223372036854775808)\n"
                                        "MoveDisplayToPosition(1e+300)\n"));
}

TEST_F(CaptureCommands, IndexListHasTheMasksBitsInRisingOrder)
{
    const struct
    {
        int m_nMask;
        const char* m_szTail;
    } masks[] = {
        {5, "0,1,3,1,{0,2})\n"},
        {1, "0,1,3,1,{0})\n"},
        {2, "0,1,3,1,{1})\n"},
        {7, "0,1,3,1,{0,1,2})\n"},
        {0x40000000, "0,1,3,1,{30})\n"},
        {0x40000001, ",1,{0,30})\n"},
        {0, "0,1,3)\n"},
        {-1, "0,1,3)\n"},
        {-2147483647 - 1, "0,1,3)\n"},
    };
    for (const auto& mask : masks)
    {
        Send(0, 1, mask.m_nMask);
        EXPECT_THAT(m_events.Scripts().back(), HasSubstr(mask.m_szTail)) << mask.m_nMask;
    }
}

TEST_F(CaptureCommands, PathIsQuotedAsItIs)
{
    CFileName file("/a \"b\"\\n/c\\.wav");
    m_script.SendFile(false, 0, &file, 0, 0, 1, 0);
    m_script.CheckDuplicateRegion(false, 0, &file, 0, 0, 1);
    EXPECT_THAT(m_events.Scripts()[0], HasSubstr("(idTrack, \"/a \"b\"\\n/c\\.wav\", true"));
    EXPECT_THAT(m_events.Scripts()[1], HasSubstr("(idTrack, \"/a \"b\"\\n/c\\.wav\",0,"));
}

TEST_F(CaptureCommands, SendFileAnswersTheStatus)
{
    m_events.FailSend(-600);
    EXPECT_EQ(Send(0, 0), -600);
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    m_events.FailSend(-1712);
    EXPECT_EQ(Send(0, 0), -1712);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
    m_events.PrintWithError("3\nmiscounted\n", "no such track");
    EXPECT_EQ(Send(0, 0), 0);
    EXPECT_EQ(m_script.m_strLastError, "no such track");
}

TEST_F(CaptureCommands, UpdateCountIsAskedWithoutSelectingADocument)
{
    m_events.Print("9876543210\n");
    EXPECT_EQ(m_script.GetUpdateCount(), 9876543210);
    EXPECT_EQ(OnlyScript(), "print(GetUpdateCount())\n");
    EXPECT_EQ(m_events.Commands()[0].m_nTimeoutTicks, -1);
}

TEST_F(CaptureCommands, UpdateCountIsCutToAWholeNumber)
{
    m_events.Print("7.9\n");
    EXPECT_EQ(m_script.GetUpdateCount(), 7);
}

TEST_F(CaptureCommands, NoUpdateCountIsZero)
{
    m_events.Print("");
    EXPECT_EQ(m_script.GetUpdateCount(), 0);
    m_events.FailSend(-600);
    EXPECT_EQ(m_script.GetUpdateCount(), 0);
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
}
