#include "tests/TarvaneLinkAU/FailingNew.h"
#import "tests/TarvaneLinkAU/LinkViewFixture.h"
#include "tests/support/DecimalComma.h"
#include "tests/support/ReplacedMethod.h"

#include <cmath>
#include <cstring>
#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{
class CaptureDelivery : public LinkViewFixture
{
  protected:
    CaptureDelivery()
    {
        m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, 3);
        std::strcpy(m_tElement.szGuidePath, "/takes/guide.wav");
        std::strcpy(m_tElement.szDubPath, "/takes/dub 1.wav");
        m_tElement.tGuide.dPosition = 1;
        m_tElement.tGuide.dAux = 2;
        m_tElement.tGuide.dStart = 3;
        m_tElement.tGuide.dEnd = 4;
        m_tElement.tDub.dPosition = 100;
        m_tElement.tDub.dAux = 0.5;
        m_tElement.tDub.dStart = 10;
        m_tElement.tDub.dEnd = 4800;
        m_tElement.dSampleRate = 48000;
    }

    // One 64000 notification, through to its end; the words go to m_strLog.
    void Deliver()
    {
        m_plugIn.SetValue(TNProperty_ElementInfo, m_tElement, 3);
        Announce();
    }

    void Announce()
    {
        m_nCommandsBefore = m_events.Commands().size();
        testing::internal::CaptureStderr();
        m_plugIn.Raise(TNProperty_Elements);
        RunQueuedCalls();
        m_strLog = testing::internal::GetCapturedStderr();
    }

    std::vector<std::string> Scripts() const
    {
        std::vector<std::string> scripts = m_events.Scripts();
        return {scripts.begin() + static_cast<std::ptrdiff_t>(m_nCommandsBefore), scripts.end()};
    }

    // The one acknowledge; its last byte is nobody's.
    void ExpectAck(std::int32_t nElement, bool fNotDelivered)
    {
        const auto acks = m_plugIn.Of("Set", TNProperty_ElementDone);
        ASSERT_EQ(acks.size(), 1u);
        EXPECT_EQ(acks[0].m_line, "Set(64008, scope 0, element 0, 8 bytes)");
        std::int32_t nAcked = -1;
        std::memcpy(&nAcked, acks[0].m_bytes.data(), sizeof nAcked);
        EXPECT_EQ(nAcked, nElement);
        EXPECT_EQ(acks[0].m_bytes[4], 1) << "handled";
        EXPECT_EQ(acks[0].m_bytes[5], fNotDelivered ? 1 : 0);
        EXPECT_EQ(acks[0].m_bytes[6], 1) << "final";
    }

    void PlayDelivery(const char* szOffset = "0\n")
    {
        m_events.Print("0\n");
        m_events.Print(szOffset);
        m_events.Print("");
    }

    // What the user reads once the plug-in has raised 64004 behind its acknowledge.
    void Refresh()
    {
        PlayTracks({"Vox", "Bass"});
        m_plugIn.Raise(TNProperty_ArmCapture);
        RunQueuedCalls();
    }

    TNCaptureElement m_tElement;
    std::string m_strLog;
    std::size_t m_nCommandsBefore = 0;
};

#pragma mark The flow

TEST_F(CaptureDelivery, GoesThroughItsStepsInOrder)
{
    Attach();
    PlayDelivery();
    std::vector<std::string> journal;
    m_plugIn.m_onCall = [&](const auto& record) { journal.push_back(record.m_line); };
    m_events.m_whileSending = [&] { journal.push_back("Command"); };
    Deliver();
    EXPECT_THAT(journal,
                ElementsAre("Get(64007, scope 0, element 0, 4 bytes)",
                            "Get(64002, scope 0, element 3, 3248 bytes)", "Command", "Command",
                            "Command", "Set(64008, scope 0, element 0, 8 bytes)"));
}

