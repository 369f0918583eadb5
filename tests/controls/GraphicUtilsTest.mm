#import "controls/GraphicUtils.h"

#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"
#include "tests/controls/PaletteLookUps.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/RecordingCoreGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using TarvaneTests::GraphicsCalls;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{

constexpr CComponentCode kNone(0, 0);
constexpr CComponentCode kFlat(0, 1);
constexpr CComponentCode kGradient(0, 2);
constexpr CComponentCode kBackground(0, 3);
constexpr CComponentCode kUnknown(0, 4);

const CGRect kRect = CGRectMake(10, 20, 100, 50);

const std::string kFlatColour = "SetFillColor rgba(1 0 0 1)";
const std::string kBackgroundColour = "SetFillColor rgba(0 0 1 1)";
const std::string kWholeRect = "FillRect 10 20 100 50";

std::string Gradient(const std::string& strPoints)
{
    return "DrawLinearGradient [0: rgba(0 0 0 1), 1: rgba(1 1 1 1)] " + strPoints + " options 3";
}

struct DirectionCase
{
    int nDirection;
    bool fFlipped;
    const char* szPoints;
};

class Fills : public testing::Test
{
  protected:
    Fills() : m_pool([[NSAutoreleasePool alloc] init])
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Clear();
        gAppColours.Add(new CComponentColour(kFlat, "Flat", 1, 0, 0, 1, space, true));
        gAppColours.Add(new CComponentColour(kBackground, "Background", 0, 0, 1, 1, space, true));
        auto* pFill = new CGradientFill(kGradient, "Gradient", true);
        pFill->AddColor(0, 0, 0, 0, 1, space, true);
        pFill->AddColor(1, 1, 1, 1, 1, space, true);
        pFill->Create(space);
        gAppColours.Add(pFill);
        CGColorSpaceRelease(space);
        TarvaneTests::ResetGraphicsCalls();
    }

    ~Fills() override
    {
        gAppColours.Clear();
        [m_pool drain];
    }

    const std::vector<std::string>& Plain(CComponentCode colour, CComponentCode background,
                                          int nDirection, bool fFlipped, CGRect rect = kRect)
    {
        TarvaneTests::ResetGraphicsCalls();
        [GraphicUtils FillRect:TarvaneTests::RecordingContext()
                         Color:colour
                    Background:background
                          Rect:rect
                 FillDirection:FillDirection(nDirection)
                       Flipped:fFlipped];
        return GraphicsCalls();
    }

    const std::vector<std::string>& Round(CComponentCode colour, CComponentCode background,
                                          float fRadius, int nDirection, bool fFlipped,
                                          CGRect rect = kRect)
    {
        TarvaneTests::ResetGraphicsCalls();
        [GraphicUtils FillRoundRect:TarvaneTests::RecordingContext()
                              Color:colour
                         Background:background
                               Rect:rect
                             Radius:fRadius
                      FillDirection:FillDirection(nDirection)
                            Flipped:fFlipped];
        return GraphicsCalls();
    }

    NSAutoreleasePool* m_pool;
};

// The corner path of kRect with a radius of 4.
const std::vector<std::string> kCornerPath = {
    "BeginPath",
    "MoveToPoint 14 20",
    "AddArcToPoint 10 20 10 24 4",
    "AddLineToPoint 10 66",
    "AddArcToPoint 10 70 14 70 4",
    "AddLineToPoint 106 70",
    "AddArcToPoint 110 70 110 66 4",
    "AddLineToPoint 110 24",
    "AddArcToPoint 110 20 106 20 4",
    "AddLineToPoint 14 20",
    "ClosePath",
    "Clip",
};

} // namespace

TEST_F(Fills, PlainFlatSetsTheColourAndFills)
{
    for (const int nDirection : {0, 1, 3, 4, 10})
        for (const bool fFlipped : {false, true})
            EXPECT_THAT(Plain(kFlat, kNone, nDirection, fFlipped),
                        ElementsAre(kFlatColour, kWholeRect));
}

