#include "apps/demo/Demo.h"

#include "tests/apps/support/ManualPage.h"

#include <CLI/CLI.hpp>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{

class DemoCommandLine : public testing::Test
{
protected:
    DemoCommandLine()
    {
        Tarvane::DeclareOptions(m_app, m_options);
        Tarvane::AddCommonOptions(m_app, "something did not come out as it should");
    }

    CLI::App m_app{"", "tarvane-demo"};
    Tarvane::DemoOptions m_options;
};

} // namespace

TEST_F(DemoCommandLine, TakesEachOption)
{
    m_app.parse("--out there --speed max --headless one.wav two.wav");
    EXPECT_EQ(m_options.strOut, "there");
    EXPECT_EQ(m_options.strSpeed, "max");
    EXPECT_TRUE(m_options.fHeadless);
    EXPECT_THAT(m_options.files, ElementsAre("one.wav", "two.wav"));
}

TEST_F(DemoCommandLine, DoesWithoutAny)
{
    m_app.parse("");
    EXPECT_EQ(m_options.strOut, "out");
    EXPECT_EQ(m_options.strSpeed, "1");
    EXPECT_FALSE(m_options.fHeadless);
    EXPECT_TRUE(m_options.files.empty());
}

TEST_F(DemoCommandLine, ManualPageHasEveryOption)
{
    TarvaneTest::ExpectManualDescribes(m_app, DEMO_MANUAL);
}
