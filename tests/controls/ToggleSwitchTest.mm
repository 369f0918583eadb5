#import "controls/TKToggleSwitch.h"

#include "colours/ComponentsColors.h"
#include "tests/controls/RecordedDrawing.h"
#include "tests/support/RecordingCoreGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using TarvaneTests::CallsThatBegin;
using TarvaneTests::GraphicsCalls;
using TarvaneTests::RecordedDrawing;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

@interface CountingSwitch : TKToggleSwitch
{
  @public
    int m_nRedraws;
}
- (NSImage*)imageOnUp;
- (NSImage*)imageOnDown;
- (NSImage*)imageOffUp;
- (NSImage*)imageOffDown;
@end

@implementation CountingSwitch
- (NSImage*)imageOnUp
{
    return m_imageOnUp;
}
- (NSImage*)imageOnDown
{
    return m_imageOnDown;
}
- (NSImage*)imageOffUp
{
    return m_imageOffUp;
}
- (NSImage*)imageOffDown
{
    return m_imageOffDown;
}
- (void)setNeedsDisplay:(BOOL)fNeeds
{
    if (fNeeds)
        ++m_nRedraws;
}
@end

@interface FlippedSwitch : TKToggleSwitch
@end

@implementation FlippedSwitch
- (BOOL)isFlipped
{
    return YES;
}
@end

// An event of a platform whose modifier flags have more than 32 bits.
@interface WideEvent : NSEvent
@end

@implementation WideEvent
- (NSPoint)locationInWindow
{
    return NSMakePoint(30, 15);
}
- (NSEventModifierFlags)modifierFlags
{
    return NSEventModifierFlags(0x7F00000180020000ull);
}
@end

// A delegate that writes down what the switch looks like when it is told.
@interface SwitchObserver : NSObject <TKSwitchDelegate>
{
  @public
    std::vector<NSInteger> m_states;
    std::vector<std::int32_t> m_flags;
    TKToggleSwitch* m_sender;
    bool m_fDrawWhenTold;
}
@end

@implementation SwitchObserver
- (void)TKSwitchChange:(TKToggleSwitch*)pSwitch ModifierFlags:(std::int32_t)nFlags
{
    m_sender = pSwitch;
    m_states.push_back([pSwitch state]);
    m_flags.push_back(nFlags);
    if (m_fDrawWhenTold)
        [pSwitch drawRect:NSZeroRect];
}
@end

namespace
{

constexpr NSRect kFrame = {{0, 0}, {60, 30}};
constexpr NSPoint kInside = {30, 15};
constexpr NSPoint kOutside = {90, 15};

// Flat colours 1 to 8 under the codes of the same number; the red component tells them apart.
enum
{
    kOnUpFace = 1,
    kOnUpBorder,
    kOnDownFace,
    kOnDownBorder,
    kOffUpFace,
    kOffUpBorder,
    kOffDownFace,
    kOffDownBorder,
};

CComponentCode Code(int nColour) { return CComponentCode(0, nColour); }

std::string Paint(int nColour)
{
    char text[60];
    snprintf(text, sizeof text, "SetFillColor rgba(%d 0 0 1)", nColour);
    return text;
}

class ToggleSwitch : public testing::Test
{
  protected:
    ToggleSwitch() : m_pool([[NSAutoreleasePool alloc] init])
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Clear();
        for (int nColour = kOnUpFace; nColour <= kOffDownBorder; ++nColour)
            gAppColours.Add(new CComponentColour(Code(nColour), "", nColour, 0, 0, 1, space, true));
        gAppColours.Add(new CComponentColour(ccControlText, "", 0.5, 0, 0, 1, space, true));
        CGColorSpaceRelease(space);
        m_observer = [[SwitchObserver alloc] init];
        m_switch = [[CountingSwitch alloc] initWithFrame:kFrame];
        [m_switch SetDelegate:m_observer];
        m_switch->m_nRedraws = 0;
        TarvaneTests::ResetGraphicsCalls();
    }

    ~ToggleSwitch() override
    {
        [m_switch release];
        [m_observer release];
        gAppColours.Clear();
        [m_pool drain];
    }

