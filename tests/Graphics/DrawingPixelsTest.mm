#import "Graphics/TGLGraphics.h"
#include "colours/ComponentsColors.h"
#include "tests/support/Canvas.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

using namespace TarvaneTests;

namespace
{

constexpr CComponentCode kRedInk(9, 1);
constexpr CComponentCode kBlueInk(9, 2);
constexpr CComponentCode kNone(0, 0);
const NSSize kSize = {200, 100};
const CGRect kAll = CGRectMake(0, 0, 200, 100);

class DrawingPixels : public testing::Test
{
  protected:
    DrawingPixels()
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Add(new CComponentColour(kRedInk, "", 1, 0, 0, 1, space, true));
        gAppColours.Add(new CComponentColour(kBlueInk, "", 0, 0, 1, 1, space, true));
        CGColorSpaceRelease(space);
    }
    ~DrawingPixels() override { gAppColours.Clear(); }

    static void Write(const std::string& strText, CGRect rect, TGL::TextAlignment alignment,
                      CComponentCode colour = kRedInk, float fSize = 20)
    {
        const __CFString* fontName = (const __CFString*)@"DejaVuSans";
        TGL::DrawText(nullptr, strText, rect, colour, fontName, fSize, alignment);
    }

    // The box around a text on a canvas of its own, from the top left.
    static NSRect Box(const std::string& strText, TGL::TextAlignment alignment, CGRect rect = kAll,
                      float fSize = 20)
    {
        const Canvas canvas(kSize);
        Write(strText, rect, alignment, kRedInk, fSize);
        return canvas.Take().BoxOfAllBut(kWhite);
    }

    static Picture Show(TGL::CImage& image, CGRect rect, CGFloat dOpacity)
    {
        const Canvas canvas(kSize);
        image.Draw(nullptr, rect, dOpacity);
        return canvas.Take();
    }
};

} // namespace

TEST_F(DrawingPixels, AlignmentMovesTheText)
{
    const NSRect left = Box("HH", TGL::kTextLeft);
    const NSRect centre = Box("HH", TGL::kTextCentre);
    const NSRect right = Box("HH", TGL::kTextRight);
    EXPECT_GT(NSWidth(left), 20);
    EXPECT_LT(NSMinX(left), 10);
    EXPECT_NEAR(NSMidX(centre), 100, 3);
    EXPECT_GT(NSMaxX(right), 190);
    EXPECT_EQ(NSWidth(left), NSWidth(right));
}

TEST_F(DrawingPixels, EveryHigherAlignmentIsRight)
{
    const NSRect right = Box("HH", TGL::kTextRight);
    EXPECT_TRUE(NSEqualRects(Box("HH", TGL::TextAlignment(3)), right));
    EXPECT_TRUE(NSEqualRects(Box("HH", TGL::TextAlignment(99)), right));
}

TEST_F(DrawingPixels, TextHasTheColourOfItsCode)
{
    const Canvas canvas(kSize);
    Write("HHHH", kAll, TGL::kTextLeft, kBlueInk);
    const Picture picture = canvas.Take();
    EXPECT_GT(picture.Count(kBlue), 50);
    EXPECT_EQ(picture.Count(kRed), 0);
}

TEST_F(DrawingPixels, TextGrowsWithItsSize)
{
    const CGFloat dSmall = NSHeight(Box("H", TGL::kTextLeft, kAll, 10));
    const CGFloat dLarge = NSHeight(Box("H", TGL::kTextLeft, kAll, 30));
    EXPECT_NEAR(dLarge, 3 * dSmall, 3);
}

TEST_F(DrawingPixels, TextWrapsBetweenWords)
{
    const NSRect one = Box("HHH HHH", TGL::kTextLeft);
    const NSRect two = Box("HHH HHH", TGL::kTextLeft, CGRectMake(0, 0, 70, 100));
    EXPECT_LT(NSWidth(two), NSWidth(one));
    EXPECT_GT(NSHeight(two), 2 * NSHeight(one));
}

