#include "tests/TarvaneLinkShared/ScriptFixture.h"
#include "utils/FileIO/FileName.h"

#include <functional>

namespace
{
struct Operation
{
    const char* m_szName;
    bool m_fEndsUserError;
    bool m_fKeepsSummaries;
    const char* m_szPrinted; // a plain success
    std::function<void(CTarvaneScript&)> m_run;
};

std::ostream& operator<<(std::ostream& stream, const Operation& operation)
{
    return stream << operation.m_szName;
}

std::vector<Operation> Operations()
{
    static CFileName file("/a/b.wav");
    static std::vector<std::string> tracks;
    static long long nStart, nEnd;
    return {
        {"ExportSelectedRegion", true, false, "2\n0\n/a/b.wav\n",
         [](auto& script) { script.ExportSelectedRegion(false, -1, &file); }},
        {"RenderSelectedRegion", true, false, "4\n0\n1\n2\n3\n",
         [](auto& script) { script.RenderSelectedRegion(false, -1, &nStart, &nEnd); }},
        {"CreateGDX", true, true, "",
         [](auto& script) { script.CreateGDX(false, 1, 2, 3, 4, 5, 6, 7); }},
        {"CreateSpreader", true, true, "",
         [](auto& script) { script.CreateSpreader(false, 1, 2, 3, 4, 5); }},
        {"SendFile", true, true, "",
         [](auto& script) { script.SendFile(false, 1, &file, 2, 3, 4, 0); }},
        {"ListTracks", false, true, "2\n1\nVox\n",
         [](auto& script) { script.ListTracks(false, &tracks); }},
        {"ListTracksWithTimeout", false, true, "2\n1\nVox\n",
         [](auto& script) { script.ListTracksWithTimeout(false, &tracks, 60); }},
        {"CheckDuplicateRegion", false, true, "0\n",
         [](auto& script) { script.CheckDuplicateRegion(false, 1, &file, 2, 3, 4); }},
        {"GetLinkSMPTEOffset", false, true, "0\n",
         [](auto& script) { script.GetLinkSMPTEOffset(false); }},
        {"GetUpdateCount", false, true, "0\n", [](auto& script) { script.GetUpdateCount(); }},
        {"ClearTrack", false, true, "", [](auto& script) { script.ClearTrack(false, 1); }},
    };
}

class StickyMessage : public ScriptFixture, public ::testing::WithParamInterface<Operation>
{
};
} // namespace

TEST_P(StickyMessage, OutlivesTheOperationOrEndsWithIt)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "first";
    m_script.m_strAdvice = "second";
    m_events.Print(GetParam().m_szPrinted);
    const bool fEnds = GetParam().m_fEndsUserError;
    m_events.m_whileSending = [this, fEnds]
    {
        EXPECT_EQ(m_script.m_fUserError, !fEnds);
        EXPECT_EQ(m_script.m_strLastError, fEnds ? "" : "first");
    };
    GetParam().m_run(m_script);

    EXPECT_EQ(m_events.Commands().size(), 1u);
    EXPECT_EQ(m_script.m_fUserError, !fEnds);
    EXPECT_EQ(m_script.m_strLastError, fEnds ? "" : "first");
    EXPECT_EQ(m_script.m_strAdvice, fEnds ? "" : "second");
}

TEST_P(StickyMessage, IsNotMadeByAPlainSuccess)
{
    m_events.Print(GetParam().m_szPrinted);
    GetParam().m_run(m_script);

    EXPECT_EQ(m_events.Commands().size(), 1u);
    EXPECT_FALSE(m_script.m_fUserError);
}

TEST_P(StickyMessage, EndsWithAnErrorOfTheServer)
{
    m_script.m_fUserError = true;
    m_script.m_strAdvice = "second";
    m_events.PrintWithError(GetParam().m_szPrinted, "server's words");
    GetParam().m_run(m_script);

    EXPECT_FALSE(m_script.m_fUserError);
    EXPECT_EQ(m_script.m_strLastError, "server's words");
    EXPECT_EQ(m_script.m_strAdvice, GetParam().m_fEndsUserError ? "" : "second");
}

TEST_P(StickyMessage, IsOverwrittenButNotEndedByAFailedCommand)
{
    m_script.m_fUserError = true;
    m_script.m_strLastError = "first";
    m_events.FailSend(-1712);
    GetParam().m_run(m_script);

    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");
    EXPECT_EQ(m_script.m_fUserError, !GetParam().m_fEndsUserError);
}

TEST_P(StickyMessage, LeavesRegionSummariesToExportAndRender)
{
    m_script.m_strSelectedRegion1 = "one";
    m_script.m_strSelectedRegion2 = "two";
    m_events.Print(GetParam().m_szPrinted);
    GetParam().m_run(m_script);

    EXPECT_EQ(m_script.m_strSelectedRegion1 == "one", GetParam().m_fKeepsSummaries);
    EXPECT_EQ(m_script.m_strSelectedRegion2 == "two", GetParam().m_fKeepsSummaries);
}

INSTANTIATE_TEST_SUITE_P(Operations, StickyMessage, ::testing::ValuesIn(Operations()),
                         [](const auto& info) { return info.param.m_szName; });