    NSEvent* Event(NSEventType type, NSPoint point, NSUInteger nFlags = 0)
    {
        return [NSEvent mouseEventWithType:type
                                  location:point
                             modifierFlags:nFlags
                                 timestamp:0
                              windowNumber:0
                                   context:nil
                               eventNumber:0
                                clickCount:1
                                  pressure:0];
    }

    void Press(NSPoint point) { [m_switch mouseDown:Event(NSLeftMouseDown, point)]; }
    void Drag(NSPoint point) { [m_switch mouseDragged:Event(NSLeftMouseDragged, point)]; }
    void Release(NSPoint point, NSUInteger nFlags = 0)
    {
        [m_switch mouseUp:Event(NSLeftMouseUp, point, nFlags)];
    }
    void Click() { Press(kInside), Release(kInside); }

    int Redraws()
    {
        const int nRedraws = m_switch->m_nRedraws;
        m_switch->m_nRedraws = 0;
        return nRedraws;
    }

    // Draws, and returns the colours in order.
    std::vector<std::string> Colours()
    {
        TarvaneTests::ResetGraphicsCalls();
        [m_switch drawRect:NSMakeRect(1, 2, 3, 4)];
        return CallsThatBegin({"SetFillColor"});
    }

    // The look of an armed switch is that of its down colours.
    bool LooksPressed()
    {
        SetAllColours();
        const std::vector<std::string> colours = Colours();
        return colours.at(0) == Paint([m_switch state] == 1 ? kOnDownBorder : kOffDownBorder);
    }

    void SetAllColours()
    {
        [m_switch SetUpColorsFace:Code(kOnUpFace) Border:Code(kOnUpBorder)];
        [m_switch SetDownColorsFace:Code(kOnDownFace) Border:Code(kOnDownBorder)];
        [m_switch SetOffUpColorsFace:Code(kOffUpFace) Border:Code(kOffUpBorder)];
        [m_switch SetOffDownColorsFace:Code(kOffDownFace) Border:Code(kOffDownBorder)];
    }

    void SetImages()
    {
        [m_switch SetStateImages:1 Up:@"OnUp" Down:@"OnDown"];
        [m_switch SetStateImages:0 Up:@"OffUp" Down:@"OffDown"];
    }

    std::string DrawnImage()
    {
        TarvaneTests::ResetGraphicsCalls();
        [m_switch drawRect:NSZeroRect];
        const std::vector<std::string> images = CallsThatBegin({"DrawImage"});
        return images.empty() ? "" : images.at(0).substr(10, images.at(0).find(' ', 10) - 10);
    }

    NSAutoreleasePool* m_pool;
    RecordedDrawing m_drawing;
    SwitchObserver* m_observer;
    CountingSwitch* m_switch;
};

} // namespace

TEST_F(ToggleSwitch, PressAndReleaseInsideFlipsOnceAndTellsWithTheNewState)
{
    Press(kInside);
    EXPECT_EQ([m_switch state], 0);
    EXPECT_THAT(m_observer->m_states, IsEmpty());
    EXPECT_EQ(Redraws(), 1);
    EXPECT_TRUE(LooksPressed());
    Release(kInside);
    EXPECT_THAT(m_observer->m_states, ElementsAre(1));
    EXPECT_TRUE(m_observer->m_sender == m_switch);
    EXPECT_EQ(Redraws(), 1);
    EXPECT_FALSE(LooksPressed());
}

TEST_F(ToggleSwitch, SecondClickSwitchesOff)
{
    Click();
    Click();
    EXPECT_THAT(m_observer->m_states, ElementsAre(1, 0));
}

TEST_F(ToggleSwitch, ReleaseOutsideLeavesStateAndTellsNobody)
{
    Press(kInside);
    Drag(kOutside);
    Redraws();
    Release(kOutside);
    EXPECT_EQ([m_switch state], 0);
    EXPECT_THAT(m_observer->m_states, IsEmpty());
    EXPECT_EQ(Redraws(), 1);
    EXPECT_FALSE(LooksPressed());
}

