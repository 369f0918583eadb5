#include "apps/support/program/ProgramVersion.h"
#include "tests/apps/server/CommandFixture.h"

namespace Tarvane::Server
{
namespace
{

class DocumentFunctions : public TarvaneTest::CommandFixture
{
};

TEST_F(DocumentFunctions, BothDocumentsCanBeSelected)
{
    EXPECT_EQ(Result("print(SelectScriptDocument())"), "true\n");
    EXPECT_EQ(Result("print(SelectAudioSuiteDocument())"), "true\n");
}

TEST_F(DocumentFunctions, WithoutADocumentNoneIsSelected)
{
    CCommandProcessor processor(m_database, RenderFolder(), false);
    EXPECT_EQ(processor.Run("print(SelectScriptDocument())").strResult, "false\n");
    EXPECT_EQ(processor.Run("print(SelectAudioSuiteDocument())").strResult, "false\n");
    EXPECT_EQ(processor.Run("SelectScriptDocument() GetTrackCount()").strError,
              "GetTrackCount: no document is selected; begin with SelectScriptDocument() or "
              "SelectAudioSuiteDocument()");
}

TEST_F(DocumentFunctions, TheSelectionHoldsForOneScript)
{
    SelectedResult("");
    for (const char* szCall :
         {"GetTrackCount()", "GetTrackID(0)", "GetTrackName(1)", "GetLinkSMPTEOffset()",
          "MoveDisplayToPosition(1)", "CheckForDuplicateRegion(1, '/a', 0, 0, 1)",
          "AddAudioRegion(1, '/a', true, false, 0, 0, 1)"})
        EXPECT_THAT(Error(szCall), testing::HasSubstr("no document is selected")) << szCall;
}

TEST_F(DocumentFunctions, TheVersionNeedsNoDocument)
{
    EXPECT_EQ(Result("print(GetLinkVersion())\n"), std::string(ProgramVersion()) + "\n");
}

TEST_F(DocumentFunctions, TheUpdateCountNeedsNoDocument)
{
    EXPECT_EQ(Result("print(GetUpdateCount())\n"), "0\n");
    SelectedResult("MoveDisplayToPosition(5)");
    EXPECT_EQ(Result("print(GetUpdateCount())\n"), "1\n");
}

TEST_F(DocumentFunctions, TheOffsetPrintsInFull)
{
    EXPECT_EQ(std::atof(SelectedResult("print(GetLinkSMPTEOffset())").c_str()), 0.1);
    CSessionDatabase database(CSession({}, 1001.0 / 30000.0));
    CCommandProcessor processor(database, RenderFolder(), true);
    const CommandReply reply =
        processor.Run("if SelectScriptDocument() then\nprint(GetLinkSMPTEOffset())\nend\n");
    EXPECT_EQ(std::atof(reply.strResult.c_str()), 1001.0 / 30000.0);
}

TEST_F(DocumentFunctions, TheDisplayMovesToAnyNumber)
{
    SelectedResult("MoveDisplayToPosition(1.23457e+06)");
    EXPECT_EQ(ScriptDocument().dDisplayPosition, 1.23457e+06);
    SelectedResult("MoveDisplayToPosition(-12.5)");
    EXPECT_EQ(ScriptDocument().dDisplayPosition, -12.5);
    EXPECT_EQ(SelectedError("MoveDisplayToPosition(0/0)"),
              "MoveDisplayToPosition: argument 1 should be a finite number, and is a number");
    EXPECT_EQ(SelectedError("MoveDisplayToPosition()"),
              "MoveDisplayToPosition: argument 1 should be a number, and is missing");
}

TEST_F(DocumentFunctions, EachDocumentHasItsDisplay)
{
    Result("SelectAudioSuiteDocument() MoveDisplayToPosition(9)");
    EXPECT_EQ(ScriptDocument().dDisplayPosition, 0.0);
    EXPECT_EQ(GetDocument(DocumentKind::AudioSuite).dDisplayPosition, 9.0);
}

} // namespace
} // namespace Tarvane::Server
