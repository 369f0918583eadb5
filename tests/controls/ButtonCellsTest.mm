#import "controls/TKButtonCell.h"
#import "controls/TKPopUpButtonCell.h"

#include "colours/ComponentsColors.h"
#include "tests/controls/RecordedDrawing.h"
#include "tests/support/RecordingCoreGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>
#include <vector>

using TarvaneTests::CallsThatBegin;
using TarvaneTests::GraphicsCalls;
using TarvaneTests::RecordedDrawing;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

@interface FlippedView : NSView
@end

@implementation FlippedView
- (BOOL)isFlipped
{
    return YES;
}
@end

// Tells whether a redraw of it was asked for.
@interface AskedButton : NSButton
{
  @public
    int m_nAsked;
}
@end

@implementation AskedButton
- (void)setNeedsDisplay:(BOOL)fNeeds
{
    (void)fNeeds;
    ++m_nAsked;
}
- (void)setNeedsDisplayInRect:(NSRect)rect
{
    (void)rect;
    ++m_nAsked;
}
- (void)updateCell:(NSCell*)cell
{
    (void)cell;
    ++m_nAsked;
}
@end

namespace
{

constexpr NSRect kFrame = {{5, 7}, {100, 22}};

// What both cell classes share is tested on both.
class ButtonCells : public testing::Test
{
  protected:
    ButtonCells() : m_pool([[NSAutoreleasePool alloc] init])
    {
        AppCreateDefaultColoursDesigner();
        m_view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 200, 50)];
        m_flipped = [[FlippedView alloc] initWithFrame:NSMakeRect(0, 0, 200, 50)];
        m_button = [[TKButtonCell alloc] init];
        m_popUp = [[TKPopUpButtonCell alloc] init];
        [m_popUp addItemWithTitle:@"Dialogue"];
        [m_popUp selectItemAtIndex:0];
        TarvaneTests::ResetGraphicsCalls();
    }

    ~ButtonCells() override
    {
        gnAppStyle = 1;
        [m_popUp release];
        [m_button release];
        [m_flipped release];
        [m_view release];
        gAppColours.Clear();
        [m_pool drain];
    }

    std::vector<NSCell*> BothCells() { return {m_button, m_popUp}; }

    const std::vector<std::string>& Bezel(NSCell* cell, NSView* view)
    {
        TarvaneTests::ResetGraphicsCalls();
        [(TKButtonCell*)cell drawBezelWithFrame:kFrame inView:view];
        return GraphicsCalls();
    }

    void DrawTitle()
    {
        NSAttributedString* title = [[[NSAttributedString alloc]
            initWithString:@"Take"
                attributes:[NSDictionary dictionaryWithObject:[NSColor redColor]
                                                       forKey:NSForegroundColorAttributeName]]
            autorelease];
        TarvaneTests::ResetGraphicsCalls();
        const NSRect result = [m_button drawTitle:title withFrame:kFrame inView:m_view];
        EXPECT_TRUE(NSEqualRects(result, kFrame));
    }

    const std::vector<std::string>& DrawPopUp(NSRect frame = kFrame)
    {
        TarvaneTests::ResetGraphicsCalls();
        [m_popUp drawWithFrame:frame inView:m_view];
        return GraphicsCalls();
    }

    void ExpectTitleStyle(double dFontSize, NSTextAlignment alignment)
    {
        NSDictionary* attributes = m_drawing.LastAttributes();
        NSFont* font = [attributes objectForKey:NSFontAttributeName];
        EXPECT_EQ([font pointSize], dFontSize);
        EXPECT_TRUE([[font fontName] isEqualToString:[[NSFont boldSystemFontOfSize:0] fontName]]);
        NSParagraphStyle* style = [attributes objectForKey:NSParagraphStyleAttributeName];
        EXPECT_EQ([style alignment], alignment);
        EXPECT_EQ([style lineBreakMode], NSLineBreakByTruncatingMiddle);
        EXPECT_TRUE([attributes objectForKey:NSForegroundColorAttributeName] ==
                    gAppColours.FindNSColor(ccControlText));
    }

    NSAutoreleasePool* m_pool;
    RecordedDrawing m_drawing;
    NSView* m_view;
    NSView* m_flipped;
    TKButtonCell* m_button;
    TKPopUpButtonCell* m_popUp;
};

// The stops by which the default palette's gradients are told apart.
constexpr const char* kBorderUp = "[0: rgba(0.44705";
constexpr const char* kFaceUp = "[0: rgba(0.21176";
constexpr const char* kBorderDown = "[0: rgba(0.21369";
constexpr const char* kFaceDown = "[0.80733901262283325: rgba(0.34072";

} // namespace

