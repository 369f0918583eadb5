#include "apps/support/process/ChildProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <system_error>
#include <unistd.h>

using namespace std::chrono_literals;
using Tarvane::CChildProcess;

namespace
{

// Long enough for any machine; no test waits for it when all is well.
constexpr auto kLong = 60s;

std::vector<std::string> Shell(const std::string& strScript)
{
    return {"sh", "-c", strScript};
}

bool Exists(pid_t nPid)
{
    return ::kill(nPid, 0) == 0 || errno != ESRCH;
}

// T in the third field is a stopped process.
char StateOf(pid_t nPid)
{
    std::ifstream file("/proc/" + std::to_string(nPid) + "/stat");
    std::string strNumber, strName;
    char nState = '?';
    file >> strNumber >> strName >> nState;
    return nState;
}

bool BecomesState(pid_t nPid, char nState)
{
    for (int nTry = 0; nTry < 6000 && StateOf(nPid) != nState; ++nTry)
    {
        ::usleep(10000);
    }
    return StateOf(nPid) == nState;
}

} // namespace

TEST(ChildProcess, KeepsAllThatItWritesOnBothStreams)
{
    CChildProcess child(Shell("printf 'out\\nmore'; printf wrong >&2; exit 3"));
    EXPECT_EQ(child.WaitForEnd(kLong), 3);
    EXPECT_EQ(child.Output(), "out\nmore");
    EXPECT_EQ(child.ErrorOutput(), "wrong");
}

TEST(ChildProcess, ATalkativeChildIsNotHeldUp)
{
    CChildProcess child(Shell("head -c 1000000 /dev/zero; head -c 1000000 /dev/zero >&2"));
    EXPECT_EQ(child.WaitForEnd(kLong), 0);
    EXPECT_EQ(child.Output().size(), 1000000U);
    EXPECT_EQ(child.ErrorOutput().size(), 1000000U);
}

TEST(ChildProcess, WaitsForTheLineThatSaysReady)
{
    CChildProcess child(Shell("echo starting; echo I am ready; echo later; cat"));
    EXPECT_EQ(child.WaitForLine("ready", kLong), "I am ready");
    EXPECT_EQ(child.WaitForLine("later", kLong), "later");
}

TEST(ChildProcess, ALineIsHandedOutOnce)
{
    CChildProcess child(Shell("echo a1; echo a2; echo end"));
    EXPECT_EQ(child.WaitForLine("a", kLong), "a1");
    EXPECT_EQ(child.WaitForLine("a", kLong), "a2");
    EXPECT_EQ(child.WaitForLine("a", kLong), std::nullopt);
    EXPECT_EQ(child.WaitForLine("end", kLong), "end");
}

TEST(ChildProcess, AnUnfinishedLineIsNoLine)
{
    CChildProcess child(Shell("printf ready"));
    EXPECT_EQ(child.WaitForLine("ready", kLong), std::nullopt);
}

TEST(ChildProcess, WaitingForALineEndsWithTheTime)
{
    CChildProcess child(Shell("echo begun; cat"));
    EXPECT_EQ(child.WaitForLine("never", 50ms), std::nullopt);
    EXPECT_EQ(child.WaitForLine("begun", kLong), "begun");
    EXPECT_TRUE(child.IsRunning());
}

TEST(ChildProcess, ReadsWhatIsWrittenToItUntilItsEnd)
{
    CChildProcess child({"cat"});
    EXPECT_TRUE(child.WriteLine("one"));
    EXPECT_EQ(child.WaitForLine("one", kLong), "one");
    child.CloseInput();
    EXPECT_EQ(child.WaitForEnd(kLong), 0);
}

TEST(ChildProcess, WritingToAChildThatHasGoneIsFalseAndNoSignal)
{
    CChildProcess child({"true"});
    EXPECT_EQ(child.WaitForEnd(kLong), 0);
    EXPECT_FALSE(child.WriteLine("anybody?"));
}

TEST(ChildProcess, ArgumentsArriveAsTheyAre)
{
    CChildProcess child({"printf", "%s|", "two words", "", "\"$HOME\"", "Äö"});
    EXPECT_EQ(child.WaitForEnd(kLong), 0);
    EXPECT_EQ(child.Output(), "two words||\"$HOME\"|Äö|");
}

