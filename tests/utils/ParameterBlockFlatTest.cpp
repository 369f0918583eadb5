#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{
std::string TwoLevels()
{
    return Bytes()
        .U32(3)
        .U32(2)
        .Counted("First")
        .U32(1)
        .U32(6)
        .Counted("Nested")
        .U32(1)
        .U32(9)
        .Counted("Deep")
        .U64(2)
        .U32(7)
        .Counted("Last")
        .U8(1);
}

class CSink : public CProgress
{
public:
    bool Update(unsigned long nBytes) override
    {
        calls.push_back(nBytes);
        return calls.size() == nStopAt;
    }
    std::vector<unsigned long> calls;
    std::size_t nStopAt = 0;
};
} // namespace

TEST(FlatBlock, EmptyBlockIsFourZeroBytes)
{
    EXPECT_EQ(CreateBlock(CParameterBlock()), Bytes().U32(0).Get());
    EXPECT_EQ(CParameterBlock().GetSize(), 8u);
}

TEST(FlatBlock, CreateBlockWritesCountTagsNamesAndPayloads)
{
    CParameterBlock nested, root;
    nested.AddParameter("Deep", 2ll);
    root.m_strName = "the root's name is not part of it";
    root.AddParameter("First", 1);
    root.AddParameter("Nested", &nested);
    root.AddParameter("Last", true);
    EXPECT_EQ(CreateBlock(root), TwoLevels());
}

TEST(FlatBlock, SaveAddsTheOwnName)
{
    CParameterBlock root;
    ASSERT_EQ(LoadBlock(root, TwoLevels()), static_cast<long>(TwoLevels().size()));
    root.m_strName = "Root";
    EXPECT_EQ(SaveFlat(root), Bytes().Counted("Root").Text(TwoLevels()).Get());
    EXPECT_EQ(root.GetSize(), 8 + TwoLevels().size());
}

TEST(FlatBlock, LoadBlockReadsBackWhatCreateBlockWrites)
{
    CParameterBlock root;
    root.AddParameter("Old", 1);
    EXPECT_EQ(LoadBlock(root, TwoLevels()), static_cast<long>(TwoLevels().size()));
    ASSERT_EQ(root.m_vParameters.size(), 3u);
    EXPECT_EQ(At<CIntParameter>(root, 0).m_nValue, 1);
    EXPECT_EQ(At<CSInt64Parameter>(At<CParameterBlock>(root, 1), 0).m_nValue, 2);
    EXPECT_TRUE(At<CBoolParameter>(root, 2).m_bValue);
    EXPECT_EQ(CreateBlock(root), TwoLevels());
}

TEST(FlatBlock, BytesBehindTheBlockAreNotConsumed)
{
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, TwoLevels() + "more"), static_cast<long>(TwoLevels().size()));
}

TEST(FlatBlock, EveryTypeIsReadInline)
{
    const std::string bytes = Bytes()
                                  .U32(9)
                                  .U32(1)
                                  .Counted("s")
                                  .Counted("text")
                                  .U32(2)
                                  .Counted("i")
                                  .U32(0xFFFFFFFF)
                                  .U32(3)
                                  .Counted("d")
                                  .F64(1.5)
                                  .U32(4)
                                  .Counted("u")
                                  .U64(~0ull)
                                  .U32(5)
                                  .Counted("f")
                                  .U64(1)
                                  .U64(2)
                                  .U32(6)
                                  .Counted("b")
                                  .U32(0)
                                  .U32(7)
                                  .Counted("t")
                                  .U8(9)
                                  .U32(8)
                                  .Counted("r")
                                  .F32(0.5F)
                                  .U32(9)
                                  .Counted("l")
                                  .U64(~0ull);
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, bytes), static_cast<long>(bytes.size()));
    ASSERT_EQ(root.m_vParameters.size(), 9u);
    EXPECT_EQ(At<CStringParameter>(root, 0).m_strValue, "text");
    EXPECT_EQ(At<CIntParameter>(root, 1).m_nValue, -1);
    EXPECT_EQ(At<CDoubleParameter>(root, 2).m_dValue, 1.5);
    EXPECT_EQ(At<CUInt64Parameter>(root, 3).m_nValue, ~0ull);
    EXPECT_EQ(At<CFileIdTypeParameter>(root, 4).m_idValue.nFileSub, 2);
    EXPECT_TRUE(At<CParameterBlock>(root, 5).m_vParameters.empty());
    EXPECT_TRUE(At<CBoolParameter>(root, 6).m_bValue);
    EXPECT_EQ(At<CFloatParameter>(root, 7).m_fValue, 0.5F);
    EXPECT_EQ(At<CSInt64Parameter>(root, 8).m_nValue, -1);
    EXPECT_EQ(root.m_vParameters[8]->m_strName, "l");
    EXPECT_EQ(root.GetSize(), bytes.size() + 4) << "a file id can be sized";
}

