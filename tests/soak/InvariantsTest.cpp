#include "soak/Invariants.h"

#include <gmock/gmock.h>

using namespace Tarvane::Soak;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

constexpr std::int64_t kOffset = 96375;
constexpr std::int64_t kFrames = 480;

// A round in which all went well: three captures of one host, one on each of two tracks and a
// duplicate of the first.
class SoakInvariants : public testing::Test
{
protected:
    SoakInvariants()
    {
        round.lives.push_back({4, false, 0, {}});
        Deliver(0, 1000, "/takes/a.wav");
        Deliver(1, 2000, "/takes/b.wav");
        Add(0, 1000, "/takes/c.wav", Outcome::Duplicate);
    }

    void Add(int nTrack, std::int64_t nPosition, const std::string& strPath, Outcome outcome)
    {
        Attempt attempt;
        attempt.nLife = 4;
        attempt.nTrack = nTrack;
        attempt.nPosition = nPosition;
        attempt.nOffset = kOffset;
        attempt.nFrames = kFrames;
        attempt.outcome = outcome;
        attempt.nElement = static_cast<int>(round.attempts.size());
        attempt.strPath = strPath;
        attempt.file = FileState::Intact;
        round.lives[0].acknowledges.push_back(
            {attempt.nElement, 1, outcome == Outcome::Delivered ? 0 : 1, 1});
        round.attempts.push_back(attempt);
    }

    void Deliver(int nTrack, std::int64_t nPosition, const std::string& strPath)
    {
        Add(nTrack, nPosition, strPath, Outcome::Delivered);
        round.answers.push_back({strPath, ""});
        round.regions.push_back({strPath, nTrack, nPosition + kOffset, 0, kFrames, true});
    }

    void AddUndelivered()
    {
        Add(2, 5000, "/takes/d.wav", Outcome::Undelivered);
        round.attempts.back().fServerAway = true;
    }
    // The one that was added last.
    void SendAgain(Outcome outcome)
    {
        const std::string strPath = round.attempts.back().strPath;
        if (outcome == Outcome::Delivered)
            Deliver(2, 5000, strPath);
        else
            Add(2, 5000, strPath, outcome);
        round.attempts.back().fServerAway = true;
        round.attempts.back().fLate = true;
    }

    // The host is killed while it captures on track 2 at sample 9000.
    void KillHost()
    {
        Attempt attempt = round.attempts[0];
        attempt.nTrack = 2;
        attempt.nPosition = 9000;
        attempt.outcome = Outcome::Unanswered;
        attempt.nElement = -1;
        attempt.strPath.clear();
        round.attempts.push_back(attempt);
        round.lives[0].fKilled = true;
    }

    void ExpectBroken(const std::string& strInvariant, const std::string& strWords)
    {
        const std::vector<Finding> findings = CheckRound(round);
        EXPECT_THAT(findings,
                    ElementsAre(testing::AllOf(Field(&Finding::strInvariant, strInvariant),
                                               Field(&Finding::strWhat, HasSubstr(strWords)))));
    }

    void ExpectHolds()
    {
        for (const Finding& finding : CheckRound(round))
            ADD_FAILURE() << finding.strInvariant << ": " << finding.strWhat;
    }

    RoundEvidence round;
};

} // namespace

TEST_F(SoakInvariants, HoldWhenAllWentWell)
{
    ExpectHolds();
}

TEST_F(SoakInvariants, ADeliveredCaptureThatIsNotInTheSessionBreaksThem)
{
    round.regions.erase(round.regions.begin() + 1);
    ExpectBroken("in-session-once", "b.wav is not in the session");
}

TEST_F(SoakInvariants, ARegionThatStandsTwiceBreaksThem)
{
    round.regions.push_back(round.regions[1]);
    ExpectBroken("in-session-once", "b.wav stands in the session 2 times");
}

TEST_F(SoakInvariants, ADeliveredCaptureThatTheServerNeverAnsweredBreaksThem)
{
    round.answers.pop_back();
    ExpectBroken("in-session-once", "never answered by the server");
}

TEST_F(SoakInvariants, AnotherTrackBreaksThem)
{
    round.regions[1].nTrack = 3;
    ExpectBroken("on-its-track", "track 1");
}

