#include "apps/server/CommandProcessor.h"

#include "tests/apps/server/CommandFixture.h"
#include "tests/apps/support/FailingCalls.h"

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::CFailingCall;
using testing::HasSubstr;

class CommandProcessor : public TarvaneTest::CommandFixture
{
protected:
    CommandProcessor() : m_store(m_folder / "session") {}

    std::string Add(std::int64_t nPosition) const
    {
        return "AddAudioRegion(GetTrackID(0), \"" + m_strTake + "\", true, false, " +
               std::to_string(nPosition) + ",0,100)\n";
    }

    CommandReply Run(const std::string& strScript)
    {
        return m_stored.Run("SelectScriptDocument() " + strScript);
    }

    // Regions of the script document: in the file, and in the server.
    std::size_t StoredRegions() { return Regions(*CSessionStore(m_folder / "session").Load()); }
    std::size_t LiveRegions() const { return Regions(m_stored.Session()); }

    static std::size_t Regions(const CSession& session)
    {
        return session.GetDocument(DocumentKind::Script).regions.size();
    }

    CSessionStore m_store;
    CCommandProcessor m_stored{CSession({"Vox"}, 0), &m_store, RenderFolder(), true};
};

TEST_F(CommandProcessor, AReplyHoldsWhatWasPrinted)
{
    const CommandReply reply = m_stored.Run("print(1) print('two')");
    EXPECT_EQ(reply.strResult, "1\ntwo\n");
    EXPECT_EQ(reply.strError, "");
}

