#include "tests/colours/ColourFixture.h"
#include "tests/support/DecimalComma.h"
#include "tests/support/LiveObjects.h"
#include "tests/support/VirtualTable.h"

#include <limits>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace
{

// The virtual Save and Load of a stop, with a key left out on the way.
std::unique_ptr<CParameterBlock> StopBlock(CGColorSpaceRef space, double dPosition,
                                           bool fColour = true)
{
    auto pBlock = std::make_unique<CParameterBlock>();
    CGradComponent stop(dPosition, 0.1, 0.2, 0.3, 0.4, space, true);
    if (fColour)
        stop.Save(pBlock.get());
    else
        pBlock->AddParameter("Position", float(dPosition));
    return pBlock;
}

std::unique_ptr<CParameterBlock> FillHeader()
{
    auto pBlock = std::make_unique<CParameterBlock>();
    pBlock->AddParameter("Type", 2);
    CComponentCode(7, 8).Save(pBlock.get());
    pBlock->AddParameter("Name", "Dusk");
    pBlock->AddParameter("Edit", false);
    return pBlock;
}

// Have a virtual operation of their own, which stands behind those of the class they derive from.
class LaterStop : public CGradComponent
{
  public:
    using CGradComponent::CGradComponent;
    virtual void Later() {}
};
class LaterFill : public CGradientFill
{
  public:
    using CGradientFill::CGradientFill;
    virtual void Later() {}
};

class GradientFill : public ColourFixture
{
  protected:
    void AddGrey(CGradientFill& fill, double dPosition, double dLevel = 0.5)
    {
        fill.AddColor(dPosition, dLevel, dLevel, dLevel, 1.0, m_space, true);
    }

    std::string Dump(CGradientFill& fill)
    {
        testing::internal::CaptureStderr();
        fill.DumpCode();
        return testing::internal::GetCapturedStderr();
    }

    // What the platform's gradient is made of.
    std::string Painted(const CGradientFill& fill)
    {
        TarvaneTests::ResetGraphicsCalls();
        CGContextDrawLinearGradient(TarvaneTests::RecordingContext(), fill.m_refGradient,
                                    CGPointMake(0, 0), CGPointMake(0, 1), 3);
        return TarvaneTests::GraphicsCalls().at(0);
    }
};

} // namespace

TEST_F(GradientFill, StopNarrowsItsPositionToFloat)
{
    const CGradComponent stop(0.1, 0.2, 0.3, 0.4, 0.5, m_space, false);
    EXPECT_EQ(stop.m_fPosition, 0.1f);
    EXPECT_TRUE(stop.m_Code.Empty());
    EXPECT_EQ(stop.m_strName, "");
    EXPECT_FALSE(stop.m_fEditable);
    EXPECT_NE(stop.m_refColor, nullptr);
}

TEST_F(GradientFill, StopOfAPositionAndACodeHasNoColours)
{
    const CGradComponent stop(0.25f, CComponentCode(1, 2));
    EXPECT_EQ(stop.m_fPosition, 0.25f);
    EXPECT_EQ(stop.m_Code.Key(), CComponentCode(1, 2).Key());
    EXPECT_TRUE(stop.m_fEditable);
    EXPECT_EQ(stop.m_refColor, nullptr);
    EXPECT_TRUE(stop.m_pNSColor == nil);
}

TEST_F(GradientFill, StopAssignmentTakesThePositionAlong)
{
    CGradComponent source(0.75, 0.2, 0.3, 0.4, 0.5, m_space, false);
    CGradComponent target(0.0f, CComponentCode(1, 2));
    target = source;
    EXPECT_EQ(target.m_fPosition, 0.75f);
    EXPECT_THAT(RGBAOf(target), ElementsAre(0.2, 0.3, 0.4, 0.5));
}

TEST_F(GradientFill, CopiedStopHasTheSourcesCodeAndName)
{
    CParameterBlock block;
    block.AddParameter("Position", 0.5f);
    CParameterBlock colour;
    CComponentColour(CComponentCode(5, 6), "Ochre", 0.1, 0.2, 0.3, 0.4, m_space, false)
        .Save(&colour);
    block.AddParameter("Color", &colour);
    const auto pFillBlock = FillHeader();
    pFillBlock->AddParameter("GradColor", &block);
    CGradientFill source(CComponentCode(0, 0));
    ASSERT_TRUE(source.Load(pFillBlock.get(), m_space));
    CGradientFill target(CComponentCode(0, 0));
    target = source;
    ASSERT_EQ(target.m_Stops.size(), 1u);
    const CGradComponent& stop = **target.m_Stops.begin();
    EXPECT_EQ(stop.m_Code.Key(), CComponentCode(5, 6).Key());
    EXPECT_EQ(stop.m_strName, "Ochre");
    EXPECT_FALSE(stop.m_fEditable);
    EXPECT_THAT(RGBAOf(stop), ElementsAre(0.1, 0.2, 0.3, 0.4));
}