TEST(FlatBlock, LessThanFourBytesLeaveItEmpty)
{
    for (std::size_t nSize = 0; nSize < 4; ++nSize)
    {
        CParameterBlock root;
        root.AddParameter("Old", 1);
        EXPECT_EQ(LoadBlock(root, std::string(nSize, '\1')), 0);
        EXPECT_TRUE(root.m_vParameters.empty());
    }
}

TEST(FlatBlock, CountOfZeroOrBelowIsAnEmptyBlock)
{
    for (const std::uint64_t nCount : {0x0ull, 0xFFFFFFFFull, 0x80000000ull})
    {
        CParameterBlock root;
        root.AddParameter("Old", 1);
        EXPECT_EQ(LoadBlock(root, Bytes().U32(nCount).U32(2).U32(0).U32(5)), 4);
        EXPECT_TRUE(root.m_vParameters.empty());
    }
}

TEST(FlatBlock, UnknownTagLeavesANullAndTheReadGoesOnBehindTheTag)
{
    for (const std::uint64_t nTag : {0ull, 10ull, 0x7FFFFFFFull, 0xFFFFFFFFull})
    {
        CParameterBlock root;
        EXPECT_EQ(LoadBlock(root, Bytes().U32(2).U32(nTag).U32(2).Counted("V").U32(5)), 21);
        ASSERT_EQ(root.m_vParameters.size(), 2u);
        EXPECT_EQ(root.m_vParameters[0], nullptr);
        EXPECT_EQ(At<CIntParameter>(root, 1).m_nValue, 5);
    }
}

TEST(FlatBlock, NullEntriesAreSkippedByEveryWalk)
{
    CParameterBlock root;
    ASSERT_EQ(LoadBlock(root, Bytes()
                                  .U32(4)
                                  .U32(10)
                                  .U32(6)
                                  .Counted("B")
                                  .U32(1)
                                  .U32(99)
                                  .U32(2)
                                  .Counted("V")
                                  .U32(5)
                                  .U32(11)),
              42);
    ASSERT_EQ(root.m_vParameters.size(), 4u);
    const std::string expected =
        Bytes().U32(2).U32(6).Counted("B").U32(0).U32(2).Counted("V").U32(5);
    EXPECT_EQ(CreateBlock(root), expected);
    EXPECT_EQ(root.GetSize(), 4 + expected.size());
    EXPECT_EQ(SaveFlat(root), Bytes().U32(0).Text(expected).Get());
    int nValue = 0;
    EXPECT_TRUE(root.FindParameter("V", &nValue, 0));
    CParameterBlock* pBlock = nullptr;
    CParameterBlock::iterator it;
    EXPECT_TRUE(root.FindFirstParameter("B", &pBlock, &it));
    EXPECT_FALSE(root.FindNextParameter("B", &pBlock, &it));
    CParameterBlock copy;
    copy = root;
    EXPECT_EQ(CreateBlock(copy), expected);
    std::map<std::string, int> map;
    root.TokenizeNames(map);
    EXPECT_EQ(map.size(), 2u);
    root.SetTokens(map);
    CParameterBlock saved;
    EXPECT_EQ(LoadSession(saved, SaveSession(root)), 0);
    EXPECT_EQ(saved.m_vParameters.size(), 2u);
}

TEST(FlatBlock, CountOfZeroOrBelowGivesFourWhateverTheSize)
{
    for (const std::uint32_t nCount : {0u, 0xFFFFFFFFu, 0x80000000u})
    {
        ExactBuffer buffer(Bytes().U32(nCount));
        for (const unsigned long nSize : {4ul, 0xFFFFFFFFul, 0x100000000ul, 0x100000003ul, ~0ul})
        {
            CParameterBlock root;
            EXPECT_EQ(root.LoadBlock(nullptr, nSize, buffer.Get()), 4) << nCount << ' ' << nSize;
        }
    }
}

TEST(FlatBlock, RemainingBytesAreCountedInTheLow32BitsOfTheSize)
{
    // Behind the count: nothing at all, as far as the low 32 bits go.
    ExactBuffer buffer(Bytes().U32(1).U32(2).U32(0).U32(7));
    CParameterBlock root;
    EXPECT_EQ(root.LoadBlock(nullptr, 0x100000004ul, buffer.Get()), -1);
    EXPECT_EQ(root.LoadBlock(nullptr, 0x100000010ul, buffer.Get()), 0x100000010);
    EXPECT_EQ(At<CIntParameter>(root, 0).m_nValue, 7);
}

