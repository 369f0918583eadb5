#include "utils/ParameterBlock.h"

#include "tests/utils/ParameterHelpers.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace
{
// Counts how many of it are alive.
class CCounted : public CParameter
{
public:
    static int nAlive;

    explicit CCounted(int nType = 77) : CParameter(nType) { ++nAlive; }
    ~CCounted() override { --nAlive; }
    unsigned long GetSize() const override { return 0; }
    unsigned long Save(unsigned long, unsigned char*) const override { return 0; }
    long Load(std::vector<std::string>*, unsigned long, unsigned char*) override { return 0; }
    CParameter& operator=(CParameter&) override { return *this; }
};
int CCounted::nAlive = 0;

// One parameter of every class, "none" and all.
void AddEverything(CParameterBlock& block)
{
    CParameterBlock nested;
    nested.AddParameter("Inner", 1);
    block.AddParameter("String", "a text longer than fifteen bytes");
    block.AddParameter("Int", 2);
    block.AddParameter("Double", 3.0);
    block.AddParameter("UInt64", 4ull);
    block.AddParameter("FileId", TGL::FileIdType{5, 6});
    block.AddParameter("Block", &nested);
    block.AddParameter("Bool", true);
    block.AddParameter("Float", 8.0F);
    block.AddParameter("SInt64", -9ll);
}
} // namespace

TEST(ParameterBlock, NewOneIsEmptyWithoutNameTokenOrProgress)
{
    const CParameterBlock block;
    EXPECT_TRUE(block.m_vParameters.empty());
    EXPECT_TRUE(block.m_strName.empty());
    EXPECT_EQ(block.m_nToken, -1);
    EXPECT_EQ(block.m_pProgress, nullptr);
    EXPECT_EQ(block.m_nProgressTotal, 0u);
}

TEST(ParameterBlock, AddParameterChoosesTheClassByTheValue)
{
    CParameterBlock block;
    AddEverything(block);
    ASSERT_EQ(block.m_vParameters.size(), 9u);
    for (std::size_t i = 0; i < 9; ++i)
    {
        EXPECT_EQ(block.m_vParameters[i]->m_nType, static_cast<int>(i + 1));
        EXPECT_EQ(block.m_vParameters[i]->m_nToken, -1);
    }
    EXPECT_EQ(At<CStringParameter>(block, 0).m_strValue, "a text longer than fifteen bytes");
    EXPECT_EQ(At<CIntParameter>(block, 1).m_nValue, 2);
    EXPECT_EQ(At<CDoubleParameter>(block, 2).m_dValue, 3.0);
    EXPECT_EQ(At<CUInt64Parameter>(block, 3).m_nValue, 4u);
    EXPECT_EQ(At<CFileIdTypeParameter>(block, 4).m_idValue.nFileKey, 5);
    EXPECT_EQ(At<CIntParameter>(At<CParameterBlock>(block, 5), 0).m_nValue, 1);
    EXPECT_TRUE(At<CBoolParameter>(block, 6).m_bValue);
    EXPECT_EQ(At<CFloatParameter>(block, 7).m_fValue, 8.0F);
    EXPECT_EQ(At<CSInt64Parameter>(block, 8).m_nValue, -9);
    EXPECT_EQ(block.m_vParameters[8]->m_strName, "SInt64");
}

TEST(ParameterBlock, AddParameterNeverLooksForTheName)
{
    CParameterBlock block;
    block.AddParameter("X", 1);
    block.AddParameter("X", 1);
    EXPECT_EQ(block.m_vParameters.size(), 2u);
}

TEST(ParameterBlock, AddedBlockIsADeepCopyUnderTheGivenName)
{
    CParameterBlock block;
    {
        CParameterBlock inner;
        inner.m_strName = "Own";
        inner.m_nToken = 5;
        inner.AddParameter("V", 1);
        block.AddParameter("Given", &inner);
        inner.AddParameter("Later", 2);
    }
    const auto& copy = At<CParameterBlock>(block, 0);
    EXPECT_EQ(copy.m_strName, "Given");
    EXPECT_EQ(copy.m_nToken, -1);
    ASSERT_EQ(copy.m_vParameters.size(), 1u);
    EXPECT_EQ(At<CIntParameter>(copy, 0).m_nValue, 1);
}

