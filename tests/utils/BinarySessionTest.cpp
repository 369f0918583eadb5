#include "tests/utils/ParameterHelpers.h"
#include "tests/utils/SessionCodec.h"
#include "utils/ParameterBlock.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{
void FillExample(CParameterBlock& root)
{
    CParameterBlock code;
    code.AddParameter("Mod", 9);
    root.AddParameter("Mod", 7);
    root.AddParameter("Code", &code);
}

std::string Example()
{
    return Bytes()
        .Magic()
        .U32(100)
        .U32(9)
        .U32(2)
        .Text(std::string_view("Mod\0Code\0", 9))
        .U8(0)
        .U32(2)
        .U32(2)
        .U8(1)
        .U32(7)
        .U32(6)
        .U8(2)
        .U32(1)
        .U32(2)
        .U8(1)
        .U32(9);
}

// A header alone.
Bytes Header(std::uint32_t nTableSize, std::uint32_t nNames)
{
    return Bytes().Magic().U32(100).U32(nTableSize).U32(nNames);
}

std::string Name(int n)
{
    return "Name" + std::to_string(n);
}

SessionCodec::Node Value(unsigned nType, std::uint32_t nToken, const std::string& payload)
{
    SessionCodec::Node node;
    node.nType = nType;
    node.nToken = nToken;
    node.payload = payload;
    return node;
}

// The tree of a decoded session, as the product would hold it.
void Build(const SessionCodec::Session& session, const SessionCodec::Node& node,
           CParameterBlock& block)
{
    for (const auto& child : node.children)
    {
        const char* pName = session.NameOf(child).c_str();
        const char* pPayload = child.payload.data();
        const auto read = [pPayload](auto value)
        {
            std::memcpy(&value, pPayload, sizeof value);
            return value;
        };
        switch (child.nType)
        {
        case 1:
            block.AddParameter(pName, child.payload.c_str());
            break;
        case 2:
            block.AddParameter(pName, read(int{}));
            break;
        case 3:
            block.AddParameter(pName, read(double{}));
            break;
        case 4:
            block.AddParameter(pName, read(0ull));
            break;
        case 6:
        {
            CParameterBlock nested;
            Build(session, child, nested);
            block.AddParameter(pName, &nested);
            break;
        }
        case 7:
            block.AddParameter(pName, child.payload[0] != 0);
            break;
        case 8:
            block.AddParameter(pName, read(float{}));
            break;
        case 9:
            block.AddParameter(pName, read(0ll));
            break;
        default:
            FAIL() << child.nType;
        }
    }
}

// Any tree of the types that can be written; names have tokens from 0 to nNames.
SessionCodec::Node RandomTree(std::mt19937& random, std::uint32_t nNames, int nDepth)
{
    SessionCodec::Node node;
    const unsigned nChildren = random() % 6 + 1;
    for (unsigned i = 0; i < nChildren; ++i)
    {
        static const unsigned types[] = {1, 2, 3, 4, 7, 8, 9, 6};
        static const unsigned sizes[] = {0, 0, 4, 8, 8, 16, 0, 1, 4, 8};
        const unsigned nType = types[random() % (nDepth > 0 ? 8 : 7)];
        if (nType == 6)
        {
            node.children.push_back(RandomTree(random, nNames, nDepth - 1));
            node.children.back().nToken = random() % (nNames + 1);
            continue;
        }
        std::string payload(nType == 1 ? random() % 40 : sizes[nType], '\1');
        for (char& c : payload)
            c = static_cast<char>(nType == 7 ? random() % 2 : random() % 255 + 1);
        node.children.push_back(Value(nType, random() % (nNames + 1), payload));
    }
    return node;
}
} // namespace

TEST(BinarySession, WorkedExampleIsExactlyItsBytes)
{
    CParameterBlock root;
    FillExample(root);
    EXPECT_EQ(Example().size(), 79u);
    EXPECT_EQ(SaveSession(root), Example());
}