TEST_F(SoakInvariants, AnotherSampleBreaksThem)
{
    ++round.regions[1].nPosition;
    ExpectBroken("at-its-sample", "at 98376");
}

TEST_F(SoakInvariants, APlaceWithoutTheOffsetBreaksThemWhileTheServerIsThere)
{
    round.regions[1].nPosition -= kOffset;
    ExpectBroken("at-its-sample", "at 2000");
}

TEST_F(SoakInvariants, TheOffsetMayBeMissingWhenTheServerWasAway)
{
    round.regions[1].nPosition -= kOffset;
    round.attempts[1].fServerAway = true;
    ExpectHolds();
}

TEST_F(SoakInvariants, AnotherSampleBreaksThemThoughTheServerWasAway)
{
    round.regions[1].nPosition -= 1;
    round.attempts[1].fServerAway = true;
    ExpectBroken("at-its-sample", "at 98374");
}

TEST_F(SoakInvariants, AnotherLengthBreaksThem)
{
    round.regions[1].nEnd = kFrames - 1;
    ExpectBroken("with-its-length", "b.wav");
}

TEST_F(SoakInvariants, AnotherStartBreaksThem)
{
    round.regions[1].nStart = 1;
    ExpectBroken("with-its-length", "b.wav");
}

TEST_F(SoakInvariants, ASecondAcknowledgeBreaksThem)
{
    round.lives[0].acknowledges.push_back(round.lives[0].acknowledges[1]);
    ExpectBroken("acknowledged-once", "element 1 was acknowledged 2 times");
}

TEST_F(SoakInvariants, AMissingAcknowledgeBreaksThem)
{
    round.lives[0].acknowledges.erase(round.lives[0].acknowledges.begin());
    ExpectBroken("acknowledged-once", "element 0 was acknowledged 0 times");
}

TEST_F(SoakInvariants, AnAcknowledgeOfNoElementBreaksThem)
{
    round.lives[0].acknowledges.push_back({3, 1, 1, 1});
    ExpectBroken("acknowledged-once", "element 3 was acknowledged and never captured");
}

TEST_F(SoakInvariants, AnAcknowledgeOfAnotherOutcomeBreaksThem)
{
    round.lives[0].acknowledges[1].nNotDelivered = 1;
    ExpectBroken("acknowledged-once", "fNotDelivered 1");
}

TEST_F(SoakInvariants, AnAcknowledgeThatIsNotFinalBreaksThem)
{
    round.lives[0].acknowledges[1].nFinal = 0;
    ExpectBroken("acknowledged-once", "fFinal 0");
}

TEST_F(SoakInvariants, ElementsOfEarlierRoundsCountToo)
{
    round.lives[0].nElementsBefore = 4;
    ExpectBroken("acknowledged-once", "element 3 was acknowledged 0 times");
}

TEST_F(SoakInvariants, AMissingFileBreaksThem)
{
    round.attempts[2].file = FileState::Missing;
    ExpectBroken("file-kept", "c.wav has lost its file");
}

TEST_F(SoakInvariants, AFileWithOtherContentBreaksThem)
{
    round.attempts[2].file = FileState::Changed;
    ExpectBroken("file-kept", "another file than it captured");
}

TEST_F(SoakInvariants, TheFileOfAnUndeliveredCaptureIsKept)
{
    AddUndelivered();
    SendAgain(Outcome::Delivered);
    ExpectHolds();
    round.attempts[3].file = FileState::Missing;
    ExpectBroken("file-kept", "d.wav has lost its file");
}

TEST_F(SoakInvariants, WhatNeverArrivesBreaksThem)
{
    AddUndelivered();
    ExpectBroken("arrives-in-the-end", "d.wav has never arrived");
    SendAgain(Outcome::Undelivered);
    ExpectBroken("arrives-in-the-end", "d.wav has never arrived");
    SendAgain(Outcome::Delivered);
    ExpectHolds();
}

TEST_F(SoakInvariants, WhatARefusedCaptureLeftOpenIsCapturedAgain)
{
    AddUndelivered();
    round.answers.push_back({"/takes/d.wav", "nothing was changed, for the session could not be "
                                             "saved: full"});
    ExpectHolds();
}

