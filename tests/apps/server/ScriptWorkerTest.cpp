#include "apps/server/ScriptWorker.h"

#include "tests/apps/server/CommandFixture.h"

#include <poll.h>

namespace Tarvane::Server
{
namespace
{

class ScriptWorker : public TarvaneTest::CommandFixture
{
protected:
    static Execution Run(CScriptWorker& worker, const std::string& strScript,
                         const Trouble& trouble = {})
    {
        worker.Begin(strScript, trouble);
        for (;;)
        {
            pollfd wanted{worker.Descriptor(), POLLIN, 0};
            poll(&wanted, 1, -1);
            if (std::optional<Execution> execution = worker.Receive())
                return *std::move(execution);
        }
    }

    std::string Adding() const
    {
        return "SelectScriptDocument() AddAudioRegion(GetTrackID(0), \"" + m_strTake +
               "\", true, false, 0,0,100)";
    }

    CCommandProcessor WithLimit(std::int64_t nMilliseconds) const
    {
        SandboxLimits limits;
        limits.nMilliseconds = nMilliseconds;
        return {CSession({"Vox"}, 0), nullptr, RenderFolder(), true, limits};
    }
};

TEST_F(ScriptWorker, RunsOneScriptAfterAnother)
{
    CScriptWorker worker(m_processor);
    for (const char* szNumber : {"1", "2", "3"})
    {
        const Execution execution = Run(worker, "print(" + std::string(szNumber) + ")");
        EXPECT_EQ(execution.reply.strResult, szNumber + std::string("\n"));
        EXPECT_FALSE(execution.changed);
        EXPECT_TRUE(worker.IsAlive());
    }
}

TEST_F(ScriptWorker, GivesBackTheChangedSessionAndLeavesTheServersAlone)
{
    CScriptWorker worker(m_processor);
    const Execution execution = Run(worker, Adding());
    EXPECT_EQ(execution.reply.strError, "");
    ASSERT_TRUE(execution.changed);
    EXPECT_EQ(execution.changed->GetDocument(DocumentKind::Script).regions.size(), 1u);
    EXPECT_EQ(ScriptDocument().regions.size(), 0u);
    EXPECT_EQ(
        Run(worker, "SelectScriptDocument() print(GetRegionCount(GetTrackID(0)))").reply.strResult,
        "0\n")
        << "a worker keeps the session of its birth";
}

TEST_F(ScriptWorker, RefusalsAndTroubleTravel)
{
    CScriptWorker worker(m_processor);
    const Execution refused = Run(worker, "SelectScriptDocument() DeleteRegion(5)");
    EXPECT_TRUE(refused.reply.fRefused);
    EXPECT_EQ(refused.reply.strError, "DeleteRegion: the document has no region with the id 5");
    EXPECT_EQ(Run(worker, "print(SelectScriptDocument())", {true, false}).reply.strResult,
              "false\n");
}

TEST_F(ScriptWorker, LongResultsComeWhole)
{
    CScriptWorker worker(m_processor);
    const Execution execution = Run(worker, "for n = 1, 4096 do print(('x'):rep(1023)) end");
    EXPECT_EQ(execution.reply.strResult.size(), std::size_t(4) << 20);
}

TEST_F(ScriptWorker, WhatTakesLongWithinOneInstructionIsEnded)
{
    const CCommandProcessor processor = WithLimit(100);
    CScriptWorker worker(processor);
    // All keys have one place in the table when it grows for the 131,073rd.
    const Execution execution =
        Run(worker, "local t = {} for n = 1, 140000 do t[n * 262143] = 1 end");
    EXPECT_EQ(execution.reply.strError, ProcessorTimeText(100));
    EXPECT_FALSE(execution.changed);
    EXPECT_FALSE(worker.IsAlive()) << "it noticed by itself";
}

TEST_F(ScriptWorker, TimeIsCountedForEachScript)
{
    const CCommandProcessor processor = WithLimit(300);
    CScriptWorker worker(processor);
    const std::string strSome = "for n = 1, 500000 do end print('done')";
    for (int n = 0; n < 40; n++)
        ASSERT_EQ(Run(worker, strSome).reply.strResult, "done\n") << n;
}

} // namespace
} // namespace Tarvane::Server