TEST_F(CaptureDelivery, SendsItsThreeScriptsToTheLetter)
{
    Attach();
    PlayDelivery();
    Deliver();
    EXPECT_THAT(Scripts(),
                ElementsAre("if SelectScriptDocument() then\n"
                            "idTrack = GetTrackID(0)\n"
                            "nDuplicate = CheckForDuplicateRegion(idTrack, \"/takes/dub 1.wav\","
                            "100,10,4800)\n"
                            "print(nDuplicate)\n"
                            "end\n",
                            "if SelectScriptDocument() then\n"
                            "print(GetLinkSMPTEOffset())\n"
                            "end\n",
                            "if SelectScriptDocument() then\n"
                            "idTrack = GetTrackID(0)\n"
                            "AddAudioRegion(idTrack, \"/takes/dub 1.wav\", true, false, "
                            "100,10,4800)\n"
                            "MoveDisplayToPosition(110)\n"
                            "end\n"));
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, OffsetMovesTheRegionButNotTheDuplicateCheck)
{
    Attach();
    PlayDelivery("2.0\n");
    Deliver();
    ASSERT_EQ(Scripts().size(), 3u);
    EXPECT_THAT(Scripts()[0], HasSubstr(",100,10,4800)"));
    EXPECT_THAT(Scripts()[2], HasSubstr("true, false, 96100,10,4800)"));
}

TEST_F(CaptureDelivery, OffsetIsScaledByTheSampleRateOfTheRecord)
{
    Attach();
    m_tElement.dSampleRate = 44100;
    PlayDelivery("-0.5\n");
    Deliver();
    EXPECT_THAT(Scripts()[2], HasSubstr("true, false, -21950,10,4800)"));
}

// Scaled first, then added, each rounded: any other way lands a sample beside.
TEST_F(CaptureDelivery, PositionIsRoundedBehindTheProductAndBehindTheSum)
{
    Attach();
    m_tElement.tDub.dPosition = 4209739;
    PlayDelivery("-245.027\n");
    Deliver();
    ASSERT_EQ(Scripts().size(), 3u);
    EXPECT_THAT(Scripts()[2], HasSubstr("true, false, -7551557,10,4800)"));
}

TEST_F(CaptureDelivery, AudioSuiteFlagGoesOnToEveryScript)
{
    Attach();
    [m_pView setAudioSuite:true];
    PlayDelivery();
    Deliver();
    Refresh();
    ASSERT_EQ(Scripts().size(), 4u);
    for (int n = 0; n < 3; ++n)
        EXPECT_THAT(Scripts()[n], StartsWith("if SelectAudioSuiteDocument() then\n"));
    EXPECT_THAT(Scripts()[3], StartsWith("if(SelectAudioSuiteDocument()) then\n"));
}

TEST_F(CaptureDelivery, ExceptionOfTheFileNameEndsTheDeliveryWithoutAnAcknowledge)
{
    Attach();
    std::strcpy(m_tElement.szDubPath, "/a folder with a longer name than most/a file likewise.wav");
    m_plugIn.SetValue(TNProperty_ElementInfo, m_tElement, 3);
    bool fPassed = false;
    {
        // The last step before the file name is built.
        TarvaneTests::ReplacedMethod chosen([NSPopUpButton class], @selector(indexOfSelectedItem),
                                            [](id, SEL) -> NSInteger
                                            {
                                                TarvaneTests::g_fNextNewFails = true;
                                                return 0;
                                            });
        testing::internal::CaptureStderr();
        try
        {
            [m_pView TNProperty_Elements];
        }
        catch (const std::bad_alloc&)
        {
            fPassed = true;
        }
        TarvaneTests::g_fNextNewFails = false;
        testing::internal::GetCapturedStderr();
    }
    EXPECT_TRUE(fPassed);
    EXPECT_EQ(m_events.Commands().size(), 2u) << "nothing was sent";
    EXPECT_EQ(CountOf("Set", TNProperty_ElementDone), 0);
}

TEST_F(CaptureDelivery, MenuAndNotTheStoredNumberChoosesTheTrack)
{
    Attach();
    [[m_pView trackButton] selectItemAtIndex:1];
    PlayDelivery();
    Deliver();
    EXPECT_THAT(Scripts()[0], HasSubstr("GetTrackID(1)"));
    EXPECT_THAT(Scripts()[2], HasSubstr("GetTrackID(1)"));
    EXPECT_EQ(CountOf("Get", TNProperty_SelectedTrack), 0);
}