TEST_F(GradientFill, MakesStopsAndGradientInTheSpaceThatIsPassed)
{
    CGColorSpaceRef other = CGColorSpaceCreateDeviceRGB();
    CGradientFill fill(CComponentCode(1, 2), "Dusk", true);
    AddGrey(fill, 0.0);
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace);
    fill.Create(other);
    EXPECT_EQ(TarvaneTests::LastGradientSpace(), kSpace + 1);
    fill.Create(m_space);
    EXPECT_EQ(TarvaneTests::LastGradientSpace(), kSpace);
    CParameterBlock block;
    fill.Save(&block);
    EXPECT_TRUE(fill.Load(&block, other));
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace + 1);
    EXPECT_EQ(TarvaneTests::LastGradientSpace(), kSpace + 1);
    CGColorSpaceRelease(other);
}

TEST_F(GradientFill, TablesOfVirtualOperationsEndWithTheInheritedAssignment)
{
    EXPECT_EQ(TarvaneTests::Slot(&CGradComponent::Save), 2);
    EXPECT_EQ(TarvaneTests::Slot(&CGradComponent::Load), 3);
    EXPECT_EQ(TarvaneTests::Slot(&LaterStop::Later), 5);
    EXPECT_EQ(TarvaneTests::Slot(&CGradientFill::Save), 2);
    EXPECT_EQ(TarvaneTests::Slot(&CGradientFill::Load), 3);
    EXPECT_EQ(TarvaneTests::Slot(&LaterFill::Later), 5);
}

TEST_F(GradientFill, BaseNumbersAndColoursStayEmpty)
{
    CGradientFill fill(CComponentCode(1, 2), "Dusk", true);
    AddGrey(fill, 0.0);
    fill.Create(m_space);
    EXPECT_THAT(RGBAOf(fill), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(fill.m_refColor, nullptr);
    EXPECT_TRUE(fill.m_pNSColor == nil);
}

TEST_F(GradientFill, KeepsTheFirstOfTwoStopsAtOnePosition)
{
    CGradientFill fill(CComponentCode(1, 2));
    AddGrey(fill, 0.5, 0.1);
    AddGrey(fill, 0.5, 0.9);
    ASSERT_EQ(fill.m_Stops.size(), 1u);
    EXPECT_EQ((*fill.m_Stops.begin())->m_dRed, 0.1);
}

TEST_F(GradientFill, PositionsThatAreEqualAsFloatsAreOnePosition)
{
    CGradientFill fill(CComponentCode(1, 2));
    AddGrey(fill, 0.5);
    AddGrey(fill, 0.5 + 1e-12);
    AddGrey(fill, std::nextafter(0.5f, 1.0f));
    EXPECT_EQ(fill.m_Stops.size(), 2u);
}

TEST_F(GradientFill, MultiplierSparesAlphaAndNumbersAreClampedFromAboveOnly)
{
    CGradientFill fill(CComponentCode(1, 2));
    fill.AddColor(0.0, 0.6, 0.2, -0.3, 0.5, m_space, true, 2.0);
    fill.AddColor(1.0, 0.1, 0.2, 0.3, 7.0, m_space, false);
    const CGradComponent& first = **fill.m_Stops.begin();
    const CGradComponent& last = **fill.m_Stops.rbegin();
    EXPECT_THAT(RGBAOf(first), ElementsAre(1.0, 0.4, -0.6, 0.5));
    EXPECT_THAT(RGBAOf(last), ElementsAre(0.1, 0.2, 0.3, 1.0));
    EXPECT_TRUE(first.m_fEditable);
    EXPECT_FALSE(last.m_fEditable);
}

TEST_F(GradientFill, AddAndDeleteLeaveTheGradientUntilCreate)
{
    CGradientFill fill(CComponentCode(1, 2));
    AddGrey(fill, 0.0, 0.25);
    EXPECT_EQ(fill.m_refGradient, nullptr);
    fill.Create(m_space);
    const std::string strBefore = Painted(fill);
    AddGrey(fill, 1.0);
    EXPECT_EQ(Painted(fill), strBefore);
    fill.DeleteColor(*fill.m_Stops.begin());
    EXPECT_EQ(Painted(fill), strBefore);
    fill.Create(m_space);
    EXPECT_EQ(Painted(fill), "DrawLinearGradient [1: rgba(0.5 0.5 0.5 1)] 0 0 0 1 options 3");
}

TEST_F(GradientFill, CreateTakesStopsInOrderOfPosition)
{
    CGradientFill fill(CComponentCode(1, 2));
    AddGrey(fill, 1.0, 0.75);
    AddGrey(fill, 0.25, 0.5);
    fill.Create(m_space);
    EXPECT_EQ(Painted(fill), "DrawLinearGradient [0.25: rgba(0.5 0.5 0.5 1), 1: rgba(0.75 0.75 "
                             "0.75 1)] 0 0 0 1 options 3");
}

TEST_F(GradientFill, CreateWithoutStopsStillAsksThePlatform)
{
    CGradientFill fill(CComponentCode(1, 2));
    fill.Create(m_space);
    EXPECT_NE(fill.m_refGradient, nullptr);
    EXPECT_EQ(Painted(fill), "DrawLinearGradient [] 0 0 0 1 options 3");
}

TEST_F(GradientFill, CreateKeepsNothingButTheGradient)
{
    CGradientFill fill(CComponentCode(1, 2));
    AddGrey(fill, 0.0);
    AddGrey(fill, 1.0);
    const auto create = [&]
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        fill.Create(m_space);
        [pool drain];
    };
    create();
    const long nObjects = LiveObjects();
    const size_t nGraphicsObjects = TarvaneTests::LiveGraphicsObjects();
    create();
    EXPECT_EQ(LiveObjects(), nObjects);
    EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), nGraphicsObjects);
}

