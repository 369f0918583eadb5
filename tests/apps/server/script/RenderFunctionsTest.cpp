#include "tests/apps/server/CommandFixture.h"

namespace Tarvane::Server
{
namespace
{

using testing::HasSubstr;

class RenderFunctions : public TarvaneTest::CommandFixture
{
protected:
    // Adds frames 10 to 60 at 1000 as region 5, selected.
    void Add()
    {
        SelectedResult("AddAudioRegion(GetTrackID(0), \"" + m_strTake +
                       "\", true, false, 1000,10,60)");
    }
};

TEST_F(RenderFunctions, NullIdsAreToldByNumbers)
{
    EXPECT_EQ(Result("print(IsNullRegionID(0), IsNullRegionID(5), IsNullProcessID(0), "
                     "IsNullProcessID(5))"),
              "1\t0\t1\t0\n");
}

TEST_F(RenderFunctions, TheSelectionIsTheNullIdAtFirst)
{
    EXPECT_EQ(SelectedResult("print(GetSelectedRegionID())"), "0\n");
    Add();
    EXPECT_EQ(SelectedResult("print(GetSelectedRegionID())"), "5\n");
}

TEST_F(RenderFunctions, PositionsAreThoseOfTheTimeline)
{
    Add();
    EXPECT_EQ(SelectedResult("print(GetRegionStartPosition(5), GetRegionEndPosition(5))"),
              "1010\t1060\n");
    for (const char* szCall : {"GetRegionStartPosition(9)", "GetRegionEndPosition(9)",
                               "ExportRegion(9)", "RegionRender(9)"})
        EXPECT_THAT(SelectedError(szCall), HasSubstr("the document has no region with the id 9"));
}

TEST_F(RenderFunctions, TheRateIsThatOfTheSelectedRegionElseOfTheFirst)
{
    EXPECT_EQ(SelectedError("GetSampleRate()"),
              "GetSampleRate: the document has no audio yet, and so no sample rate");
    Add();
    const std::string strOther =
        TarvaneTest::MakeSound(m_folder / "other.wav", TarvaneTest::Noise(10), 1, 44100);
    const std::string strAddOther =
        "AddAudioRegion(GetTrackID(0), \"" + strOther + "\", SELECT, false, 0,0,10)";
    SelectedResult("SELECT = false " + strAddOther);
    EXPECT_EQ(SelectedResult("print(GetSampleRate())"), "48000\n");
    SelectedResult("SELECT = true " + strAddOther);
    EXPECT_EQ(SelectedResult("print(GetSampleRate())"), "44100\n");
    SelectedResult("DeleteRegion(GetSelectedRegionID())");
    EXPECT_EQ(SelectedResult("print(GetSampleRate())"), "48000\n");
}

TEST_F(RenderFunctions, AnExportChangesNothingAndNamesItsFile)
{
    Add();
    const std::int64_t nUpdates = m_database.UpdateCount();
    EXPECT_EQ(SelectedResult("print(ExportRegion(5))"), Path("made/take-region-5.wav") + "\n");
    EXPECT_EQ(TarvaneTest::ReadSamples(Path("made/take-region-5.wav")).size(), 50u);
    EXPECT_EQ(m_database.UpdateCount(), nUpdates);
    EXPECT_EQ(ScriptDocument().regions[0].strPath, m_strTake);
}

TEST_F(RenderFunctions, ARenderedRegionPlaysItsNewFileWhereItWas)
{
    Add();
    SelectedResult("RegionRender(5)");
    const Region region = ScriptDocument().regions[0];
    EXPECT_EQ(region.strPath, Path("made/take-region-5.wav"));
    EXPECT_EQ(region.nStart, 0);
    EXPECT_EQ(region.nEnd, 50);
    EXPECT_EQ(SelectedResult("print(GetRegionStartPosition(5), GetRegionEndPosition(5))"),
              "1010\t1060\n");
    // The same audio in the same place, though the link offset of 0.1 s puts it 4800 on.
    EXPECT_EQ(SelectedResult("print(CheckForDuplicateRegion(GetTrackID(0), \"" + m_strTake +
                             "\",-3800,10,60))"),
              "1\n");
}

TEST_F(RenderFunctions, ARegionWhoseFileIsGoneIsRefused)
{
    Add();
    std::filesystem::remove(m_strTake);
    EXPECT_EQ(SelectedError("ExportRegion(5)"),
              "ExportRegion: the file " + m_strTake + " does not exist");
    EXPECT_THAT(SelectedError("RegionRender(5)"), HasSubstr("does not exist"));
    EXPECT_EQ(ScriptDocument().regions[0].strPath, m_strTake);
}

} // namespace
} // namespace Tarvane::Server