TEST_F(CaptureDelivery, IdenticalFlagChangesNothing)
{
    Attach();
    m_tElement.fIdentical = 1;
    PlayDelivery();
    Deliver();
    EXPECT_EQ(Scripts().size(), 3u);
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, OneNotificationDeliversOneElement)
{
    Attach();
    PlayDelivery();
    Deliver();
    PlayDelivery();
    m_plugIn.SetValue<std::int32_t>(TNProperty_NextElement, 4);
    m_plugIn.SetValue(TNProperty_ElementInfo, m_tElement, 4);
    EXPECT_EQ(CountOf("Set", TNProperty_ElementDone), 1);
    m_plugIn.ForgetRecords();
    Announce();
    ExpectAck(4, false);
}

TEST_F(CaptureDelivery, NotificationDuringADeliveryWaitsForItsOwnPass)
{
    Attach();
    PlayDelivery();
    PlayDelivery();
    bool fRaised = false;
    m_events.m_whileSending = [&]
    {
        if (!fRaised)
            m_plugIn.Raise(TNProperty_Elements);
        fRaised = true;
        EXPECT_EQ(CountOf("Get", TNProperty_NextElement) - CountOf("Set", TNProperty_ElementDone),
                  1)
            << "one at a time";
    };
    Deliver();
    RunQueuedCalls();
    EXPECT_EQ(CountOf("Set", TNProperty_ElementDone), 2);
}

TEST_F(CaptureDelivery, ViewGivenUpDuringADeliveryFinishesIt)
{
    Attach();
    PlayDelivery();
    TestLinkView* pView = m_pView;
    m_events.m_whileSending = [&]
    {
        [m_pView release];
        m_pView = nil;
        EXPECT_EQ([TestLinkView liveViews], 1);
        m_events.m_whileSending = nullptr;
    };
    Deliver();
    ASSERT_NE(pView, nil);
    ExpectAck(3, false);
    EXPECT_EQ([TestLinkView liveViews], 0);
}

#pragma mark The words

TEST_F(CaptureDelivery, DeliveryEmptiesTheErrorLineAndLeavesTheAdvice)
{
    Attach();
    [[m_pView errorLine] setStringValue:@"Capturing Audio: 3.0 sec"];
    [[m_pView adviceLine] setStringValue:@"advice"];
    PlayDelivery();
    Deliver();
    EXPECT_EQ(ErrorLine(), "");
    EXPECT_EQ(AdviceLine(), "advice");
}

TEST_F(CaptureDelivery, FailureShowsNothingUntilTheNextRefresh)
{
    Attach();
    [[m_pView errorLine] setStringValue:@"Capturing Audio: 3.0 sec"];
    m_events.Print("1\n");
    Deliver();
    EXPECT_EQ(ErrorLine(), "Capturing Audio: 3.0 sec");
    Refresh();
    EXPECT_EQ(ErrorLine(), "Same audio captured previously.");
    EXPECT_EQ(AdviceLine(), "This capture has been cancelled");
}

TEST_F(CaptureDelivery, LogTellsTheElementToTheLetter)
{
    Attach();
    m_tElement.fIdentical = 1;
    PlayDelivery();
    Deliver();
    EXPECT_EQ(m_strLog, "Element: 3\n"
                        "\tGuide: /takes/guide.wav - 1.000000 2.000000 3.000000 4.000000\n"
                        "\tDub: /takes/dub 1.wav - 100.000000 0.500000 10.000000 4800.000000\n"
                        "\tItentical: 1\n");
}

TEST_F(CaptureDelivery, LogHasDecimalPointsInEveryLocale)
{
    Attach();
    TarvaneTests::DecimalComma locale;
    PlayDelivery();
    Deliver();
    EXPECT_THAT(m_strLog, HasSubstr(" - 1.000000 2.000000 3.000000 4.000000\n"));
    EXPECT_THAT(m_strLog, HasSubstr(" - 100.000000 0.500000 10.000000 4800.000000\n"));
}

TEST_F(CaptureDelivery, LogTellsOfADroppedElementToo)
{
    Attach();
    m_tElement.tDub.dEnd = m_tElement.tDub.dStart;
    Deliver();
    EXPECT_THAT(m_strLog, StartsWith("Element: 3\n"));
    EXPECT_THAT(m_strLog, HasSubstr("\tItentical: 0\n"));
}