TEST_F(Fills, PlainBackgroundGoesFirstAndIsFlat)
{
    EXPECT_THAT(Plain(kFlat, kBackground, 1, false),
                ElementsAre(kBackgroundColour, kWholeRect, kFlatColour, kWholeRect));
    EXPECT_THAT(Plain(kFlat, kGradient, 1, false),
                ElementsAre("SetFillColor null", kWholeRect, kFlatColour, kWholeRect));
}

TEST_F(Fills, NullCodeIsABackgroundAndTheEmptyCodeIsNone)
{
    EXPECT_THAT(Plain(kFlat, ccNull, 1, false),
                ElementsAre("SetFillColor null", kWholeRect, kFlatColour, kWholeRect));
    EXPECT_THAT(Plain(kFlat, CComponentCode(0, 0), 1, false), ElementsAre(kFlatColour, kWholeRect));
}

TEST_F(Fills, ACodeIsEmptyOnlyIfBothItsNumbersAreZero)
{
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    gAppColours.Add(new CComponentColour(CComponentCode(5, 0), "", 0, 0, 1, 1, space, true));
    CGColorSpaceRelease(space);
    const auto expected = ElementsAre(kBackgroundColour, kWholeRect, kFlatColour, kWholeRect);
    EXPECT_THAT(Plain(kFlat, CComponentCode(5, 0), 1, false), expected);
    EXPECT_THAT(Plain(kFlat, kBackground, 1, false), expected) << "its module is 0";
    const auto& round = Round(kFlat, CComponentCode(5, 0), 4, 1, false);
    EXPECT_EQ(round.at(0), kBackgroundColour);
    EXPECT_EQ(round.at(1), kWholeRect);
}

// The background is looked up as a colour, without a question whether it is a gradient.
TEST_F(Fills, GradientIsLookedUpTwiceAndAFlatColourAskedForByItsCode)
{
    const TarvaneTests::NotedLookUps notes;
    EXPECT_THAT(Plain(kGradient, kBackground, 1, true),
                ElementsAre("FindCGColorRef 0/3", kBackgroundColour, kWholeRect, "IsGradient 0/2",
                            "Find 0/2", "SaveGState", "BeginPath", "AddRect 10 20 100 50", "Clip",
                            Gradient("10 20 10 70"), "RestoreGState"));
    EXPECT_THAT(Plain(kFlat, kNone, 1, true),
                ElementsAre("IsGradient 0/1", "FindCGColorRef 0/1", kFlatColour, kWholeRect));

    std::vector<std::string> round = {"FindCGColorRef 0/3", kBackgroundColour, kWholeRect,
                                      "SaveGState"};
    round.insert(round.end(), kCornerPath.begin(), kCornerPath.end());
    std::vector<std::string> flat = round;
    round.insert(round.end(),
                 {"IsGradient 0/2", "Find 0/2", Gradient("10 20 10 70"), "RestoreGState"});
    EXPECT_THAT(Round(kGradient, kBackground, 4, 1, true), ElementsAreArray(round));
    flat.insert(flat.end(),
                {"IsGradient 0/1", "FindCGColorRef 0/1", kFlatColour, kWholeRect, "RestoreGState"});
    EXPECT_THAT(Round(kFlat, kBackground, 4, 1, true), ElementsAreArray(flat));
}

TEST_F(Fills, CodeWithoutAnEntryGoesTheFlatWay)
{
    EXPECT_THAT(Plain(kUnknown, kNone, 1, false), ElementsAre("SetFillColor null", kWholeRect));
}

TEST_F(Fills, PlainGradientIsDrawnThroughAClipThatEndsWithTheCall)
{
    EXPECT_THAT(Plain(kGradient, kBackground, 1, true),
                ElementsAre(kBackgroundColour, kWholeRect, "SaveGState", "BeginPath",
                            "AddRect 10 20 100 50", "Clip", Gradient("10 20 10 70"),
                            "RestoreGState"));
}

