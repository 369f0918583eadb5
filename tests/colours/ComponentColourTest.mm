#include "tests/colours/ColourFixture.h"
#include "tests/support/VirtualTable.h"

#include <cstdint>

using testing::DoubleEq;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{

std::unique_ptr<CParameterBlock> BlockWithout(const std::string& strMissing)
{
    auto pBlock = std::make_unique<CParameterBlock>();
    if (strMissing != "Code")
        CComponentCode(7, 8).Save(pBlock.get());
    double dValue = 0.1;
    for (const char* szName : {"R", "G", "B", "A"})
    {
        if (strMissing != szName)
            pBlock->AddParameter(szName, dValue);
        dValue += 0.1;
    }
    if (strMissing != "Name")
        pBlock->AddParameter("Name", "Sand");
    if (strMissing != "Edit")
        pBlock->AddParameter("Edit", false);
    return pBlock;
}

class ComponentColour : public ColourFixture
{
};

// Both platform colours are made of these numbers, the NSColor as a calibrated one.
void ExpectPlatformColours(const CComponentColour& colour, const std::vector<double>& rgba)
{
    const CGFloat* c = CGColorGetComponents(colour.m_refColor);
    EXPECT_THAT(std::vector<double>(c, c + 4), ElementsAreArray(rgba));
    EXPECT_TRUE([[colour.m_pNSColor colorSpaceName] isEqualToString:NSCalibratedRGBColorSpace]);
    EXPECT_THAT(RGBAOf(colour.m_pNSColor), testing::Pointwise(testing::DoubleNear(1e-6), rgba));
}

// Has a virtual operation of its own, which stands behind those of the class that it derives from.
class LaterColour : public CComponentColour
{
  public:
    using CComponentColour::CComponentColour;
    virtual void Later() {}
};

} // namespace

TEST(ComponentCode, KeyIsModuleAboveComponent)
{
    EXPECT_EQ(CComponentCode(0, 302).Key(), 302);
    EXPECT_EQ(CComponentCode(1, 2).Key(), 0x0000000100000002LL);
    EXPECT_EQ(CComponentCode(-1, 5).Key(), std::int64_t(0xFFFFFFFF00000005ULL));
}

TEST(ComponentCode, NegativeComponentStaysOutOfTheModulesHalf)
{
    EXPECT_EQ(CComponentCode(0, -1).Key(), 0x00000000FFFFFFFFLL);
    const CComponentCode back(0x00000000FFFFFFFFLL);
    EXPECT_EQ(back.m_nModule, 0);
    EXPECT_EQ(back.m_nComponent, -1);
}

TEST(ComponentCode, NegativeModuleComesBackFromTheKey)
{
    const CComponentCode back(CComponentCode(-3, 9).Key());
    EXPECT_EQ(back.m_nModule, -3);
    EXPECT_EQ(back.m_nComponent, 9);
}

TEST(ComponentCode, IsEmptyWhenBothNumbersAreZero)
{
    EXPECT_TRUE(CComponentCode().Empty());
    EXPECT_TRUE(CComponentCode(0, 0).Empty());
    EXPECT_FALSE(CComponentCode(0, -1).Empty());
    EXPECT_FALSE(CComponentCode(1, 0).Empty());
}

TEST(ComponentCode, SavesModuleThenComponentInANestedBlock)
{
    CParameterBlock block;
    CComponentCode(4, 5).Save(&block);
    CParameterBlock* pCode = nullptr;
    ASSERT_TRUE(block.FindParameter("Code", &pCode));
    EXPECT_THAT(NamesIn(*pCode), ElementsAre("Mod", "CompID"));
    int nModule = 0;
    int nComponent = 0;
    EXPECT_TRUE(pCode->FindParameter("Mod", &nModule, 0));
    EXPECT_TRUE(pCode->FindParameter("CompID", &nComponent, 0));
    EXPECT_EQ(nModule, 4);
    EXPECT_EQ(nComponent, 5);
}

TEST(ComponentCode, LoadWithoutABlockLeavesTheCode)
{
    CParameterBlock block;
    CComponentCode code(4, 5);
    EXPECT_FALSE(code.Load(&block));
    EXPECT_EQ(code.Key(), CComponentCode(4, 5).Key());
}

TEST(ComponentCode, LoadSetsAMissingNumberToZero)
{
    for (const bool fModule : {true, false})
    {
        CParameterBlock inner;
        inner.AddParameter(fModule ? "Mod" : "CompID", 9);
        CParameterBlock block;
        block.AddParameter("Code", &inner);
        CComponentCode code(4, 5);
        EXPECT_FALSE(code.Load(&block));
        EXPECT_EQ(code.m_nModule, fModule ? 9 : 0);
        EXPECT_EQ(code.m_nComponent, fModule ? 0 : 9);
    }
}