#pragma mark What can go wrong

TEST_F(CaptureDelivery, NegativeIndexEndsWithoutAnAcknowledge)
{
    Attach();
    for (std::int32_t nIndex : {-1, -2, std::numeric_limits<std::int32_t>::min()})
    {
        m_plugIn.ForgetRecords();
        m_plugIn.SetValue(TNProperty_NextElement, nIndex);
        Deliver();
        EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Get(64007, scope 0, element 0, 4 bytes)"));
        EXPECT_THAT(Scripts(), IsEmpty());
        EXPECT_THAT(m_strLog, Not(HasSubstr("Element:")));
    }
}

TEST_F(CaptureDelivery, FailedReadOfTheIndexDeliversElementZero)
{
    Attach();
    m_plugIn.ClearValue(TNProperty_NextElement);
    m_plugIn.SetValue(TNProperty_ElementInfo, m_tElement, 0);
    PlayDelivery();
    Announce();
    EXPECT_EQ(m_plugIn.Of("Get", TNProperty_ElementInfo)[0].m_line,
              "Get(64002, scope 0, element 0, 3248 bytes)");
    ExpectAck(0, false);
}

TEST_F(CaptureDelivery, FailedReadOfTheRecordIsAnEmptyRegion)
{
    Attach();
    Announce();
    EXPECT_THAT(m_strLog, HasSubstr("\tDub:  - 0.000000 0.000000 0.000000 0.000000\n"));
    EXPECT_THAT(Scripts(), IsEmpty());
    ExpectAck(3, true);
}

TEST_F(CaptureDelivery, RecordThatIsCutShortIsZeroBehindItsEnd)
{
    Attach();
    const auto* pFirst = reinterpret_cast<const std::uint8_t*>(&m_tElement);
    m_plugIn.SetBytes(TNProperty_ElementInfo, 3, {pFirst, pFirst + 2104 + 8});
    Announce();
    EXPECT_THAT(m_strLog, HasSubstr("\tDub: /takes/dub 1.wav - 100.000000 0.000000 0.000000 "
                                    "0.000000\n"));
    ExpectAck(3, true);
}

TEST_F(CaptureDelivery, EmptyMenuDropsTheCaptureInSilence)
{
    m_events.Print("1\n1\n");
    m_events.Print("1\n1\n");
    [m_pView setAU:m_plugIn.Unit()];
    m_plugIn.ForgetRecords();
    [[m_pView errorLine] setStringValue:@"as it was"];
    Deliver();
    EXPECT_THAT(Scripts(), IsEmpty());
    ExpectAck(3, true);
    EXPECT_EQ(ErrorLine(), "as it was");
}

TEST_F(CaptureDelivery, EmptyRegionIsDroppedInSilence)
{
    Attach();
    const double dNaN = std::nan("");
    const double dInfinity = std::numeric_limits<double>::infinity();
    const double cases[][2] = {
        {10, 10}, {10, 9}, {dNaN, 10}, {10, dNaN}, {dNaN, dNaN}, {dInfinity, dInfinity}, {0, -0.0}};
    for (const auto& times : cases)
    {
        m_plugIn.ForgetRecords();
        m_tElement.tDub.dStart = times[0];
        m_tElement.tDub.dEnd = times[1];
        Deliver();
        EXPECT_THAT(Scripts(), IsEmpty());
        ExpectAck(3, true);
        EXPECT_EQ([m_pView script]->m_strLastError, "");
    }
}

TEST_F(CaptureDelivery, SmallestRegionIsDelivered)
{
    Attach();
    m_tElement.tDub.dStart = 10;
    m_tElement.tDub.dEnd = std::nextafter(10.0, 11.0);
    PlayDelivery();
    Deliver();
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, DuplicateStopsBehindTheFirstCommand)
{
    Attach();
    m_events.Print("1\n");
    Deliver();
    EXPECT_EQ(Scripts().size(), 1u);
    ExpectAck(3, true);
    EXPECT_EQ([m_pView script]->m_strLastError, "Same audio captured previously.");
    EXPECT_EQ([m_pView script]->m_strAdvice, "This capture has been cancelled");
}