TEST_F(Fills, PlainGradientFollowsItsDirectionTable)
{
    const std::vector<DirectionCase> cases = {
        {3, true, "10 20 110 20"},  {3, false, "10 20 110 20"}, {4, true, "110 20 10 20"},
        {4, false, "110 20 10 20"}, {10, true, "110 20 10 70"}, {10, false, "10 70 110 20"},
        {1, true, "10 20 10 70"},   {1, false, "10 70 10 20"},  {0, true, "10 20 10 70"},
        {0, false, "10 70 10 20"},  {2, true, "10 20 10 70"},   {2, false, "10 70 10 20"},
        {99, true, "10 20 10 70"},  {-1, false, "10 70 10 20"},
    };
    for (const DirectionCase& c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.nDirection << (c.fFlipped ? " flipped" : ""));
        EXPECT_EQ(Plain(kGradient, kNone, c.nDirection, c.fFlipped).at(4), Gradient(c.szPoints));
    }
}

TEST_F(Fills, RoundGradientFollowsATableOfItsOwn)
{
    const std::vector<DirectionCase> cases = {
        {3, true, "10 20 110 20"},   {3, false, "10 20 110 20"}, {10, true, "10 20 110 70"},
        {10, false, "10 70 110 20"}, {4, true, "10 20 10 70"},   {4, false, "10 70 10 20"},
        {1, true, "10 20 10 70"},    {1, false, "10 70 10 20"},  {99, true, "10 20 10 70"},
        {0, false, "10 70 10 20"},
    };
    for (const DirectionCase& c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.nDirection << (c.fFlipped ? " flipped" : ""));
        EXPECT_EQ(Round(kGradient, kNone, 4, c.nDirection, c.fFlipped).at(13),
                  Gradient(c.szPoints));
    }
}

TEST_F(Fills, DiagonalsOfTheTwoFillsDifferOnAFlippedTargetOnly)
{
    const std::string strPlain = Plain(kGradient, kNone, 10, true).at(4);
    EXPECT_NE(strPlain, Round(kGradient, kNone, 4, 10, true).at(13));
    const std::string strUnflipped = Plain(kGradient, kNone, 10, false).at(4);
    EXPECT_EQ(strUnflipped, Round(kGradient, kNone, 4, 10, false).at(13));
}

TEST_F(Fills, RoundGradientClipsToTheCornerPath)
{
    std::vector<std::string> expected = {"SaveGState"};
    expected.insert(expected.end(), kCornerPath.begin(), kCornerPath.end());
    expected.push_back(Gradient("10 20 10 70"));
    expected.push_back("RestoreGState");
    EXPECT_THAT(Round(kGradient, kNone, 4, 1, true), ElementsAreArray(expected));
}

TEST_F(Fills, RoundFlatFillsTheWholeRectInsideTheClip)
{
    std::vector<std::string> expected = {kBackgroundColour, kWholeRect, "SaveGState"};
    expected.insert(expected.end(), kCornerPath.begin(), kCornerPath.end());
    expected.insert(expected.end(), {kFlatColour, kWholeRect, "RestoreGState"});
    EXPECT_THAT(Round(kFlat, kBackground, 4, 1, false), ElementsAreArray(expected));
}

TEST_F(Fills, RadiusOfZeroIsThePlainFillWithItsDirections)
{
    EXPECT_THAT(Round(kGradient, kBackground, 0, 4, true),
                ElementsAreArray(std::vector<std::string>(Plain(kGradient, kBackground, 4, true))));
    EXPECT_EQ(Round(kGradient, kNone, 0, 4, true).at(4), Gradient("110 20 10 20"));
    EXPECT_EQ(Round(kGradient, kNone, -0.0f, 4, true).size(), 6u);
}

TEST_F(Fills, RadiusThatIsNoNumberIsNotZero)
{
    const auto& calls = Round(kFlat, kNone, std::numeric_limits<float>::quiet_NaN(), 1, true);
    EXPECT_EQ(calls.size(), 16u);
    EXPECT_EQ(calls.at(2), "MoveToPoint nan 20");
}

TEST_F(Fills, LargeAndNegativeRadiiGoToThePlatformAsTheyAre)
{
    EXPECT_EQ(Round(kFlat, kNone, 80, 1, true).at(2), "MoveToPoint 90 20");
    EXPECT_EQ(Round(kFlat, kNone, 80, 1, true).at(4), "AddLineToPoint 10 -10");
    EXPECT_EQ(Round(kFlat, kNone, -4, 1, true).at(2), "MoveToPoint 6 20");
}

