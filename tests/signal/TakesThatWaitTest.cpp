// Takes between their last block and the day on which they are settled: across views, servers,
// restarts, crashes and full disks.
#include "signal/CaptureCore.h"

#include "signal/TakeJournal.h"
#include "tests/signal/CoreUnderTest.h"
#include "tests/signal/FileSizeLimit.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <future>
#include <optional>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

namespace
{

constexpr const char* kUuid = "01234567-89ab-4cde-8f01-23456789abcd";

// One take, from the position on.
void Take(CCoreUnderTest& host, double dPosition, std::uint32_t nFrames = 1000)
{
    const std::size_t nBefore = host.Published(0).size();
    host.core->SetArmed(true);
    host.Play(dPosition, nFrames);
    host.core->SetArmed(false);
    host.Play(dPosition + nFrames, 64);
    host.Published(nBefore + 1);
}

// The view's part: what is told of the element to deliver, and its acknowledge.
void Deliver(CCoreUnderTest& host, TakeOutcome outcome, const std::string& strWords = {})
{
    const auto nElement = host.Get<std::int32_t>(TNProperty_NextElement);
    host.core->TellOutcome(nElement, outcome, strWords, 0);
    EXPECT_EQ(host.Acknowledge(nElement, outcome != TakeOutcome::Delivered), kPropertyDone);
}

std::vector<double> PositionsOf(const std::vector<CTake>& takes)
{
    std::vector<double> positions;
    for (const CTake& take : takes)
    {
        positions.push_back(take.dPosition);
    }
    return positions;
}

CCaptureSettings SettingsIn(const fs::path& folder)
{
    CCaptureSettings settings;
    settings.captureFolder = folder;
    settings.strUuid = kUuid;
    return settings;
}

// What the journal says is lost behind the take at this position.
std::uint64_t LostBehind(const CCoreUnderTest& host, double dPosition)
{
    std::uint64_t nLost = 0;
    for (const CJournalTake& take : CTakeJournal(host.captures.Path(), host.core->Uuid()).Losses())
    {
        nLost += take.dPosition == dPosition ? take.nLostFrames : 0;
    }
    return nLost;
}

// Runs the work in a process of its own until it says so, and kills it there.
void KillWhenDone(const std::function<void()>& work)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t nChild = ::fork();
    if (nChild == 0)
    {
        work();
        (void)!::write(ends[1], "x", 1);
        while (true)
        {
            ::pause();
        }
    }
    char c = 0;
    ::close(ends[1]);
    EXPECT_EQ(::read(ends[0], &c, 1), 1);
    ::close(ends[0]);
    ::kill(nChild, SIGKILL);
    ::waitpid(nChild, nullptr, 0);
}

} // namespace

TEST(TakesThatWait, AreAnnouncedOnceEachToAViewThatJoins)
{
    CCoreUnderTest host;
    for (const double dPosition : {100.0, 5000.0, 9000.0})
    {
        Take(host, dPosition);
    }
    const std::size_t nBefore = host.Count(TNProperty_Elements);
    host.core->ViewJoined();
    EXPECT_EQ(host.Count(TNProperty_Elements), nBefore + 3);
    std::vector<double> order;
    host.onNotification = [&](std::uint32_t nId)
    {
        if (nId == TNProperty_Elements)
        {
            const auto nElement = host.Get<std::int32_t>(TNProperty_NextElement);
            order.push_back(host.Get<TNCaptureElement>(TNProperty_ElementInfo,
                                                       static_cast<std::uint32_t>(nElement))
                                .tDub.dPosition);
            host.Acknowledge(nElement);
        }
    };
    host.core->ViewJoined();
    EXPECT_THAT(order, ElementsAre(100, 5000, 9000));
    const std::size_t nAll = host.Count(TNProperty_Elements);
    host.core->ViewJoined();
    EXPECT_EQ(host.Count(TNProperty_Elements), nAll) << "nothing waits any more";
}

