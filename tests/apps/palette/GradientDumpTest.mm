#include "apps/palette/GradientDump.h"

#include "apps/support/program/CommandLine.h"
#include "tests/apps/palette/PaletteFixture.h"

#include <gmock/gmock.h>

using Tarvane::CUsageError;
using Tarvane::DumpGradient;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::ThrowsMessage;

using GradientDump = TarvaneTest::PaletteTest;

TEST_F(GradientDump, PrintsTheCallsOnTheErrorStream)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    DumpGradient("ccButtonBorder");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\t{\n"
              "\t\tCGradientFill *pFill = new CGradientFill(XXXX, \"Button border\", true);\n"
              "\t\tpFill->AddColor(0.000000, 0.447059, 0.447059, 0.447059, 1.000000, refSpace, "
              "true);\n"
              "\t\tpFill->AddColor(1.000000, 0.156863, 0.156863, 0.156863, 1.000000, refSpace, "
              "true);\n"
              "\t\tpFill->Create(refSpace);\n"
              "\t\tgAppColours.Add(pFill);\n"
              "\t}\n");
}

TEST_F(GradientDump, AFlatColourHasNoStops)
{
    EXPECT_THAT([] { DumpGradient("307"); },
                ThrowsMessage<CUsageError>(HasSubstr("307 (Control text) is a flat colour")));
}

TEST_F(GradientDump, AnUnknownCodeIsToldWithTheGradientsThatThereAre)
{
    gAppColours.Add(MakeGradient(CComponentCode(3, 4), "Mine", 2));
    EXPECT_THAT([] { DumpGradient("ccNull"); },
                ThrowsMessage<CUsageError>(
                    AllOf(HasSubstr("no entry ccNull"), HasSubstr("ccTransportBtnBorderDown, 3:4."),
                          HasSubstr("are ccTrackInfoBackground, ccButtonBorder"),
                          Not(HasSubstr("ccLabelText")))));
}
