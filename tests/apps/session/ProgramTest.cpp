// The program as it is run.
#include "tests/apps/support/ManualPage.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/process/Ended.h"
#include "tests/utils/ParameterHelpers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sys/stat.h>

using TarvaneTest::Ended;
using testing::HasSubstr;

namespace
{

class SessionProgram : public testing::Test
{
protected:
    static Ended Run(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), SESSION_PROGRAM);
        return TarvaneTest::RunToEnd(arguments);
    }

    void SetUp() override
    {
        CParameterBlock nested;
        nested.AddParameter("Gain", 0.5F);
        nested.AddParameter("Name", "a\nb");
        m_root.AddParameter("Region", &nested);
        m_root.AddParameter("Region", &nested);
        m_root.AddParameter("Mod", 7);
        m_strFile = Write("good.session", SaveSession(m_root));
    }

    std::string Write(const std::string& strName, const std::string& strBytes)
    {
        const std::string strPath = (m_folder / strName).string();
        std::ofstream(strPath, std::ios::binary) << strBytes;
        return strPath;
    }
    static std::string Read(const std::string& strPath)
    {
        std::ifstream file(strPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TarvaneTest::CTemporaryFolder m_folder;
    CParameterBlock m_root;
    std::string m_strFile;
};

} // namespace

TEST_F(SessionProgram, DumpPrintsTheTree)
{
    const Ended ended = Run({"dump", m_strFile});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_EQ(ended.strOutput, "block  \"\" = 3 entries\n"
                               "  block  \"Region\" = 2 entries\n"
                               "    float  \"Gain\" = 0.5\n"
                               "    string \"Name\" = \"a\\x0ab\"\n"
                               "  block  \"Region\" = 2 entries\n"
                               "    float  \"Gain\" = 0.5\n"
                               "    string \"Name\" = \"a\\x0ab\"\n"
                               "  int    \"Mod\" = 7\n");
}

TEST_F(SessionProgram, DumpTakesDepthAndPath)
{
    EXPECT_EQ(Run({"dump", "--depth", "0", m_strFile}).strOutput, "block  \"\" = 3 entries\n");
    EXPECT_EQ(Run({"dump", "--path", "Region[1]/Gain", m_strFile}).strOutput,
              "float  \"Gain\" = 0.5\n");
    const Ended none = Run({"dump", "--path", "Region[2]", m_strFile});
    EXPECT_EQ(none.nExitCode, 2);
    EXPECT_THAT(none.strError, HasSubstr("nothing stands at Region[2]"));
}

TEST_F(SessionProgram, DumpOfADeepTreeIsNoLongerThanItsTextNeeds)
{
    // 10,000 levels in 90 KB.
    constexpr std::size_t kLevels = 10000;
    Bytes bytes;
    bytes.Magic().U32(100).U32(2).U32(1).Text(std::string_view("B\0", 2)).U8(0).U32(1);
    for (std::size_t nLevel = 1; nLevel <= kLevels; nLevel++)
        bytes.U32(CParameterBlock::kType).U8(1).U32(nLevel < kLevels ? 1 : 0);
    const std::string strFile = Write("deep", bytes);
    const Ended ended = Run({"dump", strFile});
    EXPECT_EQ(ended.nExitCode, 0) << ended.strError;
    EXPECT_EQ(std::count(ended.strOutput.begin(), ended.strOutput.end(), '\n'),
              static_cast<long>(kLevels + 1));
    EXPECT_LT(ended.strOutput.size(), kLevels * 110);
    const std::string strIndent(64, ' ');
    EXPECT_THAT(ended.strOutput, HasSubstr("\n" + strIndent + "block  \"B\" = 1 entries\n" +
                                           strIndent + "[33] block  \"B\" = 1 entries\n"));
    EXPECT_THAT(ended.strOutput, HasSubstr("[10000] block  \"B\" = 0 entries\n"));
}