TEST_F(GradientFill, DeleteColorKnowsItsOwnStopsOnly)
{
    CGradientFill fill(CComponentCode(1, 2));
    AddGrey(fill, 0.5);
    CGradComponent foreign(0.5, 0, 0, 0, 1, m_space, true);
    fill.DeleteColor(&foreign);
    EXPECT_EQ(fill.m_Stops.size(), 1u);
    fill.DeleteColor(*fill.m_Stops.begin());
    EXPECT_THAT(fill.m_Stops, IsEmpty());
}

TEST_F(GradientFill, ClearReleasesStopsAndGradient)
{
    CGradientFill fill(CComponentCode(1, 2));
    const size_t nBefore = TarvaneTests::LiveGraphicsObjects();
    AddGrey(fill, 0.0);
    AddGrey(fill, 1.0);
    fill.Create(m_space);
    EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), nBefore + 3);
    fill.Clear();
    EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), nBefore);
    EXPECT_EQ(fill.m_refGradient, nullptr);
    EXPECT_THAT(fill.m_Stops, IsEmpty());
}

TEST_F(GradientFill, SavesHeaderThenStopsFromTheLowest)
{
    CGradientFill fill(CComponentCode(7, 8), "Dusk", true);
    AddGrey(fill, 0.9);
    AddGrey(fill, 0.1);
    CParameterBlock block;
    fill.Save(&block);
    EXPECT_THAT(NamesIn(block),
                ElementsAre("Type", "Code", "Name", "Edit", "GradColor", "GradColor"));
    int nType = 0;
    block.FindParameter("Type", &nType, 0);
    EXPECT_EQ(nType, 2);
    auto& first = dynamic_cast<CParameterBlock&>(*block.m_vParameters[4]);
    EXPECT_THAT(NamesIn(first), ElementsAre("Position", "Color"));
    float fPosition = 0;
    EXPECT_TRUE(first.FindParameter("Position", &fPosition, 0.0f));
    EXPECT_EQ(fPosition, 0.1f);
    CParameterBlock* pColour = nullptr;
    EXPECT_TRUE(first.FindParameter("Color", &pColour));
    EXPECT_THAT(NamesIn(*pColour), ElementsAre("Type", "Code", "R", "G", "B", "A", "Name", "Edit"));
}

TEST_F(GradientFill, StopsReadOutOfOrderAreSavedInOrder)
{
    const auto pBlock = FillHeader();
    CParameterBlock& block = *pBlock;
    const auto pHigh = StopBlock(m_space, 0.9);
    CParameterBlock& high = *pHigh;
    const auto pLow = StopBlock(m_space, 0.1);
    CParameterBlock& low = *pLow;
    block.AddParameter("GradColor", &high);
    block.AddParameter("GradColor", &low);
    CGradientFill fill(CComponentCode(0, 0));
    EXPECT_TRUE(fill.Load(&block, m_space));
    EXPECT_THAT(PositionsOf(fill), ElementsAre(0.1f, 0.9f));
}

