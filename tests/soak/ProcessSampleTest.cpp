#include "soak/ProcessSample.h"

#include <gmock/gmock.h>

#include <csignal>
#include <future>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Tarvane::Soak;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace
{

pid_t StartChild()
{
    const pid_t nChild = ::fork();
    if (nChild == 0)
    {
        for (;;)
            ::pause();
    }
    return nChild;
}

} // namespace

// The view of a plug-in is a child of the thread that has started it.
TEST(SoakProcesses, TheChildrenAreThoseOfEveryThread)
{
    std::promise<pid_t> child;
    std::promise<void> seen;
    std::thread parent(
        [&]
        {
            child.set_value(StartChild());
            seen.get_future().wait();
        });
    const pid_t nOfThread = child.get_future().get();
    const pid_t nOfMain = StartChild();
    EXPECT_THAT(ChildrenOf(::getpid()), Contains(nOfThread));
    EXPECT_THAT(ChildrenOf(::getpid()), Contains(nOfMain));
    seen.set_value();
    parent.join();
    for (const pid_t nChild : {nOfThread, nOfMain})
    {
        ::kill(nChild, SIGKILL);
        ::waitpid(nChild, nullptr, 0);
    }
    EXPECT_THAT(ChildrenOf(::getpid()), Not(Contains(nOfMain)));
}

TEST(SoakProcesses, OneThatHasEndedIsNoChildThoughNobodyHasCollectedIt)
{
    const pid_t nChild = StartChild();
    ::kill(nChild, SIGKILL);
    siginfo_t ended;
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(nChild), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_THAT(ChildrenOf(::getpid()), Not(Contains(nChild)));
    ::waitpid(nChild, nullptr, 0);
}

TEST(SoakProcesses, AProcessThatIsGoneHasNoChildren)
{
    const pid_t nChild = StartChild();
    ::kill(nChild, SIGKILL);
    ::waitpid(nChild, nullptr, 0);
    EXPECT_THAT(ChildrenOf(nChild), IsEmpty());
}