TEST_F(ButtonCells, BezelIsARingOfOnePointAroundTheFace)
{
    for (NSCell* cell : BothCells())
    {
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"MoveToPoint", "AddArcToPoint 5 7", "AddArcToPoint 6 8",
                                    "AddArcToPoint 105 29", "AddArcToPoint 104 28"}),
                    ElementsAre("MoveToPoint 11 7", "AddArcToPoint 5 7 5 13 6",
                                "AddArcToPoint 105 29 105 23 6", "MoveToPoint 11 8",
                                "AddArcToPoint 6 8 6 13 5", "AddArcToPoint 104 28 104 23 5"));
    }
}

TEST_F(ButtonCells, BezelIsPaintedByTwoGradientsInTheUpColours)
{
    for (NSCell* cell : BothCells())
    {
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"DrawLinearGradient"}),
                    ElementsAre(HasSubstr(kBorderUp), HasSubstr(kFaceUp)));
        EXPECT_THAT(CallsThatBegin({"FillRect"}), IsEmpty());
    }
}

TEST_F(ButtonCells, BezelChangesToTheActiveColoursWhileHeldDown)
{
    for (NSCell* cell : BothCells())
    {
        [cell setHighlighted:YES];
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"DrawLinearGradient"}),
                    ElementsAre(HasSubstr(kBorderDown), HasSubstr(kFaceDown)));
    }
}

TEST_F(ButtonCells, BezelRunsFromTheVisualTop)
{
    for (NSCell* cell : BothCells())
    {
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"DrawLinearGradient"}),
                    ElementsAre(HasSubstr("] 5 29 5 7 options"), HasSubstr("] 6 28 6 8 options")));
        Bezel(cell, m_flipped);
        EXPECT_THAT(CallsThatBegin({"DrawLinearGradient"}),
                    ElementsAre(HasSubstr("] 5 7 5 29 options"), HasSubstr("] 6 8 6 28 options")));
    }
}

TEST_F(ButtonCells, DisabledLooksAsEnabledInThePaletteStyle)
{
    for (NSCell* cell : BothCells())
    {
        const std::vector<std::string> enabled = Bezel(cell, m_view);
        [cell setEnabled:NO];
        EXPECT_EQ(Bezel(cell, m_view), enabled);
    }
}

TEST_F(ButtonCells, DisabledWhileHeldDownLooksAsEnabledInThePaletteStyle)
{
    for (NSCell* cell : BothCells())
    {
        [cell setHighlighted:YES];
        const std::vector<std::string> enabled = Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"DrawLinearGradient"}),
                    ElementsAre(HasSubstr(kBorderDown), HasSubstr(kFaceDown)));
        [cell setEnabled:NO];
        [cell setHighlighted:YES];
        EXPECT_EQ(Bezel(cell, m_view), enabled);
    }
}

TEST_F(ButtonCells, EveryStyleButZeroIsThePaletteStyle)
{
    for (NSCell* cell : BothCells())
    {
        gnAppStyle = 1;
        const std::vector<std::string> palette = Bezel(cell, m_view);
        for (const int nStyle : {2, -1, 0x10000, std::numeric_limits<int>::min()})
        {
            gnAppStyle = nStyle;
            EXPECT_EQ(Bezel(cell, m_view), palette) << nStyle;
        }
        gnAppStyle = 0;
        EXPECT_NE(Bezel(cell, m_view), palette);
    }
}

TEST_F(ButtonCells, NewColoursAskForNoRedraw)
{
    for (NSCell* cell : BothCells())
    {
        AskedButton* button = [[[AskedButton alloc] initWithFrame:kFrame] autorelease];
        [button setCell:cell];
        [cell setControlView:button];
        [cell setTitle:@"shown"];
        button->m_nAsked = 0;
        [(TKButtonCell*)cell SetButtonControlsFaceUp:CComponentCode(5, 1)
                                            BorderUp:CComponentCode(5, 2)
                                            FaceDown:CComponentCode(5, 3)
                                          BorderDown:CComponentCode(5, 4)];
        EXPECT_EQ(button->m_nAsked, 0);
        [cell setEnabled:NO];
        [cell setEnabled:YES];
        EXPECT_GT(button->m_nAsked, 0) << "what asks for one is noticed";
        [cell setControlView:nil];
    }
}