TEST_F(GradientFill, LoadReplacesWhatWasThereAndCreates)
{
    const auto pBlock = FillHeader();
    CParameterBlock& block = *pBlock;
    const auto pStop = StopBlock(m_space, 0.25);
    CParameterBlock& stop = *pStop;
    block.AddParameter("GradColor", &stop);
    CGradientFill fill(CComponentCode(0, 0), "Old", true);
    AddGrey(fill, 0.75);
    EXPECT_TRUE(fill.Load(&block, m_space));
    EXPECT_THAT(PositionsOf(fill), ElementsAre(0.25f));
    EXPECT_EQ(fill.m_strName, "Dusk");
    EXPECT_FALSE(fill.m_fEditable);
    EXPECT_EQ(fill.m_Code.Key(), CComponentCode(7, 8).Key());
    EXPECT_EQ(Painted(fill), "DrawLinearGradient [0.25: rgba(0.10000000000000001 "
                             "0.20000000000000001 0.29999999999999999 "
                             "0.40000000000000002)] 0 0 0 1 options 3");
}

TEST_F(GradientFill, LoadWithoutStopsSucceedsAndCreates)
{
    const auto pBlock = FillHeader();
    CParameterBlock& block = *pBlock;
    CGradientFill fill(CComponentCode(0, 0));
    EXPECT_TRUE(fill.Load(&block, m_space));
    EXPECT_THAT(fill.m_Stops, IsEmpty());
    EXPECT_NE(fill.m_refGradient, nullptr);
}

TEST_F(GradientFill, LoadWithAFlawedHeaderReadsNoStopAndForgetsTheOldOnes)
{
    for (const char* szMissing : {"Code", "Name", "Edit"})
    {
        SCOPED_TRACE(szMissing);
        const std::string strMissing = szMissing;
        CParameterBlock block;
        if (strMissing != "Code")
            CComponentCode(7, 8).Save(&block);
        if (strMissing != "Name")
            block.AddParameter("Name", "Dusk");
        if (strMissing != "Edit")
            block.AddParameter("Edit", false);
        const auto pStop = StopBlock(m_space, 0.25);
        CParameterBlock& stop = *pStop;
        block.AddParameter("GradColor", &stop);
        CGradientFill fill(CComponentCode(0, 0));
        AddGrey(fill, 0.75);
        EXPECT_FALSE(fill.Load(&block, m_space));
        EXPECT_THAT(fill.m_Stops, IsEmpty());
        EXPECT_NE(fill.m_refGradient, nullptr);
        EXPECT_EQ(fill.m_fEditable, strMissing == "Edit");
    }
}

TEST_F(GradientFill, LoadReportsTheLastStopAlone)
{
    const auto pGood = StopBlock(m_space, 0.25);
    CParameterBlock& good = *pGood;
    const auto pBad = StopBlock(m_space, 0.5, false);
    CParameterBlock& bad = *pBad;
    for (const bool fGoodLast : {true, false})
    {
        const auto pBlock = FillHeader();
        CParameterBlock& block = *pBlock;
        block.AddParameter("GradColor", fGoodLast ? &bad : &good);
        block.AddParameter("GradColor", fGoodLast ? &good : &bad);
        CGradientFill fill(CComponentCode(0, 0));
        EXPECT_EQ(fill.Load(&block, m_space), fGoodLast);
        EXPECT_THAT(PositionsOf(fill), ElementsAre(0.25f));
        EXPECT_NE(fill.m_refGradient, nullptr);
    }
}

TEST_F(GradientFill, LoadKeepsTheFirstOfTwoStopsAtOnePosition)
{
    const auto pBlock = FillHeader();
    CParameterBlock& block = *pBlock;
    const auto pStop = StopBlock(m_space, 0.25);
    CParameterBlock& stop = *pStop;
    block.AddParameter("GradColor", &stop);
    block.AddParameter("GradColor", &stop);
    CGradientFill fill(CComponentCode(0, 0));
    EXPECT_TRUE(fill.Load(&block, m_space));
    EXPECT_EQ(fill.m_Stops.size(), 1u);
}