TEST(ChildProcess, AProgramThatIsNotThereThrowsWithTheReason)
{
    try
    {
        CChildProcess child({"/nowhere/tarvane-nothing"});
        FAIL() << "it started";
    }
    catch (const std::system_error& error)
    {
        EXPECT_EQ(error.code().value(), ENOENT);
        EXPECT_NE(std::string(error.what()).find("/nowhere/tarvane-nothing"), std::string::npos);
    }
}

TEST(ChildProcess, KillShowsAs128PlusTheSignal)
{
    CChildProcess child({"cat"});
    child.Kill();
    EXPECT_EQ(child.WaitForEnd(kLong), 128 + SIGKILL);
    EXPECT_EQ(child.WaitForEnd(0ms), 128 + SIGKILL);
}

TEST(ChildProcess, StopsAndContinues)
{
    CChildProcess child({"cat"});
    child.Stop();
    EXPECT_TRUE(BecomesState(child.Pid(), 'T'));
    EXPECT_TRUE(child.IsRunning());
    child.Continue();
    EXPECT_TRUE(child.WriteLine("again"));
    EXPECT_EQ(child.WaitForLine("again", kLong), "again");
}

TEST(ChildProcess, IsGoneWithItsOwner)
{
    pid_t nPid = 0;
    {
        CChildProcess child({"cat"});
        nPid = child.Pid();
        EXPECT_TRUE(Exists(nPid));
    }
    EXPECT_FALSE(Exists(nPid));
}

TEST(ChildProcess, AStoppedChildIsEndedToo)
{
    CChildProcess child({"sleep", "1000"});
    child.Stop();
    EXPECT_TRUE(BecomesState(child.Pid(), 'T'));
    EXPECT_EQ(child.End(kLong), 128 + SIGTERM);
}

TEST(ChildProcess, AChildThatIgnoresTheRequestIsKilled)
{
    CChildProcess child(Shell("trap '' TERM; echo deaf; while true; do sleep 1000; done"));
    ASSERT_TRUE(child.WaitForLine("deaf", kLong));
    EXPECT_EQ(child.End(100ms), 128 + SIGKILL);
}

TEST(ChildProcess, AGrandchildThatHoldsTheStreamsDelaysNobody)
{
    CChildProcess child(Shell("sleep 1000 & echo $!"));
    const auto strPid = child.WaitForLine("", kLong);
    ASSERT_TRUE(strPid);
    EXPECT_EQ(child.WaitForEnd(kLong), 0);
    ::kill(std::stoi(*strPid), SIGKILL);
}

TEST(ChildProcess, EndsWhenItsParentIsKilled)
{
    // The parent here is a process of our own making, since the test itself must live on.
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t nParent = ::fork();
    if (nParent == 0)
    {
        CChildProcess child({"sleep", "1000"});
        const pid_t nChild = child.Pid();
        (void)!::write(pipe[1], &nChild, sizeof nChild);
        ::pause();
        ::_exit(0);
    }
    pid_t nChild = 0;
    ASSERT_EQ(::read(pipe[0], &nChild, sizeof nChild), static_cast<ssize_t>(sizeof nChild));
    ::close(pipe[0]);
    ::close(pipe[1]);
    ::kill(nParent, SIGKILL);
    // It stays a zombie where nobody reaps orphans; it no longer runs all the same.
    const auto fEnded = [nChild]
    { return !Exists(nChild) || StateOf(nChild) == 'Z' || StateOf(nChild) == '?'; };
    for (int nTry = 0; nTry < 6000 && !fEnded(); ++nTry)
    {
        ::usleep(10000);
    }
    EXPECT_TRUE(fEnded());
    ::kill(nChild, SIGKILL);
}

TEST(ChildProcess, ProgramFolderHoldsThisTest)
{
    EXPECT_TRUE(std::filesystem::exists(Tarvane::ProgramFolder()));
    EXPECT_EQ(Tarvane::ProgramFolder(), std::filesystem::canonical("/proc/self/exe").parent_path());
}