TEST_F(SessionProgram, NothingButAPlainFileIsReplaced)
{
    const std::string strTarget = Write("target", "precious");
    const std::string strLink = (m_folder / "link").string();
    const std::string strPipe = (m_folder / "pipe").string();
    std::filesystem::create_symlink(strTarget, strLink);
    ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
    const std::string strJson = Write("json", Run({"to-json", m_strFile}).strOutput);
    for (const std::string& strOutput : {strLink, strPipe, m_folder.Path().string()})
    {
        for (const Ended& ended :
             {Run({"to-json", m_strFile, strOutput}), Run({"from-json", strJson, strOutput})})
        {
            EXPECT_EQ(ended.nExitCode, 2) << strOutput;
            EXPECT_THAT(ended.strError, HasSubstr("no plain file: " + strOutput));
        }
    }
    EXPECT_EQ(Read(strTarget), "precious");
    EXPECT_TRUE(std::filesystem::is_symlink(strLink));
    EXPECT_TRUE(std::filesystem::is_fifo(strPipe));
}

TEST_F(SessionProgram, DumpOfABrokenFileShowsWhatThereIs)
{
    const std::string bytes = SaveSession(m_root);
    const Ended ended = Run({"dump", Write("cut", bytes.substr(0, bytes.size() - 8))});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_THAT(ended.strOutput, HasSubstr("Region"));
    EXPECT_THAT(ended.strError, HasSubstr("the file ends where a type tag is due"));
}

TEST_F(SessionProgram, DumpOfUnknownTypes)
{
    const std::string bytes = Bytes().Magic().U32(100).U32(0).U32(0).U8(0).U32(1).U32(77);
    EXPECT_EQ(Run({"dump", Write("unknown", bytes)}).strOutput,
              "block  \"\" = 1 entries\n  ?      an entry of unknown type\n");
}

TEST_F(SessionProgram, VerifyTellsFineFromFlawed)
{
    const Ended fine = Run({"verify", m_strFile});
    EXPECT_EQ(fine.nExitCode, 0);
    EXPECT_EQ(fine.strOutput, m_strFile + ": fine\n");

    const std::string strCut = Write("cut", Read(m_strFile).substr(0, 70));
    const Ended flawed = Run({"verify", strCut});
    EXPECT_EQ(flawed.nExitCode, 1);
    EXPECT_THAT(flawed.strOutput, HasSubstr(strCut + ": offset "));
    EXPECT_EQ(Run({"verify", Write("empty", "")}).nExitCode, 1);
}

TEST_F(SessionProgram, StatCounts)
{
    const Ended ended = Run({"stat", m_strFile});
    EXPECT_EQ(ended.nExitCode, 0);
    EXPECT_THAT(ended.strOutput,
                HasSubstr("bytes         " + std::to_string(Read(m_strFile).size())));
    EXPECT_THAT(ended.strOutput, HasSubstr("deepest block Region\n"));
    EXPECT_THAT(ended.strOutput, HasSubstr("block            3"));
    EXPECT_THAT(ended.strOutput, HasSubstr("         4          1  \"Mod\"\n"));
}

TEST_F(SessionProgram, JsonThereAndBackIsTheSameFile)
{
    const std::string strJson = (m_folder / "tree.json").string();
    const std::string strBack = (m_folder / "back.session").string();
    ASSERT_EQ(Run({"to-json", m_strFile, strJson}).nExitCode, 0);
    ASSERT_EQ(Run({"from-json", strJson, strBack}).nExitCode, 0);
    EXPECT_EQ(Read(strBack), Read(m_strFile));
    EXPECT_EQ(Run({"to-json", m_strFile}).strOutput, Read(strJson));
    EXPECT_EQ(Run({"diff", m_strFile, strBack}).nExitCode, 0);
}

TEST_F(SessionProgram, NothingIsWrittenWhereSomethingIsRefused)
{
    const std::string strTarget = Write("target", "old");
    const std::string strStart = R"({"format": "tarvane-session", "name": "", "parameters": [)";
    const std::pair<std::string, std::string> refused[] = {
        {R"({"name": "Id", "type": "fileid", "value": {"key": "1", "sub": "2"}}]})",
         "file ids can be read but not written"},
        {R"({"name": "", "type": "int", "value": 2}]})", "a session needs at least one name"},
        {R"({"name": "A", "type": "int", "value": "two"}]})", "does not fit its type"},
    };
    for (const auto& [strEntries, strMessage] : refused)
    {
        const Ended ended = Run({"from-json", Write("json", strStart + strEntries), strTarget});
        EXPECT_EQ(ended.nExitCode, 2);
        EXPECT_THAT(ended.strError, HasSubstr(strMessage));
        EXPECT_EQ(Read(strTarget), "old");
    }
    EXPECT_EQ(m_folder.Files(), (std::vector<std::string>{"good.session", "json", "target"}))
        << "no temporary file is left";
}

