#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"
#import "controls/GraphicUtils.h"
#include "tests/support/Canvas.h"

#include <gtest/gtest.h>

#include <string>

using namespace TarvaneTests;

namespace
{

constexpr CComponentCode kFade(9, 1); // a gradient from red to blue
constexpr CComponentCode kFlat(9, 2); // green
constexpr CComponentCode kNone(0, 0);

const CGRect kRect = CGRectMake(0, 0, 60, 40);

class FillPixels : public testing::Test
{
  protected:
    FillPixels()
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        auto* pFade = new CGradientFill(kFade, "", true);
        pFade->AddColor(0, 1, 0, 0, 1, space, true);
        pFade->AddColor(1, 0, 0, 1, 1, space, true);
        pFade->Create(space);
        gAppColours.Add(pFade);
        gAppColours.Add(new CComponentColour(kFlat, "", 0, 1, 0, 1, space, true));
        CGColorSpaceRelease(space);
    }
    ~FillPixels() override { gAppColours.Clear(); }

    // fRadius 0: the plain fill.
    static Picture Fill(CComponentCode code, int nDirection, bool fFlipped, float fRadius = 0,
                        CComponentCode background = kNone)
    {
        const Canvas canvas(kRect.size, fFlipped);
        Fill(canvas, code, nDirection, fRadius, background);
        return canvas.Take();
    }

    static void Fill(const Canvas& canvas, CComponentCode code, int nDirection, float fRadius = 0,
                     CComponentCode background = kNone)
    {
        [GraphicUtils FillRoundRect:canvas.Context()
                              Color:code
                         Background:background
                               Rect:kRect
                             Radius:fRadius
                      FillDirection:FillDirection(nDirection)
                            Flipped:canvas.IsFlipped()];
    }

    // Red, mixed or blue at the visual top left, top right, bottom left and bottom right, taken
    // inside of rounded corners.
    static std::string Corners(const Picture& picture)
    {
        std::string strCorners;
        for (const int y : {3, 36})
            for (const int x : {3, 56})
            {
                const Pixel pixel = picture.At(x, y);
                strCorners += pixel.nRed > 200 ? 'r' : pixel.nBlue > 200 ? 'b' : '-';
            }
        return strCorners;
    }
};

} // namespace

TEST_F(FillPixels, DirectionsOfThePlainFill)
{
    for (const bool fFlipped : {false, true})
    {
        EXPECT_EQ(Corners(Fill(kFade, kFillTopToBottom, fFlipped)), "rrbb");
        EXPECT_EQ(Corners(Fill(kFade, 77, fFlipped)), "rrbb");
        EXPECT_EQ(Corners(Fill(kFade, kFillLeftToRight, fFlipped)), "rbrb");
        EXPECT_EQ(Corners(Fill(kFade, kFillRightToLeft, fFlipped)), "brbr");
    }
    EXPECT_EQ(Corners(Fill(kFade, kFillDiagonal, false)), "r--b");
    EXPECT_EQ(Corners(Fill(kFade, kFillDiagonal, true)), "-rb-") << "top right to bottom left";
}

TEST_F(FillPixels, DirectionsOfTheRoundedFill)
{
    for (const bool fFlipped : {false, true})
    {
        EXPECT_EQ(Corners(Fill(kFade, kFillTopToBottom, fFlipped, 4)), "rrbb");
        EXPECT_EQ(Corners(Fill(kFade, kFillLeftToRight, fFlipped, 4)), "rbrb");
        EXPECT_EQ(Corners(Fill(kFade, kFillRightToLeft, fFlipped, 4)), "rrbb");
        EXPECT_EQ(Corners(Fill(kFade, kFillDiagonal, fFlipped, 4)), "r--b");
    }
}