TEST(ParameterBlock, BlockCanBeAddedToItself)
{
    CParameterBlock block;
    block.AddParameter("V", 1);
    block.AddParameter("Self", &block);
    ASSERT_EQ(block.m_vParameters.size(), 2u);
    EXPECT_EQ(At<CParameterBlock>(block, 1).m_vParameters.size(), 1u);
}

TEST(ParameterBlock, NullsAreEmptyNamesTextsAndBlocks)
{
    CParameterBlock block;
    block.AddParameter(nullptr, static_cast<const char*>(nullptr));
    block.AddParameter(nullptr, static_cast<const CParameterBlock*>(nullptr));
    EXPECT_TRUE(At<CStringParameter>(block, 0).m_strName.empty());
    EXPECT_TRUE(At<CStringParameter>(block, 0).m_strValue.empty());
    EXPECT_TRUE(At<CParameterBlock>(block, 1).m_vParameters.empty());
    int nValue = 0;
    block.AddParameter("", 7);
    EXPECT_TRUE(block.FindParameter(nullptr, &nValue, 0));
    EXPECT_EQ(nValue, 7);
}

TEST(ParameterBlock, FindParameterGivesEveryType)
{
    CParameterBlock block;
    AddEverything(block);
    std::string string;
    int nInt = 0;
    double dDouble = 0;
    unsigned long long nUInt64 = 0;
    long long nSInt64 = 0;
    bool bBool = false;
    float fFloat = 0;
    TGL::FileIdType id{};
    CParameterBlock* pBlock = nullptr;
    EXPECT_TRUE(block.FindParameter("String", &string, "default"));
    EXPECT_TRUE(block.FindParameter("Int", &nInt, 0));
    EXPECT_TRUE(block.FindParameter("Double", &dDouble, 0.0));
    EXPECT_TRUE(block.FindParameter("UInt64", &nUInt64, 0));
    EXPECT_TRUE(block.FindParameter("SInt64", &nSInt64, 0));
    EXPECT_TRUE(block.FindParameter("Bool", &bBool, false));
    EXPECT_TRUE(block.FindParameter("Float", &fFloat, 0.0F));
    EXPECT_TRUE(block.FindParameter("FileId", &id));
    EXPECT_TRUE(block.FindParameter("Block", &pBlock));
    EXPECT_EQ(string, "a text longer than fifteen bytes");
    EXPECT_EQ(nInt, 2);
    EXPECT_EQ(dDouble, 3.0);
    EXPECT_EQ(nUInt64, 4u);
    EXPECT_EQ(nSInt64, -9);
    EXPECT_TRUE(bBool);
    EXPECT_EQ(fFloat, 8.0F);
    EXPECT_EQ(id.nFileKey, 5);
    EXPECT_EQ(id.nFileSub, 6);
    EXPECT_EQ(pBlock, block.m_vParameters[5]) << "the nested block itself, not a copy";
}

TEST(ParameterBlock, MissGivesTheDefaultOfEveryType)
{
    const CParameterBlock block;
    std::string string = "old";
    int nInt = 0;
    double dDouble = 0;
    unsigned long long nUInt64 = 0;
    long long nSInt64 = 0;
    bool bBool = false;
    float fFloat = 0;
    TGL::FileIdType id{1, 2};
    CParameterBlock other;
    CParameterBlock* pBlock = &other;
    EXPECT_FALSE(block.FindParameter("N", &string, "default"));
    EXPECT_FALSE(block.FindParameter("N", &nInt, -1));
    EXPECT_FALSE(block.FindParameter("N", &dDouble, -2.0));
    EXPECT_FALSE(block.FindParameter("N", &nUInt64, 3));
    EXPECT_FALSE(block.FindParameter("N", &nSInt64, -4));
    EXPECT_FALSE(block.FindParameter("N", &bBool, true));
    EXPECT_FALSE(block.FindParameter("N", &fFloat, -5.0F));
    EXPECT_FALSE(block.FindParameter("N", &id));
    EXPECT_FALSE(block.FindParameter("N", &pBlock));
    EXPECT_EQ(string, "default");
    EXPECT_EQ(nInt, -1);
    EXPECT_EQ(dDouble, -2.0);
    EXPECT_EQ(nUInt64, 3u);
    EXPECT_EQ(nSInt64, -4);
    EXPECT_TRUE(bBool);
    EXPECT_EQ(fFloat, -5.0F);
    EXPECT_EQ(id.nFileKey, -1);
    EXPECT_EQ(id.nFileSub, -1);
    EXPECT_EQ(pBlock, nullptr);
}

