#include "apps/server/session/SessionBlocks.h"

#include "tests/apps/server/database/FullSession.h"
#include "tests/utils/ParameterHelpers.h"
#include "utils/ParameterBlock.h"

#include <gmock/gmock.h>

#include <functional>
#include <vector>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::FullSession;
using testing::HasSubstr;
using testing::StartsWith;

std::string FlawOf(const std::string& bytes)
{
    try
    {
        DecodeSession(bytes);
        return "sound";
    }
    catch (const CSessionFlaw& flaw)
    {
        return flaw.what();
    }
    catch (const CSessionTooNew& version)
    {
        return std::string("too new: ") + version.what();
    }
}

// What a session of the full one's tree is refused with once the tree has been changed.
std::string FlawAfter(const std::function<void(CParameterBlock&)>& change)
{
    CParameterBlock root;
    EXPECT_EQ(LoadSession(root, EncodeSession(FullSession())), 0);
    change(root);
    return FlawOf(SaveSession(root));
}

CParameterBlock& Nested(CParameterBlock& block, const char* szName)
{
    CParameterBlock* pNested = nullptr;
    EXPECT_TRUE(block.FindParameter(szName, &pNested)) << szName;
    return *pNested;
}

struct Place
{
    const char* szPath; // as it is told
    std::vector<const char*> steps;
};

const std::vector<Place> places{
    {"/", {}},
    {"script", {"script"}},
    {"script/Track", {"script", "Track"}},
    {"script/Region", {"script", "Region"}},
    {"script/MarkerArea", {"script", "MarkerArea"}},
    {"script/Process", {"script", "Process"}},
    {"script/Process/Input", {"script", "Process", "Input"}},
};

CParameterBlock& At(CParameterBlock& root, const Place& place)
{
    CParameterBlock* pBlock = &root;
    for (const char* szStep : place.steps)
        pBlock = &Nested(*pBlock, szStep);
    return *pBlock;
}

// There may be none of these.
bool IsListed(const std::string& strName)
{
    for (const char* szName : {"Track", "Region", "MarkerArea", "Process", "Input"})
    {
        if (strName == szName)
            return true;
    }
    return false;
}

bool IsBlock(const CParameter& entry)
{
    return entry.m_nType == CParameterBlock::kType;
}

TEST(SessionBlocks, EverythingComesBack)
{
    TarvaneTest::ExpectFullSession(DecodeSession(EncodeSession(FullSession())));
}

TEST(SessionBlocks, ANewSessionComesBack)
{
    const CSession session = DecodeSession(EncodeSession(CSession({}, 0)));
    EXPECT_EQ(session.NextId(), 1);
    EXPECT_TRUE(session.GetDocument(DocumentKind::Script).tracks.empty());
}

TEST(SessionBlocks, EncodingIsTheSameEachTime)
{
    const std::string bytes = EncodeSession(FullSession());
    EXPECT_EQ(EncodeSession(DecodeSession(bytes)), bytes);
}

TEST(SessionBlocks, TheTreeIsAsItIsTold)
{
    CParameterBlock root;
    ASSERT_EQ(LoadSession(root, EncodeSession(FullSession())), 0);
    EXPECT_EQ(root.m_strName, "Tarvane Link session");
    int nVersion = 0;
    EXPECT_TRUE(root.FindParameter("Version", &nVersion, 0));
    EXPECT_EQ(nVersion, 2);
    double dOffset = 0;
    EXPECT_TRUE(root.FindParameter("LinkOffset", &dOffset, 0.0));
    EXPECT_EQ(dOffset, 1001.0 / 30000.0);

    CParameterBlock& region = Nested(Nested(root, "script"), "Region");
    long long nEnd = 0;
    EXPECT_TRUE(region.FindParameter("End", &nEnd, 0ll));
    EXPECT_EQ(nEnd, 4000000000);
    int nRate = 0;
    EXPECT_TRUE(region.FindParameter("SampleRate", &nRate, 0));
    EXPECT_EQ(nRate, 96000);
    bool fMuted = false;
    EXPECT_TRUE(region.FindParameter("Muted", &fMuted, false));
    EXPECT_TRUE(fMuted);
    EXPECT_EQ(Nested(region, "Channels").m_vParameters.size(), 2u);

    CParameterBlock& process = Nested(Nested(root, "script"), "Process");
    long long nTrack = 0;
    EXPECT_TRUE(Nested(process, "Outputs").FindParameter("Track", &nTrack, 0ll));
    EXPECT_EQ(nTrack, 1);
    CParameterBlock* pInput = nullptr;
    CParameterBlock::iterator it;
    EXPECT_TRUE(process.FindFirstParameter("Input", &pInput, &it));
    EXPECT_TRUE(process.FindNextParameter("Input", &pInput, &it));
    EXPECT_FALSE(process.FindNextParameter("Input", &pInput, &it));
}

