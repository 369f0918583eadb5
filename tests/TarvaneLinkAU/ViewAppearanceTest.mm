#import "tests/TarvaneLinkAU/LinkViewFixture.h"

#include "colours/ComponentsColors.h"
#import "controls/GraphicUtils.h"
#include "tests/support/RecordingCoreGraphics.h"
#include "tests/support/ReplacedMethod.h"

using testing::ElementsAre;

// Writes down how it is set up.
@interface RecordingToggle : TKToggleSwitch
{
  @public
    std::vector<std::string> m_calls;
}
@end

static std::string Code(CComponentCode code)
{
    return std::to_string(code.m_nModule) + "." + std::to_string(code.m_nComponent);
}

static std::string Codes(CComponentCode face, CComponentCode border)
{
    return Code(face) + " " + Code(border);
}

@implementation RecordingToggle

- (void)SetDelegate:(id)idDelegate
{
    [super SetDelegate:idDelegate];
    m_calls.push_back(idDelegate == nil ? "SetDelegate nil" : "SetDelegate");
}

- (void)SetStateImages:(NSInteger)nState Up:(NSString*)pUp Down:(NSString*)pDown
{
    m_calls.push_back("SetStateImages " + std::to_string(nState) + " " + Utf8(pUp) + " " +
                      Utf8(pDown));
}

- (void)SetUpColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_calls.push_back("SetUpColors " + Codes(face, border));
}

- (void)SetDownColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_calls.push_back("SetDownColors " + Codes(face, border));
}

- (void)SetOffUpColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_calls.push_back("SetOffUpColors " + Codes(face, border));
}

- (void)SetOffDownColorsFace:(CComponentCode)face Border:(CComponentCode)border
{
    m_calls.push_back("SetOffDownColors " + Codes(face, border));
}

- (void)SetToolTip:(NSString*)pText
{
    m_calls.push_back("SetToolTip " + Utf8(pText));
}

@end

namespace
{
class ViewAppearance : public LinkViewFixture
{
  protected:
    // The drawing calls of a redraw of this part.
    std::vector<std::string> Drawn(NSRect rcDirty)
    {
        TarvaneTests::ResetGraphicsCalls();
        [m_pView drawRect:rcDirty];
        return TarvaneTests::GraphicsCalls();
    }
};

TEST_F(ViewAppearance, ToggleGetsItsLooksInOrder)
{
    RecordingToggle* pToggle = [[RecordingToggle alloc] initWithFrame:NSMakeRect(0, 0, 30, 20)];
    [m_pView setCaptureSwitch:pToggle];
    Attach();
    EXPECT_THAT(
        pToggle->m_calls,
        ElementsAre("SetDelegate", "SetStateImages 1 LinkActive17 LinkActive17",
                    "SetStateImages 0 LinkInactive17 LinkInactive17",
                    "SetUpColors " + Codes(ccTransportBtnFaceUp, ccTransportBtnBorderUp),
                    "SetDownColors " + Codes(ccTransportBtnFaceDown, ccTransportBtnBorderDown),
                    "SetToolTip Capture audio"));
    [m_pView release];
    m_pView = nil;
    EXPECT_EQ(pToggle->m_calls.back(), "SetDelegate nil");
    [pToggle release];
}

TEST_F(ViewAppearance, BackgroundIsThePaletteEntryFromLeftToRight)
{
    AppCreateDefaultColoursDesigner();
    const auto drawn = Drawn([m_pView bounds]);
    TarvaneTests::ResetGraphicsCalls();
    [GraphicUtils
             FillRect:static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort])
                Color:ccTrackInfoBackground
           Background:CComponentCode(0, 0)
                 Rect:NSMakeRect(0, 0, 300, 100)
        FillDirection:kFillLeftToRight
              Flipped:false];
    EXPECT_FALSE(drawn.empty());
    EXPECT_EQ(drawn, TarvaneTests::GraphicsCalls());
}

TEST_F(ViewAppearance, BackgroundIsFlippedWhenTheViewIs)
{
    static std::vector<bool> flipped;
    flipped.clear();
    TarvaneTests::ReplacedMethod fill(object_getClass([GraphicUtils class]),
                                      @selector(FillRect:
                                                   Color:Background:Rect:FillDirection:Flipped:),
                                      [](id, SEL, CGContextRef, CComponentCode, CComponentCode,
                                         CGRect, FillDirection, bool fFlipped)
                                      { flipped.push_back(fFlipped); });
    for (bool fFlipped : {true, false})
    {
        m_pView->m_fFlipped = fFlipped;
        [m_pView drawRect:NSZeroRect];
    }
    EXPECT_THAT(flipped, ElementsAre(true, false));
}

TEST_F(ViewAppearance, PartThatIsAskedForIsIgnored)
{
    AppCreateDefaultColoursDesigner();
    const auto whole = Drawn([m_pView bounds]);
    EXPECT_EQ(Drawn(NSMakeRect(50, 20, 10, 10)), whole);
    EXPECT_EQ(Drawn(NSZeroRect), whole);
}

TEST_F(ViewAppearance, BackgroundFollowsTheBounds)
{
    AppCreateDefaultColoursDesigner();
    const auto before = Drawn([m_pView bounds]);
    [m_pView setFrameSize:NSMakeSize(500, 200)];
    EXPECT_NE(Drawn(NSMakeRect(0, 0, 300, 100)), before);
}

TEST_F(ViewAppearance, WithoutAPaletteTheBackgroundIsThatOfACodeWithoutAnEntry)
{
    AppCreateDefaultColoursDesigner();
    const auto withPalette = Drawn([m_pView bounds]);
    gAppColours.Clear();
    const auto drawn = Drawn([m_pView bounds]);
    TarvaneTests::ResetGraphicsCalls();
    [GraphicUtils
             FillRect:static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort])
                Color:ccTrackInfoBackground
           Background:CComponentCode(0, 0)
                 Rect:[m_pView bounds]
        FillDirection:kFillLeftToRight
              Flipped:false];
    EXPECT_EQ(drawn, TarvaneTests::GraphicsCalls());
    EXPECT_NE(drawn, withPalette);
}
} // namespace