TEST(ParameterBlock, MissWithNullDefaultLeavesTheString)
{
    const CParameterBlock block;
    std::string string = "old";
    EXPECT_FALSE(block.FindParameter("N", &string, nullptr));
    EXPECT_EQ(string, "old");
}

TEST(ParameterBlock, FindParameterNeverConvertsAndGoesOnPastOtherTypes)
{
    CParameterBlock block;
    block.AddParameter("X", 1);
    block.AddParameter("X", 2.0);
    int nInt = 0;
    double dDouble = 0;
    float fFloat = 0;
    long long nSInt64 = 0;
    EXPECT_TRUE(block.FindParameter("X", &nInt, 0));
    EXPECT_EQ(nInt, 1);
    EXPECT_TRUE(block.FindParameter("X", &dDouble, 0.0));
    EXPECT_EQ(dDouble, 2.0);
    EXPECT_FALSE(block.FindParameter("X", &fFloat, 9.0F));
    EXPECT_EQ(fFloat, 9.0F);
    EXPECT_FALSE(block.FindParameter("X", &nSInt64, 0));
}

TEST(ParameterBlock, FindParameterTakesTheFirstOfItsNameAndType)
{
    CParameterBlock block;
    block.AddParameter("X", 1);
    block.AddParameter("X", 2);
    int nInt = 0;
    EXPECT_TRUE(block.FindParameter("X", &nInt, 0));
    EXPECT_EQ(nInt, 1);
}

TEST(ParameterBlock, FirstOfANameIsFoundForEveryType)
{
    CParameterBlock block, first, second;
    first.AddParameter("I am", 1);
    second.AddParameter("I am", 2);
    block.AddParameter("X", "first");
    block.AddParameter("X", "second");
    block.AddParameter("X", 1.0);
    block.AddParameter("X", 2.0);
    block.AddParameter("X", 1ull);
    block.AddParameter("X", 2ull);
    block.AddParameter("X", 1ll);
    block.AddParameter("X", 2ll);
    block.AddParameter("X", TGL::FileIdType{1, 1});
    block.AddParameter("X", TGL::FileIdType{2, 2});
    block.AddParameter("X", &first);
    block.AddParameter("X", &second);
    block.AddParameter("X", true);
    block.AddParameter("X", false);
    block.AddParameter("X", 1.0F);
    block.AddParameter("X", 2.0F);
    std::string string;
    double dDouble = 0;
    unsigned long long nUInt64 = 0;
    long long nSInt64 = 0;
    TGL::FileIdType id{};
    CParameterBlock* pBlock = nullptr;
    bool bBool = false;
    float fFloat = 0;
    EXPECT_TRUE(block.FindParameter("X", &string, nullptr));
    EXPECT_TRUE(block.FindParameter("X", &dDouble, 0.0));
    EXPECT_TRUE(block.FindParameter("X", &nUInt64, 0));
    EXPECT_TRUE(block.FindParameter("X", &nSInt64, 0));
    EXPECT_TRUE(block.FindParameter("X", &id));
    EXPECT_TRUE(block.FindParameter("X", &pBlock));
    EXPECT_TRUE(block.FindParameter("X", &bBool, false));
    EXPECT_TRUE(block.FindParameter("X", &fFloat, 0.0F));
    EXPECT_EQ(string, "first");
    EXPECT_EQ(dDouble, 1.0);
    EXPECT_EQ(nUInt64, 1u);
    EXPECT_EQ(nSInt64, 1);
    EXPECT_EQ(id.nFileKey, 1);
    EXPECT_EQ(At<CIntParameter>(*pBlock, 0).m_nValue, 1);
    EXPECT_TRUE(bBool);
    EXPECT_EQ(fFloat, 1.0F);
}