TEST(BinarySession, DataObjectHasThirtyTwoSpareZeroBytes)
{
    CParameterBlock root;
    FillExample(root);
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    EXPECT_EQ(root.SaveBinarySessionToMemory(pData), 79u);
    EXPECT_EQ(CFDataGetLength(pData), 111);
    const std::string all(reinterpret_cast<const char*>(CFDataGetBytePtr(pData)), 111);
    EXPECT_EQ(all.substr(79), std::string(32, '\0'));
    CFRelease(pData);
}

TEST(BinarySession, SpareBytesOfAReusedDataObjectAreZero)
{
    CParameterBlock large, root;
    for (int i = 0; i < 50; ++i)
        large.AddParameter("Mod", -1);
    FillExample(root);
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    large.SaveBinarySessionToMemory(pData);
    EXPECT_EQ(root.SaveBinarySessionToMemory(pData), 79u);
    EXPECT_EQ(CFDataGetLength(pData), 111);
    const std::string all(reinterpret_cast<const char*>(CFDataGetBytePtr(pData)), 111);
    EXPECT_EQ(all, Example() + std::string(32, '\0'));
    CFRelease(pData);
}

TEST(BinarySession, WorkedExampleLoads)
{
    CParameterBlock root;
    root.AddParameter("Old", 1);
    EXPECT_EQ(LoadSession(root, Example()), 0);
    int nMod = 0;
    CParameterBlock* pCode = nullptr;
    EXPECT_TRUE(root.FindParameter("Mod", &nMod, 0));
    EXPECT_EQ(nMod, 7);
    ASSERT_TRUE(root.FindParameter("Code", &pCode));
    EXPECT_TRUE(pCode->FindParameter("Mod", &nMod, 0));
    EXPECT_EQ(nMod, 9);
    EXPECT_EQ(root.m_vParameters.size(), 2u);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 1);
    EXPECT_EQ(pCode->m_nToken, 2);
    EXPECT_EQ(root.m_nToken, 0);
}

TEST(BinarySession, TreeWithoutNamesWritesNothing)
{
    CParameterBlock root;
    root.AddParameter("", 1);
    root.m_vParameters[0]->m_nToken = 4;
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    EXPECT_EQ(root.SaveBinarySessionToMemory(pData), 0u);
    EXPECT_EQ(CFDataGetLength(pData), 0);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 4) << "tokens stay as they were";
    EXPECT_EQ(CParameterBlock().SaveBinarySessionToMemory(pData), 0u);
    CFRelease(pData);
}

TEST(BinarySession, RootNameAloneMakesASession)
{
    CParameterBlock root;
    root.m_strName = "Root";
    EXPECT_EQ(SaveSession(root),
              Header(5, 1).Text(std::string_view("Root\0", 5)).U8(1).U32(0).Get());
    CParameterBlock loaded;
    EXPECT_EQ(LoadSession(loaded, SaveSession(root)), 0);
    EXPECT_EQ(loaded.m_strName, "Root");
}

TEST(BinarySession, RootNameCountsAsAUse)
{
    CParameterBlock root;
    root.m_strName = "B";
    root.AddParameter("A", 1);
    root.AddParameter("B", 1);
    SaveSession(root);
    EXPECT_EQ(root.m_nToken, 1);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 2);
    EXPECT_EQ(root.m_vParameters[1]->m_nToken, 1);
}

TEST(BinarySession, NoDataObjectNothingWritten)
{
    CParameterBlock root;
    FillExample(root);
    EXPECT_EQ(root.SaveBinarySessionToMemory(nullptr), 0u);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 1) << "tokens are set all the same";
}

TEST(BinarySession, NamesUsedMostComeFirst)
{
    CParameterBlock root;
    for (int n = 1; n <= 20; ++n)
        for (int i = 0; i < n; ++i)
            root.AddParameter(Name(n).c_str(), i);
    const auto session = SessionCodec::Decode(SaveSession(root));
    ASSERT_EQ(session.names.size(), 20u);
    for (int n = 1; n <= 20; ++n)
        EXPECT_EQ(session.names[static_cast<std::size_t>(20 - n)], Name(n));
}