TEST_F(ToggleSwitch, DragOutAndBackInFlips)
{
    Press(kInside);
    Drag(kOutside);
    EXPECT_FALSE(LooksPressed());
    Drag(kInside);
    EXPECT_TRUE(LooksPressed());
    Release(kInside);
    EXPECT_THAT(m_observer->m_states, ElementsAre(1));
}

TEST_F(ToggleSwitch, CrossingTheEdgeRedrawsAndMovingOnOneSideDoesNot)
{
    Press(kInside);
    EXPECT_EQ(Redraws(), 1);
    Drag(NSMakePoint(31, 15));
    EXPECT_EQ(Redraws(), 0);
    Drag(kOutside);
    EXPECT_EQ(Redraws(), 1);
    Drag(NSMakePoint(91, 15));
    EXPECT_EQ(Redraws(), 0);
    Drag(kInside);
    EXPECT_EQ(Redraws(), 1);
}

TEST_F(ToggleSwitch, PressOutsideDoesNothing)
{
    Press(kOutside);
    EXPECT_EQ(Redraws(), 0);
    EXPECT_FALSE(LooksPressed());
}

TEST_F(ToggleSwitch, ReleasePositionAloneDecides)
{
    Press(kOutside);
    Release(kInside);
    EXPECT_THAT(m_observer->m_states, ElementsAre(1));
    Release(kInside);
    EXPECT_THAT(m_observer->m_states, ElementsAre(1, 0));
}

TEST_F(ToggleSwitch, WholeBoundsAreLive)
{
    for (const NSPoint corner : {NSMakePoint(0.5, 0.5), NSMakePoint(59.5, 29.5)})
    {
        Press(corner);
        Release(corner);
    }
    EXPECT_THAT(m_observer->m_states, SizeIs(2));
}

TEST_F(ToggleSwitch, StatesBesideOneFlipToOne)
{
    [m_switch setState:2];
    Click();
    EXPECT_EQ([m_switch state], 1);
    [m_switch setState:-7];
    Click();
    EXPECT_EQ([m_switch state], 1);
    Click();
    EXPECT_EQ([m_switch state], 0);
}

TEST_F(ToggleSwitch, TellsTheFlagsOfTheReleaseInLow32Bits)
{
    Press(kInside);
    Release(kInside, 0x20000 | 0x100000);
    EXPECT_THAT(m_observer->m_flags, ElementsAre(0x120000));
}

TEST_F(ToggleSwitch, TellsFlagsBeyond32BitsByTheirLowHalf)
{
    [m_switch mouseUp:[[[WideEvent alloc] init] autorelease]];
    EXPECT_THAT(m_observer->m_flags, ElementsAre(std::int32_t(0x80020000)));
}

TEST_F(ToggleSwitch, DelegateThatDrawsSeesThePressedLookInTheNewState)
{
    SetAllColours();
    m_observer->m_fDrawWhenTold = true;
    Press(kInside);
    TarvaneTests::ResetGraphicsCalls();
    Release(kInside);
    EXPECT_THAT(CallsThatBegin({"SetFillColor"}),
                ElementsAre(Paint(kOnDownBorder), Paint(kOnDownFace)));
}

TEST_F(ToggleSwitch, FlipsWithoutADelegate)
{
    [m_switch SetDelegate:nil];
    Click();
    EXPECT_EQ([m_switch state], 1);
}

TEST_F(ToggleSwitch, DelegateIsNotRetained)
{
    const NSUInteger nBefore = [m_observer retainCount];
    [m_switch SetDelegate:m_observer];
    EXPECT_EQ([m_observer retainCount], nBefore);
}

TEST_F(ToggleSwitch, SetStateRedrawsOnAChangeOnlyAndTellsNobody)
{
    [m_switch setState:0];
    EXPECT_EQ(Redraws(), 0);
    [m_switch setState:1];
    EXPECT_EQ(Redraws(), 1);
    [m_switch setState:1];
    EXPECT_EQ(Redraws(), 0);
    EXPECT_EQ([m_switch state], 1);
    EXPECT_THAT(m_observer->m_states, IsEmpty());
}