TEST_F(CommandProcessor, AChangeIsOnDiskWhenTheReplyIsThere)
{
    Run(Add(0));
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(CommandProcessor, AScriptWithManyChangesSavesOnce)
{
    Run("MoveDisplayToPosition(1)");
    // Of the two calls of each save the third belongs to a second one.
    const CFailingCall failing("fsync", 3, EIO);
    EXPECT_EQ(Run(Add(0) + Add(1000) + "MoveDisplayToPosition(5)").strError, "");
    EXPECT_FALSE(failing.HasFailed());
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(CommandProcessor, AScriptWithoutChangesSavesNothing)
{
    const CFailingCall failing("fsync", 1, EIO);
    EXPECT_EQ(Run("print(GetTrackCount())").strResult, "1\n");
    EXPECT_FALSE(failing.HasFailed());
}

TEST_F(CommandProcessor, AFailedSaveUndoesTheChangeAndSaysSo)
{
    Run(Add(0));
    const std::int64_t nUpdates = m_stored.Session().UpdateCount();
    for (const char* szCall : {"write", "fsync", "rename"})
    {
        const CFailingCall failing(szCall, 1, ENOSPC);
        const CommandReply reply = Run("print(1) " + Add(1000));
        EXPECT_THAT(reply.strError,
                    HasSubstr("nothing was changed, for the session could not be saved: cannot "));
        EXPECT_THAT(reply.strError, HasSubstr("No space left on device"));
        EXPECT_EQ(reply.strResult, "");
        EXPECT_TRUE(reply.fRefused);
        EXPECT_EQ(LiveRegions(), 1u);
        EXPECT_EQ(StoredRegions(), 1u);
        EXPECT_EQ(m_stored.Session().UpdateCount(), nUpdates);
    }
    EXPECT_EQ(Run(Add(1000)).strError, "");
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(CommandProcessor, ASaveThatFailsLateIsUndoneInTheFileToo)
{
    Run(Add(0));
    const CFailingCall failing("fsync", 2, EIO);
    EXPECT_THAT(Run(Add(1000)).strError, HasSubstr("nothing was changed"));
    EXPECT_EQ(LiveRegions(), 1u);
    EXPECT_EQ(StoredRegions(), 1u);
}

TEST_F(CommandProcessor, WhatWasDoneBeforeAnErrorIsUndoneAndRefused)
{
    Run("MoveDisplayToPosition(1)");
    const CommandReply reply = Run(Add(0) + "MoveDisplayToPosition('nowhere')");
    EXPECT_EQ(reply.strError,
              "MoveDisplayToPosition: argument 1 should be a number, and is a string");
    EXPECT_TRUE(reply.fRefused);
    EXPECT_EQ(LiveRegions(), 0u);
    EXPECT_EQ(StoredRegions(), 0u);
}

TEST_F(CommandProcessor, WhatWasDoneBeforeABoundIsUndoneAndRefused)
{
    Run("MoveDisplayToPosition(1)");
    const CommandReply reply = Run(Add(0) + "while true do end");
    EXPECT_EQ(reply.strError, "the script runs longer than 10000000 instructions");
    EXPECT_TRUE(reply.fRefused);
    EXPECT_EQ(StoredRegions(), 0u);
}

TEST_F(CommandProcessor, AChangeThatFailsBeforeItBeginsIsRefused)
{
    for (const std::string& strScript :
         {"AddAudioRegion(GetTrackID(7), \"" + m_strTake + "\", true, false, 0,0,100)",
          std::string("AddAudioRegion(GetTrackID(0), \"/missing.wav\", true, false, 0,0,100)"),
          std::string("AddAudioRegion(GetTrackID(0), \"/a\"b.wav\", true, false, 0,0,100)"),
          std::string("_G['Delete' .. 'Region'](99)")})
    {
        const CommandReply reply = Run(strScript);
        EXPECT_NE(reply.strError, "") << strScript;
        EXPECT_TRUE(reply.fRefused) << strScript;
    }
}

TEST_F(CommandProcessor, AQuestionThatFailsIsAnsweredAndNotRefused)
{
    for (const char* szScript :
         {"print(GetTrackName(99))", "error('no')", "no script", "while 1 do end",
          "print(CheckForDuplicateRegion(1, '/missing.wav', 0, 0, 1))", "NotDeleteRegion()"})
    {
        const CommandReply reply = Run(szScript);
        EXPECT_NE(reply.strError, "") << szScript;
        EXPECT_FALSE(reply.fRefused) << szScript;
    }
}

TEST_F(CommandProcessor, AChangeThatFindsNoDocumentIsRefused)
{
    const Trouble vanished{true, false};
    const CommandReply reply =
        m_stored.Run("if SelectScriptDocument() then\n" + Add(0) + "end\n", vanished);
    EXPECT_EQ(reply.strError, "nothing was changed, for no document is open");
    EXPECT_TRUE(reply.fRefused);
    const CommandReply told = m_stored.Run(
        "if SelectScriptDocument() then\n" + Add(0) + "else print(1) print(0) end\n", vanished);
    EXPECT_EQ(told.strResult, "1\n0\n") << "it says so itself";
    EXPECT_FALSE(told.fRefused);
    EXPECT_FALSE(m_stored.Run("if SelectScriptDocument() then print(1) end", vanished).fRefused);
}

TEST_F(CommandProcessor, TheOutputOfAScriptThatFailsIsWithheld)
{
    const CommandReply reply = m_stored.Run("print(3) print(1) error('halfway', 0)");
    EXPECT_EQ(reply.strResult, "");
    EXPECT_EQ(reply.strError, "halfway");
}

TEST_F(CommandProcessor, AScriptThatFailsSavesNothing)
{
    const CFailingCall failing("write", 1, ENOSPC);
    EXPECT_EQ(Run(Add(0) + "error('and this', 0)").strError, "and this");
    EXPECT_FALSE(failing.HasFailed());
}

TEST_F(CommandProcessor, NoDocumentCanBeSelectedWhileItHasVanished)
{
    EXPECT_EQ(m_stored.Run("print(SelectScriptDocument())", {true, false}).strResult, "false\n");
    EXPECT_EQ(m_stored.Run("print(SelectScriptDocument())").strResult, "true\n");
}

TEST_F(CommandProcessor, AFrozenCounterStandsWhereItStood)
{
    Run(Add(0));
    const std::string strCount = m_stored.Run("print(GetUpdateCount())").strResult;
    const Trouble frozen{false, true};
    EXPECT_EQ(m_stored.Run("print(GetUpdateCount())", frozen).strResult, strCount);
    m_stored.Run("SelectScriptDocument() " + Add(500), frozen);
    EXPECT_EQ(m_stored.Run("print(GetUpdateCount())", frozen).strResult, strCount);
    EXPECT_EQ(StoredRegions(), 2u) << "what happens meanwhile is kept all the same";
    EXPECT_NE(m_stored.Run("print(GetUpdateCount())").strResult, strCount);
}

TEST_F(CommandProcessor, AChangeBehindTheClientsBacksIsOnDisk)
{
    m_stored.Change([](CSession& session) { session.DeleteTrack(DocumentKind::Script, 1); });
    EXPECT_TRUE(CSessionStore(m_folder / "session")
                    .Load()
                    ->GetDocument(DocumentKind::Script)
                    .tracks.empty());
}

TEST_F(CommandProcessor, AChangeBehindTheClientsBacksThatCannotBeSavedIsUndone)
{
    Run(Add(0));
    const CFailingCall failing("fsync", 1, EIO);
    EXPECT_THROW(
        m_stored.Change([](CSession& session) { session.DeleteTrack(DocumentKind::Script, 1); }),
        std::runtime_error);
    EXPECT_EQ(LiveRegions(), 1u);
}

TEST_F(CommandProcessor, AReadOnlyServerAnswersAndChangesNothing)
{
    CCommandProcessor processor(CSession({"Vox"}, 0), nullptr, RenderFolder(), true, {},
                                {true, false});
    const CommandReply reply = processor.Run("SelectScriptDocument() " + Add(0));
    EXPECT_EQ(reply.strError,
              "AddAudioRegion: this server changes nothing: it was started with --read-only");
    EXPECT_TRUE(reply.fRefused);
    EXPECT_EQ(processor.Run("SelectScriptDocument() print(GetTrackCount())").strResult, "1\n");
    EXPECT_EQ(processor.Session().UpdateCount(), 0);
}

TEST_F(CommandProcessor, AServerThatDeletesNothingAddsAllTheSame)
{
    CCommandProcessor processor(CSession({"Vox"}, 0), nullptr, RenderFolder(), true, {},
                                {false, true});
    EXPECT_EQ(processor.Run("SelectScriptDocument() " + Add(0)).strError, "");
    for (const std::string strDelete :
         {"DeleteRegion(GetRegionID(GetTrackID(0), 0))", "DeleteMarkerArea(1)"})
    {
        const CommandReply reply = processor.Run("SelectScriptDocument() " + strDelete);
        EXPECT_THAT(reply.strError, HasSubstr("this server deletes nothing"));
        EXPECT_TRUE(reply.fRefused);
    }
    EXPECT_EQ(Regions(processor.Session()), 1u);
}

TEST_F(CommandProcessor, LimitsAreTheGivenOnes)
{
    SandboxLimits limits;
    limits.nInstructions = 1000;
    CCommandProcessor processor(CSession(), nullptr, RenderFolder(), true, limits);
    EXPECT_EQ(processor.Run("for n = 1, 5000 do end").strError,
              "the script runs longer than 1000 instructions");
}

TEST_F(CommandProcessor, WithoutAStoreTheSessionLivesInMemory)
{
    SelectedResult(Add(0));
    EXPECT_EQ(ScriptDocument().regions.size(), 1u);
}

} // namespace
} // namespace Tarvane::Server