TEST(BinarySession, NamesOfEqualCountStandInAnyOrder)
{
    CParameterBlock root;
    for (int n = 0; n < 100; ++n)
        root.AddParameter(Name(n).c_str(), n);
    const auto session = SessionCodec::Decode(SaveSession(root));
    auto names = session.names;
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
    EXPECT_EQ(names.size(), 100u);
    for (int n = 0; n < 100; ++n)
        EXPECT_EQ(session.NameOf(session.root.children[static_cast<std::size_t>(n)]), Name(n));
    // The reader does not care about the order either.
    auto reversed = session;
    std::reverse(reversed.names.begin(), reversed.names.end());
    for (auto& child : reversed.root.children)
        child.nToken = 101 - child.nToken;
    CParameterBlock loaded;
    EXPECT_EQ(LoadSession(loaded, SessionCodec::Encode(reversed)), 0);
    for (int n = 0; n < 100; ++n)
        EXPECT_EQ(loaded.m_vParameters[static_cast<std::size_t>(n)]->m_strName, Name(n));
}

TEST(BinarySession, UnnamedParametersGetTokenZero)
{
    CParameterBlock root;
    root.AddParameter("Named", 1);
    root.AddParameter("", 2);
    const auto session = SessionCodec::Decode(SaveSession(root));
    EXPECT_EQ(session.root.nToken, 0u);
    EXPECT_EQ(session.root.children[1].nToken, 0u);
    EXPECT_EQ(root.m_vParameters[1]->m_nToken, 0);
}

TEST(BinarySession, The255thNameTakesFourBytes)
{
    for (const int nNames : {254, 255, 256})
    {
        CParameterBlock root;
        for (int n = 0; n < nNames; ++n)
        {
            root.AddParameter(Name(n).c_str(), true);
            if (n != 0) // Name0 is the one used least.
                root.AddParameter(Name(n).c_str(), false);
        }
        const std::string bytes = SaveSession(root);
        const auto session = SessionCodec::Decode(bytes);
        EXPECT_EQ(session.names.size(), static_cast<std::size_t>(nNames));
        EXPECT_EQ(session.names.back(), Name(0));
        EXPECT_EQ(root.m_vParameters[0]->m_nToken, nNames);
        const std::size_t nRecords = bytes.size() - root.GetSize();
        const std::string record = bytes.substr(nRecords + 9, nNames < 255 ? 1 : 4);
        EXPECT_EQ(record, nNames < 255    ? Bytes().U8(254).Get()
                          : nNames == 255 ? Bytes().U8(255).U8(255).U8(0).U8(0).Get()
                                          : Bytes().U8(255).U8(0).U8(1).U8(0).Get());
        CParameterBlock loaded;
        EXPECT_EQ(LoadSession(loaded, bytes), 0);
        EXPECT_EQ(loaded.m_vParameters[0]->m_strName, Name(0));
        EXPECT_EQ(SaveFlat(loaded), bytes.substr(nRecords));
    }
}

TEST(BinarySession, SeventyThousandNames)
{
    CParameterBlock root;
    for (int n = 0; n < 70000; ++n)
        root.AddParameter(("A rather long name, number " + std::to_string(n)).c_str(), n);
    CParameterBlock loaded;
    const std::string bytes = SaveSession(root);
    EXPECT_EQ(LoadSession(loaded, bytes), 0);
    ASSERT_EQ(loaded.m_vParameters.size(), 70000u);
    for (const int n : {0, 1, 253, 254, 255, 256, 65535, 65536, 69999})
        EXPECT_EQ(loaded.m_vParameters[static_cast<std::size_t>(n)]->m_strName,
                  "A rather long name, number " + std::to_string(n));
    EXPECT_EQ(SessionCodec::Decode(bytes).names.size(), 70000u);
}

TEST(BinarySession, BitSevenOfATokenMeansNothing)
{
    std::string table;
    for (int n = 1; n <= 128; ++n)
        table += Name(n) + '\0';
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(static_cast<std::uint32_t>(table.size()), 128)
                                    .Text(table)
                                    .U8(0)
                                    .U32(1)
                                    .U32(7)
                                    .U8(0x80)
                                    .U8(1)),
              0);
    EXPECT_EQ(root.m_vParameters[0]->m_strName, Name(128));
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 128);
}