TEST_F(DrawingPixels, LinesThatDoNotFitAreNotShown)
{
    const NSRect one = Box("HHH", TGL::kTextLeft, CGRectMake(0, 60, 70, 26));
    EXPECT_TRUE(
        NSEqualRects(Box("HHH HHH HHH HHH", TGL::kTextLeft, CGRectMake(0, 60, 70, 26)), one));
}

TEST_F(DrawingPixels, TextStartsAtTheTopOfItsRectangle)
{
    const NSRect high = Box("H", TGL::kTextLeft, CGRectMake(10, 60, 100, 40));
    const NSRect low = Box("H", TGL::kTextLeft, CGRectMake(10, 20, 100, 40));
    EXPECT_LT(NSMinY(high), 20);
    EXPECT_EQ(NSMinY(low), NSMinY(high) + 40);
}

TEST_F(DrawingPixels, AttributedStringsKeepTheirLooks)
{
    const Canvas canvas(kSize);
    NSDictionary* looks = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSFont fontWithName:@"DejaVuSans" size:20],
                                     NSFontAttributeName, gAppColours.FindNSColor(kBlueInk),
                                     NSForegroundColorAttributeName, nil];
    TGL::CAttributedString held;
    held.SetString([[NSAttributedString alloc] initWithString:@"HH" attributes:looks]);
    TGL::drawWithRect(nullptr, &held, kAll);
    held.DeleteString();
    const Picture picture = canvas.Take();
    EXPECT_GT(picture.Count(kBlue), 50);
    EXPECT_TRUE(NSEqualRects(picture.BoxOfAllBut(kWhite), Box("HH", TGL::kTextLeft)));
}

TEST_F(DrawingPixels, FillsPaintThePalettesColours)
{
    const Canvas canvas(kSize);
    TGL::FillRect(canvas.Context(), kRedInk, kNone, CGRectMake(0, 0, 20, 100), kFillTopToBottom,
                  false);
    TGL::FillRoundRect(canvas.Context(), kBlueInk, kRedInk, CGRectMake(100, 0, 100, 100), 20,
                       kFillTopToBottom, false);
    const Picture picture = canvas.Take();
    EXPECT_EQ(picture.At(10, 50), kRed);
    EXPECT_EQ(picture.At(50, 50), kWhite);
    EXPECT_EQ(picture.At(150, 50), kBlue);
    EXPECT_EQ(picture.At(101, 1), kRed) << "the background in the corner";
}

TEST_F(DrawingPixels, ImageFillsItsRectangle)
{
    TGL::CImage image("Quarters");
    const Picture picture = Show(image, CGRectMake(40, 20, 80, 60), 1);
    EXPECT_TRUE(NSEqualRects(picture.BoxOfAllBut(kWhite), NSMakeRect(40, 20, 80, 60)));
    EXPECT_EQ(picture.At(50, 30), kRed);
    EXPECT_EQ(picture.At(110, 30), kGreen);
    EXPECT_EQ(picture.At(50, 70), kBlue);
    EXPECT_EQ(picture.At(110, 70), kBlack);
}

TEST_F(DrawingPixels, ImageIsMixedWithWhatIsThereByItsOpacity)
{
    TGL::CImage image("Quarters");
    const CGRect rect = CGRectMake(0, 0, 16, 12);
    EXPECT_TRUE(IsNear(Show(image, rect, 0.5).At(2, 90), {255, 128, 128}));
    EXPECT_TRUE(IsNear(Show(image, rect, 0).At(2, 90), kWhite));
}

TEST_F(DrawingPixels, SizeIsTheResources)
{
    TGL::CImage image("Quarters");
    EXPECT_TRUE(NSEqualSizes(image.GetSize(), NSMakeSize(16, 12)));
}

TEST_F(DrawingPixels, AMissingImageDrawsNothing)
{
    TGL::CImage image("NoSuchImage");
    EXPECT_TRUE(NSEqualSizes(image.GetSize(), NSZeroSize));
    EXPECT_TRUE(NSIsEmptyRect(Show(image, kAll, 1).BoxOfAllBut(kWhite)));
    image.SetFlipped(true);
}
