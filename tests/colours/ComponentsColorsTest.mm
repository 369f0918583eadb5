#include "colours/ComponentsColors.h"

#include "tests/colours/ColourFixture.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

struct ExpectedStop
{
    double dPosition, dRed, dGreen, dBlue, dAlpha;
};

struct ExpectedEntry
{
    CComponentCode code;
    const char* szName;
    std::vector<double> rgba;        // of a flat colour
    std::vector<ExpectedStop> stops; // of a gradient
};

// The default palette from the highest code down.
const std::vector<ExpectedEntry> kPalette = {
    {CComponentCode(0, 323),
     "Transport button down border",
     {},
     {{0.0, 0.21176470588235294, 0.21176470588235294, 0.21176470588235294, 1.0}}},
    {CComponentCode(0, 322),
     "Transport button down face",
     {},
     {{0.0, 0.21176470588235294, 0.21176470588235294, 0.21176470588235294, 1.0}}},
    {CComponentCode(0, 321),
     "Transport button up border",
     {},
     {{0.0, 0.321569, 0.321569, 0.321569, 1.0}, {0.995413, 0.482353, 0.482353, 0.482353, 1.0}}},
    {CComponentCode(0, 320),
     "Transport button up face",
     {},
     {{0.0, 0.21176470588235294, 0.21176470588235294, 0.21176470588235294, 1.0}}},
    {CComponentCode(0, 315),
     "Selected text background",
     {0.29411764705882354, 0.34901960784313724, 0.4470588235294118, 1.0},
     {}},
    {CComponentCode(0, 314),
     "Button face Active",
     {},
     {{0.807339, 0.34072, 0.340677, 0.340736, 0.82}, {1.0, 0.266802, 0.266804, 0.266802, 1.0}}},
    {CComponentCode(0, 313),
     "Button border Active",
     {},
     {{0.0, 0.213698, 0.213699, 0.213697, 1.0}}},
    {CComponentCode(0, 312),
     "Button face",
     {},
     {{0.0, 0.21176470588235294, 0.21176470588235294, 0.21176470588235294, 1.0}}},
    {CComponentCode(0, 311),
     "Button border",
     {},
     {{0.0, 0.447059, 0.447059, 0.447059, 1.0}, {1.0, 0.156863, 0.156863, 0.156863, 1.0}}},
    {CComponentCode(0, 308),
     "Label text",
     {0.6980392156862745, 0.6980392156862745, 0.6980392156862745, 1.0},
     {}},
    {CComponentCode(0, 307),
     "Control text",
     {0.7529411764705882, 0.7529411764705882, 0.7529411764705882, 1.0},
     {}},
    {CComponentCode(0, 302),
     "Track Info Background",
     {},
     {{0.0, 0.098916, 0.098916, 0.098916, 1.0}, {1.0, 0.23685, 0.236851, 0.236849, 1.0}}},
};

void ExpectStops(const CGradientFill& fill, const std::vector<ExpectedStop>& stops)
{
    ASSERT_THAT(fill.m_Stops, SizeIs(stops.size()));
    auto expected = stops.begin();
    for (const CGradComponent* pStop : fill.m_Stops)
    {
        EXPECT_EQ(pStop->m_fPosition, float(expected->dPosition));
        EXPECT_THAT(RGBAOf(*pStop), ElementsAre(expected->dRed, expected->dGreen, expected->dBlue,
                                                expected->dAlpha));
        EXPECT_TRUE(pStop->m_fEditable);
        ++expected;
    }
    EXPECT_NE(fill.m_refGradient, nullptr);
}

void ExpectDefaultPalette(const CComponentsColors& table)
{
    ASSERT_THAT(table.m_Map, SizeIs(12));
    auto expected = kPalette.begin();
    for (const auto& [nKey, pEntry] : table.m_Map)
    {
        SCOPED_TRACE(expected->szName);
        EXPECT_EQ(nKey, expected->code.Key());
        EXPECT_EQ(pEntry->m_Code.Key(), expected->code.Key());
        EXPECT_EQ(pEntry->m_strName, expected->szName);
        EXPECT_TRUE(pEntry->m_fEditable);
        if (const auto* pFill = dynamic_cast<CGradientFill*>(pEntry))
            ExpectStops(*pFill, expected->stops);
        else
            EXPECT_THAT(RGBAOf(*pEntry), ElementsAreArray(expected->rgba));
        ++expected;
    }
}

class ComponentsColors : public ColourFixture
{
  protected:
    ~ComponentsColors() override { gAppColours.Clear(); }