TEST(BinarySession, SaveLeavesItsTokensAndCreateBlockWritesThem)
{
    CParameterBlock root;
    FillExample(root);
    const std::string inlineBlock = CreateBlock(root);
    SaveSession(root);
    const std::string tokenBlock = CreateBlock(root);
    EXPECT_EQ(tokenBlock, Example().substr(48));
    std::vector<std::string> names{"", "Mod", "Code"};
    CParameterBlock withTable, withoutTable;
    EXPECT_EQ(LoadBlock(withTable, tokenBlock, &names), static_cast<long>(tokenBlock.size()));
    EXPECT_EQ(withTable.m_vParameters[1]->m_strName, "Code");
    LoadBlock(withoutTable, tokenBlock);
    EXPECT_NE(CreateBlock(withoutTable), inlineBlock) << "the table is needed";
    CParameterBlock copy;
    copy = root;
    EXPECT_EQ(CreateBlock(copy), Bytes()
                                     .U32(2)
                                     .U32(2)
                                     .Counted("Mod")
                                     .U32(7)
                                     .U32(6)
                                     .U8(2)
                                     .U32(1)
                                     .U32(2)
                                     .Counted("Mod")
                                     .U32(9)
                                     .Get());
}

TEST(BinarySession, LaterSaveGivesNewTokens)
{
    CParameterBlock root;
    FillExample(root);
    SaveSession(root);
    for (int i = 0; i < 5; ++i)
        root.AddParameter("Code", i);
    SaveSession(root);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 2);
    EXPECT_EQ(root.m_vParameters[1]->m_nToken, 1);
}

TEST(BinarySession, EveryTypeIsWrittenAsTheFormatSays)
{
    CParameterBlock nested, root;
    root.AddParameter("N", "text");
    root.AddParameter("N", -2);
    root.AddParameter("N", 1.5);
    root.AddParameter("N", ~0ull);
    root.AddParameter("N", &nested);
    root.AddParameter("N", true);
    root.AddParameter("N", 0.5F);
    root.AddParameter("N", -3ll);
    EXPECT_EQ(SaveSession(root), Header(2, 1)
                                     .Text(std::string_view("N\0", 2))
                                     .U8(0)
                                     .U32(8)
                                     .U32(1)
                                     .U8(1)
                                     .Counted("text")
                                     .U32(2)
                                     .U8(1)
                                     .U32(0xFFFFFFFE)
                                     .U32(3)
                                     .U8(1)
                                     .F64(1.5)
                                     .U32(4)
                                     .U8(1)
                                     .U64(~0ull)
                                     .U32(6)
                                     .U8(1)
                                     .U32(0)
                                     .U32(7)
                                     .U8(1)
                                     .U8(1)
                                     .U32(8)
                                     .U8(1)
                                     .F32(0.5F)
                                     .U32(9)
                                     .U8(1)
                                     .U64(~0ull - 2)
                                     .Get());
}

TEST(BinarySession, FileIdIsRead)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(2, 1)
                                    .Text(std::string_view("N\0", 2))
                                    .U8(0)
                                    .U32(2)
                                    .U32(5)
                                    .U8(1)
                                    .U64(7)
                                    .U64(8)
                                    .U32(2)
                                    .U8(1)
                                    .U32(9)),
              0);
    TGL::FileIdType id{};
    EXPECT_TRUE(root.FindParameter("N", &id));
    EXPECT_EQ(id.nFileKey, 7);
    EXPECT_EQ(id.nFileSub, 8);
    int nValue = 0;
    EXPECT_TRUE(root.FindParameter("N", &nValue, 0));
    EXPECT_EQ(nValue, 9);
}

TEST(BinarySessionDeathTest, FileIdCannotBeSaved)
{
    CParameterBlock root;
    root.AddParameter("Id", TGL::FileIdType{1, 2});
    EXPECT_DEATH(SaveSession(root), "\\(false\\).*Save.*ParameterBlock.*1239");
}