TEST_F(ToggleSwitch, DisabledFollowsNoMouse)
{
    [m_switch SetEnabled:false];
    Press(kInside);
    Drag(kOutside);
    Drag(kInside);
    Release(kInside);
    EXPECT_EQ([m_switch state], 0);
    EXPECT_THAT(m_observer->m_states, IsEmpty());
    EXPECT_EQ(Redraws(), 0);
}

TEST_F(ToggleSwitch, DisabledWhileArmedStaysPressedUntilALaterRelease)
{
    Press(kInside);
    [m_switch SetEnabled:false];
    Release(kInside);
    EXPECT_TRUE(LooksPressed());
    [m_switch SetEnabled:true];
    EXPECT_TRUE(LooksPressed());
    Release(kOutside);
    EXPECT_FALSE(LooksPressed());
    EXPECT_EQ([m_switch state], 0);
}

TEST_F(ToggleSwitch, DisabledLooksAsEnabled)
{
    SetAllColours();
    SetImages();
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    const std::vector<std::string> enabled = GraphicsCalls();
    [m_switch SetEnabled:false];
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_EQ(GraphicsCalls(), enabled);
}

TEST_F(ToggleSwitch, SettersOfTheLookAskForNoRedraw)
{
    SetAllColours();
    SetImages();
    [m_switch SetDrawButton:false];
    [m_switch SetCorner:2];
    [m_switch SetLabel:@"Take" XOffset:3];
    [m_switch SetLabelColor:Code(kOnUpFace)];
    [m_switch SetImageOffset:4];
    [m_switch SetEnabled:false];
    [m_switch SetDelegate:nil];
    EXPECT_EQ(Redraws(), 0);
}

TEST_F(ToggleSwitch, BoundsWithAnOriginAreLiveAndPaintedWhereTheyAre)
{
    SetAllColours();
    SetImages();
    [m_switch SetImageOffset:3.5f];
    [m_switch SetLabel:@"Take" XOffset:7.5f];
    [m_switch setBoundsOrigin:NSMakePoint(100, 200)];
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(CallsThatBegin({"MoveToPoint", "FillRect", "DrawImage", "DrawText"}),
                ElementsAre("MoveToPoint 104 200", "FillRect 100 200 60 30", "MoveToPoint 105 201",
                            "FillRect 101 201 58 28",
                            "DrawImage OffUp in 125 208.5 17 13 from 0 0 0 0 operation 2 fraction "
                            "1",
                            "DrawText Take in 7.5 209 40 14"))
        << "the label's offset is its place, whatever the origin";
    [m_switch SetDrawButton:false];
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(
        CallsThatBegin({"DrawImage"}),
        ElementsAre("DrawImage OffUp in 100 200 60 30 from 0 0 0 0 operation 2 fraction 1"));

    // What a place in the window is in the view is told in a window alone.
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 60)
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:YES];
    [window setReleasedWhenClosed:NO];
    [[window contentView] addSubview:m_switch];
    Click();
    EXPECT_THAT(m_observer->m_states, ElementsAre(1));
    Press(kOutside), Release(kOutside);
    EXPECT_THAT(m_observer->m_states, ElementsAre(1));
    [m_switch removeFromSuperview];
    [window close];
    [window release];
}

TEST_F(ToggleSwitch, DrawingKeepsNothing)
{
    SetAllColours();
    SetImages();
    [m_switch SetLabel:@"Take" XOffset:3];
    EXPECT_EQ(TarvaneTests::ObjectsKeptBy([&] { [m_switch drawRect:NSZeroRect]; }), 0);
}

TEST_F(ToggleSwitch, AsksForTheContextOnceADrawing)
{
    const int nBefore = m_drawing.ContextsAsked();
    [m_switch drawRect:NSZeroRect];
    EXPECT_EQ(m_drawing.ContextsAsked(), nBefore + 1) << "with nothing to paint";
    SetAllColours();
    SetImages();
    [m_switch drawRect:NSZeroRect];
    EXPECT_EQ(m_drawing.ContextsAsked(), nBefore + 2);
}

