#include "apps/server/command/CommandProcessor.h"

#include "apps/server/database/SessionStore.h"
#include "tests/apps/server/CommandFixture.h"
#include "tests/apps/support/FullDisk.h"

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::CFullDisk;
using testing::AnyOf;
using testing::HasSubstr;

class CommandProcessor : public TarvaneTest::CommandFixture
{
protected:
    std::filesystem::path Made() const
    {
        CSessionStore(m_folder / "session").Save(CSession({"Vox"}, 0));
        return m_folder / "session";
    }

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
    std::size_t StoredRegions() { return Regions(*CSessionStore(m_file).Load()); }
    std::size_t LiveRegions() { return Regions(m_session.Content()); }

    static std::size_t Regions(const CSession& session)
    {
        return session.GetDocument(DocumentKind::Script).regions.size();
    }

    // Made before what is below is opened.
    const std::filesystem::path m_file = Made();
    CSessionDatabase m_session{m_file};
    CCommandProcessor m_stored{m_session, RenderFolder(), true};
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

TEST_F(CommandProcessor, AScriptWithManyChangesIsThereWholeOrNotAtAll)
{
    m_stored.Execute("SelectScriptDocument() " + Add(0) + Add(1000) + "MoveDisplayToPosition(5)",
                     {});
    EXPECT_EQ(StoredRegions(), 0u);
    m_session.Commit();
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(CommandProcessor, AScriptWithoutChangesSavesNothing)
{
    const CFullDisk full;
    EXPECT_EQ(Run("print(GetTrackCount())").strResult, "1\n");
}

TEST_F(CommandProcessor, AFailedSaveUndoesTheChangeAndSaysSo)
{
    Run(Add(0));
    const std::int64_t nUpdates = m_session.UpdateCount();
    for (const std::string& strScript :
         {"print(1) " + Add(1000), "print(1) pcall(function() " + Add(1000) + " end)"})
    {
        const CFullDisk full;
        const CommandReply reply = Run(strScript);
        EXPECT_THAT(reply.strError,
                    HasSubstr("nothing was changed, for the session could not be saved: "));
        EXPECT_THAT(reply.strError, AnyOf(HasSubstr("disk I/O error"), HasSubstr("disk is full")));
        EXPECT_EQ(reply.strResult, "");
        EXPECT_TRUE(reply.fRefused);
        EXPECT_FALSE(reply.fChanged);
        EXPECT_EQ(LiveRegions(), 1u);
        EXPECT_EQ(StoredRegions(), 1u);
        EXPECT_EQ(m_session.UpdateCount(), nUpdates);
    }
    EXPECT_EQ(Run(Add(1000)).strError, "");
    EXPECT_EQ(StoredRegions(), 2u);
}

TEST_F(CommandProcessor, WhatTheScriptCatchesOfTheDiskIsAFailureAllTheSame)
{
    m_session.Begin();
    m_session.Rollback();
    SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE).exec("DROP TABLE documents");
    const CommandReply reply = Run("pcall(SelectProcess, 1) pcall(MoveDisplayToPosition, 7)");
    EXPECT_THAT(reply.strError, HasSubstr("could not be saved: no such table: documents"));
    EXPECT_TRUE(reply.fRefused);
    const CommandReply question = Run("print(pcall(GetSelectedRegionID))");
    EXPECT_THAT(question.strError, HasSubstr("the session could not be read: no such table"));
    EXPECT_FALSE(question.fRefused);
}

TEST_F(CommandProcessor, AChangeAgainstAnotherCommandsIsAConflict)
{
    CSessionDatabase other(m_file);
    other.Begin();
    other.MoveDisplay(DocumentKind::Script, 5);
    m_session.WhenLocked([] { return false; });
    const Execution execution = m_stored.Execute(
        "SelectScriptDocument() pcall(function() " + Add(0) + " end) print(1)", {});
    EXPECT_TRUE(execution.fConflict);
    EXPECT_FALSE(execution.reply.fChanged);
    EXPECT_EQ(StoredRegions(), 0u);
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
    const Trouble vanished{true, {}};
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
    const CFullDisk full;
    EXPECT_EQ(Run(Add(0) + "error('and this', 0)").strError, "and this");
    EXPECT_EQ(LiveRegions(), 0u);
}

TEST_F(CommandProcessor, NoDocumentCanBeSelectedWhileItHasVanished)
{
    EXPECT_EQ(m_stored.Run("print(SelectScriptDocument())", {true, {}}).strResult, "false\n");
    EXPECT_EQ(m_stored.Run("print(SelectScriptDocument())").strResult, "true\n");
}

TEST_F(CommandProcessor, AFrozenCounterStandsStill)
{
    Run(Add(0));
    const Trouble frozen{false, 41};
    EXPECT_EQ(m_stored.Run("print(GetUpdateCount())", frozen).strResult, "41\n");
    m_stored.Run("SelectScriptDocument() " + Add(500), frozen);
    EXPECT_EQ(StoredRegions(), 2u) << "what happens meanwhile is kept all the same";
    EXPECT_EQ(m_stored.Run("print(GetUpdateCount())").strResult, "4\n");
}

TEST_F(CommandProcessor, AReadOnlyServerAnswersAndChangesNothing)
{
    CCommandProcessor processor(m_session, RenderFolder(), true, {}, {true, false});
    const CommandReply reply = processor.Run("SelectScriptDocument() " + Add(0));
    EXPECT_EQ(reply.strError,
              "AddAudioRegion: this server changes nothing: it was started with --read-only");
    EXPECT_TRUE(reply.fRefused);
    EXPECT_EQ(processor.Run("SelectScriptDocument() print(GetTrackCount())").strResult, "1\n");
    EXPECT_EQ(m_session.UpdateCount(), 0);
}

TEST_F(CommandProcessor, AServerThatDeletesNothingAddsAllTheSame)
{
    CCommandProcessor processor(m_session, RenderFolder(), true, {}, {false, true});
    EXPECT_EQ(processor.Run("SelectScriptDocument() " + Add(0)).strError, "");
    for (const std::string strDelete :
         {"DeleteRegion(GetRegionID(GetTrackID(0), 0))", "DeleteMarkerArea(1)"})
    {
        const CommandReply reply = processor.Run("SelectScriptDocument() " + strDelete);
        EXPECT_THAT(reply.strError, HasSubstr("this server deletes nothing"));
        EXPECT_TRUE(reply.fRefused);
    }
    EXPECT_EQ(LiveRegions(), 1u);
}

TEST_F(CommandProcessor, LimitsAreTheGivenOnes)
{
    SandboxLimits limits;
    limits.nInstructions = 1000;
    CCommandProcessor processor(m_session, RenderFolder(), true, limits);
    EXPECT_EQ(processor.Run("for n = 1, 5000 do end").strError,
              "the script runs longer than 1000 instructions");
}

} // namespace
} // namespace Tarvane::Server
