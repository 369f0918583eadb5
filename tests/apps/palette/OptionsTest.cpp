#include "apps/palette/Options.h"

#include "tests/apps/support/ManualPage.h"

#include <CLI/CLI.hpp>

#include <gmock/gmock.h>

using Tarvane::PaletteOptions;

namespace
{

class PaletteCommandLine : public testing::Test
{
protected:
    PaletteCommandLine() : m_app("", "tarvane-palette")
    {
        Tarvane::AddCommonOptions(m_app, "a file could not be written");
        Tarvane::DeclareOptions(m_app, m_options);
    }

    void Parse(const std::string& strLine) { m_app.parse(strLine); }

    CLI::App m_app;
    PaletteOptions m_options;
};

} // namespace

TEST_F(PaletteCommandLine, TakesEachOption)
{
    Parse("--load a --store b --dump c --save d");
    EXPECT_EQ(m_options.strLoad, "a");
    EXPECT_EQ(m_options.strStore, "b");
    EXPECT_EQ(m_options.strDump, "c");
    EXPECT_EQ(m_options.strSave, "d");
}

TEST_F(PaletteCommandLine, RefusesWordsAndEmptyTexts)
{
    EXPECT_THROW(Parse("sheet.png"), CLI::ParseError);
    EXPECT_THROW(Parse("--save \"\""), CLI::ParseError);
    EXPECT_THROW(Parse("--load"), CLI::ParseError);
}

TEST_F(PaletteCommandLine, AWindowIsForWhenNothingElseWasAskedFor)
{
    EXPECT_TRUE(Tarvane::WantsWindow({}));
    EXPECT_TRUE(Tarvane::WantsWindow({"file", "", "", ""}));
    EXPECT_FALSE(Tarvane::WantsWindow({"", "file", "", ""}));
    EXPECT_FALSE(Tarvane::WantsWindow({"", "", "312", ""}));
    EXPECT_FALSE(Tarvane::WantsWindow({"", "", "", "file"}));
}

TEST_F(PaletteCommandLine, ManualPageHasEveryOption)
{
    TarvaneTest::ExpectManualDescribes(m_app, PALETTE_MANUAL);
}