TEST(ParameterBlock, NamesAreComparedWhole)
{
    const std::string strLong(40, 'n');
    CParameterBlock block;
    block.AddParameter("Mode", 1);
    block.AddParameter(strLong.c_str(), 2);
    block.AddParameter("exactly15bytes!", 3);
    block.AddParameter("exactly16 bytes!", 4);
    block.AddParameter("only 14 bytes!", 5);
    int nInt = 0;
    EXPECT_FALSE(block.FindParameter("Mod", &nInt, 0));
    EXPECT_FALSE(block.FindParameter("Mode ", &nInt, 0));
    EXPECT_FALSE(block.FindParameter("mode", &nInt, 0));
    EXPECT_FALSE(block.FindParameter(strLong.substr(1).c_str(), &nInt, 0));
    EXPECT_FALSE(block.FindParameter((strLong + "n").c_str(), &nInt, 0));
    EXPECT_TRUE(block.FindParameter(strLong.c_str(), &nInt, 0));
    EXPECT_EQ(nInt, 2);
    EXPECT_TRUE(block.FindParameter("exactly15bytes!", &nInt, 0));
    EXPECT_EQ(nInt, 3);
    EXPECT_TRUE(block.FindParameter("exactly16 bytes!", &nInt, 0));
    EXPECT_EQ(nInt, 4);
    EXPECT_TRUE(block.FindParameter("only 14 bytes!", &nInt, 0));
    EXPECT_EQ(nInt, 5);
}

TEST(ParameterBlock, FoundBlockStaysOwnedAndCanBeChanged)
{
    CParameterBlock block;
    AddEverything(block);
    CParameterBlock* pBlock = nullptr;
    ASSERT_TRUE(block.FindParameter("Block", &pBlock));
    pBlock->AddParameter("More", 2);
    ASSERT_TRUE(block.FindParameter("Block", &pBlock));
    EXPECT_EQ(pBlock->m_vParameters.size(), 2u);
}

TEST(ParameterBlock, FirstAndNextWalkTheBlocksOfOneName)
{
    CParameterBlock block;
    for (int i = 0; i < 5; ++i)
    {
        CParameterBlock nested;
        nested.AddParameter("V", i);
        block.AddParameter(i % 2 == 0 ? "Even" : "Odd", &nested);
        block.AddParameter("Even", i);
    }
    std::vector<int> values;
    CParameterBlock* pBlock = nullptr;
    CParameterBlock::iterator it;
    for (bool f = block.FindFirstParameter("Even", &pBlock, &it); f;
         f = block.FindNextParameter("Even", &pBlock, &it))
    {
        int nValue = -1;
        pBlock->FindParameter("V", &nValue, -1);
        values.push_back(nValue);
        EXPECT_EQ(*it, pBlock);
    }
    EXPECT_EQ(values, (std::vector<int>{0, 2, 4}));
}

TEST(ParameterBlock, MissOfAWalkLeavesBothTargets)
{
    CParameterBlock block;
    CParameterBlock nested;
    block.AddParameter("B", &nested);
    block.AddParameter("V", 1);
    CParameterBlock* pBlock = &nested;
    CParameterBlock::iterator it = block.m_vParameters.begin();
    EXPECT_FALSE(block.FindFirstParameter("V", &pBlock, &it)) << "only blocks are walked";
    EXPECT_FALSE(block.FindFirstParameter("None", &pBlock, &it));
    EXPECT_FALSE(block.FindNextParameter("B", &pBlock, &it)) << "starts behind the position";
    EXPECT_EQ(pBlock, &nested);
    EXPECT_EQ(it, block.m_vParameters.begin());
    it = block.m_vParameters.end();
    EXPECT_FALSE(block.FindNextParameter("B", &pBlock, &it));
}

TEST(ParameterBlock, ClearDeletesEveryParameterAndKeepsTheRest)
{
    class CSink : public CProgress
    {
        bool Update(unsigned long) override { return false; }
    } sink;
    CParameterBlock block(&sink, 99);
    block.m_strName = "Name";
    {
        CParameterBlock nested;
        block.AddParameter("B", &nested);
    }
    At<CParameterBlock>(block, 0).m_vParameters.push_back(new CCounted);
    block.m_vParameters.push_back(new CCounted);
    block.m_vParameters.push_back(nullptr);
    block.m_vParameters.push_back(new CCounted);
    ASSERT_EQ(CCounted::nAlive, 3);
    const std::size_t nCapacity = block.m_vParameters.capacity();
    block.Clear();
    EXPECT_EQ(CCounted::nAlive, 0);
    EXPECT_TRUE(block.m_vParameters.empty());
    EXPECT_EQ(block.m_vParameters.capacity(), nCapacity);
    EXPECT_EQ(block.m_pProgress, &sink);
    EXPECT_EQ(block.m_nProgressTotal, 99u);
    EXPECT_EQ(block.m_strName, "Name");
    block.Clear();
    EXPECT_TRUE(block.m_vParameters.empty());
}

