#include "controls/ButtonShading.h"

#include "tests/support/RecordingCoreGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using testing::ElementsAre;

namespace
{

using Shader = CGFunctionEvaluateCallback;

std::vector<CGFloat> Shade(Shader shader, CGFloat t, size_t n = 4)
{
    std::vector<CGFloat> out(n, -1);
    shader((void*)n, &t, out.data());
    return out;
}

struct Ramp
{
    Shader shader;
    double dFrom;
    double dTo;
};

const Ramp kRamps[] = {
    {TKShaderNormalBtn, 0.4 + 0.2, 0.2},
    {TKShaderSelectedBtn, double(0.4f) + 0.4, 0.4},
    {TKShaderDisabledNormalBtn, 0.15 + 0.75, 0.75},
    {TKShaderDisabledSelectedBtn, 0.15 + 0.75, 0.75},
};

} // namespace

TEST(ButtonShading, RampsRunFromLightToDarkAtFullAlpha)
{
    for (const Ramp& ramp : kRamps)
    {
        EXPECT_THAT(Shade(ramp.shader, 0), ElementsAre(ramp.dFrom, ramp.dFrom, ramp.dFrom, 1.0));
        EXPECT_THAT(Shade(ramp.shader, 1), ElementsAre(ramp.dTo, ramp.dTo, ramp.dTo, 1.0));
    }
}

TEST(ButtonShading, RampIsLinear)
{
    EXPECT_DOUBLE_EQ(Shade(TKShaderNormalBtn, 0.25)[0], 0.4 * 0.75 + 0.2);
    EXPECT_DOUBLE_EQ(Shade(TKShaderDisabledSelectedBtn, 0.5)[2], 0.15 * 0.5 + 0.75);
}

TEST(ButtonShading, SelectedRampIsHeldIn32Bits)
{
    EXPECT_EQ(Shade(TKShaderSelectedBtn, 0)[0], double(0.4f) + 0.4);
    EXPECT_NE(Shade(TKShaderSelectedBtn, 0)[0], 0.4 + 0.4);
}

TEST(ButtonShading, OneOutputIsTheAlphaAlone)
{
    for (const Ramp& ramp : kRamps)
        EXPECT_THAT(Shade(ramp.shader, 0.5, 1), ElementsAre(1.0));
}

TEST(ButtonShading, ShaderIsAFunctionOfOneInputForTheSpace)
{
    const size_t nBefore = TarvaneTests::LiveGraphicsObjects();
    TarvaneTests::ResetGraphicsCalls();
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    CGFunctionRef function = GetBtnShader(space, TKShaderNormalBtn);
    CGShadingRef shading =
        CGShadingCreateAxial(space, CGPointMake(0, 0), CGPointMake(0, 1), function, false, false);
    CGContextDrawShading(TarvaneTests::RecordingContext(), shading);
    EXPECT_EQ(TarvaneTests::GraphicsCalls().at(0),
              "DrawShading axial 0 0 0 1 version 0 info 4 domain 0 1 range 0 1 0 1 0 1 0 1 keep "
              "from 0.600 0.600 0.600 1.000 to 0.200 0.200 0.200 1.000");
    CGShadingRelease(shading);
    CGFunctionRelease(function);
    CGColorSpaceRelease(space);
    EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), nBefore);
}