    CComponentColour* NewColour(int nComponent, const char* szName)
    {
        return new CComponentColour(CComponentCode(0, nComponent), szName, 0.1, 0.2, 0.3, 0.4,
                                    m_space, true);
    }

    // A block "Comps" with entries of these types, each under the code of its place; a type below 0
    // gives an entry without "Name", which fails.
    std::unique_ptr<CParameterBlock> Entries(const std::vector<int>& types)
    {
        CParameterBlock list;
        int nComponent = 0;
        for (const int nType : types)
        {
            CParameterBlock entry;
            if (nType > 0)
                entry.AddParameter("Type", nType);
            CComponentCode(0, ++nComponent).Save(&entry);
            for (const char* szName : {"R", "G", "B", "A"})
                entry.AddParameter(szName, 0.5);
            if (nType >= 0)
                entry.AddParameter("Name", "Loaded");
            entry.AddParameter("Edit", true);
            list.AddParameter("Comp", &entry);
        }
        auto pBlock = std::make_unique<CParameterBlock>();
        pBlock->AddParameter("Comps", &list);
        return pBlock;
    }
};

} // namespace

TEST(ComponentCodes, HaveTheirNumbers)
{
    const std::vector<std::pair<CComponentCode, int>> codes = {
        {ccNull, -1},
        {ccTrackInfoBackground, 302},
        {ccControlText, 307},
        {ccLabelText, 308},
        {ccButtonBorder, 311},
        {ccButtonFace, 312},
        {ccButtonBorderActive, 313},
        {ccButtonFaceActive, 314},
        {ccSelectedTextBackground, 315},
        {ccTransportBtnFaceUp, 320},
        {ccTransportBtnBorderUp, 321},
        {ccTransportBtnFaceDown, 322},
        {ccTransportBtnBorderDown, 323},
    };
    for (const auto& [code, nComponent] : codes)
    {
        EXPECT_EQ(code.m_nModule, 0);
        EXPECT_EQ(code.m_nComponent, nComponent);
    }
}

TEST(AppStyle, IsThePaletteStyle) { EXPECT_EQ(gnAppStyle, 1); }

TEST_F(ComponentsColors, AppPaletteIsEmptyBeforeTheFirstView)
{
    EXPECT_THAT(gAppColours.m_Map, IsEmpty());
    EXPECT_EQ(gAppColours.Find(ccLabelText), nullptr);
}

TEST_F(ComponentsColors, DefaultPaletteHasTwelveEntriesFromTheHighestCodeDown)
{
    AppCreateDefaultColoursDesigner();
    ExpectDefaultPalette(gAppColours);
}

TEST_F(ComponentsColors, DefaultPaletteMakesTheTrackInfoBackgroundTwiceAndTheRestInOrder)
{
    using testing::StartsWith;
    TarvaneTests::ResetGraphicsCalls();
    AppCreateDefaultColoursDesigner();
    EXPECT_THAT(TarvaneTests::CreatedGradients(),
                ElementsAre(StartsWith("0: rgba(0.098"), StartsWith("0: rgba(0.098"),
                            StartsWith("0: rgba(0.211"), StartsWith("0.807"),
                            StartsWith("0: rgba(0.447"), StartsWith("0: rgba(0.213"),
                            StartsWith("0: rgba(0.211"), StartsWith("0: rgba(0.321"),
                            StartsWith("0: rgba(0.211"), StartsWith("0: rgba(0.211")));
    EXPECT_EQ(TarvaneTests::LastColourSpace(), 1u);
    EXPECT_EQ(TarvaneTests::LastGradientSpace(), 1u);
    EXPECT_THAT(TarvaneTests::GraphicsCalls(), ElementsAre("ReleaseSpace"));
}

TEST_F(ComponentsColors, DefaultPaletteIsTheSameAfterThreeCreations)
{
    for (int i = 0; i < 3; ++i)
        AppCreateDefaultColoursDesigner();
    ExpectDefaultPalette(gAppColours);
}

TEST_F(ComponentsColors, CreationForgetsForeignEntries)
{
    gAppColours.Add(NewColour(999, "Foreign"));
    AppCreateDefaultColoursDesigner();
    ExpectDefaultPalette(gAppColours);
}

TEST_F(ComponentsColors, NullCodeHasNoEntryAndIsNoGradient)
{
    AppCreateDefaultColoursDesigner();
    EXPECT_EQ(gAppColours.Find(ccNull), nullptr);
    EXPECT_FALSE(gAppColours.IsGradient(ccNull));
    EXPECT_EQ(gAppColours.FindCGColorRef(ccNull), nullptr);
    EXPECT_EQ(gAppColours.FindRGBA(ccNull), nullptr);
    EXPECT_TRUE(gAppColours.FindNSColor(ccNull) == nil);
}

