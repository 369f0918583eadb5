#include "apps/palette/PaletteCodes.h"

#include "apps/support/program/CommandLine.h"
#include "colours/ComponentsColors.h"

#include <gtest/gtest.h>

using Tarvane::NameOfCode;
using Tarvane::NumbersOfCode;
using Tarvane::ParseCode;

TEST(PaletteCodes, EveryEntryOfTheDefaultPaletteHasItsConstantsName)
{
    AppCreateDefaultColoursDesigner();
    for (const auto& [nKey, pEntry] : gAppColours.m_Map)
    {
        const std::string strName = NameOfCode(pEntry->m_Code);
        EXPECT_EQ(strName.substr(0, 2), "cc") << pEntry->m_strName;
        EXPECT_EQ(ParseCode(strName).Key(), nKey);
    }
    gAppColours.Clear();
    EXPECT_EQ(NameOfCode(ccTransportBtnBorderDown), "ccTransportBtnBorderDown");
    EXPECT_EQ(NameOfCode(ccNull), "ccNull");
    EXPECT_EQ(NameOfCode(CComponentCode(1, 312)), "");
}

TEST(PaletteCodes, NumbersAreModuleAndComponent)
{
    EXPECT_EQ(NumbersOfCode(ccNull), "0:-1");
    EXPECT_EQ(NumbersOfCode(CComponentCode(7, 302)), "7:302");
}

TEST(PaletteCodes, AComponentAloneIsOfModule0)
{
    EXPECT_EQ(ParseCode("312").Key(), ccButtonFace.Key());
    EXPECT_EQ(ParseCode("-1").Key(), ccNull.Key());
    EXPECT_EQ(ParseCode("7:302").Key(), CComponentCode(7, 302).Key());
    EXPECT_EQ(ParseCode("-2147483648:2147483647").m_nModule, -2147483647 - 1);
}

TEST(PaletteCodes, WhatIsNoCodeIsRefused)
{
    for (const char* szText : {"", ":", "1:", ":1", "1:2:3", "0x10", "312 ", " 312", "312a",
                               "ccbuttonface", "ButtonFace", "2147483648", "1:9999999999"})
    {
        EXPECT_THROW(ParseCode(szText), Tarvane::CUsageError) << szText;
    }
}