TEST_F(SessionProgram, WhatCannotBeReadOrWrittenIsExitCode2)
{
    const std::string strNone = (m_folder / "none/file").string();
    const std::string strFolder = m_folder.Path().string();
    const std::string strText = Write("text", "some text");
    for (const char* pCommand : {"dump", "stat", "verify", "to-json"})
    {
        EXPECT_EQ(Run({pCommand, strNone}).nExitCode, 2) << pCommand;
        EXPECT_EQ(Run({pCommand, strFolder}).nExitCode, 2) << pCommand;
    }
    EXPECT_EQ(Run({"dump", strText}).nExitCode, 2);
    EXPECT_THAT(Run({"dump", strText}).strError, HasSubstr("is no session: it does not begin"));
    EXPECT_EQ(Run({"stat", strText}).nExitCode, 2);
    EXPECT_EQ(Run({"diff", m_strFile, strText}).nExitCode, 2);
    EXPECT_EQ(Run({"to-json", m_strFile, strNone}).nExitCode, 2);
    EXPECT_EQ(Run({"from-json", strText, (m_folder / "new").string()}).nExitCode, 2);
    EXPECT_EQ(Run({"dump", Write("empty", "")}).nExitCode, 2);
    EXPECT_EQ(Run({}).nExitCode, 2);
    EXPECT_EQ(Run({"dump"}).nExitCode, 2);
    EXPECT_EQ(Run({"other"}).nExitCode, 2);
    EXPECT_EQ(Run({"--help"}).nExitCode, 0);
}

TEST_F(SessionProgram, DiffTellsDifferences)
{
    m_root.AddParameter("More", true);
    const Ended ended = Run({"diff", m_strFile, Write("more", SaveSession(m_root))});
    EXPECT_EQ(ended.nExitCode, 1);
    EXPECT_EQ(ended.strOutput, "+ More = bool true\n");
}

TEST_F(SessionProgram, LargeFilesAnnounceHowFarTheyAre)
{
    CParameterBlock nested, root;
    const std::string text(1000000, 'x');
    nested.AddParameter("Text", text.c_str());
    for (int i = 0; i < 51; ++i)
        root.AddParameter("B", &nested);
    const Ended ended = Run({"dump", "--depth", "0", Write("large", SaveSession(root))});
    EXPECT_EQ(ended.nExitCode, 0);
    for (const char* pStep : {" 0 % read", " 50 % read", " 90 % read", " 100 % read"})
        EXPECT_THAT(ended.strError, HasSubstr(pStep));
    for (const char* pCommand : {"stat", "verify"})
    {
        const std::string strError = Run({pCommand, (m_folder / "large").string()}).strError;
        for (const char* pStep : {" 0 % read", " 50 % read", " 90 % read", " 100 % read"})
            EXPECT_THAT(strError, HasSubstr(pStep)) << pCommand;
    }
    for (const char* pCommand : {"dump", "stat", "verify", "to-json"})
        EXPECT_EQ(Run({pCommand, m_strFile}).strError, "") << pCommand;
}

TEST_F(SessionProgram, ManualPageHasEveryCommandAndOption)
{
    const std::string strManual = TarvaneTest::ManualPage(SESSION_MANUAL);
    std::string strHelp = Run({"--help"}).strOutput;
    for (const char* pCommand : {"dump", "stat", "verify", "to-json", "from-json", "diff",
                                 "to-ardour", "to-edl", "to-rpp"})
    {
        EXPECT_THAT(strHelp, HasSubstr(std::string("\n  ") + pCommand + " "));
        EXPECT_THAT(strManual, HasSubstr(std::string("\n.TP\n.BI ") + pCommand + " \""));
        strHelp += Run({pCommand, "--help"}).strOutput;
    }
    EXPECT_EQ(TarvaneTest::OptionsIn(strManual), TarvaneTest::OptionsIn(strHelp));
    EXPECT_EQ(
        TarvaneTest::OptionsIn(strHelp),
        (std::set<std::string>{"--between-frames", "--copy", "--depth", "--frame-rate", "--help",
                               "--offset", "--path", "--rate", "--ruler", "--track", "--version"}));
}
