#import "tests/TarvaneLinkAU/LinkBundleFixture.h"
#import "tests/support/DesktopWindow.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <objc/runtime.h>

#include <algorithm>
#include <cmath>
#include <set>

// What the nib puts into the window, and whether a person can find the way in it.

namespace
{
constexpr CGFloat kMargin = 16;

std::string ClassName(id idObject) { return Utf8(NSStringFromClass([idObject class])); }

// Brightness as contrast is measured by, of a colour component between 0 and 1.
double Linear(double dLevel)
{
    return dLevel <= 0.03928 ? dLevel / 12.92 : std::pow((dLevel + 0.055) / 1.055, 2.4);
}

double Luminance(NSColor* pColour)
{
    pColour = [pColour colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return 0.2126 * Linear([pColour redComponent]) + 0.7152 * Linear([pColour greenComponent]) +
           0.0722 * Linear([pColour blueComponent]);
}

double Contrast(NSColor* pOne, NSColor* pOther)
{
    const double dOne = Luminance(pOne), dOther = Luminance(pOther);
    return (std::max(dOne, dOther) + 0.05) / (std::min(dOne, dOther) + 0.05);
}

CGFloat TextWidth(NSString* pText, NSFont* pFont)
{
    return [pText sizeWithAttributes:[NSDictionary dictionaryWithObject:pFont
                                                                 forKey:NSFontAttributeName]]
        .width;
}

class LinkLayout : public LinkBundle
{
  protected:
    // All of the view's texts that say the same at all times.
    std::vector<NSTextField*> Labels()
    {
        std::vector<NSTextField*> labels;
        for (NSTextField* pText : Texts())
            if (pText != ErrorLine() && pText != AdviceLine())
                labels.push_back(pText);
        return labels;
    }

    std::vector<NSTextField*> Texts()
    {
        std::vector<NSTextField*> texts;
        for (NSView* pPart : Parts())
            if ([pPart isKindOfClass:[NSTextField class]])
                texts.push_back((NSTextField*)pPart);
        return texts;
    }

    std::vector<NSView*> Parts()
    {
        std::vector<NSView*> parts;
        for (NSUInteger n = 0; n < [[m_pView subviews] count]; ++n)
            parts.push_back([[m_pView subviews] objectAtIndex:n]);
        return parts;
    }

    NSTextField* Label(const std::string& strTitle)
    {
        for (NSTextField* pLabel : Labels())
            if (Utf8([pLabel stringValue]) == strTitle)
                return pLabel;
        ADD_FAILURE() << "no label " << strTitle;
        return nil;
    }

    void ExpectNoOverlaps()
    {
        std::vector<NSView*> parts;
        for (NSView* pPart : Parts())
        {
            EXPECT_TRUE(NSContainsRect([m_pView bounds], [pPart frame])) << ClassName(pPart);
            if (![pPart isHidden] && pPart != ErrorLine() && pPart != AdviceLine())
                parts.push_back(pPart);
        }
        for (NSView* pOne : parts)
            for (NSView* pOther : parts)
                EXPECT_TRUE(pOne == pOther || !NSIntersectsRect([pOne frame], [pOther frame]))
                    << ClassName(pOne) << " and " << ClassName(pOther);
        for (NSView* pLine : {(NSView*)ErrorLine(), (NSView*)AdviceLine()})
            EXPECT_TRUE(NSContainsRect([MessageFrame() frame], [pLine frame]));
        EXPECT_FALSE(NSIntersectsRect([ErrorLine() frame], [AdviceLine() frame]));
    }
};

TEST_F(LinkLayout, OutletsHoldTheControlsOfThisProject)
{
    const std::pair<const char*, const char*> outlets[] = {
        {"uiParam1Slider", "TarvaneLink_GestureSlider"},
        {"m_textError", "ColoredTextField"},
        {"m_textAdvice", "ColoredTextField"},
        {"m_switchCapture", "TKToggleSwitch"},
        {"m_btnTracks", "TKPopUpButton"},
        {"m_viewFrame", "TKInsetFrame"}};
    EXPECT_EQ(ClassName(m_pView), "TarvaneLink_CocoaView");
    for (const auto& [szOutlet, szClass] : outlets)
    {
        EXPECT_EQ(ClassName(Outlet(szOutlet)), szClass) << szOutlet;
        EXPECT_TRUE([Outlet(szOutlet) isDescendantOf:m_pView]) << szOutlet;
    }
    EXPECT_EQ(ClassName([Tracks() cell]), "TKPopUpButtonCell");
    EXPECT_EQ(ClassName([ErrorLine() cell]), "TKMessageCell");
    EXPECT_FALSE([Tracks() pullsDown]);
    EXPECT_TRUE([Outlet("uiParam1Slider") isHidden]) << "it stands for no parameter";
}

// A click on a text must not take the keyboard away from the host.
TEST_F(LinkLayout, TextsTakeNoClicksForEditing)
{
    for (NSTextField* pText : Texts())
    {
        EXPECT_FALSE([pText isEditable]) << Utf8([pText stringValue]);
        EXPECT_FALSE([pText isSelectable]) << Utf8([pText stringValue]);
    }
}

TEST_F(LinkLayout, EachControlIsLabelledInWords)
{
    EXPECT_EQ(Labels().size(), 4u);
    const NSRect capture = [Label("Capture") frame],
                 hint = [Label("Press to arm, then play") frame];
    for (const NSRect& rcLabel : {capture, hint})
    {
        EXPECT_EQ(NSMinX(rcLabel), NSMaxX([Toggle() frame]) + 8);
        EXPECT_GE(NSMinY(rcLabel), NSMinY([Toggle() frame]));
        EXPECT_LE(NSMaxY(rcLabel), NSMaxY([Toggle() frame]));
    }
    const NSRect track = [Label("Send to track") frame];
    EXPECT_EQ(NSMinX(track), NSMinX([Tracks() frame]));
    EXPECT_EQ(NSMinY(track), NSMinY(capture)) << "one line";
    EXPECT_GE(NSMinY(track), NSMaxY([Tracks() frame]));
    EXPECT_LE(NSMinY(track), NSMaxY([Tracks() frame]) + 2);
    const NSRect status = [Label("Status") frame];
    EXPECT_EQ(NSMinX(status), NSMinX([MessageFrame() frame]));
    EXPECT_GE(NSMinY(status), NSMaxY([MessageFrame() frame]));
}

TEST_F(LinkLayout, PartsKeepOneMarginOnAllSides)
{
    NSRect rcAll = NSZeroRect;
    for (NSView* pPart : Parts())
        if (![pPart isHidden])
            rcAll = NSUnionRect(rcAll, [pPart frame]);
    EXPECT_TRUE(NSEqualRects(rcAll, NSInsetRect([m_pView bounds], kMargin, kMargin)))
        << Utf8(NSStringFromRect(rcAll));
    const CGFloat dRight = NSMaxX([m_pView bounds]) - kMargin;
    EXPECT_EQ(NSMinX([Toggle() frame]), kMargin);
    EXPECT_EQ(NSMinX([MessageFrame() frame]), kMargin);
    EXPECT_EQ(NSMaxX([MessageFrame() frame]), dRight);
    EXPECT_EQ(NSMaxX([Tracks() frame]), dRight);
    EXPECT_EQ(NSMinX([ErrorLine() frame]), NSMinX([AdviceLine() frame]));
}

TEST_F(LinkLayout, NothingOverlapsOrLeavesTheView) { ExpectNoOverlaps(); }

TEST_F(LinkLayout, MenuAndMessagesGrowWithTheWindow)
{
    const CGFloat dMenu = NSWidth([Tracks() frame]), dLine = NSWidth([ErrorLine() frame]);
    const NSRect rcToggle = [Toggle() frame];
    [m_pView
        setFrameSize:NSMakeSize(NSWidth([m_pView frame]) + 200, NSHeight([m_pView frame]) + 50)];
    ExpectNoOverlaps();
    EXPECT_EQ(NSWidth([Tracks() frame]), dMenu + 200);
    EXPECT_EQ(NSWidth([ErrorLine() frame]), dLine + 200);
    EXPECT_TRUE(NSEqualRects([Toggle() frame], NSOffsetRect(rcToggle, 0, 50)));
}

// An image between two pixels is blurred.
TEST_F(LinkLayout, ImagesFallOnWholePixels)
{
    const NSSize size =
        [object_getIvar(Toggle(), class_getInstanceVariable([Toggle() class], "m_imageOnUp")) size];
    EXPECT_TRUE(NSEqualSizes(size, NSMakeSize(17, 17)));
    EXPECT_EQ(std::fmod(NSWidth([Toggle() bounds]) - size.width, 2), 0);
    EXPECT_EQ(std::fmod(NSHeight([Toggle() bounds]) - size.height, 2), 0);

    NSString* pPath = [LoadedBundle() pathForResource:@"PopupArrow" ofType:@"png"];
    NSImage* pArrow = [[[NSImage alloc] initWithContentsOfFile:pPath] autorelease];
    EXPECT_EQ([pArrow size].width, std::floor([pArrow size].width));
    EXPECT_EQ(std::fmod(NSHeight([Tracks() bounds]) - [pArrow size].height, 2), 0);
}

TEST_F(LinkLayout, LabelsStandOutFromTheLightestOfTheGround)
{
    NSColor* pGround = [NSColor colorWithCalibratedRed:0.23685
                                                 green:0.236851
                                                  blue:0.236849
                                                 alpha:1];
    for (NSTextField* pLabel : Labels())
        EXPECT_GE(Contrast([pLabel textColor], pGround), 4.5) << Utf8([pLabel stringValue]);
}

// Measured on the screen: a dark text has a ground of its own.
TEST_F(LinkLayout, MessagesStandOutFromWhatIsBehindThem)
{
    CDesktopWindow window(m_pView);
    window.PointAway();
    const auto ground = [&](NSTextField* pLine, CGFloat dX)
    {
        window.Look(pLine);
        return window.ColourAt(pLine, NSMakePoint(dX, NSMidY([pLine bounds])));
    };
    const CGFloat dBehind = NSWidth([ErrorLine() bounds]) - 4; // what is said
    m_events.FailSend(-600);
    m_plugIn.Raise(TNProperty_ArmCapture);
    ASSERT_TRUE(window.RunUntil([&] { return [[AdviceLine() stringValue] length] > 0; }));
    NSColor* pRed = [NSColor colorWithCalibratedRed:0.8 green:0.0 blue:0.0 alpha:1.0];
    EXPECT_GE(Contrast(pRed, ground(ErrorLine(), 2)), 4.5);
    EXPECT_GE(Contrast([AdviceLine() textColor], ground(AdviceLine(), dBehind)), 4.5);

    m_plugIn.SetValue<std::uint8_t>(TNProperty_ArmCapture, 1);
    m_plugIn.SetValue<double>(kTNProperty_CurrentCaptureLength, 12.34);
    PlayTracks(1);
    m_plugIn.Raise(TNProperty_ArmCapture);
    m_plugIn.Raise(kTNProperty_CurrentCaptureLength);
    ASSERT_TRUE(window.RunUntil([&] { return [[AdviceLine() stringValue] length] == 0; }));
    NSColor* pGrey = [NSColor colorWithCalibratedRed:0.8 green:0.8 blue:0.8 alpha:1.0];
    EXPECT_GE(Contrast(pGrey, ground(ErrorLine(), dBehind)), 4.5);
}

TEST_F(LinkLayout, WordsFitTheirPlaces)
{
    for (NSTextField* pLabel : Labels())
        EXPECT_LE(TextWidth([pLabel stringValue], [pLabel font]), NSWidth([pLabel frame]));
    const char* const errors[] = {"Error - Tarvane not running.", "No Tarvane session is selected",
                                  "Same audio captured previously.",
                                  "Capturing Audio: 99999.9 sec"};
    for (const char* szError : errors)
        EXPECT_LE(TextWidth([NSString stringWithUTF8String:szError], [ErrorLine() font]),
                  NSWidth([ErrorLine() frame]))
            << szError;
    for (const char* szAdvice : {"Locate and launch Tarvane.", "This capture has been cancelled"})
        EXPECT_LE(TextWidth([NSString stringWithUTF8String:szAdvice], [AdviceLine() font]),
                  NSWidth([AdviceLine() frame]))
            << szAdvice;
    EXPECT_TRUE([[[ErrorLine() font] fontName] rangeOfString:@"Bold"].length > 0)
        << "red alone does not tell an error to everybody";
}

TEST_F(LinkLayout, EachControlHasAToolTip)
{
    std::set<std::string> tips;
    for (NSView* pControl : {(NSView*)Toggle(), (NSView*)Tracks()})
        tips.insert(Utf8([pControl toolTip]));
    EXPECT_EQ(tips.size(), 2u) << "each its own";
    for (NSView* pText : Parts())
        EXPECT_TRUE(pText == Toggle() || pText == Tracks() || [[pText toolTip] length] == 0)
            << "one over words, or over none, has nothing to add: " << ClassName(pText);
    EXPECT_EQ(tips.count("(nil)") + tips.count(""), 0u);
    EXPECT_EQ(tips.count("Capture audio"), 1u);
}

// GNUstep passes over what the nib says to those who do not see the window, so it is read there.
TEST_F(LinkLayout, EachControlHasADescriptionForAccessibility)
{
    NSString* pSource = [NSString stringWithUTF8String:TARVANE_LINK_XIB];
    NSData* pData = [NSData dataWithContentsOfFile:pSource];
    NSXMLDocument* pNib = [[[NSXMLDocument alloc] initWithData:pData options:0
                                                         error:nullptr] autorelease];
    NSArray* pControls = [pNib nodesForXPath:@"//*[accessibility]" error:nullptr];
    EXPECT_EQ([pControls count], 4u) << "the controls and the two messages";
    std::set<std::string> descriptions;
    for (NSUInteger n = 0; n < [pControls count]; ++n)
    {
        NSXMLElement* pControl = [pControls objectAtIndex:n];
        NSXMLElement* pAccess = [[pControl elementsForName:@"accessibility"] lastObject];
        const std::string strName = Utf8([[pControl attributeForName:@"userLabel"] stringValue]);
        descriptions.insert(Utf8([[pAccess attributeForName:@"description"] stringValue]));
        EXPECT_NE(Utf8([[pAccess attributeForName:@"help"] stringValue]), "(nil)") << strName;
    }
    EXPECT_EQ(descriptions.size(), 4u) << "each its own";
    EXPECT_EQ(descriptions.count("(nil)") + descriptions.count(""), 0u);
}
} // namespace