TEST_F(CaptureDelivery, ServerThatIsNotRunningCostsThreeFailingCommands)
{
    Attach();
    for (int n = 0; n < 3; ++n)
        m_events.FailSend(-600);
    Deliver();
    EXPECT_EQ(Scripts().size(), 3u);
    EXPECT_THAT(Scripts()[2], HasSubstr("true, false, 100,10,4800)"));
    ExpectAck(3, true);
    EXPECT_EQ([m_pView script]->m_strLastError, "Error - Tarvane not running.");
    EXPECT_EQ([m_pView script]->m_strAdvice, "Locate and launch Tarvane.");
}

TEST_F(CaptureDelivery, OtherFailureOfSendingIsTold)
{
    Attach();
    [[m_pView errorLine] setStringValue:@"as it was"];
    m_events.Print("0\n");
    m_events.Print("0\n");
    m_events.FailSend(-1712);
    Deliver();
    EXPECT_EQ(Scripts().size(), 3u);
    ExpectAck(3, true);
    EXPECT_EQ([m_pView script]->m_strLastError, "AEError ID:-1712");
    EXPECT_EQ(ErrorLine(), "as it was");
}

TEST_F(CaptureDelivery, FailureOfTheOffsetAloneCountsAsZero)
{
    Attach();
    m_events.Print("0\n");
    m_events.FailSend(-1712);
    m_events.Print("");
    Deliver();
    ASSERT_EQ(Scripts().size(), 3u);
    EXPECT_THAT(Scripts()[2], HasSubstr("true, false, 100,10,4800)"));
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, FailureOfTheDuplicateCheckAloneIsNoDuplicate)
{
    Attach();
    m_events.FailSend(-1712);
    m_events.Print("0\n");
    m_events.Print("");
    Deliver();
    EXPECT_EQ(Scripts().size(), 3u);
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, ErrorTextOfTheServerIsADeliveryAllTheSame)
{
    Attach();
    m_events.Print("0\n");
    m_events.Print("0\n");
    m_events.PrintWithError("", "no such file");
    Deliver();
    ExpectAck(3, false);
    EXPECT_EQ([m_pView script]->m_strLastError, "no such file");
}

#pragma mark Bytes of a plug-in

TEST_F(CaptureDelivery, PathsWithoutATerminatorEndWithTheirFields)
{
    Attach();
    std::memset(m_tElement.szGuidePath, 'g', sizeof m_tElement.szGuidePath);
    std::memset(m_tElement.szDubPath, 'd', sizeof m_tElement.szDubPath);
    std::memcpy(m_tElement.szDubPath, "/t/", 3);
    PlayDelivery();
    Deliver();
    const std::string strDub = "/t/" + std::string(1021, 'd');
    EXPECT_THAT(m_strLog, HasSubstr("\tGuide: " + std::string(1024, 'g') + " - 1.000000 "));
    EXPECT_THAT(m_strLog, HasSubstr("\tDub: " + strDub + " - 100.000000 "));
    EXPECT_THAT(Scripts()[2], HasSubstr("\"" + strDub + "\""));
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, PathOfAnotherScriptGoesToTheServerAsItIs)
{
    Attach();
    std::strcpy(m_tElement.szDubPath, "/テイク/дубль \u202Eabc/é.wav");
    PlayDelivery();
    Deliver();
    EXPECT_THAT(Scripts()[2], HasSubstr("\"/テイク/дубль \u202Eabc/é.wav\""));
    ExpectAck(3, false);
}

TEST_F(CaptureDelivery, PathThatIsNotUtf8IsNotDelivered)
{
    Attach();
    std::strcpy(m_tElement.szDubPath, "/takes/\xFF.wav");
    Deliver();
    ExpectAck(3, true);
}

TEST_F(CaptureDelivery, HugeNumbersAreLoggedAndAcknowledged)
{
    Attach();
    m_tElement.tGuide.dPosition = std::numeric_limits<double>::max();
    m_tElement.tGuide.dAux = -std::numeric_limits<double>::infinity();
    m_tElement.tDub.dPosition = 1e300;
    m_tElement.tDub.dEnd = std::numeric_limits<double>::infinity();
    m_tElement.dSampleRate = std::numeric_limits<double>::quiet_NaN();
    PlayDelivery("1e308\n");
    Deliver();
    ExpectAck(3, false);
}
} // namespace