TEST_F(ButtonCells, CodesAreTakenInTheirOrderAndPaintedEvenIfEmpty)
{
    CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
    for (int n = 1; n <= 4; ++n)
        gAppColours.Add(new CComponentColour(CComponentCode(5, n), "", n, 0, 0, 1, space, true));
    CGColorSpaceRelease(space);
    for (NSCell* cell : BothCells())
    {
        [(TKButtonCell*)cell SetButtonControlsFaceUp:CComponentCode(5, 1)
                                            BorderUp:CComponentCode(5, 2)
                                            FaceDown:CComponentCode(5, 3)
                                          BorderDown:CComponentCode(5, 4)];
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"SetFillColor"}),
                    ElementsAre("SetFillColor rgba(2 0 0 1)", "SetFillColor rgba(1 0 0 1)"));
        [cell setHighlighted:YES];
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"SetFillColor"}),
                    ElementsAre("SetFillColor rgba(4 0 0 1)", "SetFillColor rgba(3 0 0 1)"));
        [(TKButtonCell*)cell SetButtonControlsFaceUp:CComponentCode()
                                            BorderUp:CComponentCode()
                                            FaceDown:CComponentCode()
                                          BorderDown:CComponentCode()];
        Bezel(cell, m_view);
        EXPECT_THAT(CallsThatBegin({"SetFillColor"}),
                    ElementsAre("SetFillColor null", "SetFillColor null"));
    }
}

TEST_F(ButtonCells, ShadedStyleFollowsStateAndDrawsAtTheOrigin)
{
    gnAppStyle = 0;
    const struct
    {
        bool fEnabled;
        bool fActive;
        const char* szRamp;
    } cases[] = {
        {true, false, "from 0.600 0.600 0.600 1.000 to 0.200 0.200 0.200 1.000"},
        {true, true, "from 0.800 0.800 0.800 1.000 to 0.400 0.400 0.400 1.000"},
        {false, false, "from 0.900 0.900 0.900 1.000 to 0.750 0.750 0.750 1.000"},
        {false, true, "from 0.900 0.900 0.900 1.000 to 0.750 0.750 0.750 1.000"},
    };
    const size_t nLive = TarvaneTests::LiveGraphicsObjects();
    for (NSCell* cell : BothCells())
        for (const auto& c : cases)
            for (NSView* view : {m_view, m_flipped})
            {
                [cell setEnabled:c.fEnabled];
                [cell setHighlighted:c.fActive];
                EXPECT_THAT(
                    Bezel(cell, view),
                    ElementsAre("BeginPath", "MoveToPoint 6 0", "AddArcToPoint 0 0 0 6 6",
                                "AddLineToPoint 0 16", "AddArcToPoint 0 22 6 22 6",
                                "AddLineToPoint 94 22", "AddArcToPoint 100 22 100 16 6",
                                "AddLineToPoint 100 6", "AddArcToPoint 100 0 94 0 6",
                                "AddLineToPoint 6 0", "ClosePath", "Clip",
                                testing::AllOf(HasSubstr("DrawShading axial 100 0 100 22 version"),
                                               HasSubstr(c.szRamp)),
                                "ReleaseSpace", "ReleaseShading", "ReleaseFunction"));
            }
    EXPECT_EQ(TarvaneTests::LiveGraphicsObjects(), nLive);
}

TEST_F(ButtonCells, ShadedStyleTakesTheSizeIn32Bits)
{
    gnAppStyle = 0;
    CGRect area = CGRectMake(5, 7, 100.1, 22.3);
    const double w = float(100.1);
    const double h = float(22.3);
    ASSERT_NE(w, 100.1);
    for (NSCell* cell : BothCells())
    {
        TarvaneTests::ResetGraphicsCalls();
        [(TKButtonCell*)cell DrawButton:TarvaneTests::RecordingContext()
                                 Active:false
                                   Area:&area
                                Flipped:false];
        char points[100];
        snprintf(points, sizeof points, "DrawShading axial %.17g 0 %.17g %.17g version", w, w, h);
        EXPECT_THAT(CallsThatBegin({"DrawShading"}), ElementsAre(HasSubstr(points)));
    }
}

TEST_F(ButtonCells, AreaIsOnlyRead)
{
    for (const int nStyle : {0, 1})
    {
        gnAppStyle = nStyle;
        CGRect area = kFrame;
        [m_button DrawButton:TarvaneTests::RecordingContext() Active:true Area:&area Flipped:false];
        [m_popUp DrawButton:TarvaneTests::RecordingContext() Active:true Area:&area Flipped:false];
        EXPECT_TRUE(NSEqualRects(area, kFrame));
    }
}

TEST_F(ButtonCells, RestoredFromAnArchiveHaveTheDefaultColours)
{
    for (NSCell* cell : BothCells())
    {
        [(TKButtonCell*)cell SetButtonControlsFaceUp:CComponentCode(5, 1)
                                            BorderUp:CComponentCode(5, 2)
                                            FaceDown:CComponentCode(5, 3)
                                          BorderDown:CComponentCode(5, 4)];
        NSData* data = [NSKeyedArchiver archivedDataWithRootObject:cell];
        NSCell* back = [NSKeyedUnarchiver unarchiveObjectWithData:data];
        ASSERT_TRUE([back isKindOfClass:[cell class]]);
        Bezel(back, m_view);
        EXPECT_THAT(CallsThatBegin({"DrawLinearGradient"}),
                    ElementsAre(HasSubstr(kBorderUp), HasSubstr(kFaceUp)));
    }
}