TEST(ParameterBlock, EveryShapeOfTreeDiesWhole)
{
    // Every way to nest four blocks, with values before, between and behind them.
    for (int nShape = 0; nShape < 256; ++nShape)
    {
        {
            CParameterBlock root;
            std::vector<CParameterBlock*> blocks{&root};
            for (int i = 0; i < 4; ++i)
            {
                CParameterBlock* pParent = blocks[(nShape >> (2 * i)) % blocks.size()];
                if (i % 2 == 0)
                    pParent->m_vParameters.push_back(new CCounted);
                auto* pNew = new CParameterBlock;
                pParent->m_vParameters.push_back(pNew);
                pNew->m_vParameters.push_back(new CCounted);
                if (i % 2 == 1)
                    pParent->m_vParameters.push_back(new CCounted);
                blocks.push_back(pNew);
            }
            EXPECT_EQ(CCounted::nAlive, 8);
        }
        EXPECT_EQ(CCounted::nAlive, 0) << nShape;
    }
}

TEST(ParameterBlock, CopyIsDeepAndKeepsTheOrder)
{
    CParameterBlock source;
    source.m_strName = "Source";
    AddEverything(source);
    CParameterBlock copy;
    copy.AddParameter("Old", 1);
    copy.CopyParameters(&source);
    ASSERT_EQ(copy.m_vParameters.size(), 9u);
    EXPECT_TRUE(copy.m_strName.empty());
    EXPECT_EQ(copy.GetSize(), source.GetSize() - 6);
    for (std::size_t i = 0; i < 9; ++i)
    {
        EXPECT_NE(copy.m_vParameters[i], source.m_vParameters[i]);
        EXPECT_EQ(copy.m_vParameters[i]->m_nType, source.m_vParameters[i]->m_nType);
        EXPECT_EQ(copy.m_vParameters[i]->m_strName, source.m_vParameters[i]->m_strName);
    }
    EXPECT_EQ(At<CFileIdTypeParameter>(copy, 4).m_idValue.nFileSub, 6);
    for (CParameterBlock* pBlock : {&source, &copy})
    {
        delete pBlock->m_vParameters[4];
        pBlock->m_vParameters.erase(pBlock->m_vParameters.begin() + 4);
    }
    EXPECT_EQ(CreateBlock(copy), CreateBlock(source));
}

TEST(ParameterBlock, CopiesOfNestedBlocksKeepTheirTokensValuesDoNot)
{
    CParameterBlock source;
    AddEverything(source);
    for (CParameter* pEntry : source.m_vParameters)
        pEntry->m_nToken = 7;
    At<CParameterBlock>(source, 5).m_vParameters[0]->m_nToken = 8;
    CParameterBlock copy;
    copy.CopyParameters(&source);
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_EQ(copy.m_vParameters[i]->m_nToken, i == 5 ? 7 : -1) << i;
    EXPECT_EQ(At<CParameterBlock>(copy, 5).m_vParameters[0]->m_nToken, -1);
}

TEST(ParameterBlock, CopyHasNoProgress)
{
    class CSink : public CProgress
    {
        bool Update(unsigned long) override { return false; }
    } sink;
    CParameterBlock source(&sink, 9);
    const CParameterBlock byName("N", &source);
    EXPECT_EQ(byName.m_pProgress, nullptr);
    EXPECT_EQ(byName.m_nProgressTotal, 0u);
    const CParameterBlock byParameter(static_cast<CParameter*>(&source));
    EXPECT_EQ(byParameter.m_pProgress, nullptr);
    EXPECT_EQ(byParameter.m_nProgressTotal, 0u);
}

TEST(ParameterBlock, CopiesOfNestedBlocksHaveNoProgressEither)
{
    class CSink : public CProgress
    {
        bool Update(unsigned long) override { return false; }
    } sink;
    CParameterBlock source(&sink, 9), nested;
    source.AddParameter("Nested", &nested);
    At<CParameterBlock>(source, 0).m_pProgress = &sink;
    At<CParameterBlock>(source, 0).m_nProgressTotal = 9;
    CParameterBlock copy;
    copy.CopyParameters(&source);
    EXPECT_EQ(At<CParameterBlock>(copy, 0).m_pProgress, nullptr);
    EXPECT_EQ(At<CParameterBlock>(copy, 0).m_nProgressTotal, 0u);
}

