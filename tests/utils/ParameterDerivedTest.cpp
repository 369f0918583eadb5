// Parameters of classes that are derived outside: their own GetSize, Save and Load have the word.
#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <typeinfo>

namespace
{
struct Calls
{
    int nGetSize = 0;
    std::vector<unsigned long> saveSizes;
};
Calls calls;

// Writes its value twice.
class CTwice : public CIntParameter
{
public:
    using CIntParameter::CIntParameter;
    unsigned long GetSize() const override
    {
        ++calls.nGetSize;
        return CIntParameter::GetSize() + 4;
    }
    unsigned long Save(unsigned long nSize, unsigned char* pDest) const override
    {
        calls.saveSizes.push_back(nSize);
        const unsigned long nWritten = CIntParameter::Save(nSize, pDest);
        std::memcpy(pDest + nWritten, &m_nValue, 4);
        return nWritten + 4;
    }
};

// Of a tag of its own.
class CForeign : public CParameter
{
public:
    CForeign() : CParameter(42) { m_strName = "F"; }
    unsigned long GetSize() const override { return GetSizeOfName() + 2; }
    unsigned long Save(unsigned long, unsigned char* pDest) const override
    {
        const unsigned long nName = SaveName(pDest);
        std::memcpy(pDest + nName, "!?", 2);
        return nName + 2;
    }
    long Load(std::vector<std::string>*, unsigned long, unsigned char*) override { return 0; }
    CParameter& operator=(CParameter&) override { return *this; }
};

// Hides its contents.
class CSealed : public CParameterBlock
{
public:
    unsigned long GetSize() const override { return GetSizeOfName() + 4; }
    unsigned long Save(unsigned long, unsigned char* pDest) const override
    {
        const unsigned long nName = SaveName(pDest);
        std::memset(pDest + nName, 0, 4);
        return nName + 4;
    }
};

// Says that it has written less, or more, than its size.
class CImprecise : public CTwice
{
public:
    explicit CImprecise(long nOff) : CTwice("I", 5), m_nOff(nOff) {}
    unsigned long Save(unsigned long nSize, unsigned char* pDest) const override
    {
        return CTwice::Save(nSize, pDest) + static_cast<unsigned long>(m_nOff);
    }

private:
    long m_nOff;
};

class CLoadAnswers : public CParameterBlock
{
public:
    explicit CLoadAnswers(long nAnswer) : m_nAnswer(nAnswer) {}
    long Load(std::vector<std::string>* pNames, unsigned long nSize, unsigned char*) override
    {
        names = *pNames;
        nSizeSeen = nSize;
        return m_nAnswer;
    }
    std::vector<std::string> names;
    unsigned long nSizeSeen = 0;

private:
    long m_nAnswer;
};

class DerivedParameter : public testing::Test
{
protected:
    void SetUp() override { calls = Calls(); }
};

const std::type_info& ClassOf(const CParameter* pParameter)
{
    return typeid(*pParameter);
}

std::string Twice(int nValue)
{
    return Bytes().U32(2).Counted("T").U32(nValue).U32(nValue);
}
} // namespace

TEST_F(DerivedParameter, ValueWritesItselfInAFlatBlock)
{
    CParameterBlock root;
    root.m_vParameters.push_back(new CTwice("T", 7));
    root.m_vParameters.push_back(new CForeign);
    root.AddParameter("V", 1);
    EXPECT_EQ(CreateBlock(root), Bytes()
                                     .U32(3)
                                     .Text(Twice(7))
                                     .U32(42)
                                     .Counted("F")
                                     .Text("!?")
                                     .U32(2)
                                     .Counted("V")
                                     .U32(1)
                                     .Get());
    // What is left of the buffer: its own 13 bytes and the two records behind it.
    EXPECT_EQ(calls.saveSizes, (std::vector<unsigned long>{13 + 11 + 13}));
}

TEST_F(DerivedParameter, ValueWritesItselfBelowANestedBlock)
{
    CParameterBlock root, nested;
    root.AddParameter("N", &nested);
    At<CParameterBlock>(root, 0).m_vParameters.push_back(new CTwice("T", 7));
    At<CParameterBlock>(root, 0).AddParameter("V", 1);
    const std::string contents = Bytes().U32(2).Text(Twice(7)).U32(2).Counted("V").U32(1);
    EXPECT_EQ(CreateBlock(root), Bytes().U32(1).U32(6).Counted("N").Text(contents).Get());
    EXPECT_EQ(calls.saveSizes, (std::vector<unsigned long>{13})) << "its own size";
    EXPECT_EQ(SaveFlat(root), Bytes().U32(0).Text(CreateBlock(root)).Get());
}

