#include "apps/session/SessionScan.h"

#include "tests/utils/ParameterHelpers.h"

#include <gtest/gtest.h>

using namespace Tarvane::Session;

namespace
{

// Names "A" and "B", then the root, which holds what follows.
Bytes Start(std::uint32_t nChildren)
{
    return Bytes()
        .Magic()
        .U32(100)
        .U32(4)
        .U32(2)
        .Text(std::string_view("A\0B\0", 4))
        .U8(0)
        .U32(nChildren);
}
constexpr std::size_t kRecords = 38 + 4 + 5;

void ExpectFlaw(const std::string& bytes, std::size_t nOffset, const std::string& strReason,
                const std::string& strPath)
{
    const auto session = Scan(bytes);
    ASSERT_TRUE(session.flaw);
    EXPECT_EQ(session.flaw->nOffset, nOffset);
    EXPECT_EQ(session.flaw->strReason, strReason);
    EXPECT_EQ(session.flaw->strPath, strPath);
}

std::string Nested()
{
    return Start(3)
        .U32(6)
        .U8(1)
        .U32(0)
        .U32(6)
        .U8(1)
        .U32(2)
        .U32(7)
        .U8(2)
        .U8(1)
        .U32(6)
        .U8(2)
        .U32(1)
        .U32(2)
        .U8(1)
        .U32(5)
        .U32(1)
        .U8(0)
        .Counted("text");
}

} // namespace

TEST(SessionScan, FindsNothingWrongWithWhatIsWritten)
{
    CParameterBlock nested, root;
    nested.AddParameter("A", 1.0);
    root.AddParameter("B", &nested);
    root.AddParameter("B", "text");
    const std::string bytes = SaveSession(root);
    const auto session = Scan(bytes);
    EXPECT_FALSE(session.flaw);
    EXPECT_EQ(session.names, (std::vector<std::string>{"", "B", "A"}));
    EXPECT_EQ(session.nRootOffset, 42u);
    EXPECT_EQ(session.statistics.count[6], 2u);
    EXPECT_EQ(session.statistics.count[3], 1u);
    EXPECT_EQ(session.statistics.bytes[6], 5u + 9);
    EXPECT_EQ(session.statistics.bytes[3], 13u);
    EXPECT_EQ(session.statistics.bytes[1], 13u);
    EXPECT_EQ(session.statistics.uses, (std::vector<std::uint64_t>{1, 2, 1}));
    EXPECT_EQ(session.statistics.nDeepest, 1u);
    EXPECT_EQ(session.statistics.strDeepestPath, "B");
    EXPECT_EQ(session.statistics.nMostChildren, 2u);
}

TEST(SessionScan, NamesTheDeepestBlock)
{
    const auto session = Scan(Nested());
    EXPECT_FALSE(session.flaw);
    EXPECT_EQ(session.statistics.nDeepest, 2u);
    EXPECT_EQ(session.statistics.strDeepestPath, "A[1]/B[1]");
}

TEST(SessionScan, FlawsOfTheHeader)
{
    ExpectFlaw("[TNE Ainary", 5, "it does not begin with \"[TNE Binary Session File]\"", "");
    ExpectFlaw(Start(0).Get().substr(0, 20), 20,
               "it does not begin with \"[TNE Binary Session File]\"", "");
    ExpectFlaw(Start(0).Get().substr(0, 38), 38, "it ends within the header, which takes 38 bytes",
               "");
    std::string bytes = Start(0);
    bytes[25] = '!';
    ExpectFlaw(bytes, 25, "the byte behind the magic text is not 0", "");
    bytes = Start(0);
    bytes[26] = 99;
    ExpectFlaw(bytes, 26, "the version is 99 and not 100", "");
    bytes = Start(0);
    bytes[30] = 9;
    ExpectFlaw(bytes, 30, "the name table claims 9 bytes, which reach the end of the file", "");
    bytes = Start(0);
    bytes[34] = 3;
    ExpectFlaw(bytes, 34, "the table holds 2 names and not 3", "");
    bytes = Start(0);
    bytes[41] = 'C';
    ExpectFlaw(bytes, 40, "the last name of the table has no end", "");
    bytes = Start(0);
    bytes[38] = '\0';
    ExpectFlaw(bytes, 38, "a name in the table is empty", "");
    bytes = Start(0);
    bytes[40] = 'A';
    ExpectFlaw(bytes, 40, "the name \"A\" stands twice in the table", "");
}

TEST(SessionScan, FlawsOfTheRecords)
{
    ExpectFlaw(Start(1).U32(10).U32(0), kRecords, "10 is no type tag", "/");
    ExpectFlaw(Start(1).U32(7).U8(3).U8(1), kRecords + 4, "there is no name 3; the table has 2",
               "/");
    ExpectFlaw(Start(1).U32(7).U8(1).U8(2), kRecords + 5, "a bool is neither 0 nor 1", "A");
    ExpectFlaw(Start(1).U32(3).U8(1).U32(2), kRecords + 5,
               "the file ends within a value of type double", "A");
    ExpectFlaw(Start(1).U32(1).U8(1).U32(9).Text("short"), kRecords + 5,
               "a string claims 9 bytes, 5 are left", "A");
    ExpectFlaw(Start(1).U32(1).U8(1).U8(9), kRecords + 5, "the file ends within a string's length",
               "A");
    ExpectFlaw(Start(2).U32(6).U8(1).U32(1).U32(2), kRecords + 5,
               "a block claims 1 entries, more than the file has room for", "A");
    ExpectFlaw(Start(2).U32(6).U8(1).U32(0).U32(6).U8(1).U8(0), kRecords + 14,
               "the file ends within a block's count", "A[1]");
    ExpectFlaw(Start(1).U32(2).U8(255).U8(1), kRecords + 4, "the file ends within a name field",
               "/");
    ExpectFlaw(Start(0).Text("xyz"), kRecords, "3 bytes stand behind the last record", "");
}

TEST(SessionScan, PathLeadsToTheFlaw)
{
    std::string bytes = Nested();
    const std::size_t nValue = kRecords + 9 + 9 + 6 + 9;
    bytes[nValue] = 99;
    ExpectFlaw(bytes, nValue, "99 is no type tag", "A[1]/B[1]");
}

TEST(SessionScan, EveryCutIsAFlaw)
{
    const std::string bytes = Nested();
    for (std::size_t nSize = 0; nSize < bytes.size(); ++nSize)
    {
        const auto session = Scan(bytes.substr(0, nSize));
        ASSERT_TRUE(session.flaw) << nSize;
        EXPECT_LE(session.flaw->nOffset, nSize);
    }
}

TEST(SessionScan, StandsUpToEveryTurnedBit)
{
    for (std::size_t nBit = 0; nBit < Nested().size() * 8; ++nBit)
    {
        std::string bytes = Nested();
        bytes[nBit / 8] = static_cast<char>(bytes[nBit / 8] ^ (1 << nBit % 8));
        const auto session = Scan(bytes);
        CParameterBlock root;
        const int nResult = LoadSession(root, bytes);
        const bool fGood = session.flaw ? session.flaw->nOffset <= bytes.size() : nResult == 0;
        EXPECT_TRUE(fGood) << nBit << ": what has no flaw loads";
    }
}