TEST(FlatBlock, NameOfABlockIsReadFromTheLow32BitsOfTheSize)
{
    // Two bytes hold no name; the count is then read from where the name would begin.
    ExactBuffer buffer(Bytes().U32(0).U32(1));
    CParameterBlock root;
    root.m_strName = "Old";
    EXPECT_EQ(root.Load(nullptr, 0x100000002ul, buffer.Get()), 4);
    EXPECT_EQ(root.m_strName, "Old");
}

TEST(FlatBlock, EveryEntryIsOfItsTagsClass)
{
    Bytes bytes;
    const std::size_t nRounds = 150;
    bytes.U32(nRounds * 9);
    for (std::size_t i = 0; i < nRounds; ++i)
    {
        bytes.U32(1).U32(0).Counted("text").U32(2).U32(0).U32(1).U32(3).U32(0).F64(1);
        bytes.U32(4).U32(0).U64(1).U32(5).U32(0).U64(1).U64(1).U32(6).U32(0).U32(1);
        bytes.U32(2).U32(0).U32(1).U32(7).U32(0).U8(1).U32(8).U32(0).F32(1).U32(9).U32(0).U64(1);
    }
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, bytes), static_cast<long>(bytes.Get().size()));
    EXPECT_EQ(root.m_vParameters.size(), nRounds * 9);
    ExpectClassesOfTags(root);
}

TEST(FlatBlock, TagThatDoesNotFitFailsAndKeepsTheEntriesBefore)
{
    for (std::size_t nRest = 0; nRest < 4; ++nRest)
    {
        CParameterBlock root;
        EXPECT_EQ(LoadBlock(root, Bytes().U32(2).U32(2).Counted("V").U32(5).Text(
                                      std::string(nRest, '\2'))),
                  -1);
        ASSERT_EQ(root.m_vParameters.size(), 1u);
        EXPECT_EQ(At<CIntParameter>(root, 0).m_nValue, 5);
    }
}

TEST(FlatBlock, FailureInsideANestedBlockDropsThatBlockAlone)
{
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, Bytes()
                                  .U32(3)
                                  .U32(2)
                                  .Counted("V")
                                  .U32(5)
                                  .U32(6)
                                  .Counted("Outer")
                                  .U32(2)
                                  .U32(2)
                                  .Counted("W")
                                  .U32(6)
                                  .U32(6)
                                  .Counted("Inner")
                                  .U32(1)
                                  .U8(0)),
              -1);
    ASSERT_EQ(root.m_vParameters.size(), 1u);
    EXPECT_EQ(root.m_vParameters[0]->m_strName, "V");
}

TEST(FlatBlock, LoadGivesMinusOneWhereLoadBlockDoes)
{
    CParameterBlock root;
    EXPECT_EQ(LoadFlat(root, Bytes().Counted("Root").U32(1)), -1);
    EXPECT_EQ(root.m_strName, "Root");
    EXPECT_EQ(LoadFlat(root, Bytes().Counted("Root").Text(TwoLevels())),
              static_cast<long>(8 + TwoLevels().size()));
}

TEST(FlatBlock, BlockCutInItsNameOrCountIsEmpty)
{
    CParameterBlock root;
    EXPECT_EQ(LoadFlat(root, "\1\1\1"), 0);
    EXPECT_EQ(LoadFlat(root, Bytes().Counted("Root").Text("\1\1\1")), 8);
    EXPECT_TRUE(root.m_vParameters.empty());
    // The same for a nested one, and then nothing more has to come.
    EXPECT_EQ(LoadBlock(root, Bytes().U32(1).U32(6).Counted("N").Text("\1\1\1")), 13);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
}

TEST(FlatBlock, LastValueCutShortStaysAtItsDefault)
{
    const std::string whole = Bytes().U32(2).U32(2).Counted("V").U32(5).U32(3).Counted("D").F64(1);
    for (std::size_t nMissing = 1; nMissing <= 8; ++nMissing)
    {
        CParameterBlock root;
        const std::string cut = whole.substr(0, whole.size() - nMissing);
        EXPECT_EQ(LoadBlock(root, cut), static_cast<long>(whole.size() - 8));
        EXPECT_EQ(At<CDoubleParameter>(root, 1).m_dValue, 0.0);
        EXPECT_EQ(root.m_vParameters[1]->m_strName, "D");
    }
}