TEST_F(ToggleSwitch, PaintsNoColoursByDefault) { EXPECT_THAT(Colours(), IsEmpty()); }

TEST_F(ToggleSwitch, FourLooksHaveTheirColours)
{
    SetAllColours();
    EXPECT_THAT(Colours(), ElementsAre(Paint(kOffUpBorder), Paint(kOffUpFace)));
    Press(kInside);
    EXPECT_THAT(Colours(), ElementsAre(Paint(kOffDownBorder), Paint(kOffDownFace)));
    [m_switch setState:1];
    EXPECT_THAT(Colours(), ElementsAre(Paint(kOnDownBorder), Paint(kOnDownFace)));
    Release(kOutside);
    EXPECT_THAT(Colours(), ElementsAre(Paint(kOnUpBorder), Paint(kOnUpFace)));
}

// Every combination of set and empty codes, in the four looks.
TEST_F(ToggleSwitch, OffBorrowsEachOnColourAndAnEmptyOnColourPaintsNothing)
{
    for (int nSet = 0; nSet < 16; ++nSet)
        for (const bool fPressed : {false, true})
            for (const int nState : {0, 1})
            {
                SCOPED_TRACE(testing::Message() << nSet << " " << fPressed << " " << nState);
                const auto code = [nSet](int nBit, int nColour)
                { return nSet >> nBit & 1 ? Code(nColour) : CComponentCode(0, 0); };
                const int nOnFace = fPressed ? kOnDownFace : kOnUpFace;
                const int nOnBorder = fPressed ? kOnDownBorder : kOnUpBorder;
                const int nOffFace = fPressed ? kOffDownFace : kOffUpFace;
                const int nOffBorder = fPressed ? kOffDownBorder : kOffUpBorder;
                TKToggleSwitch* pSwitch = [[TKToggleSwitch alloc] initWithFrame:kFrame];
                if (fPressed)
                {
                    [pSwitch SetDownColorsFace:code(0, nOnFace) Border:code(1, nOnBorder)];
                    [pSwitch SetOffDownColorsFace:code(2, nOffFace) Border:code(3, nOffBorder)];
                    [pSwitch mouseDown:Event(NSLeftMouseDown, kInside)];
                }
                else
                {
                    [pSwitch SetUpColorsFace:code(0, nOnFace) Border:code(1, nOnBorder)];
                    [pSwitch SetOffUpColorsFace:code(2, nOffFace) Border:code(3, nOffBorder)];
                }
                [pSwitch setState:nState];
                TarvaneTests::ResetGraphicsCalls();
                [pSwitch drawRect:NSZeroRect];

                std::vector<std::string> expected;
                if (nSet & 2)
                    expected.push_back(Paint(nState == 0 && nSet & 8 ? nOffBorder : nOnBorder));
                if (nSet & 1)
                    expected.push_back(Paint(nState == 0 && nSet & 4 ? nOffFace : nOnFace));
                EXPECT_EQ(CallsThatBegin({"SetFillColor"}), expected);
                const std::string strFace = nSet & 2 ? "FillRect 1 1 58 28" : "FillRect 0 0 60 30";
                const std::vector<std::string> rects = CallsThatBegin({"FillRect"});
                if (nSet & 1)
                {
                    EXPECT_EQ(rects.back(), strFace);
                }
                [pSwitch release];
            }
}

TEST_F(ToggleSwitch, NullCodeIsNotTheEmptyCode)
{
    [m_switch SetUpColorsFace:ccNull Border:CComponentCode(0, 0)];
    EXPECT_THAT(Colours(), ElementsAre("SetFillColor null"));
}

TEST_F(ToggleSwitch, OtherStatesShowOffImagesInOnColours)
{
    SetAllColours();
    SetImages();
    [m_switch setState:2];
    EXPECT_THAT(Colours(), ElementsAre(Paint(kOnUpBorder), Paint(kOnUpFace)));
    EXPECT_EQ(DrawnImage(), "OffUp");
}