TEST_F(SoakInvariants, ARegionWithoutItsFileBreaksThem)
{
    round.regions[0].fFileThere = false;
    ExpectBroken("file-kept", "region on track 0");
}

TEST_F(SoakInvariants, UndeliveredWhileTheServerWasThereBreaksThem)
{
    AddUndelivered();
    SendAgain(Outcome::Delivered);
    round.attempts[3].fServerAway = false;
    ExpectBroken("undelivered-for-cause", "d.wav");
}

TEST_F(SoakInvariants, WhatIsSentAgainMayStandThereWhenItsReplyWasLost)
{
    AddUndelivered();
    SendAgain(Outcome::Duplicate);
    round.regions.push_back({"/takes/d.wav", 2, 5000 + kOffset, 0, kFrames, true});
    ExpectHolds();
    round.regions.push_back(round.regions.back());
    ExpectBroken("in-session-once", "d.wav stands in the session 2 times");
}

TEST_F(SoakInvariants, WhatIsSentAgainStandsOnItsTrack)
{
    AddUndelivered();
    SendAgain(Outcome::Delivered);
    round.regions.back().nTrack = 1;
    ExpectBroken("on-its-track", "d.wav");
}

TEST_F(SoakInvariants, ADuplicateOfNothingBreaksThem)
{
    round.attempts[2].nPosition = 7000;
    ExpectBroken("duplicate-is-there", "nothing at its place");
}

TEST_F(SoakInvariants, AViewThatIsKilledMayHaveAddedWhatTheNextOneFindsToBeADuplicate)
{
    Deliver(2, 5000, "/takes/d.wav");
    round.attempts.back().outcome = Outcome::Duplicate;
    round.lives[0].acknowledges.back().nNotDelivered = 1;
    round.attempts.back().fViewKilled = true;
    ExpectHolds();
    round.attempts.back().fViewKilled = false;
    ExpectBroken("duplicate-is-there", "was added all the same");
}

TEST_F(SoakInvariants, AViewThatIsKilledMayNotAddItTwice)
{
    Deliver(2, 5000, "/takes/d.wav");
    round.attempts.back().fViewKilled = true;
    round.regions.push_back(round.regions.back());
    ExpectBroken("in-session-once", "d.wav stands in the session 2 times");
}

TEST_F(SoakInvariants, ADuplicateThatWasAddedBreaksThem)
{
    round.regions.push_back({"/takes/c.wav", 0, 1000 + kOffset, 0, kFrames, true});
    const std::vector<Finding> findings = CheckRound(round);
    EXPECT_THAT(findings, Contains(Field(&Finding::strInvariant, "duplicate-is-there")));
    EXPECT_THAT(findings, Contains(Field(&Finding::strInvariant, "not-doubled")));
}

TEST_F(SoakInvariants, TheSameCaptureDeliveredTwiceBreaksThem)
{
    Deliver(1, 2000, "/takes/d.wav");
    ExpectBroken("not-doubled", "b.wav");
    // The question for duplicates may have failed.
    round.attempts.back().fServerAway = true;
    ExpectHolds();
}

TEST_F(SoakInvariants, ARefusalForAFullDiskChangesNothing)
{
    round.answers[1].strError = "nothing was changed, for the session could not be saved: no room";
    round.attempts[1].outcome = Outcome::Undelivered;
    round.lives[0].acknowledges[1].nNotDelivered = 1;
    ExpectBroken("in-session-once", "was refused and is in the session");
    round.regions.erase(round.regions.begin() + 1);
    ExpectHolds();
}

TEST_F(SoakInvariants, ARefusalThatCountsAsDeliveredBreaksThem)
{
    round.answers[1].strError = "nothing was changed, for the session could not be saved: no room";
    ExpectBroken("in-session-once", "was refused by the server");
}

TEST_F(SoakInvariants, ARefusalForAnythingElseBreaksThem)
{
    round.answers[1].strError = "there is no track 1";
    round.attempts[1].outcome = Outcome::Undelivered;
    round.lives[0].acknowledges[1].nNotDelivered = 1;
    round.regions.erase(round.regions.begin() + 1);
    ExpectBroken("refused-for-cause", "there is no track 1");
}