TEST(BinarySession, OwnDecoderReadsWhatIsWrittenAndTheOtherWayRound)
{
    std::mt19937 random(20);
    for (int nRound = 0; nRound < 200; ++nRound)
    {
        SessionCodec::Session session;
        const std::uint32_t nNames = nRound % 10 == 0 ? 300 : random() % 20 + 1;
        for (std::uint32_t n = 0; n < nNames; ++n)
            session.names.push_back(Name(static_cast<int>(n)));
        session.root = RandomTree(random, nNames, 4);
        session.root.children.push_back(Value(7, 1, "\1"));
        const std::string bytes = SessionCodec::Encode(session);
        CParameterBlock loaded, built;
        ASSERT_EQ(LoadSession(loaded, bytes), 0);
        ASSERT_EQ(SaveFlat(loaded), bytes.substr(bytes.size() - loaded.GetSize()));

        Build(session, session.root, built);
        CParameterBlock copy;
        copy.CopyParameters(&loaded);
        const auto saved = SessionCodec::Decode(SaveSession(built));
        EXPECT_EQ(SaveSession(loaded), SaveSession(built));
        EXPECT_EQ(SaveSession(copy), SaveSession(built));
        CParameterBlock again;
        ASSERT_EQ(LoadSession(again, SessionCodec::Encode(saved)), 0);
        EXPECT_EQ(CreateBlock(again), CreateBlock(built));
    }
}

TEST(BinarySession, AnyVersionLoads)
{
    for (const std::uint32_t nVersion : {0u, 1u, 99u, 101u, 0xFFFFFFFFu})
    {
        std::string bytes = Example();
        bytes.replace(26, 4, Bytes().U32(nVersion).Get());
        CParameterBlock root;
        EXPECT_EQ(LoadSession(root, bytes), 0);
        EXPECT_EQ(root.m_vParameters.size(), 2u);
    }
}

TEST(BinarySession, TerminatorOfTheMagicIsNotLookedAt)
{
    std::string bytes = Example();
    bytes[25] = 'x';
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, bytes), 0);
    EXPECT_EQ(root.m_vParameters.size(), 2u);
}

TEST(BinarySession, EveryByteOfTheMagicCounts)
{
    for (std::size_t i = 0; i < 25; ++i)
    {
        std::string bytes = Example();
        bytes[i] = static_cast<char>(bytes[i] ^ 0x20);
        CParameterBlock root;
        root.AddParameter("Old", 1);
        EXPECT_EQ(LoadSession(root, bytes), 7534);
        EXPECT_EQ(root.m_vParameters.size(), 1u) << "a bad header leaves the block";
    }
}

TEST(BinarySession, NoBytesAreNoFailureAndChangeNothing)
{
    CParameterBlock root;
    root.AddParameter("Old", 1);
    unsigned char byte = 0;
    EXPECT_EQ(root.LoadBinarySessionFromMemory(nullptr, 79), 0);
    EXPECT_EQ(root.LoadBinarySessionFromMemory(&byte, 0), 0);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
}

TEST(BinarySession, FilesUpTo38BytesHaveABadHeader)
{
    const std::string header = Header(0, 0);
    ASSERT_EQ(header.size(), 38u);
    for (std::size_t nSize = 1; nSize <= 38; ++nSize)
    {
        CParameterBlock root;
        EXPECT_EQ(LoadSession(root, header.substr(0, nSize)), 7534) << nSize;
    }
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, header + '\0'), 0) << "39 bytes are enough without a table";
}

TEST(BinarySession, TableMustEndBeforeTheFile)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(1, 1).U8(0)), 7534);
    EXPECT_EQ(LoadSession(root, Header(2, 1).Text("A").U8(0)), 7534);
    EXPECT_EQ(LoadSession(root, Header(2, 1).Text("A").U8(0).U8(0)), 0);
    EXPECT_EQ(LoadSession(root, Header(0xFFFFFFFF, 1).Text("A").U8(0).U8(0)), 7534);
}

TEST(BinarySession, NoNamesAndNoTableGiveTokenZeroAlone)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(0, 0).U8(0).U32(2).U32(2).U8(0).U32(5).U32(2).U8(1).U32(6)),
              0);
    ASSERT_EQ(root.m_vParameters.size(), 2u);
    EXPECT_TRUE(root.m_vParameters[0]->m_strName.empty());
    EXPECT_TRUE(root.m_vParameters[1]->m_strName.empty()) << "a token beyond the table";
    EXPECT_EQ(root.m_vParameters[1]->m_nToken, 1);
    EXPECT_EQ(At<CIntParameter>(root, 1).m_nValue, 6);
}