TEST(TakesThatWait, WhatWasUnreachableIsOfferedOnceForEachServerThatAppears)
{
    CCoreUnderTest host;
    Take(host, 100);
    Take(host, 5000);
    Deliver(host, TakeOutcome::Unreachable);
    Deliver(host, TakeOutcome::Unreachable);
    EXPECT_EQ(host.Get<std::int32_t>(TNProperty_NextElement), -1);
    EXPECT_EQ(host.core->Unreachable(), 2U);

    const std::size_t nBefore = host.Ids().size();
    host.core->ServerAppeared();
    const auto ids = host.Ids();
    EXPECT_THAT(std::vector(ids.begin() + static_cast<long>(nBefore), ids.end()),
                ElementsAre(TNProperty_ArmCapture, TNProperty_Elements, TNProperty_Elements))
        << "the tracks are read before a take is sent";
    EXPECT_EQ(host.Get<std::int32_t>(TNProperty_NextElement), 2) << "an index is used once";
    EXPECT_EQ(host.Acknowledge(0), kPropertyErr_InvalidPropertyValue);
    Deliver(host, TakeOutcome::Delivered);
    Deliver(host, TakeOutcome::Unreachable);
    host.core->ServerAppeared();
    EXPECT_EQ(host.Get<TNCaptureElement>(TNProperty_ElementInfo, 4).tDub.dPosition, 5000);
    Deliver(host, TakeOutcome::Delivered);
    host.core->ServerAppeared();
    EXPECT_EQ(host.core->Waiting() + host.core->Unreachable(), 0U);
}

TEST(TakesThatWait, AServerThatAppearsWhileATakeFailsToReachOneIsNotMissed)
{
    CCoreUnderTest host;
    Take(host, 100);
    host.Get<TNCaptureElement>(TNProperty_ElementInfo, 0);
    host.core->ServerAppeared();
    const std::size_t nBefore = host.Count(TNProperty_Elements);
    Deliver(host, TakeOutcome::Unreachable);
    EXPECT_EQ(host.Count(TNProperty_Elements), nBefore + 1);
    EXPECT_EQ(host.Get<TNCaptureElement>(TNProperty_ElementInfo, 1).tDub.dPosition, 100);
    Deliver(host, TakeOutcome::Unreachable);
    EXPECT_EQ(host.core->Waiting(), 0U) << "once for each server";
    EXPECT_EQ(host.core->Unreachable(), 1U);
}

TEST(TakesThatWait, DuplicatesRefusalsAndPlacedOnesAreNotOfferedAgain)
{
    CCoreUnderTest host;
    for (const auto outcome :
         {TakeOutcome::Duplicate, TakeOutcome::Refused, TakeOutcome::PlacedWithoutOffset})
    {
        Take(host, 100);
        Deliver(host, outcome, "why");
    }
    host.core->ServerAppeared();
    EXPECT_EQ(host.core->Waiting(), 0U);
    const CTake last = host.Seen().back();
    EXPECT_EQ(last.outcome, TakeOutcome::PlacedWithoutOffset);
    EXPECT_EQ(last.strWords, "why");
}

