#include "tests/platform/CoreGraphics/CanvasFixture.h"

using namespace TarvaneTests;

namespace
{

struct Calls
{
    int nEvaluated = 0;
    int nReleased = 0;
    CGFloat dLeast = 1e9;
    CGFloat dMost = -1e9;
};

// Red falls from 1.5 to -0.5; green is 0, blue the input.
void Evaluate(void* info, const CGFloat* in, CGFloat* out)
{
    auto* pCalls = static_cast<Calls*>(info);
    ++pCalls->nEvaluated;
    pCalls->dLeast = std::min(pCalls->dLeast, *in);
    pCalls->dMost = std::max(pCalls->dMost, *in);
    out[0] = 1.5 - 2 * *in;
    out[1] = 0;
    out[2] = *in;
    out[3] = 1;
}

void Released(void* info) { ++static_cast<Calls*>(info)->nReleased; }

class CGShadingPixels : public CanvasTest
{
  protected:
    CGFunctionRef MakeFunction(const CGFloat* pDomain)
    {
        const CGFloat range[] = {0, 1, 0, 1, 0, 1, 0, 1};
        const CGFunctionCallbacks callbacks = {0, &Evaluate, &Released};
        return CGFunctionCreate(&m_calls, 1, pDomain, 4, range, &callbacks);
    }

    CGShadingRef MakeShading(bool fStart, bool fEnd)
    {
        const CGFloat domain[] = {0, 1};
        CGFunctionRef function = MakeFunction(domain);
        CGShadingRef shading = CGShadingCreateAxial(m_space, CGPointMake(20, 0), CGPointMake(40, 0),
                                                    function, fStart, fEnd);
        CGFunctionRelease(function);
        return shading;
    }

    Calls m_calls;
};

} // namespace

TEST_F(CGShadingPixels, PaintsTheFunctionHeldWithinItsRange)
{
    CGShadingRef shading = MakeShading(true, true);
    CGContextDrawShading(m_context, shading);
    CGShadingRelease(shading);
    const Picture picture = m_canvas.Take();
    EXPECT_TRUE(IsNear(picture.At(2, 9), kRed)) << picture.At(2, 9);
    EXPECT_TRUE(IsNear(picture.At(29, 9), {133, 0, 121}, 8)) << picture.At(29, 9);
    EXPECT_TRUE(IsNear(picture.At(57, 9), kBlue)) << picture.At(57, 9);
    EXPECT_EQ(picture.At(2, 0), picture.At(2, 39));
}

TEST_F(CGShadingPixels, ExtendsBeyondItsEndsOnlyWhenTold)
{
    for (const bool fStart : {false, true})
        for (const bool fEnd : {false, true})
        {
            Canvas canvas(NSMakeSize(60, 40));
            CGShadingRef shading = MakeShading(fStart, fEnd);
            CGContextDrawShading(canvas.Context(), shading);
            CGShadingRelease(shading);
            const NSRect painted = canvas.Take().BoxOfAllBut(kWhite);
            EXPECT_EQ(NSMinX(painted), fStart ? 0 : 20);
            EXPECT_EQ(NSMaxX(painted), fEnd ? 60 : 40);
            EXPECT_EQ(NSHeight(painted), 40);
        }
}

TEST_F(CGShadingPixels, FunctionIsAskedAt257PlacesWhenTheShadingIsMadeAndNeverAgain)
{
    CGShadingRef shading = MakeShading(false, false);
    EXPECT_EQ(m_calls.nEvaluated, 257);
    EXPECT_EQ(m_calls.dLeast, 0);
    EXPECT_EQ(m_calls.dMost, 1);
    EXPECT_EQ(m_calls.nReleased, 1) << "the shading does not hold it";
    CGContextDrawShading(m_context, shading);
    CGContextDrawShading(m_context, shading);
    EXPECT_EQ(m_calls.nEvaluated, 257);
    CGShadingRelease(shading);
}

TEST_F(CGShadingPixels, InputsAreHeldWithinTheDomain)
{
    const CGFloat domain[] = {0.25, 0.5};
    CGFunctionRef function = MakeFunction(domain);
    CGShadingRef shading =
        CGShadingCreateAxial(m_space, CGPointMake(0, 0), CGPointMake(1, 0), function, true, true);
    CGFunctionRelease(function);
    CGShadingRelease(shading);
    EXPECT_EQ(m_calls.dLeast, 0.25);
    EXPECT_EQ(m_calls.dMost, 0.5);
}

TEST_F(CGShadingPixels, WithoutSpaceOrFunctionThereIsNoShadingAndNothingIsPainted)
{
    CGFunctionRef function = MakeFunction(nullptr);
    EXPECT_EQ(CGShadingCreateAxial(nullptr, NSZeroPoint, NSZeroPoint, function, true, true),
              nullptr);
    CGFunctionRelease(function);
    EXPECT_EQ(CGShadingCreateAxial(m_space, NSZeroPoint, NSZeroPoint, nullptr, true, true),
              nullptr);
    CGContextDrawShading(m_context, nullptr);
    EXPECT_EQ(m_canvas.Take().Count(kWhite), 60 * 40);
}

TEST(CGFunction, AnswersNullForCallbacksItCannotUse)
{
    CGFunctionCallbacks callbacks = {1, &Evaluate, nullptr};
    EXPECT_EQ(CGFunctionCreate(nullptr, 1, nullptr, 4, nullptr, &callbacks), nullptr);
    callbacks = {0, nullptr, nullptr};
    EXPECT_EQ(CGFunctionCreate(nullptr, 1, nullptr, 4, nullptr, &callbacks), nullptr);
    EXPECT_EQ(CGFunctionCreate(nullptr, 1, nullptr, 4, nullptr, nullptr), nullptr);
}

TEST(CGFunction, ReleasesItsInfoOnce)
{
    Calls calls;
    const CGFunctionCallbacks callbacks = {0, &Evaluate, &Released};
    CGFunctionRef function = CGFunctionCreate(&calls, 1, nullptr, 4, nullptr, &callbacks);
    EXPECT_EQ(calls.nReleased, 0);
    CGFunctionRelease(function);
    EXPECT_EQ(calls.nReleased, 1);
    CGFunctionRelease(nullptr);
}