TEST(BinarySession, NoNamesSkipNoTable)
{
    // With a count of 0 the root record begins behind the header, whatever the stated size.
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(3, 0).U8(0).U32(1).U32(7).U8(0).U8(1)), 0);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
}

TEST(BinarySession, NamesWithoutATableAreABadHeader)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(0, 1).U8(0).U32(0)), 7534);
}

TEST(BinarySession, TableWithFewerNamesThanStatedIsABadHeader)
{
    CParameterBlock root;
    root.AddParameter("Old", 1);
    EXPECT_EQ(LoadSession(root, Header(4, 3).Text(std::string_view("A\0B\0", 4)).U8(0).U32(0)),
              7534);
    EXPECT_EQ(LoadSession(root, Header(4, 0xFFFFFFFF).Text(std::string_view("A\0B\0", 4)).U8(0)),
              7534);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
}

TEST(BinarySession, RootBeginsBehindTheLastNameThatIsRead)
{
    // The table claims eight bytes but one name; the record stands right behind that name.
    CParameterBlock root;
    EXPECT_EQ(
        LoadSession(root,
                    Header(8, 1).Text(std::string_view("A\0", 2)).U8(0).U32(1).U32(7).U8(1).U8(1)),
        0);
    ASSERT_EQ(root.m_vParameters.size(), 1u);
    EXPECT_EQ(root.m_vParameters[0]->m_strName, "A");
}

TEST(BinarySession, LastNameMayEndWithTheTable)
{
    // Without its terminator; one byte more than the table counts as used all the same.
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Header(3, 1).Text("Abc").Text("?").U8(1).U32(0)), 0);
    EXPECT_EQ(root.m_strName, "Abc");
}

TEST(BinarySession, EmptyNamesInTheTableAreNames)
{
    CParameterBlock root;
    EXPECT_EQ(
        LoadSession(
            root,
            Header(4, 3).Text(std::string_view("\0A\0\0", 4)).U8(2).U32(1).U32(7).U8(1).U8(1)),
        0);
    EXPECT_EQ(root.m_strName, "A");
    EXPECT_TRUE(root.m_vParameters[0]->m_strName.empty());
}

TEST(BinarySession, BytesBehindTheRootAreIgnored)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Example() + "left over"), 0);
    EXPECT_EQ(root.m_vParameters.size(), 2u);
}

TEST(BinarySession, CutInTheLastValueItLoads)
{
    for (std::size_t nMissing = 1; nMissing <= 4; ++nMissing)
    {
        CParameterBlock root;
        EXPECT_EQ(LoadSession(root, Example().substr(0, 79 - nMissing)), 0);
        EXPECT_EQ(At<CIntParameter>(At<CParameterBlock>(root, 1), 0).m_nValue, 0);
    }
}

TEST(BinarySession, CutInATagItFailsAndKeepsTheEntriesBefore)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, Example().substr(0, 73)), 2033);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
    EXPECT_EQ(LoadSession(root, Example().substr(0, 64)), 2033);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
    EXPECT_EQ(LoadSession(root, Example().substr(0, 55)), 2033);
    EXPECT_TRUE(root.m_vParameters.empty());
}

TEST(BinarySession, ProgressThatStopsGives2033)
{
    class CSink : public CProgress
    {
        bool Update(unsigned long) override { return true; }
    } sink;
    CParameterBlock root(&sink, 79);
    EXPECT_EQ(LoadSession(root, Example()), 2033);
    EXPECT_EQ(root.m_vParameters.size(), 1u);
}

TEST(BinarySession, NameMapsCountTheTreeBelow)
{
    CParameterBlock root;
    root.m_strName = "Root";
    FillExample(root);
    std::map<std::string, int> map{{"Mod", 10}};
    root.TokenizeNames(map);
    EXPECT_EQ(map, (std::map<std::string, int>{{"Code", 1}, {"Mod", 12}}));
    map["Mod"] = 300;
    map.erase("Code");
    root.SetTokens(map);
    EXPECT_EQ(root.m_vParameters[0]->m_nToken, 300);
    EXPECT_EQ(root.m_vParameters[1]->m_nToken, 0) << "not in the map";
    EXPECT_EQ(At<CParameterBlock>(root, 1).m_vParameters[0]->m_nToken, 300);
    EXPECT_EQ(root.m_nToken, -1) << "the root itself is not walked";
}

