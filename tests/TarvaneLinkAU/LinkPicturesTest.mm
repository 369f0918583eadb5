#import "tests/TarvaneLinkAU/LinkBundleFixture.h"
#import "tests/support/DesktopWindow.h"

#include <algorithm>
#include <cstdlib>

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

// The whole window on the screen beside pictures that are kept. scripts/keep-pictures makes them
// again, when the window is to look otherwise; look at them before they are kept. The fonts in them
// are those of scripts/fonts.conf.

namespace
{
// What another version of the font library may draw otherwise at the edges of letters: so many of
// the 66,880 pixels may be off by more than this in one of their components.
constexpr int kMostLevels = 8; // of 255
constexpr int kMostPixels = 60;

NSBitmapImageRep* Load(const std::string& strFile)
{
    return (NSBitmapImageRep*)[NSBitmapImageRep
        imageRepWithContentsOfFile:[NSString stringWithUTF8String:strFile.c_str()]];
}

const unsigned char* PixelAt(NSBitmapImageRep* pImage, NSInteger x, NSInteger y)
{
    return [pImage bitmapData] + y * [pImage bytesPerRow] + x * [pImage bitsPerPixel] / 8;
}

// All of them when the sizes differ, or one is missing.
int PixelsThatDiffer(NSBitmapImageRep* pOne, NSBitmapImageRep* pOther)
{
    const NSInteger nWidth = [pOne pixelsWide], nHeight = [pOne pixelsHigh];
    if (pOther == nil || nWidth != [pOther pixelsWide] || nHeight != [pOther pixelsHigh])
        return static_cast<int>(nWidth * nHeight);
    int nPixels = 0;
    for (NSInteger y = 0; y < nHeight; ++y)
        for (NSInteger x = 0; x < nWidth; ++x)
        {
            const unsigned char *p = PixelAt(pOne, x, y), *q = PixelAt(pOther, x, y);
            nPixels += !std::equal(p, p + 3, q,
                                   [](int nOne, int nTwo)
                                   { return std::abs(nOne - nTwo) <= kMostLevels; });
        }
    return nPixels;
}

class LinkPictures : public LinkBundle
{
  protected:
    // The window as it stands on the screen, soon.
    bool Shows(const std::string& strName)
    {
        const std::string strSeen = TARVANE_SEEN_PICTURES "/" + strName + ".png";
        NSBitmapImageRep* pKept = Load(TARVANE_KEPT_PICTURES "/" + strName + ".png");
        const bool fShows = m_window.RunUntil(
            [&]
            {
                m_window.TakePicture(m_pView, strSeen);
                m_nPixels = PixelsThatDiffer(Load(strSeen), pKept);
                return m_nPixels <= kMostPixels;
            });
        return fShows;
    }

    CDesktopWindow m_window{m_pView};
    int m_nPixels = 0; // that differed last
};

TEST_F(LinkPictures, Idle)
{
    m_window.PointAway();
    EXPECT_TRUE(Shows("idle")) << m_nPixels;
}

TEST_F(LinkPictures, Pressed)
{
    m_window.PointAt(Toggle());
    m_window.Press();
    EXPECT_TRUE(Shows("pressed")) << m_nPixels;
    m_window.PointAway();
    m_window.LetGo();
    EXPECT_TRUE(Shows("idle")) << "let go outside: " << m_nPixels;
}

TEST_F(LinkPictures, ArmedAndCapturing)
{
    m_window.PointAway();
    m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 1);
    m_plugIn.SetValue<double>(kTNProperty_CurrentCaptureLength, 12.34);
    PlayTracks(1);
    m_plugIn.Raise(TNProperty_ArmCapture);
    m_plugIn.Raise(kTNProperty_CurrentCaptureLength);
    EXPECT_TRUE(Shows("capturing")) << m_nPixels;
}

TEST_F(LinkPictures, Failure)
{
    m_window.PointAway();
    m_events.FailSend(-600);
    m_plugIn.Raise(TNProperty_ArmCapture);
    EXPECT_TRUE(Shows("failure")) << m_nPixels;
}

// The tolerance is for the font library only.
TEST_F(LinkPictures, ToleranceLetsNothingOfTheWindowBeOtherwise)
{
    m_window.PointAway();
    ASSERT_TRUE(Shows("idle")) << m_nPixels;
    NSBitmapImageRep* pKept = Load(TARVANE_KEPT_PICTURES "/idle.png");
    const std::string strSeen = TARVANE_SEEN_PICTURES "/changed.png";
    const auto isNoticed = [&]
    {
        return m_window.RunUntil(
            [&]
            {
                m_window.TakePicture(m_pView, strSeen);
                m_nPixels = PixelsThatDiffer(Load(strSeen), pKept);
                return m_nPixels > kMostPixels;
            });
    };
    for (NSView* pPart : {(NSView*)Toggle(), (NSView*)Tracks(), MessageFrame()})
    {
        const NSRect rcFrame = [pPart frame];
        [pPart setFrame:NSOffsetRect(rcFrame, 1, 0)];
        [m_pView setNeedsDisplay:YES];
        EXPECT_TRUE(isNoticed()) << "moved by a point: " << m_nPixels;
        [pPart setFrame:rcFrame];
        [m_pView setNeedsDisplay:YES];
        ASSERT_TRUE(Shows("idle")) << m_nPixels;
    }
    [Toggle() setState:1];
    EXPECT_TRUE(isNoticed()) << "another icon: " << m_nPixels;
}
} // namespace