TEST_F(ToggleSwitch, BorderAndFaceHaveOneRadiusAndTheFaceLiesOnePointInside)
{
    SetAllColours();
    [m_switch SetCorner:5];
    Colours();
    EXPECT_THAT(
        CallsThatBegin({"MoveToPoint", "FillRect", "AddArcToPoint 0 0", "AddArcToPoint 1 1"}),
        ElementsAre("MoveToPoint 5 0", "AddArcToPoint 0 0 0 5 5", "FillRect 0 0 60 30",
                    "MoveToPoint 6 1", "AddArcToPoint 1 1 1 6 5", "FillRect 1 1 58 28"));
}

TEST_F(ToggleSwitch, CornerIsTheDefaultRadius)
{
    SetAllColours();
    Colours();
    EXPECT_EQ(CallsThatBegin({"MoveToPoint"}).at(0), "MoveToPoint 4 0");
}

TEST_F(ToggleSwitch, RestoredFromAnArchiveHasTheSameDefaults)
{
    NSData* data = [NSKeyedArchiver archivedDataWithRootObject:m_switch];
    TKToggleSwitch* back = [NSKeyedUnarchiver unarchiveObjectWithData:data];
    ASSERT_TRUE([back isKindOfClass:[TKToggleSwitch class]]);
    [back SetUpColorsFace:Code(kOnUpFace) Border:Code(kOnUpBorder)];
    TarvaneTests::ResetGraphicsCalls();
    [back drawRect:NSZeroRect];
    EXPECT_EQ(CallsThatBegin({"MoveToPoint"}).at(0), "MoveToPoint 4 0");
    [back mouseUp:Event(NSLeftMouseUp, kInside)];
    EXPECT_EQ([back state], 1);
}

TEST_F(ToggleSwitch, FillsRunDiagonallyAsTheViewIsFlipped)
{
    AppCreateDefaultColoursDesigner();
    for (const bool fFlipped : {false, true})
    {
        TKToggleSwitch* pSwitch =
            [(fFlipped ? [FlippedSwitch alloc] : [TKToggleSwitch alloc]) initWithFrame:kFrame];
        [pSwitch SetUpColorsFace:ccTransportBtnFaceUp Border:ccTransportBtnBorderUp];
        TarvaneTests::ResetGraphicsCalls();
        [pSwitch drawRect:NSZeroRect];
        const std::vector<std::string> gradients = CallsThatBegin({"DrawLinearGradient"});
        ASSERT_THAT(gradients, SizeIs(2));
        EXPECT_THAT(gradients[0],
                    testing::HasSubstr(fFlipped ? "] 0 0 60 30 options" : "] 0 30 60 0 options"));
        EXPECT_THAT(gradients[1],
                    testing::HasSubstr(fFlipped ? "] 1 1 59 29 options" : "] 1 29 59 1 options"));
        [pSwitch release];
    }
}

TEST_F(ToggleSwitch, ImageFollowsStateAndPress)
{
    SetImages();
    EXPECT_EQ(DrawnImage(), "OffUp");
    Press(kInside);
    EXPECT_EQ(DrawnImage(), "OffDown");
    [m_switch setState:1];
    EXPECT_EQ(DrawnImage(), "OnDown");
    Release(kOutside);
    EXPECT_EQ(DrawnImage(), "OnUp");
}

TEST_F(ToggleSwitch, FindsBothImagesInItsOwnBundleBeforeItLoadsThemUpFirst)
{
    [m_switch SetStateImages:1 Up:@"OnUp" Down:@"OnDown"];
    EXPECT_THAT(GraphicsCalls(),
                ElementsAre("BundleOf CountingSwitch", "Resource OnUp.png", "Resource OnDown.png",
                            "LoadImage /images/OnUp.png", "LoadImage /images/OnDown.png"));
}

TEST_F(ToggleSwitch, LoadsAnImageTwiceForUpAndDown)
{
    [m_switch SetStateImages:1 Up:@"Link" Down:@"Link"];
    EXPECT_THAT(CallsThatBegin({"LoadImage"}), SizeIs(2));
    EXPECT_NE([m_switch imageOnUp], [m_switch imageOnDown]);
}