TEST_F(ComponentsColors, GradientHasNoFlatColour)
{
    AppCreateDefaultColoursDesigner();
    EXPECT_TRUE(gAppColours.IsGradient(ccButtonFace)) << "a single stop is a gradient as well";
    EXPECT_EQ(gAppColours.FindCGColorRef(ccButtonFace), nullptr);
    EXPECT_TRUE(gAppColours.FindNSColor(ccButtonFace) == nil);
    const CGFloat* pRGBA = gAppColours.FindRGBA(ccButtonFace);
    ASSERT_NE(pRGBA, nullptr);
    EXPECT_THAT(std::vector<double>(pRGBA, pRGBA + 4), ElementsAre(0, 0, 0, 0));
}

TEST_F(ComponentsColors, FlatColourIsFoundInEveryForm)
{
    AppCreateDefaultColoursDesigner();
    EXPECT_FALSE(gAppColours.IsGradient(ccLabelText));
    EXPECT_NE(gAppColours.FindCGColorRef(ccLabelText), nullptr);
    EXPECT_EQ(gAppColours.FindCGColorRef(ccLabelText), gAppColours.Find(ccLabelText)->m_refColor);
    EXPECT_TRUE(gAppColours.FindNSColor(ccLabelText) == gAppColours.Find(ccLabelText)->m_pNSColor);
    const CGFloat* pRGBA = gAppColours.FindRGBA(ccControlText);
    EXPECT_EQ(pRGBA[0], pRGBA[1]);
    EXPECT_EQ(pRGBA[0], pRGBA[2]);
    EXPECT_EQ(pRGBA[0], 0.7529411764705882);
    EXPECT_EQ(pRGBA[3], 1.0);
}

TEST_F(ComponentsColors, LastAddOfACodeWins)
{
    CComponentsColors table;
    const size_t nBefore = TarvaneTests::LiveGraphicsObjects();
    table.Add(NewColour(1, "First"));
    table.Add(NewColour(1, "Last"));
    ASSERT_THAT(table.m_Map, SizeIs(1));
    EXPECT_EQ(table.Find(CComponentCode(0, 1))->m_strName, "Last");
    EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), nBefore + 1);
}

