#include "soak/Logs.h"

#include <gmock/gmock.h>

using namespace Tarvane::Soak;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

TEST(SoakLogs, AcknowledgesAreTheWritesToTheirPropertyAlone)
{
    const std::vector<Acknowledge> read = ReadAcknowledges(
        "Capture 1: take 1.wav\n"
        "64005 TNProperty_SetArmCapture: fArm 1, fShift 0\n"
        "64008 TNProperty_ElementDone: nElement 7, fHandled 1, fNotDelivered 0, fFinal 1\n"
        "64009 TNProperty_SelectedTrack: track 2\n"
        "64008 TNProperty_ElementDone: nElement 8, fHandled 0, fNotDelivered 1, fFinal 0\n");
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0].nElement, 7);
    EXPECT_EQ(read[0].nHandled, 1);
    EXPECT_EQ(read[0].nNotDelivered, 0);
    EXPECT_EQ(read[0].nFinal, 1);
    EXPECT_EQ(read[1].nElement, 8);
    EXPECT_EQ(read[1].nHandled, 0);
    EXPECT_EQ(read[1].nNotDelivered, 1);
    EXPECT_EQ(read[1].nFinal, 0);
}

TEST(SoakLogs, AnAcknowledgeOfAnotherSizeIsOfNoElement)
{
    EXPECT_THAT(ReadAcknowledges("64008 TNProperty_ElementDone: 3 bytes 00 01 02\n"),
                ElementsAre(Field(&Acknowledge::nElement, -1)));
}

namespace
{

const std::string kQuestion = "2026-03-01T12:34:56.789Z event 1 in\n"
                              "    print(GetUpdateCount())\n"
                              "2026-03-01T12:34:56.790Z event 1 out\n"
                              "  result\n"
                              "    0\n"
                              "  error\n";
const std::string kAdd = "2026-03-01T12:34:56.791Z event 2 in\n"
                         "    if SelectScriptDocument() then\n"
                         "    idTrack = GetTrackID(2)\n"
                         "    AddAudioRegion(idTrack, \"/takes/a 1.wav\", true, false, 1,0,480)\n"
                         "    end\n";
const std::string kAnswer = "2026-03-01T12:34:56.792Z event 2 out\n"
                            "  result\n"
                            "  error\n";

} // namespace

TEST(SoakLogs, AnAddedFileIsAnAnswerWithoutAnError)
{
    EXPECT_THAT(ReadServerAnswers(kQuestion + kAdd + kAnswer + kQuestion),
                ElementsAre(AllOf(Field(&ServerAnswer::strPath, "/takes/a 1.wav"),
                                  Field(&ServerAnswer::strError, ""))));
}

TEST(SoakLogs, ARefusedFileIsAnAnswerWithItsError)
{
    EXPECT_THAT(
        ReadServerAnswers(kAdd + kAnswer + "    no room\n" + kAdd + kAnswer),
        ElementsAre(Field(&ServerAnswer::strError, "no room"), Field(&ServerAnswer::strError, "")));
}

TEST(SoakLogs, TheFirstLineOfTheNextServerIsNoError)
{
    EXPECT_THAT(ReadServerAnswers(kAdd + kAnswer + "ready\n" + kQuestion),
                ElementsAre(Field(&ServerAnswer::strError, "")));
}

TEST(SoakLogs, WhatTheServerDidNotLiveToAnswerIsNone)
{
    EXPECT_THAT(ReadServerAnswers(kAdd), IsEmpty());
    EXPECT_THAT(ReadServerAnswers(kAdd + "2026-03-01T12:3\n" + "ready\n" + kQuestion), IsEmpty());
    EXPECT_THAT(ReadServerAnswers(kQuestion), IsEmpty());
}

// Clients take turns: another's question may be asked and answered meanwhile.
TEST(SoakLogs, AnAnswerIsThatOfItsOwnEvent)
{
    EXPECT_THAT(ReadServerAnswers(kAdd + kQuestion + kAnswer),
                ElementsAre(Field(&ServerAnswer::strPath, "/takes/a 1.wav")));
}

TEST(SoakLogs, AnEventOfTheNextServerIsAnother)
{
    const std::string strQuestion = "2026-03-01T12:34:57.000Z event 2 in\n    print(1)\n";
    EXPECT_THAT(ReadServerAnswers(kAdd + "ready\n" + strQuestion + kAnswer), IsEmpty());
}