TEST_F(SoakInvariants, ARegionOfNobodyBreaksThem)
{
    round.regions.push_back({"/takes/x.wav", 2, 9000 + kOffset, 0, kFrames, true});
    ExpectBroken("captured-by-somebody", "x.wav was captured by nobody");
}

TEST_F(SoakInvariants, AKilledHostsCaptureMayStandInTheSessionOnce)
{
    KillHost();
    ExpectHolds();
    round.regions.push_back({"/takes/x.wav", 2, 9000 + kOffset, 0, kFrames, true});
    ExpectHolds();
    round.regions.push_back({"/takes/y.wav", 2, 9000 + kOffset, 0, kFrames, true});
    ExpectBroken("captured-by-somebody", "y.wav was captured by nobody");
}

TEST_F(SoakInvariants, AKilledHostsCaptureInAnotherPlaceBreaksThem)
{
    KillHost();
    round.regions.push_back({"/takes/x.wav", 2, 9001 + kOffset, 0, kFrames, true});
    ExpectBroken("captured-by-somebody", "x.wav was captured by nobody");
}

TEST_F(SoakInvariants, AKilledHostMayHaveAcknowledgedItsLastElementOnce)
{
    KillHost();
    round.lives[0].acknowledges.push_back({3, 1, 0, 1});
    ExpectHolds();
    round.lives[0].acknowledges.push_back({3, 1, 0, 1});
    ExpectBroken("acknowledged-once", "element 3 was acknowledged again");
}

TEST_F(SoakInvariants, AFileOfNobodyBreaksThem)
{
    round.strayFiles = {"/takes/.capture-1"};
    ExpectBroken("captured-by-somebody", "/takes/.capture-1");
}

TEST_F(SoakInvariants, AKilledHostMayLeaveAnUnfinishedFile)
{
    KillHost();
    round.strayFiles = {"/takes/.capture-1", "/takes/x.wav"};
    ExpectHolds();
    round.strayFiles.push_back("/takes/y.wav");
    ExpectBroken("captured-by-somebody", "3 files");
}

TEST_F(SoakInvariants, AFailedCaptureHasNoElementAndNoFile)
{
    Add(2, 5000, "", Outcome::NotPublished);
    round.attempts.back().nElement = -1;
    round.attempts.back().file = FileState::Missing;
    round.lives[0].acknowledges.pop_back();
    ExpectHolds();
}

TEST(SoakGrowth, HoldsWithinTheAllowance)
{
    EXPECT_THAT(CheckGrowth("host 0", {20000, 16, 2}, {24096, 16, 2}, 4096), IsEmpty());
    EXPECT_THAT(CheckGrowth("host 0", {1, 1, 1, 61000}, {1, 1, 1, 61300}, 0), IsEmpty());
    EXPECT_THAT(CheckGrowth("host 0", {20000, 16, 2}, {1000, 3, 1}, 0), IsEmpty());
    EXPECT_THAT(CheckGrowth("server", {1, 15, 1}, {1, 16, 1}, 0, 1), IsEmpty());
}

TEST(SoakGrowth, EachMeasureBreaksIt)
{
    EXPECT_THAT(CheckGrowth("host 0", {20000, 16, 2}, {24097, 16, 2}, 4096),
                ElementsAre(Field(&Finding::strWhat, "host 0 went from 20000 to 24097 KiB")));
    EXPECT_THAT(CheckGrowth("host 0", {20000, 16, 2}, {20000, 17, 2}, 4096),
                ElementsAre(Field(&Finding::strWhat, "host 0 went from 16 to 17 descriptors")));
    EXPECT_THAT(CheckGrowth("server", {1, 15, 1}, {1, 17, 1}, 0, 1),
                ElementsAre(Field(&Finding::strWhat, "server went from 15 to 17 descriptors")));
    EXPECT_THAT(CheckGrowth("host 0", {20000, 16, 2}, {20000, 16, 3}, 4096),
                ElementsAre(Field(&Finding::strWhat, "host 0 went from 2 to 3 threads")));
    EXPECT_THAT(CheckGrowth("host 0", {1, 1, 1, 61000}, {1, 1, 1, 61301}, 0),
                ElementsAre(Field(&Finding::strWhat, "host 0 went from 61000 to 61301 objects")));
}