TEST(SessionBlocks, EveryCutIsRefused)
{
    const std::string bytes = EncodeSession(FullSession());
    for (std::size_t nLength = 0; nLength < bytes.size(); nLength++)
        ASSERT_THAT(FlawOf(bytes.substr(0, nLength)), HasSubstr("offset ")) << nLength;
}

TEST(SessionBlocks, WhatStandsBehindTheLastRecordIsRefused)
{
    EXPECT_THAT(FlawOf(EncodeSession(FullSession()) + "x"),
                HasSubstr("1 bytes stand behind the last record"));
}

TEST(SessionBlocks, EveryChangedBitLoadsOrIsRefused)
{
    std::string bytes = EncodeSession(FullSession());
    int nRefused = 0;
    for (std::size_t nBit = 0; nBit < bytes.size() * 8; nBit++)
    {
        const char cMask = static_cast<char>(1 << nBit % 8);
        bytes[nBit / 8] = static_cast<char>(bytes[nBit / 8] ^ cMask);
        nRefused += FlawOf(bytes) != "sound";
        bytes[nBit / 8] = static_cast<char>(bytes[nBit / 8] ^ cMask);
    }
    EXPECT_GT(nRefused, static_cast<int>(bytes.size()));
    EXPECT_EQ(FlawOf(bytes), "sound");
}

TEST(SessionBlocks, WhatIsNoSessionIsRefusedWithTheOffset)
{
    EXPECT_EQ(FlawOf("hello"), "offset 0: it does not begin with \"[TNE Binary Session File]\"");
    EXPECT_THAT(FlawOf(""), StartsWith("offset 0: "));
}

TEST(SessionBlocks, ASessionOfAnotherProgramIsRefused)
{
    EXPECT_EQ(FlawAfter([](CParameterBlock& root) { root.m_strName = "Palette"; }),
              "this is a session of another program");
}

TEST(SessionBlocks, AnotherVersionIsNamed)
{
    const auto withVersion = [](int nVersion)
    {
        return FlawAfter(
            [nVersion](CParameterBlock& root)
            { static_cast<CIntParameter*>(root.m_vParameters[0])->m_nValue = nVersion; });
    };
    EXPECT_EQ(withVersion(3), "too new: its version is 3; this program reads 2");
    EXPECT_EQ(withVersion(1), "its version is 1, which never was one");
}

TEST(SessionBlocks, EveryMissingEntryIsNamedWithItsPlace)
{
    int nRemoved = 0;
    for (const Place& place : places)
    {
        CParameterBlock model;
        LoadSession(model, EncodeSession(FullSession()));
        const std::size_t nEntries = At(model, place).m_vParameters.size();
        for (std::size_t n = 0; n < nEntries; n++)
        {
            const std::string strName = At(model, place).m_vParameters[n]->m_strName.str();
            if (IsListed(strName) && IsBlock(*At(model, place).m_vParameters[n]))
                continue;
            const std::string strFlaw = FlawAfter(
                [&](CParameterBlock& root)
                {
                    CParameterList& entries = At(root, place).m_vParameters;
                    delete entries[n];
                    entries.erase(entries.begin() + n);
                });
            EXPECT_THAT(strFlaw, StartsWith(std::string(place.szPath) + " has no "));
            EXPECT_THAT(strFlaw, HasSubstr(" \"" + strName + "\""));
            nRemoved++;
        }
    }
    EXPECT_EQ(nRemoved, 6 + 2 + 2 + 9 + 4 + 5 + 4);
}