TEST_F(ComponentColour, OfACodeAloneHasNoPlatformColours)
{
    const CComponentColour colour(CComponentCode(1, 2));
    EXPECT_THAT(RGBAOf(colour), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(colour.m_refColor, nullptr);
    EXPECT_TRUE(colour.m_pNSColor == nil);
    EXPECT_TRUE(colour.m_fEditable);
    EXPECT_EQ(colour.m_strName, "");
}

TEST_F(ComponentColour, MakesBothPlatformColoursOfItsNumbers)
{
    const CComponentColour colour(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    EXPECT_EQ(colour.m_strName, "Sand");
    EXPECT_FALSE(colour.m_fEditable);
    ExpectPlatformColours(colour, {0.1, 0.2, 0.3, 0.4});
}

TEST_F(ComponentColour, IsMadeInTheSpaceThatIsPassed)
{
    CGColorSpaceRef other = CGColorSpaceCreateDeviceRGB();
    CComponentColour colour(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace);
    CParameterBlock block;
    colour.Save(&block);
    colour.Load(&block, other);
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace + 1);
    colour.Load(&block, m_space);
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace);
    CGColorSpaceRelease(other);
}

TEST_F(ComponentColour, NumbersAreNeverClamped)
{
    const std::vector<double> wild = {-0.5, 1.5, 2.0, -3.0};
    CComponentColour made(CComponentCode(1, 2), "", -0.5, 1.5, 2.0, -3.0, m_space, true);
    CParameterBlock block;
    made.Save(&block);
    CComponentColour loaded(CComponentCode(0, 0));
    EXPECT_TRUE(loaded.Load(&block, m_space));
    CComponentColour updated(CComponentCode(0, 0));
    updated.UpdateColour(-0.5, 1.5, 2.0, -3.0);
    CComponentColour assigned(CComponentCode(0, 0));
    assigned = made;
    for (const CComponentColour* pColour : {&made, &loaded, &updated, &assigned})
    {
        EXPECT_THAT(RGBAOf(*pColour), ElementsAreArray(wild));
        const CGFloat* c = CGColorGetComponents(pColour->m_refColor);
        EXPECT_THAT(std::vector<double>(c, c + 4), ElementsAreArray(wild));
    }
}

TEST_F(ComponentColour, OwnsOneReferenceOfItsNSColorAndGivesItBack)
{
    std::unique_ptr<CComponentColour> pColour;
    CParameterBlock block;
    const auto make = [&]
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        pColour = std::make_unique<CComponentColour>(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3,
                                                     0.4, m_space, false);
        [pool drain];
    };
    make();
    pColour->Save(&block);
    CComponentColour other(CComponentCode(3, 4));
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [] {}), 1u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [&] { pColour->UpdateColour(1, 1, 1, 1); }), 0u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [] {}), 1u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [&] { pColour->Load(&block, m_space); }), 0u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [] {}), 1u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [&] { *pColour = other; }), 0u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [] {}), 1u);
    EXPECT_EQ(OwnersAfter(pColour->m_pNSColor, [&] { pColour.reset(); }), 0u);
}

TEST_F(ComponentColour, HasItsVirtualOperationsInOrderAndNoOther)
{
    using TarvaneTests::Slot;
    using Assignment = CComponentColour& (CComponentColour::*)(CComponentColour&);
    EXPECT_TRUE(std::has_virtual_destructor_v<CComponentColour>);
    EXPECT_EQ(Slot(&CComponentColour::Save), 2);
    EXPECT_EQ(Slot(&CComponentColour::Load), 3);
    EXPECT_EQ(Slot(static_cast<Assignment>(&CComponentColour::operator=)), 4);
    EXPECT_EQ(Slot(&LaterColour::Later), 5);
}

TEST_F(ComponentColour, SavesInAFixedOrder)
{
    CComponentColour colour(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, true);
    CParameterBlock block;
    colour.Save(&block);
    EXPECT_THAT(NamesIn(block), ElementsAre("Type", "Code", "R", "G", "B", "A", "Name", "Edit"));
    int nType = 0;
    EXPECT_TRUE(block.FindParameter("Type", &nType, 0));
    EXPECT_EQ(nType, 1);
    EXPECT_EQ(block.m_vParameters[2]->m_nType, 3) << "a double where CGFloat is one";
}

