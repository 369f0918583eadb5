// Walks over valid files with every bit turned and every byte cut off. What is read may be
// anything; the sanitizers watch that no step is taken outside, and every tree that comes of it
// must stand up to all operations.
#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace
{
bool HoldsFileId(const CParameterBlock& block)
{
    for (const CParameter* pEntry : block.m_vParameters)
    {
        if (!pEntry)
            continue;
        if (pEntry->m_nType == CFileIdTypeParameter::kType)
            return true;
        if (pEntry->m_nType == CParameterBlock::kType &&
            HoldsFileId(static_cast<const CParameterBlock&>(*pEntry)))
            return true;
    }
    return false;
}

bool HasZeroInANameOf(const CParameterBlock& block)
{
    std::map<std::string, int> names;
    block.TokenizeNames(names);
    return std::any_of(names.begin(), names.end(),
                       [](const auto& name) { return name.first.find('\0') != std::string::npos; });
}

void UseEveryOperation(CParameterBlock& block)
{
    const unsigned long nSize = block.GetSize();
    EXPECT_GE(nSize, 5u);
    CParameterBlock copy;
    copy.CopyParameters(&block);
    std::string text;
    block.FindParameter("Text", &text, "");
    CParameterBlock* pBlock = nullptr;
    CParameterBlock::iterator it;
    for (bool f = block.FindFirstParameter("Block", &pBlock, &it); f;
         f = block.FindNextParameter("Block", &pBlock, &it))
        pBlock->GetSize();
    if (HoldsFileId(block))
        return;
    EXPECT_EQ(SaveFlat(block).size(), nSize);
    const std::string saved = SaveSession(copy);
    if (saved.empty())
        return;
    CParameterBlock again;
    const int nResult = LoadSession(again, saved);
    // A zero byte in an inline name ends that name in a session's table.
    if (!HasZeroInANameOf(copy))
    {
        EXPECT_EQ(nResult, 0);
        EXPECT_EQ(CreateBlock(again), CreateBlock(copy));
    }
}

void Mutate(const std::string& bytes, const std::function<void(const std::string&)>& load)
{
    for (std::size_t nKept = 0; nKept < bytes.size(); ++nKept)
        load(bytes.substr(0, nKept));
    for (std::size_t nBit = 0; nBit < bytes.size() * 8; ++nBit)
    {
        std::string turned = bytes;
        turned[nBit / 8] = static_cast<char>(turned[nBit / 8] ^ (1 << nBit % 8));
        load(turned);
    }
    for (std::size_t nByte = 0; nByte < bytes.size(); ++nByte)
    {
        for (const char cValue : {'\0', '\1', '\6', '\x7F', '\xFE', '\xFF'})
        {
            std::string set = bytes;
            set[nByte] = cValue;
            load(set);
        }
    }
}

std::string Records(bool fInline)
{
    const auto name = [fInline](const char* pName, unsigned nToken)
    { return fInline ? Bytes().Counted(pName).Get() : Bytes().U8(nToken).Get(); };
    return Bytes()
        .U32(10)
        .U32(1)
        .Text(name("Text", 1))
        .Counted("some text that is long")
        .U32(2)
        .Text(name("Int", 2))
        .U32(7)
        .U32(3)
        .Text(name("Double", 3))
        .F64(1.5)
        .U32(4)
        .Text(name("UInt64", 4))
        .U64(8)
        .U32(5)
        .Text(name("FileId", 5))
        .U64(1)
        .U64(2)
        .U32(6)
        .Text(name("Block", 6))
        .U32(2)
        .U32(6)
        .Text(name("Block", 6))
        .U32(1)
        .U32(9)
        .Text(name("SInt64", 9))
        .U64(9)
        .U32(2)
        .Text(name("Int", 2))
        .U32(3)
        .U32(7)
        .Text(name("Bool", 7))
        .U8(1)
        .U32(8)
        .Text(name("Float", 8))
        .F32(0.5F)
        .U32(9)
        .Text(name("SInt64", 9))
        .U64(9)
        .U32(2)
        .Text(fInline ? name("Int", 2) : Bytes().U8(255).U8(2).U8(0).U8(0).Get())
        .U32(7);
}

std::string Session(const std::string& records)
{
    std::string table;
    for (const char* pName :
         {"Text", "Int", "Double", "UInt64", "FileId", "Block", "Bool", "Float", "SInt64"})
        table += std::string(pName) + '\0';
    return Bytes().Magic().U32(100).U32(table.size()).U32(9).Text(table).U8(0).Text(records);
}

void LoadMutatedSession(const std::string& bytes)
{
    CParameterBlock block;
    const int nResult = LoadSession(block, bytes);
    EXPECT_TRUE(nResult == 0 || nResult == 2033 || nResult == 7534) << nResult;
    UseEveryOperation(block);
}
} // namespace

TEST(ParameterMutation, Sessions)
{
    Mutate(Session(Records(false)), LoadMutatedSession);
}

TEST(ParameterMutation, SessionsWithoutFileIds)
{
    CParameterBlock root, nested;
    nested.AddParameter("Text", "t");
    nested.AddParameter("Bool", true);
    root.AddParameter("Block", &nested);
    root.AddParameter("Block", &nested);
    root.AddParameter("Text", "a text of more than fifteen bytes");
    root.AddParameter("", 1.0);
    Mutate(SaveSession(root), LoadMutatedSession);
}

TEST(ParameterMutation, FlatBlocksWithInlineNames)
{
    Mutate(Records(true),
           [](const std::string& bytes)
           {
               CParameterBlock block;
               const long nResult = LoadBlock(block, bytes);
               EXPECT_GE(nResult, -1);
               EXPECT_LE(nResult, static_cast<long>(bytes.size()));
               UseEveryOperation(block);
           });
}

TEST(ParameterMutation, FlatBlocksWithTokens)
{
    std::vector<std::string> names{"", "Text", "Int", "Block", "a name of more than fifteen bytes"};
    Mutate(Records(false),
           [&names](const std::string& bytes)
           {
               CParameterBlock block;
               const long nResult = LoadBlock(block, bytes, &names);
               EXPECT_GE(nResult, -1);
               EXPECT_LE(nResult, static_cast<long>(bytes.size()));
               UseEveryOperation(block);
           });
}
