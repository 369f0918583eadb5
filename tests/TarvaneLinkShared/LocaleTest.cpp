#include "TarvaneLinkShared/ScriptNumbers.h"
#include "tests/TarvaneLinkShared/ScriptFixture.h"
#include "tests/support/DecimalComma.h"
#include "utils/FileIO/FileName.h"

#include <clocale>
#include <cstdlib>
#include <sstream>

using ::testing::HasSubstr;

namespace
{
// A host may set any locale; what the server is sent and how it is read does not follow.
class DecimalCommaHost : public ScriptFixture
{
protected:
    TarvaneTests::DecimalComma m_locale;
    CFileName m_file{"/a/b.wav"};
};
} // namespace

TEST_F(DecimalCommaHost, IsReallyOne)
{
    EXPECT_EQ(std::atof("1,5"), 1.5);
    std::ostringstream stream;
    stream << 1234567 << " " << 0.5;
    EXPECT_EQ(stream.str(), "1.234.567 0,5");
}

TEST_F(DecimalCommaHost, ScriptsHaveDecimalPointsAndNoGrouping)
{
    m_script.SendFile(false, 1234, &m_file, 1234567, 10.5, 7654321, 0);
    m_script.SendFile(false, 1234, &m_file, 1234, 10.5, 7654321, 0);
    EXPECT_THAT(m_events.Scripts()[0],
                HasSubstr("GetTrackID(1234)\nAddAudioRegion(idTrack, \"/a/b.wav\", true, false, "
                          "1234567,10,7654321)\nMoveDisplayToPosition(1.23458e+06)\n"));
    EXPECT_THAT(m_events.Scripts()[1], HasSubstr("MoveDisplayToPosition(1244.5)\n"));
}

TEST_F(DecimalCommaHost, ProcessScriptsHaveNoGrouping)
{
    m_script.CreateSpreader(false, 1000, 1234567, 7654321, 0, 2000);
    EXPECT_THAT(OnlyScript(), HasSubstr("GetTrackID(1000)\n"));
    EXPECT_THAT(OnlyScript(), HasSubstr("Start=1234567, End=7654321}"));
    EXPECT_THAT(OnlyScript(), HasSubstr("MoveDisplayToPosition(1234567)"));
}

TEST_F(DecimalCommaHost, OffsetIsReadWithADecimalPoint)
{
    for (const auto& [szPrinted, dSeconds] : {std::pair{"1.5\n", 1.5},
                                              {"-0.25\n", -0.25},
                                              {"1,5\n", 1.0},
                                              {"3.5,5\n", 3.5},
                                              {"1,5.5\n", 1.0},
                                              {"2\n", 2.0},
                                              {"1.5e1\n", 15.0},
                                              {"\n", 0.0}})
    {
        m_events.Print(szPrinted);
        EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), dSeconds) << szPrinted;
    }
}

TEST_F(DecimalCommaHost, NumbersOfResultsAreCutAtTheirDecimalPoint)
{
    long long nStart = 0, nEnd = 0;
    m_events.Print("4\n0\n44100.0\n1234567.9\n-2.5\n");
    EXPECT_TRUE(m_script.RenderSelectedRegion(false, 44100, &nStart, &nEnd));
    EXPECT_EQ(nStart, 1234567);
    EXPECT_EQ(nEnd, -2);
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strSelectedRegion1, "Start: 1234567 End: -2 Sample Rate: 44100");
}

TEST_F(DecimalCommaHost, IntegersAreNotGrouped)
{
    EXPECT_EQ(LongFromText("1.234"), 1);
    EXPECT_EQ(IntFromText("1,5"), 1);
}

TEST_F(DecimalCommaHost, StatusNumbersAreNotGrouped)
{
    m_events.FailSend(-10000);
    Send("x");
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-10000");
}

TEST_F(DecimalCommaHost, LeavesTheProcessAsItWas)
{
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "de_DE.UTF-8");
    m_events.Print("1.5\n");
    m_script.GetLinkSMPTEOffset(false);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "de_DE.UTF-8");
}