TEST(SessionBlocks, EveryEntryOfAnotherTypeIsRefused)
{
    int nChanged = 0;
    for (const Place& place : places)
    {
        CParameterBlock model;
        LoadSession(model, EncodeSession(FullSession()));
        const std::size_t nEntries = At(model, place).m_vParameters.size();
        for (std::size_t n = 0; n < nEntries; n++)
        {
            const std::string strFlaw = FlawAfter(
                [&](CParameterBlock& root)
                {
                    CParameter*& pEntry = At(root, place).m_vParameters[n];
                    const std::string strName = pEntry->m_strName.str();
                    delete pEntry;
                    pEntry = new CFloatParameter(strName.c_str(), 1.0F);
                });
            EXPECT_THAT(strFlaw, StartsWith(place.szPath)) << n;
            nChanged++;
        }
    }
    EXPECT_EQ(nChanged, 6 + 7 + 2 + 9 + 4 + 7 + 4);
}

TEST(SessionBlocks, WhatNobodyAskedForIsRefused)
{
    for (const Place& place : places)
    {
        const std::string strRefusal =
            std::string(place.szPath) + " holds something twice or that does not belong there";
        EXPECT_EQ(FlawAfter([&](CParameterBlock& root) { At(root, place).AddParameter("X", 1); }),
                  strRefusal);
    }
    EXPECT_EQ(FlawAfter([](CParameterBlock& root) { root.AddParameter("NextId", 9ll); }),
              "/ holds something twice or that does not belong there");
    EXPECT_EQ(FlawAfter(
                  [](CParameterBlock& root) {
                      Nested(Nested(Nested(root, "script"), "Region"), "Channels")
                          .AddParameter("Channel", 3.5);
                  }),
              "script/Region/Channels holds something twice or that does not belong there");
}

TEST(SessionBlocks, TheSecondOfOneNameIsToldByItsNumber)
{
    EXPECT_EQ(FlawAfter(
                  [](CParameterBlock& root)
                  {
                      CParameterBlock* pTrack = nullptr;
                      CParameterBlock::iterator it;
                      CParameterBlock& script = Nested(root, "script");
                      script.FindFirstParameter("Track", &pTrack, &it);
                      script.FindNextParameter("Track", &pTrack, &it);
                      pTrack->Clear();
                  }),
              "script/Track[1] has no int64 \"Id\"");
}

TEST(SessionBlocks, WhatIsWellFormedAndUnsoundIsRefused)
{
    EXPECT_THAT(FlawAfter(
                    [](CParameterBlock& root)
                    {
                        CParameterBlock& track = Nested(Nested(root, "script"), "Track");
                        static_cast<CStringParameter*>(track.m_vParameters[1])->m_strValue =
                            "two\nlines";
                    }),
                HasSubstr("the name of track 1 contains a line end"));
}

TEST(SessionBlocks, AZeroByteDoesNotEndAText)
{
    TarvaneTest::CMadeSession session({"Vox"}, 0);
    Region region;
    region.nTrackId = 1;
    region.strPath = std::string("/a\0b", 4);
    region.nEnd = 1;
    region.nSampleRate = 48000;
    session.AddRegion(region);
    CParameterBlock root;
    LoadSession(root, EncodeSession(session.Content()));
    std::string strPath;
    Nested(Nested(root, "script"), "Region").FindParameter("File", &strPath, nullptr);
    EXPECT_EQ(strPath, region.strPath);
}

} // namespace
} // namespace Tarvane::Server
