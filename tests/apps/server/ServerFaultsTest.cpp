// Faults on request, at the events that they are planned for.
#include "apps/server/SessionStore.h"
#include "tests/apps/server/ServerFixture.h"

namespace TarvaneTest
{
namespace
{

using namespace Tarvane::Server;

constexpr int kExitByFault = 70;
constexpr SInt32 kShortTicks = 30;

class ServerFaults : public ServerFixture
{
protected:
    std::size_t StoredRegions() const
    {
        return CSessionStore(m_strSession).Load()->GetDocument(DocumentKind::Script).regions.size();
    }

    Child StartWith(const std::string& strFault) const
    {
        return Start({"--session", m_strSession, "--track", "Vox", "--misbehave", strFault});
    }
};

TEST_F(ServerFaults, ExitBeforeTheEffectLeavesNone)
{
    const Child server = StartWith("exit-before-effect@2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000)).nStatus, connectionInvalid);
    EXPECT_EQ(server->WaitForEnd(kAnyTime), kExitByFault);
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(ServerFaults, ExitAfterTheEffectLeavesIt)
{
    const Child server = StartWith("exit-after-effect@2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000)).nStatus, connectionInvalid);
    EXPECT_EQ(server->WaitForEnd(kAnyTime), kExitByFault);
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(ServerFaults, AHangNeverAnswersAndKeepsTheName)
{
    const Child server = StartWith("hang@2");
    EXPECT_EQ(SendScript(Add(0)).nStatus, noErr);
    EXPECT_EQ(SendScript(Add(1000), kShortTicks).nStatus, errAETimeout);
    EXPECT_EQ(SendScript("print(1)", kShortTicks).nStatus, errAETimeout);
    EXPECT_TRUE(server->IsRunning());
    EXPECT_EQ(StoredRegions(), 1u);
    server->Terminate();
    EXPECT_EQ(server->WaitForEnd(kAnyTime), 0) << server->ErrorOutput();
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(ServerFaults, TheNextRunIsFreeOfThem)
{
    {
        const Child server = StartWith("exit-after-effect@1");
        EXPECT_EQ(SendScript(Add(0)).nStatus, connectionInvalid);
        EXPECT_EQ(server->WaitForEnd(kAnyTime), kExitByFault);
    }
    const Child server = Start({"--session", m_strSession});
    EXPECT_EQ(SendScript("SelectScriptDocument() print(CheckForDuplicateRegion(GetTrackID(0), \"" +
                         m_strTake + "\",0,0,100))")
                  .result,
              "1\n");
}

} // namespace
} // namespace TarvaneTest