TEST(ParameterBlock, AssignmentOfEitherFormCopiesNeitherTokenNorProgress)
{
    class CSink : public CProgress
    {
        bool Update(unsigned long) override { return false; }
    } sourceSink, targetSink;
    CParameterBlock source(&sourceSink, 9);
    source.m_nToken = 5;
    CParameterBlock target(&targetSink, 8);
    target.m_nToken = 4;
    target = source;
    target = static_cast<CParameter&>(source);
    EXPECT_EQ(target.m_nToken, 4);
    EXPECT_EQ(target.m_pProgress, &targetSink);
    EXPECT_EQ(target.m_nProgressTotal, 8u);
    EXPECT_EQ(target.m_nType, 6);
}

TEST(ParameterBlock, CopyKeepsTheCapacityOfTheList)
{
    CParameterBlock source, target;
    source.AddParameter("V", 1);
    target.m_vParameters.reserve(500);
    AddEverything(target);
    target.CopyParameters(&source);
    EXPECT_GE(target.m_vParameters.capacity(), 500u);
    EXPECT_EQ(target.m_vParameters.size(), 1u);
    target.CopyParameters(nullptr);
    EXPECT_GE(target.m_vParameters.capacity(), 500u);
}

TEST(ParameterBlock, EveryCopyIsOfItsTagsClass)
{
    CParameterBlock source;
    for (int i = 0; i < 200; ++i)
        AddEverything(source);
    CParameterBlock copy;
    copy.CopyParameters(&source);
    ExpectClassesOfTags(copy);
}

TEST(ParameterBlock, CopySkipsNullsAndForeignTags)
{
    CParameterBlock source;
    source.m_vParameters.push_back(nullptr);
    source.m_vParameters.push_back(new CCounted);
    source.AddParameter("V", 1);
    source.m_vParameters.push_back(new CCounted(0));
    source.m_vParameters.push_back(new CCounted(10));
    CParameterBlock copy;
    copy.CopyParameters(&source);
    ASSERT_EQ(copy.m_vParameters.size(), 1u);
    EXPECT_EQ(At<CIntParameter>(copy, 0).m_nValue, 1);
}

TEST(ParameterBlock, CopiedOntoItselfItIsEmpty)
{
    CParameterBlock block;
    AddEverything(block);
    block.CopyParameters(&block);
    EXPECT_TRUE(block.m_vParameters.empty());
    AddEverything(block);
    CParameterBlock& same = block;
    block = same;
    EXPECT_TRUE(block.m_vParameters.empty());
}

TEST(ParameterBlock, CopiesWhatLiesInsideIt)
{
    CParameterBlock block;
    AddEverything(block);
    block.CopyParameters(&At<CParameterBlock>(block, 5));
    ASSERT_EQ(block.m_vParameters.size(), 1u);
    EXPECT_EQ(At<CIntParameter>(block, 0).m_nValue, 1);
}

TEST(ParameterBlock, CopiesWhatItLiesIn)
{
    CParameterBlock outer;
    CParameterBlock inner;
    inner.AddParameter("Old", 0);
    outer.AddParameter("First", 1);
    outer.AddParameter("Inner", &inner);
    outer.AddParameter("Last", 2);
    auto& target = At<CParameterBlock>(outer, 1);
    target.CopyParameters(&outer);
    // Its own copy holds what had been copied by then.
    ASSERT_EQ(target.m_vParameters.size(), 3u);
    EXPECT_EQ(target.m_vParameters[0]->m_strName, "First");
    EXPECT_EQ(target.m_vParameters[2]->m_strName, "Last");
    const auto& copy = At<CParameterBlock>(target, 1);
    ASSERT_EQ(copy.m_vParameters.size(), 1u);
    EXPECT_EQ(copy.m_vParameters[0]->m_strName, "First");
}

TEST(ParameterBlock, CopiesWhatItLiesDeepIn)
{
    CParameterBlock outer, middle, inner;
    middle.AddParameter("Inner", &inner);
    middle.AddParameter("M", 1);
    outer.AddParameter("Middle", &middle);
    auto& target = At<CParameterBlock>(At<CParameterBlock>(outer, 0), 0);
    target.CopyParameters(&outer);
    ASSERT_EQ(target.m_vParameters.size(), 1u);
    const auto& copyOfMiddle = At<CParameterBlock>(target, 0);
    ASSERT_EQ(copyOfMiddle.m_vParameters.size(), 2u);
    EXPECT_TRUE(At<CParameterBlock>(copyOfMiddle, 0).m_vParameters.empty());
}