TEST(FlatBlock, StringThatOverrunsHasTheNextTagReadFromItsBytes)
{
    CParameterBlock root;
    // The string's own bytes are "2, 0-name, 77": an int.
    EXPECT_EQ(LoadBlock(root, Bytes().U32(2).U32(1).Counted("S").U32(1000).U32(2).U32(0).U32(77)),
              29);
    ASSERT_EQ(root.m_vParameters.size(), 2u);
    EXPECT_TRUE(At<CStringParameter>(root, 0).m_strValue.empty());
    EXPECT_EQ(At<CIntParameter>(root, 1).m_nValue, 77);
}

TEST(FlatBlock, StatedCountsAreNotTrustedWithMemory)
{
    // Blocks nested 100,000 deep, each claiming two thousand million children.
    Bytes bytes;
    bytes.U32(INT_MAX);
    for (int i = 0; i < 100000; ++i)
        bytes.U32(6).U32(0).U32(INT_MAX);
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, bytes), -1);
    EXPECT_TRUE(root.m_vParameters.empty());
}

TEST(FlatBlock, TokensNeedTheSameTable)
{
    std::vector<std::string> names{"", "one", "two"};
    const std::string bytes = Bytes().U32(2).U32(2).U8(1).U32(5).U32(6).U8(2).U32(0);
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, bytes, &names), static_cast<long>(bytes.size()));
    EXPECT_EQ(root.m_vParameters[0]->m_strName, "one");
    EXPECT_EQ(root.m_vParameters[1]->m_strName, "two");
    EXPECT_EQ(CreateBlock(root), bytes) << "tokens stay in the tree";
}

TEST(FlatBlock, TableMayBeLongerThanTheBlock)
{
    std::vector<std::string> names(1000, "a name of more than fifteen bytes");
    CParameterBlock root;
    EXPECT_EQ(LoadBlock(root, Bytes().U32(1).U32(2).U8(0xFF).U8(0xE7).U8(3).U8(0).U32(5), &names),
              16);
    EXPECT_EQ(root.m_vParameters[0]->m_strName, names[999]);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 999);
}

TEST(FlatBlock, CopyIsInlineAgainButForItsNestedBlocks)
{
    std::vector<std::string> names{"", "one", "two"};
    CParameterBlock root;
    LoadBlock(root, Bytes().U32(2).U32(2).U8(1).U32(5).U32(6).U8(2).U32(1).U32(7).U8(1).U8(1),
              &names);
    CParameterBlock copy;
    copy = root;
    EXPECT_EQ(CreateBlock(copy), Bytes()
                                     .U32(2)
                                     .U32(2)
                                     .Counted("one")
                                     .U32(5)
                                     .U32(6)
                                     .U8(2)
                                     .U32(1)
                                     .U32(7)
                                     .Counted("one")
                                     .U8(1)
                                     .Get());
}

TEST(FlatBlockDeathTest, BlockWithAFileIdCannotBeWritten)
{
    CParameterBlock nested, root;
    nested.AddParameter("Id", TGL::FileIdType{1, 2});
    root.AddParameter("Nested", &nested);
    EXPECT_EQ(root.GetSize(), 8u + 18 + 4 + 6 + 8 + sizeof(long));
    EXPECT_DEATH(CreateBlock(root), "\\(false\\).*Save.*ParameterBlock.*1239");
    EXPECT_DEATH(SaveFlat(root), "\\(false\\).*Save.*ParameterBlock.*1239");
}

TEST(FlatBlockProgress, IsToldBehindEachNestedBlock)
{
    const std::string bytes = Bytes()
                                  .U32(3)
                                  .U32(6)
                                  .Counted("A")
                                  .U32(1)
                                  .U32(6)
                                  .Counted("B")
                                  .U32(0)
                                  .U32(2)
                                  .Counted("V")
                                  .U32(5)
                                  .U32(6)
                                  .Counted("C")
                                  .U32(0);
    CSink sink;
    CParameterBlock root(&sink, bytes.size());
    EXPECT_EQ(LoadBlock(root, bytes), static_cast<long>(bytes.size()));
    // B, then A around it, then C; each as bytes consumed of the whole buffer.
    EXPECT_EQ(sink.calls, (std::vector<unsigned long>{30, 30, bytes.size()}));
    EXPECT_EQ(At<CParameterBlock>(root, 0).m_pProgress, &sink);
    EXPECT_EQ(At<CParameterBlock>(root, 0).m_nProgressTotal, bytes.size());
}

TEST(FlatBlockProgress, IsMeasuredAgainstTheStatedTotal)
{
    CSink sink;
    CParameterBlock root(&sink, 1000);
    LoadBlock(root, Bytes().U32(1).U32(6).Counted("A").U32(0).Text("rest"));
    EXPECT_EQ(sink.calls, (std::vector<unsigned long>{996}));
}