TEST_F(ComponentsColors, UpdateColourChangesAnEntryAndIgnoresAMissingOne)
{
    CComponentsColors table;
    table.Add(NewColour(1, "Sand"));
    table.UpdateColour(CComponentCode(0, 1), 0.1f, 0.2f, 0.3f, 0.4f);
    table.UpdateColour(CComponentCode(0, 2), 0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_THAT(RGBAOf(*table.Find(CComponentCode(0, 1))),
                ElementsAre(double(0.1f), double(0.2f), double(0.3f), double(0.4f)));
    EXPECT_THAT(table.m_Map, SizeIs(1));
}

TEST_F(ComponentsColors, UpdateColourOfAGradientChangesNothingThatIsPainted)
{
    AppCreateDefaultColoursDesigner();
    auto* pFill = static_cast<CGradientFill*>(gAppColours.Find(ccButtonBorder));
    const CGGradientRef before = pFill->m_refGradient;
    TarvaneTests::ResetGraphicsCalls();
    gAppColours.UpdateColour(ccButtonBorder, 0.25f, 0.5f, 0.75f, 1.0f);
    EXPECT_THAT(TarvaneTests::CreatedGradients(), IsEmpty());
    EXPECT_EQ(pFill->m_refGradient, before);
    EXPECT_TRUE(gAppColours.IsGradient(ccButtonBorder));
    ASSERT_THAT(pFill->m_Stops, SizeIs(2));
    EXPECT_THAT(RGBAOf(**pFill->m_Stops.begin()), ElementsAre(0.447059, 0.447059, 0.447059, 1.0));
    const CGFloat* pRGBA = gAppColours.FindRGBA(ccButtonBorder);
    EXPECT_THAT(std::vector<double>(pRGBA, pRGBA + 4), ElementsAre(0.25, 0.5, 0.75, 1.0));
    EXPECT_NE(gAppColours.FindCGColorRef(ccButtonBorder), nullptr);
    EXPECT_TRUE(gAppColours.FindNSColor(ccButtonBorder) != nil);
}

TEST_F(ComponentsColors, DerivedFillIsAGradientAsWell)
{
    class Fill : public CGradientFill
    {
        using CGradientFill::CGradientFill;
    };
    CComponentsColors table;
    table.Add(new Fill(CComponentCode(0, 1)));
    EXPECT_TRUE(table.IsGradient(CComponentCode(0, 1)));
}

TEST_F(ComponentsColors, NegativeCodesStandBelowPositiveOnes)
{
    CComponentsColors table;
    table.Add(new CComponentColour(CComponentCode(-1, 0)));
    table.Add(new CComponentColour(CComponentCode(0, -1)));
    table.Add(new CComponentColour(CComponentCode(1, 0)));
    std::vector<long long> keys;
    for (const auto& [nKey, pEntry] : table.m_Map)
        keys.push_back(nKey);
    EXPECT_THAT(keys, ElementsAre(0x100000000LL, 0xFFFFFFFFLL, -0x100000000LL));
}

TEST_F(ComponentsColors, DefaultPaletteComesBackFromItsSavedForm)
{
    AppCreateDefaultColoursDesigner();
    CParameterBlock block;
    gAppColours.Save(&block);
    EXPECT_THAT(NamesIn(block), ElementsAre("Comps"));
    CParameterBlock* pList = nullptr;
    ASSERT_TRUE(block.FindParameter("Comps", &pList));
    EXPECT_THAT(NamesIn(*pList), ElementsAreArray(std::vector<std::string>(12, "Comp")));
    CComponentsColors table;
    EXPECT_TRUE(table.Load(&block, m_space));
    ExpectDefaultPalette(table);
}

TEST_F(ComponentsColors, LoadReplacesOneCodeAndKeepsTheOthers)
{
    CComponentsColors table;
    table.Add(NewColour(1, "Old"));
    table.Add(NewColour(2, "Kept"));
    const auto pBlock = Entries({1});
    CParameterBlock& block = *pBlock;
    EXPECT_TRUE(table.Load(&block, m_space));
    EXPECT_EQ(table.Find(CComponentCode(0, 1))->m_strName, "Loaded");
    EXPECT_EQ(table.Find(CComponentCode(0, 2))->m_strName, "Kept");
}

TEST_F(ComponentsColors, LoadWithoutAListFailsAndWithAnEmptyOneSucceeds)
{
    CComponentsColors table;
    CParameterBlock nothing;
    EXPECT_FALSE(table.Load(&nothing, m_space));
    const auto pBlock = Entries({});
    CParameterBlock& block = *pBlock;
    EXPECT_TRUE(table.Load(&block, m_space));
    EXPECT_THAT(table.m_Map, IsEmpty());
}

TEST_F(ComponentsColors, EntryWithoutATypeIsAFlatColour)
{
    CComponentsColors table;
    const auto pBlock = Entries({0});
    CParameterBlock& block = *pBlock;
    EXPECT_TRUE(table.Load(&block, m_space));
    EXPECT_FALSE(table.IsGradient(CComponentCode(0, 1)));
    EXPECT_NE(table.FindCGColorRef(CComponentCode(0, 1)), nullptr);
}

TEST_F(ComponentsColors, TypeTwoIsAGradient)
{
    CComponentsColors table;
    const auto pBlock = Entries({2});
    CParameterBlock& block = *pBlock;
    EXPECT_TRUE(table.Load(&block, m_space));
    EXPECT_TRUE(table.IsGradient(CComponentCode(0, 1)));
}

TEST_F(ComponentsColors, EntryOfAnUnknownTypeIsLeftOutAndCountsAsFailed)
{
    CComponentsColors table;
    const auto pUnknownLast = Entries({1, 3});
    CParameterBlock& unknownLast = *pUnknownLast;
    EXPECT_FALSE(table.Load(&unknownLast, m_space));
    EXPECT_THAT(table.m_Map, SizeIs(1));
    const auto pUnknownFirst = Entries({77, 1});
    CParameterBlock& unknownFirst = *pUnknownFirst;
    EXPECT_TRUE(table.Load(&unknownFirst, m_space));
    EXPECT_THAT(table.m_Map, SizeIs(2));
}

TEST_F(ComponentsColors, LoadReportsTheLastEntryAlone)
{
    CComponentsColors table;
    const auto pGoodLast = Entries({-1, 1});
    CParameterBlock& goodLast = *pGoodLast;
    EXPECT_TRUE(table.Load(&goodLast, m_space));
    EXPECT_THAT(table.m_Map, SizeIs(1));
    table.Clear();
    const auto pBadLast = Entries({1, -1});
    CParameterBlock& badLast = *pBadLast;
    EXPECT_FALSE(table.Load(&badLast, m_space));
    EXPECT_THAT(table.m_Map, SizeIs(1));
}