TEST_F(ToggleSwitch, ReleasesTheImagesOfThePairThatItReplaces)
{
    SetImages();
    NSImage* const onUp = [[m_switch imageOnUp] retain];
    NSImage* const onDown = [[m_switch imageOnDown] retain];
    NSImage* const offUp = [[m_switch imageOffUp] retain];
    NSImage* const offDown = [[m_switch imageOffDown] retain];
    [m_switch SetStateImages:1 Up:@"Other" Down:@"Other"];
    EXPECT_EQ([onUp retainCount], 1u);
    EXPECT_EQ([onDown retainCount], 1u);
    EXPECT_EQ([offUp retainCount], 2u);
    EXPECT_EQ([offDown retainCount], 2u);
    [m_switch SetStateImages:0 Up:@"Other" Down:@"Other"];
    EXPECT_EQ([offUp retainCount], 1u);
    EXPECT_EQ([offDown retainCount], 1u);
    for (NSImage* image : {onUp, onDown, offUp, offDown})
        [image release];
}

TEST_F(ToggleSwitch, GivesItsImagesBackAtTheEnd)
{
    CountingSwitch* pSwitch = [[CountingSwitch alloc] initWithFrame:kFrame];
    [pSwitch SetStateImages:1 Up:@"OnUp" Down:@"OnDown"];
    [pSwitch SetStateImages:0 Up:@"OffUp" Down:@"OffDown"];
    const std::vector<NSImage*> images = {
        [pSwitch imageOnUp], [pSwitch imageOnDown], [pSwitch imageOffUp], [pSwitch imageOffDown]};
    for (NSImage* image : images)
        [image retain];
    [pSwitch release];
    for (NSImage* image : images)
    {
        EXPECT_EQ([image retainCount], 1u);
        [image release];
    }
}

TEST_F(ToggleSwitch, ImageThatIsMissingLeavesNilInThePlaceOfTheOldOne)
{
    SetImages();
    m_drawing.LoseResource("Lost");
    [m_switch SetStateImages:0 Up:@"Lost" Down:@"OffDown"];
    EXPECT_TRUE([m_switch imageOffUp] == nil);
    EXPECT_EQ(DrawnImage(), "");
    EXPECT_TRUE([m_switch imageOffDown] != nil);
}

TEST_F(ToggleSwitch, LoadsNothingForOtherStates)
{
    SetImages();
    TarvaneTests::ResetGraphicsCalls();
    [m_switch SetStateImages:2 Up:@"Other" Down:@"Other"];
    [m_switch SetStateImages:-1 Up:@"Other" Down:@"Other"];
    EXPECT_THAT(GraphicsCalls(), IsEmpty());
    EXPECT_EQ(DrawnImage(), "OffUp");
}

TEST_F(ToggleSwitch, MissingImageLeavesColoursAndLabel)
{
    m_drawing.LoseResource("OffUp");
    SetAllColours();
    SetImages();
    [m_switch SetLabel:@"Take" XOffset:3];
    EXPECT_EQ(DrawnImage(), "");
    EXPECT_THAT(CallsThatBegin({"SetFillColor", "DrawText"}), SizeIs(3));
}

TEST_F(ToggleSwitch, ImageIsCentredAtItsOwnSizeAndNotRounded)
{
    SetImages();
    const std::string strCentred =
        "DrawImage OffUp in 21.5 8.5 17 13 from 0 0 0 0 operation 2 fraction 1";
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(CallsThatBegin({"DrawImage"}), ElementsAre(strCentred));
    SetAllColours();
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(CallsThatBegin({"DrawImage"}), ElementsAre(strCentred)) << "with a border as well";
}

TEST_F(ToggleSwitch, ImageOffsetMovesTheImageSideways)
{
    SetImages();
    [m_switch SetImageOffset:3.5f];
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(CallsThatBegin({"DrawImage"}),
                ElementsAre("DrawImage OffUp in 25 8.5 17 13 from 0 0 0 0 operation 2 fraction 1"));
}