TEST_F(GradientFill, StopWithoutPositionOrColourFails)
{
    CParameterBlock colourOnly;
    CParameterBlock inner;
    CComponentColour(CComponentCode(0, 0), "", 0.1, 0.2, 0.3, 0.4, m_space, true).Save(&inner);
    colourOnly.AddParameter("Color", &inner);
    CGradComponent stop(0.5f, CComponentCode(0, 0));
    EXPECT_FALSE(stop.Load(&colourOnly, m_space));
    EXPECT_EQ(stop.m_fPosition, 0.0f);
    const auto pPositionOnly = StopBlock(m_space, 0.75, false);
    CParameterBlock& positionOnly = *pPositionOnly;
    EXPECT_FALSE(stop.Load(&positionOnly, m_space));
    EXPECT_EQ(stop.m_fPosition, 0.75f);
}

TEST_F(GradientFill, AssignmentCopiesStopsAndLeavesNoGradient)
{
    CGradientFill source(CComponentCode(7, 8), "Dusk", false);
    AddGrey(source, 0.25);
    AddGrey(source, 0.75);
    source.Create(m_space);
    CGradientFill target(CComponentCode(1, 2), "Old", true);
    AddGrey(target, 0.1);
    target.Create(m_space);
    target = source;
    EXPECT_EQ(target.m_strName, "Dusk");
    EXPECT_FALSE(target.m_fEditable);
    EXPECT_EQ(target.m_Code.Key(), CComponentCode(7, 8).Key());
    EXPECT_THAT(PositionsOf(target), ElementsAreArray(PositionsOf(source)));
    EXPECT_NE(*target.m_Stops.begin(), *source.m_Stops.begin());
    EXPECT_NE((*target.m_Stops.begin())->m_refColor, (*source.m_Stops.begin())->m_refColor);
    EXPECT_EQ(target.m_refGradient, nullptr);
}

TEST_F(GradientFill, AssignedToItselfEndsWithoutStops)
{
    CGradientFill fill(CComponentCode(7, 8), "Dusk", false);
    AddGrey(fill, 0.25);
    fill.Create(m_space);
    CGradientFill& same = fill;
    fill = same;
    EXPECT_TRUE(fill.m_Stops.empty());
    EXPECT_EQ(fill.m_refGradient, nullptr);
    EXPECT_EQ(fill.m_strName, "Dusk");
}

TEST_F(GradientFill, AssignedThroughTheBaseClassCopiesNoStops)
{
    CGradientFill source(CComponentCode(7, 8), "Dusk", false);
    AddGrey(source, 0.25);
    CGradientFill target(CComponentCode(1, 2), "Old", true);
    CComponentColour& base = target;
    base = source;
    EXPECT_EQ(target.m_strName, "Dusk");
    EXPECT_THAT(target.m_Stops, IsEmpty());
}

TEST_F(GradientFill, DumpIsTheCodeThatRebuildsTheFill)
{
    CGradientFill fill(CComponentCode(7, 8), "Dusk", false);
    fill.AddColor(0.25, 0.1, 0.2, 0.3, 0.4, m_space, false);
    fill.AddColor(1.0, 0.5, 0.6, 0.7, 0.8, m_space, false);
    EXPECT_EQ(Dump(fill),
              "\t{\n"
              "\t\tCGradientFill *pFill = new CGradientFill(XXXX, \"Dusk\", true);\n"
              "\t\tpFill->AddColor(0.250000, 0.100000, 0.200000, 0.300000, 0.400000, refSpace, "
              "true);\n"
              "\t\tpFill->AddColor(1.000000, 0.500000, 0.600000, 0.700000, 0.800000, refSpace, "
              "true);\n"
              "\t\tpFill->Create(refSpace);\n"
              "\t\tgAppColours.Add(pFill);\n"
              "\t}\n");
}

TEST_F(GradientFill, DumpWithoutStopsHasFiveLines)
{
    CGradientFill fill(CComponentCode(7, 8), "Dusk", false);
    const std::string strDump = Dump(fill);
    EXPECT_EQ(std::count(strDump.begin(), strDump.end(), '\n'), 5);
}

TEST_F(GradientFill, DumpHasADecimalPointWhateverTheLocale)
{
    const TarvaneTests::DecimalComma german;
    CGradientFill fill(CComponentCode(7, 8), "Dusk", false);
    fill.AddColor(0.25, 0.1, 0.2, 0.3, 0.4, m_space, false);
    EXPECT_THAT(Dump(fill), testing::HasSubstr("AddColor(0.250000, 0.100000, 0.200000, "));
}