TEST_F(Fills, CornerPathIsComputedIn32Bits)
{
    // Each of the four is another number when it is narrowed before it is added up.
    const CGRect rect = CGRectMake(16777216.5, 33554432.5, 1.0, 2.0);
    const auto& calls = Round(kFlat, kNone, 0.3f, 1, true, rect);
    const auto text = [](std::initializer_list<float> values)
    {
        std::string strText;
        for (const float value : values)
        {
            char number[40];
            snprintf(number, sizeof number, " %.17g", double(value));
            strText += number;
        }
        return strText;
    };
    const float x0 = 16777216.0f;
    const float y0 = 33554432.0f;
    const float x1 = 16777218.0f;
    const float y1 = 33554436.0f;
    const float r = 0.3f;
    ASSERT_NE(x1, x0 + 1.0f);
    ASSERT_NE(y1, y0 + 2.0f);
    EXPECT_THAT(
        std::vector<std::string>(calls.begin() + 2, calls.begin() + 11),
        ElementsAre(
            "MoveToPoint" + text({x0 + r, y0}), "AddArcToPoint" + text({x0, y0, x0, y0 + r, r}),
            "AddLineToPoint" + text({x0, y1 - r}), "AddArcToPoint" + text({x0, y1, x0 + r, y1, r}),
            "AddLineToPoint" + text({x1 - r, y1}), "AddArcToPoint" + text({x1, y1, x1, y1 - r, r}),
            "AddLineToPoint" + text({x1, y0 + r}), "AddArcToPoint" + text({x1, y0, x1 - r, y0, r}),
            "AddLineToPoint" + text({x0 + r, y0})));
}

TEST_F(Fills, GradientPointsAreNotNarrowed)
{
    const CGRect rect = CGRectMake(0.1, 0.2, 100.3, 50.4);
    const std::string strDown = "0.10000000000000001 0.20000000000000001 0.10000000000000001 "
                                "50.600000000000001";
    const std::string strRight = "0.10000000000000001 0.20000000000000001 100.39999999999999 "
                                 "0.20000000000000001";
    EXPECT_EQ(Round(kGradient, kNone, 4, 1, true, rect).at(13), Gradient(strDown));
    EXPECT_EQ(Round(kGradient, kNone, 4, 3, true, rect).at(13), Gradient(strRight));
    EXPECT_EQ(Plain(kGradient, kNone, 1, true, rect).at(4), Gradient(strDown));
    EXPECT_EQ(Plain(kGradient, kNone, 3, true, rect).at(4), Gradient(strRight));
}

TEST_F(Fills, CornerRadii)
{
    EXPECT_EQ(gfDefaultRadius, 4.0f);
    EXPECT_EQ([GraphicUtils GetButtonCornerRadius], 6.0f);
}

TEST_F(Fills, PaintWithoutAllocating)
{
    // Once before, for what the language's runtime prepares at a first call.
    Plain(kGradient, kBackground, 10, true);
    Round(kGradient, kBackground, 4, 10, true);
    TarvaneTests::SetGraphicsRecording(false);
    const size_t nStart = TarvaneTests::AllocationCount();
    delete new CComponentColour(kFlat);
    ASSERT_EQ(TarvaneTests::AllocationCount(), nStart + 1) << "the count sees an allocation";
    const size_t nBefore = TarvaneTests::AllocationCount();
    for (const CComponentCode colour : {kFlat, kGradient, kUnknown})
        for (const float fRadius : {0.0f, 4.0f})
            [GraphicUtils FillRoundRect:TarvaneTests::RecordingContext()
                                  Color:colour
                             Background:kBackground
                                   Rect:kRect
                                 Radius:fRadius
                          FillDirection:kFillDiagonal
                                Flipped:true];
    const size_t nAfter = TarvaneTests::AllocationCount();
    TarvaneTests::SetGraphicsRecording(true);
    EXPECT_EQ(nAfter, nBefore);
}