TEST(BinarySession, NameMapsTellLongNamesApart)
{
    CParameterBlock root;
    std::map<std::string, int> expected;
    for (int n = 0; n < 2000; ++n)
    {
        const std::string strName = std::string(n % 40, 'x') + std::to_string(n % 700);
        root.AddParameter(strName.c_str(), n);
        ++expected[strName];
    }
    std::map<std::string, int> map;
    root.TokenizeNames(map);
    EXPECT_EQ(map, expected);
    root.SetTokens(map);
    for (const CParameter* pEntry : root.m_vParameters)
        EXPECT_EQ(pEntry->m_nToken, expected[pEntry->m_strName.str()]);
}

TEST(BinarySession, HeaderIsWrittenAlone)
{
    const CParameterBlock::SessionNames names{{"Mod", 2}, {"Code", 1}};
    EXPECT_EQ(CParameterBlock::GetSizeOfHeader(nullptr), 38u);
    EXPECT_EQ(CParameterBlock::GetSizeOfHeader(&names), 47u);
    ExactBuffer buffer(std::string(47, 'x'));
    EXPECT_EQ(CParameterBlock::SaveHeader(0, &names, buffer.Get()), 47u);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer.Get()), 47), Example().substr(0, 47));
    ExactBuffer empty(std::string(38, 'x'));
    EXPECT_EQ(CParameterBlock::SaveHeader(0, nullptr, empty.Get()), 38u);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(empty.Get()), 38), Header(0, 0).Get());
}

TEST(BinarySession, HeaderIsReadAlone)
{
    std::vector<std::string> names;
    ExactBuffer buffer(Example());
    EXPECT_EQ(CParameterBlock::LoadHeader(79, &names, buffer.Get()), 47u);
    EXPECT_EQ(names, (std::vector<std::string>{"", "Mod", "Code"}));
    names.clear();
    EXPECT_EQ(CParameterBlock::LoadHeader(38, &names, buffer.Get()), 0xFFFFFFFFu);
    EXPECT_TRUE(names.empty());
}

TEST(BinarySession, OrderIsByUseAlone)
{
    EXPECT_TRUE(CParameterBlock::IntCmp({"B", 2}, {"A", 1}));
    EXPECT_FALSE(CParameterBlock::IntCmp({"A", 1}, {"B", 2}));
    EXPECT_FALSE(CParameterBlock::IntCmp({"A", 1}, {"B", 1}));
    EXPECT_FALSE(CParameterBlock::IntCmp({"B", 1}, {"A", 1}));
}

TEST(BinarySession, MagicIsTheClassConstant)
{
    EXPECT_EQ(CParameterBlock::m_strBinaryHeader, "[TNE Binary Session File]");
}

TEST(BinarySession, HeaderAppendsItsNames)
{
    ExactBuffer buffer(Bytes().Magic().U32(100).U32(4).U32(1).Text("Mod").U8(0).U8(0));
    std::vector<std::string> names{"of the caller"};
    EXPECT_EQ(CParameterBlock::LoadHeader(buffer.Size(), &names, buffer.Get()), 42u);
    EXPECT_EQ(names, (std::vector<std::string>{"of the caller", "", "Mod"}));
}

TEST(BinarySession, EveryLoadedEntryIsOfItsTagsClass)
{
    CParameterBlock root;
    for (int i = 0; i < 300; ++i)
    {
        CParameterBlock nested;
        nested.AddParameter("Text", "text");
        nested.AddParameter("Real", 1.0);
        nested.AddParameter("Flag", true);
        root.AddParameter("Nested", &nested);
        root.AddParameter("Int", i);
    }
    CParameterBlock loaded;
    EXPECT_EQ(LoadSession(loaded, SaveSession(root)), 0);
    ExpectClassesOfTags(loaded);
}