TEST_F(ComponentColour, ComesBackFromItsSavedForm)
{
    CComponentColour colour(CComponentCode(1, -2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    CParameterBlock block;
    colour.Save(&block);
    CComponentColour back(CComponentCode(0, 0));
    EXPECT_TRUE(back.Load(&block, m_space));
    EXPECT_EQ(back.m_Code.Key(), CComponentCode(1, -2).Key());
    EXPECT_THAT(RGBAOf(back), ElementsAre(0.1, 0.2, 0.3, 0.4));
    EXPECT_EQ(back.m_strName, "Sand");
    EXPECT_FALSE(back.m_fEditable);
    ExpectPlatformColours(back, {0.1, 0.2, 0.3, 0.4});
}

TEST_F(ComponentColour, LoadWithAMissingValueTakesTheRestAndLeavesNoCGColor)
{
    for (const char* szMissing : {"Code", "R", "G", "B", "A", "Name", "Edit"})
    {
        SCOPED_TRACE(szMissing);
        const std::string strMissing = szMissing;
        CComponentColour colour(CComponentCode(3, 4), "Old", 1, 1, 1, 1, m_space, false);
        const auto pBlock = BlockWithout(strMissing);
        CParameterBlock& block = *pBlock;
        EXPECT_FALSE(colour.Load(&block, m_space));
        EXPECT_EQ(colour.m_Code.Key(),
                  strMissing == "Code" ? CComponentCode(3, 4).Key() : CComponentCode(7, 8).Key());
        EXPECT_THAT(RGBAOf(colour),
                    ElementsAre(DoubleEq(strMissing == "R" ? 0.0 : 0.1),
                                DoubleEq(strMissing == "G" ? 0.0 : 0.2),
                                DoubleEq(strMissing == "B" ? 0.0 : 0.1 + 0.1 + 0.1),
                                DoubleEq(strMissing == "A" ? 0.0 : 0.1 + 0.1 + 0.1 + 0.1)));
        EXPECT_EQ(colour.m_strName, strMissing == "Name" ? "" : "Sand");
        EXPECT_EQ(colour.m_fEditable, strMissing == "Edit");
        EXPECT_EQ(colour.m_refColor, nullptr);
        EXPECT_TRUE(colour.m_pNSColor != nil);
    }
}

TEST_F(ComponentColour, LoadDoesNotConvertFloats)
{
    CParameterBlock block;
    CComponentCode(7, 8).Save(&block);
    for (const char* szName : {"R", "G", "B", "A"})
        block.AddParameter(szName, 0.5f);
    block.AddParameter("Name", "Sand");
    block.AddParameter("Edit", true);
    CComponentColour colour(CComponentCode(0, 0));
    EXPECT_FALSE(colour.Load(&block, m_space));
    EXPECT_THAT(RGBAOf(colour), ElementsAre(0, 0, 0, 0));
}

TEST_F(ComponentColour, UpdateColourMakesBothColoursAnewInDeviceRGB)
{
    CComponentColour colour(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    colour.UpdateColour(0.5, 0.6, 0.7, 2.0);
    EXPECT_THAT(RGBAOf(colour), ElementsAre(0.5, 0.6, 0.7, 2.0)) << "nothing is clamped";
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace + 1) << "a space of its own";
    EXPECT_THAT(TarvaneTests::GraphicsCalls(), ElementsAre("ReleaseSpace"));
    colour.UpdateColour(0.5, 0.6, 0.7, 0.8);
    ExpectPlatformColours(colour, {0.5, 0.6, 0.7, 0.8});
    EXPECT_EQ(colour.m_strName, "Sand");
}

TEST_F(ComponentColour, AssignmentCopiesEverythingAndMakesColoursOfItsOwn)
{
    CComponentColour source(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    CComponentColour target(CComponentCode(3, 4));
    target = source;
    EXPECT_EQ(target.m_Code.Key(), source.m_Code.Key());
    EXPECT_EQ(target.m_strName, "Sand");
    EXPECT_FALSE(target.m_fEditable);
    EXPECT_THAT(RGBAOf(target), ElementsAre(0.1, 0.2, 0.3, 0.4));
    ExpectPlatformColours(target, {0.1, 0.2, 0.3, 0.4});
    EXPECT_NE(target.m_refColor, source.m_refColor);
    EXPECT_EQ(TarvaneTests::LastColourSpace(), kSpace + 1) << "device RGB, in a space of its own";
}

TEST_F(ComponentColour, AssignedToItselfStaysWhatItWas)
{
    CComponentColour colour(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    CComponentColour& same = colour;
    colour = same;
    EXPECT_THAT(RGBAOf(colour), ElementsAre(0.1, 0.2, 0.3, 0.4));
    EXPECT_EQ(colour.m_strName, "Sand");
    EXPECT_NE(colour.m_refColor, nullptr);
}

TEST_F(ComponentColour, CopyColourArrayChangesNothing)
{
    CComponentColour colour(CComponentCode(1, 2), "Sand", 0.1, 0.2, 0.3, 0.4, m_space, false);
    CGColorRef before = colour.m_refColor;
    colour.CopyColourArray();
    EXPECT_EQ(colour.m_refColor, before);
    EXPECT_THAT(RGBAOf(colour), ElementsAre(0.1, 0.2, 0.3, 0.4));
}

TEST_F(ComponentColour, KeysOfTheSavedFormHaveTheirTexts)
{
    EXPECT_STREQ(CComponentColour::szType, "Type");
    EXPECT_STREQ(CComponentColour::szComponentColour, "CC");
    EXPECT_STREQ(CComponentColour::szRed, "R");
    EXPECT_STREQ(CComponentColour::szBlue, "B");
    EXPECT_STREQ(CComponentColour::szGreen, "G");
    EXPECT_STREQ(CComponentColour::szAlpha, "A");
    EXPECT_STREQ(CComponentColour::szComponent, "Comp");
    EXPECT_STREQ(CComponentColour::szComponents, "Comps");
    EXPECT_STREQ(CComponentColour::szName, "Name");
    EXPECT_STREQ(CComponentColour::szEditable, "Edit");
}