TEST(TakesThatWait, ATakeThatIsOfferedAgainHasNothingOfTheFormerAnswer)
{
    CCoreUnderTest host;
    Take(host, 100);
    host.core->TellOutcome(0, TakeOutcome::Unreachable, "away", 96'000);
    host.Acknowledge(0, 1);
    EXPECT_EQ(host.Seen().back().strWords, "away");
    host.core->ServerAppeared();
    // Nobody has words for it this time.
    host.Acknowledge(1, 0);
    const CTake take = host.Seen().back();
    EXPECT_EQ(take.outcome, TakeOutcome::Delivered);
    EXPECT_EQ(take.strWords, "");
    EXPECT_EQ(take.dExpectedPosition, 0);
}

TEST(TakesThatWait, AnAcknowledgeAloneTellsDeliveredFromUnreachable)
{
    CCoreUnderTest host;
    Take(host, 100);
    Take(host, 5000);
    host.Acknowledge(0, 0);
    host.Acknowledge(1, 1);
    EXPECT_EQ(host.core->Unreachable(), 1U);
}

TEST(TakesThatWait, WordsForAnElementThatIsNotItsTurnChangeNothing)
{
    CCoreUnderTest host;
    Take(host, 100);
    Take(host, 5000);
    host.core->TellOutcome(1, TakeOutcome::Refused, "no", 0);
    host.core->TellOutcome(7, TakeOutcome::Refused, "no", 0);
    host.Acknowledge(0, 0);
    EXPECT_EQ(host.Seen().back().outcome, TakeOutcome::Delivered);
}

TEST(TakesThatWait, AreFoundByTheNextInstanceOfTheirUuid)
{
    CTemporaryFolder folder;
    {
        CCoreUnderTest host(2, kUuid, folder.Path());
        for (const double dPosition : {100.0, 5000.0, 9000.0, 20000.0, 30000.0})
        {
            Take(host, dPosition);
        }
        Deliver(host, TakeOutcome::Delivered);
        Deliver(host, TakeOutcome::Unreachable);
        Deliver(host, TakeOutcome::Refused, "no");
        Deliver(host, TakeOutcome::Duplicate);
    }
    CCoreUnderTest next(2, kUuid, folder.Path());
    const auto takes = next.Published(2);
    EXPECT_THAT(PositionsOf(takes), ElementsAre(5000, 30000));
    EXPECT_TRUE(takes[0].fRecovered);
    EXPECT_EQ(SamplesThatAreRight(takes[1].file, 30000), 2000U);
    EXPECT_EQ(next.Count(TNProperty_Elements), 2U);
    Deliver(next, TakeOutcome::Delivered);
    Deliver(next, TakeOutcome::Delivered);
    next.Close();
    EXPECT_THAT(folder.Files(), testing::Contains(HasSubstr(".journal"))) << "the refused one";
    CCoreUnderTest last(2, kUuid, folder.Path());
    last.core->WaitUntilWritten();
    last.Close();
    EXPECT_THAT(last.Seen(), IsEmpty());
}

TEST(TakesThatWait, AreFoundByAnInstanceThatIsGivenTheirUuidLater)
{
    CTemporaryFolder folder;
    {
        CCoreUnderTest host(2, kUuid, folder.Path());
        Take(host, 100);
    }
    CCoreUnderTest next(2, {}, folder.Path());
    Take(next, 7000);
    const std::string strOwn = next.core->Uuid();
    next.core->Restore(kUuid, 3);
    EXPECT_EQ(next.core->Uuid(), kUuid);
    EXPECT_EQ(next.core->Track(), 3);
    EXPECT_FALSE(next.core->IsArmed());
    EXPECT_THAT(PositionsOf(next.Published(2)), ElementsAre(7000, 100));
    // What waited here already went with it.
    next.core->Restore(kUuid, 3);
    next.Close();
    CCoreUnderTest last(2, kUuid, folder.Path());
    EXPECT_THAT(PositionsOf(last.Published(2)), ElementsAre(100, 7000));
    EXPECT_THAT(folder.Files(), Not(testing::Contains(HasSubstr(strOwn))));
}

TEST(TakesThatWait, ACopyOfAnInstanceGetsAUuidOfItsOwn)
{
    CTemporaryFolder folder;
    CCoreUnderTest host(2, kUuid, folder.Path());
    Take(host, 100);
    CCoreUnderTest copy(2, kUuid, folder.Path());
    Take(copy, 5000);
    EXPECT_EQ(host.core->Uuid(), kUuid);
    EXPECT_NE(copy.core->Uuid(), kUuid);
    EXPECT_THAT(PositionsOf(copy.Published(1)), ElementsAre(5000));
}

namespace
{

// Two that were given one state before there was a take.
class Copies
{
public:
    Copies() : host(SettingsIn(m_folder)), copy(SettingsIn(m_folder)) {}

    static void Begin(CCaptureCore& core)
    {
        const std::vector<float> samples(512, 0.25F);
        const float* const channels[] = {samples.data(), samples.data()};
        core.SetArmed(true);
        core.Process({true, false, 1, 100}, channels, 512);
        core.EndTake();
    }

    void ExpectAJournalEach()
    {
        EXPECT_NE(copy.Uuid(), host.Uuid());
        EXPECT_TRUE(host.Uuid() == kUuid || copy.Uuid() == kUuid);
        for (const CCaptureCore* pCore : {&host, &copy})
        {
            EXPECT_EQ(CTakeJournal(m_folder.Path(), pCore->Uuid()).Open().size(), 1U);
        }
    }

private:
    static CCaptureSettings SettingsIn(const CTemporaryFolder& folder)
    {
        CCaptureSettings settings;
        settings.captureFolder = folder.Path();
        settings.strUuid = kUuid;
        return settings;
    }

    CTemporaryFolder m_folder;

public:
    CCaptureCore host, copy;
};

} // namespace

TEST(TakesThatWait, CopiesThatBeginOneAfterTheOtherHaveAJournalEach)
{
    Copies copies;
    for (CCaptureCore* pCore : {&copies.host, &copies.copy})
    {
        Copies::Begin(*pCore);
        pCore->WaitUntilWritten();
    }
    copies.ExpectAJournalEach();
}

// The writer of each looks for the journal in a thread of its own.
TEST(TakesThatWait, CopiesThatBeginTogetherHaveAJournalEach)
{
    for (int nTry = 0; nTry < 30; ++nTry)
    {
        Copies copies;
        Copies::Begin(copies.host);
        Copies::Begin(copies.copy);
        copies.host.WaitUntilWritten();
        copies.copy.WaitUntilWritten();
        copies.ExpectAJournalEach();
    }
}

TEST(TakesThatWait, AKillLosesNoTakeAndOfTheOneUnderWayNoWholeBlock)
{
    CTemporaryFolder folder;
    KillWhenDone(
        [&]
        {
            auto* pHost = new CCoreUnderTest(2, kUuid, folder.Path());
            Take(*pHost, 100);
            pHost->core->SetArmed(true);
            pHost->Play(50'000, 12'345);
            pHost->core->WaitUntilWritten();
        });
    CCoreUnderTest next(2, kUuid, folder.Path());
    const auto takes = next.Published(2);
    EXPECT_THAT(PositionsOf(takes), ElementsAre(100, 50'000));
    EXPECT_EQ(takes[1].nFrames, 12'345U);
    EXPECT_EQ(SamplesThatAreRight(takes[1].file, 50'000), 2U * 12'345);
    EXPECT_EQ(takes[1].file, folder / "take-002.wav");
    EXPECT_THAT(next.LogLines(), testing::Contains(HasSubstr("which was not finished")));
    EXPECT_THAT(folder.Files(), Not(testing::Contains(HasSubstr(".capture"))));
}

class LeftoverForm : public testing::TestWithParam<int>
{
};

TEST_P(LeftoverForm, IsMended)
{
    CTemporaryFolder folder;
    constexpr std::uint32_t kFrames = 48'000;
    KillWhenDone(
        [&]
        {
            CCaptureSettings settings = SettingsIn(folder.Path());
            settings.format.nFileFormat = GetParam();
            auto* pHost = new CCoreUnderTest(2);
            pHost->Close();
            pHost->Open(settings);
            pHost->core->SetArmed(true);
            pHost->Play(50'000, kFrames);
            pHost->core->WaitUntilWritten();
        });
    CCoreUnderTest next(2, kUuid, folder.Path());
    const CTake take = next.Published(1)[0];
    SF_INFO info{};
    SNDFILE* pFile = sf_open(take.file.c_str(), SFM_READ, &info);
    ASSERT_NE(pFile, nullptr);
    sf_close(pFile);
    EXPECT_EQ(static_cast<std::uint64_t>(info.frames), take.nFrames);
    EXPECT_EQ(SamplesThatAreRight(take.file, 50'000), take.nFrames * 2);
    // A block of the compressed one is as long as its encoder has it.
    EXPECT_GE(take.nFrames + 8192, kFrames);
}

INSTANTIATE_TEST_SUITE_P(All, LeftoverForm,
                         testing::Values(0, TakeFormatFloat(), SF_FORMAT_WAV | SF_FORMAT_PCM_24,
                                         SF_FORMAT_AIFF | SF_FORMAT_PCM_24,
                                         SF_FORMAT_W64 | SF_FORMAT_FLOAT,
                                         SF_FORMAT_FLAC | SF_FORMAT_PCM_24));

TEST(TakesThatWait, ClosingFinishesTheTakeAndTellsNobody)
{
    CCoreUnderTest host(2, kUuid);
    host.core->SetArmed(true);
    host.Play(700, 5000);
    host.core->WaitUntilWritten();
    const auto before = host.Ids();
    host.Close();
    EXPECT_EQ(host.Ids(), before);
    const CTake kept = host.Seen().back();
    EXPECT_EQ(kept.file, host.captures / "take-001.wav");
    EXPECT_EQ(SamplesThatAreRight(kept.file, 700), 10'000U);
    CCoreUnderTest next(2, kUuid, host.captures.Path());
    EXPECT_THAT(PositionsOf(next.Published(1)), ElementsAre(700));
}

TEST(TakesThatWait, AFullDiskEndsTheTakeAtItsLastWholeFrameAndCountsTheRest)
{
    CCoreUnderTest host;
    {
        const CFileSizeLimit full(50'003);
        host.core->SetArmed(true);
        // In one block: the next one may find it disarmed.
        host.Play(300, 20'000, 20'000);
        host.core->WaitUntilWritten();
    }
    const CTake take = host.Published(1)[0];
    EXPECT_GT(take.nFrames, 7000U);
    EXPECT_LT(take.nFrames, 9000U);
    EXPECT_EQ(SamplesThatAreRight(take.file, 300), take.nFrames * 2);
    EXPECT_THAT(take.strFailure, HasSubstr("make room there"));
    EXPECT_EQ(take.nFrames + host.core->LostFrames(), 20'000U);
    EXPECT_FALSE(host.core->IsArmed()) << "the toggle shows it";
    EXPECT_THAT(host.core->StatusText(), HasSubstr("make room there"));
    Take(host, 90'000);
    EXPECT_EQ(SamplesThatAreRight(host.Published(2)[1].file, 90'000), 2000U);
    EXPECT_EQ(LostBehind(host, 300), host.core->LostFrames());
}

// Else another start would send it again, to whatever session is open by then.
TEST(TakesThatWait, AnOutcomeThatAFullDiskRefusesIsInTheJournalOnceThereIsRoom)
{
    CCoreUnderTest host(2, kUuid);
    Take(host, 700);
    Take(host, 90'000);
    host.Published(2);
    std::optional<CFileSizeLimit> full(100);
    host.Acknowledge(0);
    const auto fnComes = [](const auto& fnThere)
    {
        for (int n = 0; n < 6000 && !fnThere(); ++n)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return fnThere();
    };
    const bool fRefused = fnComes([&] { return !host.LogLines().empty(); });
    const auto fnOpen = [&] { return CTakeJournal(host.captures.Path(), kUuid).Open().size(); };
    const std::size_t nOpen = fnOpen();
    full.reset();
    ASSERT_TRUE(fRefused);
    EXPECT_THAT(host.LogLines()[0], HasSubstr("cannot write the journal"));
    EXPECT_EQ(nOpen, 2U);
    EXPECT_TRUE(fnComes([&] { return fnOpen() == 1; }));
}

TEST(TakesThatWait, ADiskThatIsTooSlowEndsTheTakeAndTheNextBeginsAtItsOwnPlace)
{
    CCoreUnderTest host;
    std::promise<void> stalled, release;
    std::atomic<bool> fStall = true;
    host.onNotification = [&](std::uint32_t nId)
    {
        if (nId == kTNProperty_CurrentCaptureLength && fStall.exchange(false))
        {
            stalled.set_value();
            release.get_future().wait();
        }
    };
    constexpr std::uint32_t kFrames = 600'000; // beyond the ring
    host.core->SetArmed(true);
    host.Play(1000, 1024);
    stalled.get_future().wait();
    host.Play(2024, kFrames);
    const std::uint64_t nLost = host.core->LostFrames();
    EXPECT_GT(nLost, 0U);
    release.set_value();
    host.core->WaitUntilWritten();
    host.Play(2024 + kFrames, 5000);
    host.StopTransport();
    const auto takes = host.Published(2);
    ASSERT_THAT(takes, SizeIs(2));
    EXPECT_EQ(takes[0].dPosition, 1000);
    EXPECT_EQ(takes[1].dPosition, 2024 + kFrames);
    EXPECT_EQ(takes[0].nFrames + nLost, 1024 + kFrames);
    for (const CTake& take : takes)
    {
        EXPECT_EQ(SamplesThatAreRight(take.file, take.dPosition), take.nFrames * 2);
    }
    EXPECT_THAT(host.LogLines(), testing::Contains(HasSubstr("too slow")));
    EXPECT_EQ(LostBehind(host, 1000), nLost);
}

TEST(TakesThatWait, AFolderThatIsMissingFailsTheTakeDisarmsAndSaysWhy)
{
    CCoreUnderTest host(2, {}, "/nowhere/at/all");
    host.core->SetArmed(true);
    // In one block: the next one may find it disarmed.
    host.Play(0, 2000, 2000);
    host.core->WaitUntilWritten();
    ASSERT_THAT(host.Seen(), SizeIs(1));
    EXPECT_EQ(host.Seen()[0].state, TakeState::Failed);
    EXPECT_THAT(host.Seen()[0].strFailure, HasSubstr("there is no capture folder"));
    EXPECT_FALSE(host.core->IsArmed());
    EXPECT_EQ(host.core->LostFrames(), 2000U);
}