TEST_F(FillPixels, FirstStopLiesAtTheVisualTopRow)
{
    for (const bool fFlipped : {false, true})
        for (const float fRadius : {0.0f, 6.0f})
        {
            const Picture picture = Fill(kFade, kFillTopToBottom, fFlipped, fRadius);
            EXPECT_TRUE(IsNear(picture.At(30, 0), kRed, 8)) << picture.At(30, 0);
            EXPECT_TRUE(IsNear(picture.At(30, 39), kBlue, 8)) << picture.At(30, 39);
        }
}

TEST_F(FillPixels, AFlatColourIsTheSameInEveryDirection)
{
    const Picture picture = Fill(kFlat, kFillTopToBottom, false, 6);
    for (const int nDirection : {0, 3, 4, 10})
        for (const bool fFlipped : {false, true})
        {
            EXPECT_TRUE(Fill(kFlat, nDirection, fFlipped, 6) == picture);
            EXPECT_EQ(Fill(kFlat, nDirection, fFlipped).Count(kGreen), 60 * 40);
        }
}

TEST_F(FillPixels, CornersOutsideTheArcsShowTheBackground)
{
    const int corners[][2] = {{0, 0}, {59, 0}, {0, 39}, {59, 39}};
    const Picture bare = Fill(kFade, kFillTopToBottom, false, 6);
    const Picture backed = Fill(kFade, kFillTopToBottom, false, 6, kFlat);
    for (const auto& corner : corners)
    {
        EXPECT_EQ(bare.At(corner[0], corner[1]), kWhite);
        EXPECT_EQ(backed.At(corner[0], corner[1]), kGreen);
    }
    EXPECT_EQ(backed.At(30, 20), bare.At(30, 20)) << "covered everywhere else";
}

TEST_F(FillPixels, RadiusZeroHasSquareCornersAndTheDirectionsOfThePlainFill)
{
    const Picture picture = Fill(kFlat, kFillRightToLeft, false, 0.0f);
    EXPECT_EQ(picture.At(0, 0), kGreen);
    EXPECT_EQ(Corners(Fill(kFade, kFillRightToLeft, false, 0.0f)), "brbr");
}

TEST_F(FillPixels, NoClipOutlivesItsFill)
{
    for (const CComponentCode code : {kFade, kFlat})
        for (const float fRadius : {0.0f, 15.0f})
        {
            const Canvas canvas(NSMakeSize(80, 60));
            Fill(canvas, code, kFillTopToBottom, fRadius);
            [GraphicUtils FillRect:canvas.Context()
                             Color:kFlat
                        Background:kNone
                              Rect:CGRectMake(0, 0, 80, 60)
                     FillDirection:kFillTopToBottom
                           Flipped:false];
            EXPECT_EQ(canvas.Take().Count(kGreen), 80 * 60);
        }
}

TEST_F(FillPixels, NothingIsPaintedOutsideTheRectangle)
{
    for (const CComponentCode code : {kFade, kFlat})
        for (const float fRadius : {0.0f, 4.0f})
        {
            const Canvas canvas(NSMakeSize(80, 60));
            Fill(canvas, code, kFillDiagonal, fRadius);
            EXPECT_TRUE(NSEqualRects(canvas.Take().BoxOfAllBut(kWhite), NSMakeRect(0, 20, 60, 40)));
        }
}

TEST_F(FillPixels, TheFirstColoursOfThePaletteShow)
{
    AppCreateDefaultColoursDesigner();
    const Picture single = Fill(ccButtonFace, kFillTopToBottom, false);
    EXPECT_EQ(single.Count({54, 54, 54}), 60 * 40) << "a gradient of one stop";
    const Picture two = Fill(ccTrackInfoBackground, kFillLeftToRight, false);
    EXPECT_TRUE(IsNear(two.At(0, 0), {25, 25, 25}, 1)) << two.At(0, 0);
    EXPECT_TRUE(IsNear(two.At(59, 0), {60, 60, 60}, 1)) << two.At(59, 0);
    const Picture clear = Fill(ccButtonFaceActive, kFillTopToBottom, false);
    EXPECT_TRUE(IsNear(clear.At(0, 0), {117, 117, 117}, 2)) << "white at 0.18 through 0.82";
}