TEST_F(ButtonCells, TitleFollowsControlSize)
{
    const std::pair<NSControlSize, double> sizes[] = {
        {NSRegularControlSize, 12.0}, {NSSmallControlSize, 10.0}, {NSMiniControlSize, 8.0}};
    for (const auto& [size, dFontSize] : sizes)
    {
        [m_button setControlSize:size];
        DrawTitle();
        EXPECT_THAT(GraphicsCalls(), ElementsAre("DrawText Take in 5 7 100 22"));
        ExpectTitleStyle(dFontSize, NSCenterTextAlignment);
    }
}

TEST_F(ButtonCells, TitleStandsLeftBesideAnImageOnTheLeft)
{
    for (const NSCellImagePosition position : {NSNoImage, NSImageOnly, NSImageLeft, NSImageRight,
                                               NSImageBelow, NSImageAbove, NSImageOverlaps})
    {
        [m_button setImagePosition:position];
        DrawTitle();
        ExpectTitleStyle(12.0,
                         position == NSImageLeft ? NSLeftTextAlignment : NSCenterTextAlignment);
    }
}

TEST_F(ButtonCells, TitleKeepsItsColourHighlightedAndDisabled)
{
    [m_button setHighlighted:YES];
    [m_button setEnabled:NO];
    DrawTitle();
    ExpectTitleStyle(12.0, NSCenterTextAlignment);
}

TEST_F(ButtonCells, PopUpDrawsBezelThenArrowThenTitle)
{
    DrawPopUp();
    EXPECT_THAT(CallsThatBegin({"RestoreGState", "DrawImage", "DrawText"}),
                ElementsAre("RestoreGState", "RestoreGState",
                            "DrawImage PopupArrow in 84 11.5 17 13 from 0 0 0 0 operation 2 "
                            "fraction 0.9 flipped",
                            "DrawText Dialogue in 5 8 79 20"));
    ExpectTitleStyle(12.0, NSCenterTextAlignment);
}

TEST_F(ButtonCells, PopUpTakesTheArrowsWidthAndTheTitlesIn32Bits)
{
    m_drawing.SetImageSize(NSMakeSize(17.1, 13.3));
    m_drawing.SetDigits(17);
    DrawPopUp(NSMakeRect(5, 7, 100.3, 22));
    const double aw = float(17.1);
    const double tw = float(100.3 - aw - 4.0);
    ASSERT_NE(aw, 17.1);
    ASSERT_NE(tw, 100.3 - aw - 4.0);
    char arrow[200];
    snprintf(arrow, sizeof arrow, " in %.17g %.17g %.17g %.17g from", 100.3 + 5 - aw - 4.0,
             7 + (22 - 13.3) * 0.5, aw, 13.3);
    char title[100];
    snprintf(title, sizeof title, "DrawText Dialogue in 5 8 %.17g 20", tw);
    EXPECT_THAT(CallsThatBegin({"DrawImage", "DrawText"}),
                ElementsAre(HasSubstr(arrow), std::string(title)));
}

TEST_F(ButtonCells, PopUpTitleFollowsControlSizeAndStaysCentred)
{
    [m_popUp setImagePosition:NSImageLeft];
    [m_popUp setControlSize:NSSmallControlSize];
    DrawPopUp();
    EXPECT_THAT(CallsThatBegin({"DrawText"}), ElementsAre("DrawText Dialogue in 5 10 79 19"));
    ExpectTitleStyle(10.0, NSCenterTextAlignment);
    [m_popUp setControlSize:NSMiniControlSize];
    DrawPopUp();
    EXPECT_THAT(CallsThatBegin({"DrawText"}), ElementsAre("DrawText Dialogue in 5 8 79 20"));
    ExpectTitleStyle(8.0, NSCenterTextAlignment);
}

TEST_F(ButtonCells, DrawingKeepsNothing)
{
    EXPECT_EQ(TarvaneTests::ObjectsKeptBy([&] { DrawTitle(); }), 0);
    EXPECT_EQ(TarvaneTests::ObjectsKeptBy([&] { DrawPopUp(); }), 0);
    for (const int nStyle : {0, 1})
    {
        gnAppStyle = nStyle;
        EXPECT_EQ(TarvaneTests::ObjectsKeptBy([&] { Bezel(m_button, m_view); }), 0);
    }
}

TEST_F(ButtonCells, PopUpWithoutASelectedItemDrawsNoTitle)
{
    [m_popUp removeAllItems];
    DrawPopUp();
    EXPECT_THAT(CallsThatBegin({"DrawText"}), IsEmpty());
    EXPECT_THAT(CallsThatBegin({"DrawImage"}), SizeIs(1));
}