TEST(FlatBlockProgress, StopDropsTheBlockAndKeepsTheEntriesBefore)
{
    CSink sink;
    sink.nStopAt = 1;
    const std::string bytes = Bytes()
                                  .U32(3)
                                  .U32(2)
                                  .Counted("V")
                                  .U32(5)
                                  .U32(6)
                                  .Counted("A")
                                  .U32(0)
                                  .U32(6)
                                  .Counted("B")
                                  .U32(0);
    CParameterBlock root(&sink, bytes.size());
    EXPECT_EQ(LoadBlock(root, bytes), -1);
    EXPECT_EQ(sink.calls.size(), 1u);
    ASSERT_EQ(root.m_vParameters.size(), 1u);
    EXPECT_EQ(root.m_vParameters[0]->m_strName, "V");
}

TEST(FlatBlockProgress, StopInsideANestedBlockDropsTheOuterOneToo)
{
    CSink sink;
    sink.nStopAt = 2;
    const std::string bytes = Bytes()
                                  .U32(2)
                                  .U32(6)
                                  .Counted("A")
                                  .U32(0)
                                  .U32(6)
                                  .Counted("B")
                                  .U32(1)
                                  .U32(6)
                                  .Counted("C")
                                  .U32(0);
    CParameterBlock root(&sink, bytes.size());
    EXPECT_EQ(LoadBlock(root, bytes), -1);
    ASSERT_EQ(root.m_vParameters.size(), 1u);
    EXPECT_EQ(root.m_vParameters[0]->m_strName, "A");
}

TEST(FlatBlockProgress, NoTotalNoCalls)
{
    CSink sink;
    CParameterBlock root(&sink, 0);
    EXPECT_EQ(LoadBlock(root, TwoLevels()), static_cast<long>(TwoLevels().size()));
    EXPECT_TRUE(sink.calls.empty());
}

TEST(FlatBlockProgress, ValuesAloneAreNotReported)
{
    CSink sink;
    CParameterBlock root(&sink, 17);
    LoadBlock(root, Bytes().U32(1).U32(2).Counted("V").U32(5));
    EXPECT_TRUE(sink.calls.empty());
}

TEST(FlatBlockProgress, SinkSeesEachEntryAppendedBehindTheUpdateBeforeIt)
{
    class CLooking : public CProgress
    {
    public:
        bool Update(unsigned long) override
        {
            sizes.push_back(pRoot->m_vParameters.size());
            return false;
        }
        const CParameterBlock* pRoot = nullptr;
        std::vector<std::size_t> sizes;
    };
    const std::string bytes = Bytes()
                                  .U32(5)
                                  .U32(2)
                                  .Counted("V")
                                  .U32(5)
                                  .U32(6)
                                  .Counted("A")
                                  .U32(1)
                                  .U32(6)
                                  .Counted("B")
                                  .U32(0)
                                  .U32(77)
                                  .U32(2)
                                  .Counted("V")
                                  .U32(5)
                                  .U32(6)
                                  .Counted("C")
                                  .U32(0);
    CLooking sink;
    CParameterBlock root(&sink, bytes.size());
    sink.pRoot = &root;
    EXPECT_EQ(LoadBlock(root, bytes), static_cast<long>(bytes.size()));
    // Inside A, behind A, behind C, which itself is appended only then.
    EXPECT_EQ(sink.sizes, (std::vector<std::size_t>{1, 1, 4}));
    EXPECT_EQ(root.m_vParameters.size(), 5u);
}

TEST(FlatBlockProgress, EveryBlockAsksTheSinkThatItWasGiven)
{
    class CLeaving : public CProgress
    {
    public:
        bool Update(unsigned long) override
        {
            ++nCalls;
            pRoot->m_pProgress = nullptr;
            return false;
        }
        CParameterBlock* pRoot = nullptr;
        int nCalls = 0;
    };
    const std::string bytes = Bytes()
                                  .U32(2)
                                  .U32(6)
                                  .Counted("A")
                                  .U32(2)
                                  .U32(6)
                                  .Counted("B")
                                  .U32(0)
                                  .U32(6)
                                  .Counted("C")
                                  .U32(0)
                                  .U32(6)
                                  .Counted("D")
                                  .U32(0);
    CLeaving sink;
    CParameterBlock root(&sink, bytes.size());
    sink.pRoot = &root;
    LoadBlock(root, bytes);
    EXPECT_EQ(sink.nCalls, 2) << "A has the sink still, for B and C; the root has none for A and D";
    EXPECT_EQ(At<CParameterBlock>(root, 1).m_pProgress, nullptr);
}
