#include "apps/support/delivery/DeliveryOutcome.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Tarvane;

namespace
{

// The scripts as the view sends them.
constexpr const char* kDuplicate =
    "if(SelectScriptDocument()) then\nidTrack = GetTrackID(1)\nnDuplicate = "
    "CheckForDuplicateRegion(idTrack, \"/takes/a.wav\",100,0,4800)\nprint(nDuplicate)\nend\n";
constexpr const char* kOffset =
    "if(SelectScriptDocument()) then\nprint(GetLinkSMPTEOffset())\nend\n";
constexpr const char* kSend =
    "if(SelectScriptDocument()) then\nidTrack = GetTrackID(1)\nAddAudioRegion(idTrack, "
    "\"/takes/a.wav\", true, false, 96100,0,4800)\nMoveDisplayToPosition(96100)\nend\n";

constexpr OSErr kNobodyThere = -600;
constexpr OSErr kNoAnswer = -1712;

struct Delivery : testing::Test
{
    Delivery()
    {
        record.tDub.dPosition = 100;
        record.dSampleRate = 48000;
        outcome.Begin(record);
    }
    void Add(const char* szScript, OSErr nStatus, const std::optional<std::string>& result,
             const std::string& strError = "")
    {
        outcome.Add({szScript, result.value_or(""), strError, nStatus, result.has_value()});
    }
    TNCaptureElement record{};
    CDeliveryOutcome outcome;
};

} // namespace

TEST_F(Delivery, APlacedTakeIsDelivered)
{
    Add(kDuplicate, 0, "0\n");
    Add(kOffset, 0, "2.0\n");
    Add(kSend, 0, "");
    const CDeliveryReport report = outcome.Conclude(false);
    EXPECT_EQ(report.outcome, TakeOutcome::Delivered);
    EXPECT_EQ(report.dExpectedPosition, 96100);
}

TEST_F(Delivery, WhatTheServerHasAlreadyIsADuplicate)
{
    Add(kDuplicate, 0, "1\n");
    EXPECT_EQ(outcome.Conclude(true).outcome, TakeOutcome::Duplicate);
}

TEST_F(Delivery, AnAnswerWithoutAResultIsARefusalInTheServersWords)
{
    Add(kDuplicate, 0, "0\n");
    Add(kOffset, 0, "2.0\n");
    Add(kSend, 0, std::nullopt, "the disk is full");
    const CDeliveryReport report = outcome.Conclude(true);
    EXPECT_EQ(report.outcome, TakeOutcome::Refused);
    EXPECT_EQ(report.strWords, "the disk is full");
}

TEST_F(Delivery, AServerThatIsNotThereIsUnreachable)
{
    Add(kDuplicate, kNobodyThere, std::nullopt);
    Add(kOffset, kNobodyThere, std::nullopt);
    Add(kSend, kNobodyThere, std::nullopt);
    EXPECT_EQ(outcome.Conclude(true).outcome, TakeOutcome::Unreachable);
}

TEST_F(Delivery, AServerThatDoesNotAnswerTheSendIsUnreachable)
{
    Add(kDuplicate, 0, "0\n");
    Add(kOffset, 0, "2.0\n");
    Add(kSend, kNoAnswer, std::nullopt);
    EXPECT_EQ(outcome.Conclude(true).outcome, TakeOutcome::Unreachable);
}

TEST_F(Delivery, WithoutATrackNothingIsSentAndTheTakeIsUnreachable)
{
    EXPECT_EQ(outcome.Conclude(true).outcome, TakeOutcome::Unreachable);
}

TEST_F(Delivery, AnOffsetThatCouldNotBeHadIsTold)
{
    const std::tuple<OSErr, std::optional<std::string>, const char*> failures[] = {
        {kNoAnswer, std::nullopt, ""}, {0, "", ""},        {0, "", "no"},
        {0, std::nullopt, "no"},       {0, "2.0\n", "no"}, {0, "x", ""}};
    for (const auto& [nStatus, result, szError] : failures)
    {
        outcome.Begin(record);
        Add(kDuplicate, 0, "0\n");
        Add(kOffset, nStatus, result, szError);
        Add(kSend, 0, "");
        const CDeliveryReport report = outcome.Conclude(false);
        EXPECT_EQ(report.outcome, TakeOutcome::PlacedWithoutOffset);
        EXPECT_EQ(report.dExpectedPosition, 0);
    }
}

TEST_F(Delivery, TheOffsetThatWasToldLastSaysWhereAMisplacedTakeShouldStand)
{
    Add(kOffset, 0, "2.0\n");
    Add(kSend, 0, "");
    outcome.Begin(record);
    Add(kOffset, kNoAnswer, std::nullopt);
    Add(kSend, 0, "");
    const CDeliveryReport report = outcome.Conclude(false);
    EXPECT_EQ(report.outcome, TakeOutcome::PlacedWithoutOffset);
    EXPECT_EQ(report.dExpectedPosition, 96100);
}

TEST_F(Delivery, OfATakeThatNobodySawBeingSentTheAcknowledgeIsBelieved)
{
    EXPECT_EQ(outcome.Conclude(false).outcome, TakeOutcome::Delivered);
    EXPECT_EQ(outcome.Conclude(true).outcome, TakeOutcome::Unreachable);
}

TEST_F(Delivery, OneDeliveryLeavesNothingToTheNext)
{
    Add(kDuplicate, 0, "1\n");
    outcome.Begin(record);
    EXPECT_EQ(outcome.Conclude(true).outcome, TakeOutcome::Unreachable);
}

TEST_F(Delivery, OtherCommandsChangeNothing)
{
    Add("nTracks = GetTrackCount()\nprint(nTracks+1)\n", kNobodyThere, std::nullopt);
    Add(kOffset, 0, "0\n");
    Add(kSend, 0, "");
    Add("nTracks = GetTrackCount()\nprint(nTracks+1)\n", kNobodyThere, std::nullopt);
    EXPECT_EQ(outcome.Conclude(false).outcome, TakeOutcome::Delivered);
}