TEST(ParameterBlock, ConstructorFromParameterAloneCopiesTheToken)
{
    CParameterBlock source;
    source.m_strName = "Name";
    source.m_nToken = 5;
    source.AddParameter("V", 1);
    const CParameterBlock copy(static_cast<CParameter*>(&source));
    EXPECT_EQ(copy.m_strName, "Name");
    EXPECT_EQ(copy.m_nToken, 5);
    EXPECT_EQ(copy.m_vParameters.size(), 1u);
    const CParameterBlock named("Other", &source);
    EXPECT_EQ(named.m_strName, "Other");
    EXPECT_EQ(named.m_nToken, -1);
    EXPECT_EQ(named.m_vParameters.size(), 1u);
    EXPECT_TRUE(CParameterBlock(nullptr, &source).m_strName.empty());
}

TEST(ParameterBlock, ConstructorFromNoBlockIsEmpty)
{
    CIntParameter foreign("Name", 1);
    foreign.m_nToken = 3;
    const CParameterBlock copy(static_cast<CParameter*>(&foreign));
    EXPECT_EQ(copy.m_strName, "Name");
    EXPECT_EQ(copy.m_nToken, 3);
    EXPECT_TRUE(copy.m_vParameters.empty());
    EXPECT_TRUE(CParameterBlock(static_cast<CParameter*>(nullptr)).m_vParameters.empty());
}

TEST(ParameterBlock, AssignmentFromBlockKeepsTheName)
{
    CParameterBlock source, target;
    source.m_strName = "Source";
    source.AddParameter("V", 1);
    target.m_strName = "Target";
    target.m_nToken = 4;
    target.AddParameter("Old", 2.0);
    target = source;
    EXPECT_EQ(target.m_strName, "Target");
    EXPECT_EQ(target.m_nToken, 4);
    ASSERT_EQ(target.m_vParameters.size(), 1u);
    EXPECT_EQ(At<CIntParameter>(target, 0).m_nValue, 1);
}

TEST(ParameterBlock, AssignmentFromParameterTakesTheName)
{
    CParameterBlock source, target;
    source.m_strName = "Source";
    source.AddParameter("V", 1);
    target.m_strName = "Target";
    target.m_nToken = 4;
    target = static_cast<CParameter&>(source);
    EXPECT_EQ(target.m_strName, "Source");
    EXPECT_EQ(target.m_nToken, 4);
    EXPECT_EQ(target.m_vParameters.size(), 1u);
}

TEST(ParameterBlock, AssignmentFromAForeignClassLeavesItEmpty)
{
    CIntParameter foreign("Foreign", 1);
    CParameterBlock target;
    target.AddParameter("V", 1);
    EXPECT_NO_THROW(target = static_cast<CParameter&>(foreign));
    EXPECT_EQ(target.m_strName, "Foreign");
    EXPECT_TRUE(target.m_vParameters.empty());
}

TEST(ParameterBlock, LargeCopyOutlivesItsSourceAndLosesPartsOneByOne)
{
    CParameterBlock copy;
    {
        CParameterBlock source;
        for (int i = 0; i < 3000; ++i)
        {
            CParameterBlock nested;
            nested.AddParameter("Text", std::to_string(i).append(20, '.').c_str());
            nested.AddParameter("Value", i);
            source.AddParameter("Nested", &nested);
        }
        copy.CopyParameters(&source);
    }
    for (int i = 0; i < 3000; i += 2)
    {
        delete copy.m_vParameters[static_cast<std::size_t>(i)];
        copy.m_vParameters[static_cast<std::size_t>(i)] = nullptr;
    }
    auto& odd = At<CParameterBlock>(copy, 2999);
    odd.AddParameter("More", 1.0);
    EXPECT_EQ(At<CIntParameter>(odd, 1).m_nValue, 2999);
    EXPECT_EQ(odd.m_vParameters.size(), 3u);
    const std::unique_ptr<CParameter> pTaken(copy.m_vParameters.back());
    copy.m_vParameters.pop_back();
    copy.Clear();
    EXPECT_EQ(At<CIntParameter>(static_cast<CParameterBlock&>(*pTaken), 1).m_nValue, 2999);
}