TEST_F(ToggleSwitch, WithoutAButtonTheImageFillsTheBoundsAndTheLabelStays)
{
    SetAllColours();
    SetImages();
    [m_switch SetImageOffset:3.5f];
    [m_switch SetLabel:@"Take" XOffset:3];
    [m_switch SetDrawButton:false];
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(GraphicsCalls(),
                ElementsAre("DrawImage OffUp in 0 0 60 30 from 0 0 0 0 operation 2 fraction 1",
                            "Measure Take", "DrawText Take in 3 9 40 14"));
}

TEST_F(ToggleSwitch, LabelStandsAtItsOffsetOnePointAboveTheMiddle)
{
    SetAllColours();
    [m_switch SetLabel:@"Take" XOffset:7.5f];
    TarvaneTests::ResetGraphicsCalls();
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(CallsThatBegin({"DrawText"}), ElementsAre("DrawText Take in 7.5 9 40 14"));
}

TEST_F(ToggleSwitch, LabelIsCentredInThePaletteColour)
{
    [m_switch SetLabel:@"Take" XOffset:0];
    [m_switch drawRect:NSZeroRect];
    NSDictionary* attributes = m_drawing.LastAttributes();
    EXPECT_TRUE([attributes objectForKey:NSForegroundColorAttributeName] ==
                gAppColours.FindNSColor(ccControlText));
    EXPECT_EQ([[attributes objectForKey:NSParagraphStyleAttributeName] alignment],
              NSCenterTextAlignment);
    [m_switch SetLabelColor:Code(kOnUpFace)];
    [m_switch drawRect:NSZeroRect];
    EXPECT_TRUE([m_drawing.LastAttributes() objectForKey:NSForegroundColorAttributeName] ==
                gAppColours.FindNSColor(Code(kOnUpFace)));
}

TEST_F(ToggleSwitch, LabelIsSetInTahomaOfTwelvePoints)
{
    NSFont* tahoma = [NSFont userFixedPitchFontOfSize:9];
    m_drawing.LendFont("Tahoma", 12.0, tahoma);
    [m_switch SetLabel:@"Take" XOffset:0];
    [m_switch drawRect:NSZeroRect];
    EXPECT_TRUE([m_drawing.LastAttributes() objectForKey:NSFontAttributeName] == tahoma);
}

TEST_F(ToggleSwitch, LabelWithoutItsFontOrColourIsStillDrawnInTheMiddle)
{
    m_drawing.LoseResource("Tahoma");
    [m_switch SetLabel:@"Take" XOffset:0];
    [m_switch SetLabelColor:CComponentCode(0, 99)];
    [m_switch drawRect:NSZeroRect];
    EXPECT_THAT(CallsThatBegin({"DrawText"}), SizeIs(1));
    EXPECT_TRUE([m_drawing.LastAttributes() objectForKey:NSFontAttributeName] == nil);
    EXPECT_TRUE([m_drawing.LastAttributes() objectForKey:NSForegroundColorAttributeName] == nil);
    EXPECT_EQ([[m_drawing.LastAttributes() objectForKey:NSParagraphStyleAttributeName] alignment],
              NSCenterTextAlignment);
}

TEST_F(ToggleSwitch, LabelIsRetainedAndGivenUp)
{
    NSMutableString* label = [[NSMutableString alloc] initWithString:@"Take"];
    TKToggleSwitch* pSwitch = [[TKToggleSwitch alloc] initWithFrame:kFrame];
    [pSwitch SetLabel:label XOffset:0];
    EXPECT_EQ([label retainCount], 2u);
    [pSwitch SetLabel:label XOffset:1];
    EXPECT_EQ([label retainCount], 2u);
    [pSwitch SetLabel:nil XOffset:0];
    EXPECT_EQ([label retainCount], 1u);
    [pSwitch SetLabel:label XOffset:0];
    [pSwitch release];
    EXPECT_EQ([label retainCount], 1u);
    [label release];
}

TEST_F(ToggleSwitch, ToolTipIsThePlatforms)
{
    [m_switch SetToolTip:@"Capture audio"];
    EXPECT_TRUE([[m_switch toolTip] isEqualToString:@"Capture audio"]);
}