TEST_F(DerivedParameter, BlockWritesItself)
{
    CParameterBlock root;
    auto* pSealed = new CSealed;
    pSealed->AddParameter("Hidden", 1);
    root.m_vParameters.push_back(pSealed);
    root.AddParameter("V", 1);
    const std::string bytes = Bytes().U32(2).U32(6).U32(0).U32(0).U32(2).Counted("V").U32(1);
    EXPECT_EQ(CreateBlock(root), bytes);
    EXPECT_EQ(SaveFlat(root), Bytes().U32(0).Text(bytes).Get());
    EXPECT_EQ(root.GetSize(), bytes.size() + 4);
}

TEST_F(DerivedParameter, SaveMovesOnByTheSizeCreateBlockByWhatSaveReturns)
{
    // It fills its 13 bytes, and says that they were 9: the next record then begins in its last 4.
    CParameterBlock root;
    root.m_vParameters.push_back(new CImprecise(-4));
    root.AddParameter("V", 1);
    const std::string next = Bytes().U32(2).Counted("V").U32(1);
    const std::string bySize = Bytes().U32(2).U32(2).Counted("I").U32(5).U32(5).Text(next);
    EXPECT_EQ(SaveFlat(root), Bytes().U32(0).Text(bySize).Get());
    const std::string byReturn = Bytes().U32(2).U32(2).Counted("I").U32(5).Text(next);
    EXPECT_EQ(CreateBlock(root).substr(0, byReturn.size()), byReturn);
    EXPECT_EQ(CreateBlock(root).size(), bySize.size());
}

TEST_F(DerivedParameter, SessionHoldsWhatItWrites)
{
    CParameterBlock root;
    root.AddParameter("T", 1);
    root.m_vParameters.push_back(new CTwice("T", 7));
    const std::string bytes = SaveSession(root);
    const std::string header = Bytes().Magic().U32(100).U32(2).U32(1).Text("T").U8(0);
    EXPECT_EQ(
        bytes,
        Bytes().Text(header).U8(0).U32(2).U32(2).U8(1).U32(1).U32(2).U8(1).U32(7).U32(7).Get());
    EXPECT_EQ(root.m_vParameters[1]->m_nToken, 1);
}

TEST_F(DerivedParameter, RootOfASessionWritesItself)
{
    CSealed root;
    root.AddParameter("Hidden", 1);
    EXPECT_EQ(SaveSession(root),
              Bytes().Magic().U32(100).U32(7).U32(1).Text("Hidden").U8(0).U8(0).U32(0).Get());
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 1) << "tokens go into what it hides";
}

TEST_F(DerivedParameter, RootOfASessionLoadsItself)
{
    const std::string header = Bytes().Magic().U32(1).U32(4).U32(1).Text("Mod").U8(0);
    CLoadAnswers root(0);
    EXPECT_EQ(LoadSession(root, header + "body"), 0);
    EXPECT_EQ(root.names, (std::vector<std::string>{"", "Mod"}));
    EXPECT_EQ(root.nSizeSeen, 4u);
}

TEST_F(DerivedParameter, ResultOfALoadIsASigned32BitNumber)
{
    const std::string bytes = Bytes().Magic().U32(100).U32(0).U32(0).Text("body");
    const struct
    {
        long nAnswer;
        int nResult;
    } cases[] = {{0, 0},           {0x7FFFFFFF, 0},         {0x80000000, 2033},
                 {-1, 2033},       {-0x100000000, 0},       {0x180000000, 2033},
                 {0x100000000, 0}, {-0x17FFFFFFFll - 2, 0}, {0xFFFFFFFF, 2033}};
    for (const auto& rule : cases)
    {
        CLoadAnswers root(rule.nAnswer);
        EXPECT_EQ(LoadSession(root, bytes), rule.nResult) << rule.nAnswer;
    }
}

TEST_F(DerivedParameter, CopyIsOfTheTagsClass)
{
    CParameterBlock root, copy;
    root.m_vParameters.push_back(new CTwice("T", 7));
    auto* pSealed = new CSealed;
    pSealed->AddParameter("Hidden", 1);
    root.m_vParameters.push_back(pSealed);
    copy.CopyParameters(&root);
    EXPECT_EQ(ClassOf(copy.m_vParameters[0]), typeid(CIntParameter));
    EXPECT_EQ(At<CIntParameter>(copy, 0).m_nValue, 7);
    EXPECT_EQ(ClassOf(copy.m_vParameters[1]), typeid(CParameterBlock));
    EXPECT_EQ(At<CParameterBlock>(copy, 1).m_vParameters.size(), 1u);
}
