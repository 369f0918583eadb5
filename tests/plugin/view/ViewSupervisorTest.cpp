// The plug-in's end of the connection, with a core that captures and a program in the view's place.
#include "plugin/view/ViewSupervisor.h"

#include "tests/signal/CoreUnderTest.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Tarvane;
using namespace TarvaneTest;
using namespace testing;

namespace
{

class Supervisor : public Test
{
protected:
    Supervisor()
    {
        ::setenv("FAKE_VIEW_LOG", Log().c_str(), 1);
        ::setenv("LD_LIBRARY_PATH", "/of/the/host", 1);
    }
    ~Supervisor() override
    {
        supervisor.reset();
        ::unsetenv("FAKE_VIEW");
        ::unsetenv("FAKE_VIEW_LOG");
        ::unsetenv("LD_LIBRARY_PATH");
    }

    void Supervise(const char* szWhat, const char* szProgram = FAKE_VIEW_PROGRAM)
    {
        ::setenv("FAKE_VIEW", szWhat, 1);
        supervisor.emplace(*plugIn.core, szProgram,
                           [this](const std::string& strLine)
                           {
                               std::lock_guard lock(mutex);
                               log.push_back(strLine);
                           });
    }
    std::string Log() const { return folder / "view.log"; }
    std::vector<std::string> Lines() const
    {
        std::vector<std::string> lines;
        std::ifstream file(Log());
        for (std::string strLine; std::getline(file, strLine);)
            lines.push_back(strLine);
        return lines;
    }
    size_t Count(const std::string& strLine) const
    {
        const auto lines = Lines();
        return static_cast<size_t>(std::count(lines.begin(), lines.end(), strLine));
    }
    // For what is sure to come.
    template <typename Condition> bool Comes(Condition&& fCondition) const
    {
        for (int n = 0; n < 3000; ++n)
        {
            if (fCondition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    bool LineComes(const std::string& strLine) const
    {
        return Comes([&] { return Count(strLine) > 0; });
    }
    void Capture(double dPosition)
    {
        plugIn.core->SetArmed(true);
        plugIn.Play(dPosition, 4800);
        plugIn.StopTransport(dPosition + 4800);
    }

    CTemporaryFolder folder;
    CCoreUnderTest plugIn;
    std::mutex mutex;
    std::vector<std::string> log;
    std::optional<CViewSupervisor> supervisor;
};

} // namespace

TEST_F(Supervisor, StartsNothingUntilSomebodyWantsAView)
{
    Supervise("serve");
    EXPECT_EQ(supervisor->ProcessId(), 0);
    supervisor->Want();
    EXPECT_TRUE(LineComes("start"));
}

TEST_F(Supervisor, TheProcessHasTheSocketAndNothingElseOfTheHost)
{
    const int nOfHost = ::fcntl(STDERR_FILENO, F_DUPFD, 40);
    ASSERT_GE(nOfHost, 40);
    Supervise("serve");
    supervisor->Want();
    EXPECT_TRUE(Comes([&] { return !Lines().empty(); }));
    EXPECT_THAT(Lines(), Contains("start"));
    ::close(nOfHost);
}

TEST_F(Supervisor, ArmingStartsTheView)
{
    Supervise("serve");
    plugIn.core->SetArmed(true);
    EXPECT_TRUE(LineComes("start"));
}

TEST_F(Supervisor, ATakeIsDeliveredWithoutAnyWindow)
{
    Supervise("serve");
    Capture(12345);
    EXPECT_TRUE(LineComes("take 12345"));
    EXPECT_TRUE(LineComes("acknowledged 0"));
    EXPECT_TRUE(Comes([&] { return plugIn.core->Waiting() == 0; }));
}

TEST_F(Supervisor, TakesThatWaitAreAnnouncedToAViewThatJoinsOnceEachAndInOrder)
{
    Capture(1000);
    Capture(50000);
    Capture(90000);
    plugIn.Published(3);
    Supervise("serve");
    supervisor->Want();
    ASSERT_TRUE(LineComes("take 90000"));
    std::vector<std::string> takes;
    for (const std::string& strLine : Lines())
    {
        if (strLine.starts_with("take"))
            takes.push_back(strLine);
    }
    EXPECT_THAT(takes, ElementsAre("take 1000", "take 50000", "take 90000"));
    EXPECT_EQ(Count("notified 64000"), 3U);
}

TEST_F(Supervisor, OpeningEmbedsAndClosingDetaches)
{
    Supervise("serve");
    supervisor->Open(77);
    ASSERT_TRUE(LineComes("embed 77"));
    supervisor->Close(77);
    EXPECT_TRUE(LineComes("detach 77"));
}

TEST_F(Supervisor, AWindowWithTheNumberOfOneThatIsGoneIsEmbeddedIntoAgain)
{
    Supervise("serve");
    supervisor->Open(77);
    ASSERT_TRUE(LineComes("embed 77"));
    // Its closing may be overtaken by the opening of the next.
    supervisor->Open(77);
    EXPECT_TRUE(Comes([&] { return Count("embed 77") == 2; }));
    EXPECT_EQ(Count("detach 77"), 1U);
}

TEST_F(Supervisor, ClosingAnotherWindowChangesNothing)
{
    Supervise("serve");
    supervisor->Open(77);
    ASSERT_TRUE(LineComes("embed 77"));
    supervisor->Close(78);
    supervisor->Open(79);
    ASSERT_TRUE(LineComes("embed 79"));
    EXPECT_EQ(Count("detach 77"), 1U);
    EXPECT_EQ(Count("detach 78"), 0U);
}

TEST_F(Supervisor, AViewThatIsKilledIsStartedAgainAndGetsWhatWaits)
{
    Supervise("serve");
    supervisor->Open(5);
    ASSERT_TRUE(LineComes("embed 5"));
    const int nFirst = supervisor->ProcessId();
    ::kill(nFirst, SIGKILL);
    ASSERT_TRUE(Comes([&] { return Count("embed 5") == 2; }));
    EXPECT_NE(supervisor->ProcessId(), nFirst);
    Capture(4321);
    EXPECT_TRUE(LineComes("take 4321"));
    std::lock_guard lock(mutex);
    EXPECT_THAT(log, ElementsAre("the view has ended with signal 9 and is started again"));
}

TEST_F(Supervisor, AViewThatEndsAgainAndAgainIsStartedThreeTimesMoreAndThenItIsSaidWhy)
{
    Supervise("crash");
    supervisor->Want();
    ASSERT_TRUE(Comes([&] { return !supervisor->Trouble().empty(); }));
    EXPECT_EQ(supervisor->Trouble(),
              "The view has ended again and again, at last with exit code 7.");
    EXPECT_EQ(Count("start"), 4U);
    // Whoever asks for it gets another try.
    supervisor->Want();
    EXPECT_TRUE(Comes([&] { return Count("start") == 8; }));
}

TEST_F(Supervisor, BytesThatAreNoFrameEndThatViewAndNothingElse)
{
    Supervise("garbage");
    supervisor->Want();
    ASSERT_TRUE(Comes([&] { return !supervisor->Trouble().empty(); }));
    EXPECT_EQ(Count("start"), 4U);
    Capture(100);
    EXPECT_EQ(plugIn.Published(1).size(), 1U);
}

TEST_F(Supervisor, AViewOfAnotherVersionIsNotTalkedTo)
{
    Supervise("old");
    supervisor->Want();
    EXPECT_TRUE(Comes([&] { return !supervisor->Trouble().empty(); }));
}

TEST_F(Supervisor, AViewThatSaysWhyItCannotOpenIsNotStartedAgain)
{
    Supervise("failed");
    supervisor->Want();
    ASSERT_TRUE(Comes([&] { return !supervisor->Trouble().empty(); }));
    EXPECT_EQ(supervisor->Trouble(), "no display today");
    EXPECT_EQ(Count("start"), 1U);
}

TEST_F(Supervisor, AProgramThatIsNotThereIsToldOf)
{
    Supervise("serve", "/nowhere/tarvane-link-view");
    supervisor->Want();
    ASSERT_TRUE(Comes([&] { return !supervisor->Trouble().empty(); }));
    EXPECT_THAT(supervisor->Trouble(), HasSubstr("/nowhere/tarvane-link-view"));
}

TEST_F(Supervisor, AViewThatReadsNothingHoldsNobody)
{
    Supervise("mute");
    supervisor->Open(1);
    ASSERT_TRUE(LineComes("start"));
    // More than the socket takes, however much that is.
    for (int n = 0; n < 3000; ++n)
        plugIn.core->ViewJoined();
    Capture(100);
    for (int n = 0; n < 3000; ++n)
        plugIn.core->ViewJoined();
    EXPECT_EQ(plugIn.Published(1).size(), 1U);
    const int nProcess = supervisor->ProcessId();
    supervisor.reset();
    EXPECT_EQ(::kill(nProcess, 0), -1) << "the process has ended with the plug-in";
}

TEST_F(Supervisor, TheViewEndsWithThePlugIn)
{
    Supervise("serve");
    supervisor->Open(1);
    ASSERT_TRUE(LineComes("embed 1"));
    const int nProcess = supervisor->ProcessId();
    supervisor.reset();
    EXPECT_EQ(::kill(nProcess, 0), -1);
}

TEST_F(Supervisor, ProgressIsToldWhileItRuns)
{
    Supervise("serve");
    plugIn.core->SetArmed(true);
    ASSERT_TRUE(LineComes("start"));
    plugIn.Play(0, 48000);
    EXPECT_TRUE(LineComes("notified 64010"));
    EXPECT_TRUE(LineComes("notified 64004"));
}
