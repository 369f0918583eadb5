#import "tests/TarvaneLinkAU/LinkViewFixture.h"

#include <cstring>

using testing::ElementsAre;
using testing::IsEmpty;

// Writes down the gesture notifications of one slider.
@interface GestureObserver : NSObject
{
  @public
    std::vector<std::string> m_names;
}
@end

@implementation GestureObserver

- (void)Note:(NSNotification*)pNotification
{
    m_names.push_back([[pNotification name] UTF8String]);
}

- (void)Moved:(id)idSender
{
    (void)idSender;
    m_names.push_back("moved");
}

@end

namespace
{
class GestureSlider : public LinkViewFixture
{
  protected:
    GestureSlider()
    {
        m_pWindow = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 300, 100)
                                                styleMask:NSBorderlessWindowMask
                                                  backing:NSBackingStoreBuffered
                                                    defer:NO];
        [m_pWindow setReleasedWhenClosed:NO];
        [[m_pWindow contentView] addSubview:m_pView];
    }

    ~GestureSlider() override
    {
        [m_pView removeFromSuperview];
        [m_pWindow release];
    }

    NSEvent* MouseEvent(NSEventType nType, NSView* pView)
    {
        return [NSEvent mouseEventWithType:nType
                                  location:[pView convertPoint:NSMakePoint(5, 5) toView:nil]
                             modifierFlags:0
                                 timestamp:0
                              windowNumber:[m_pWindow windowNumber]
                                   context:nil
                               eventNumber:0
                                clickCount:1
                                  pressure:0];
    }

    // A press and a release on the spot.
    void Click(TarvaneLink_GestureSlider* pSlider)
    {
        [NSApp postEvent:MouseEvent(NSLeftMouseUp, pSlider) atStart:NO];
        [pSlider mouseDown:MouseEvent(NSLeftMouseDown, pSlider)];
    }

    NSWindow* m_pWindow;
};

TEST_F(GestureSlider, NotificationsHaveTheirPublishedNames)
{
    EXPECT_EQ(Utf8(TarvaneLink_GestureSliderMouseDownNotification),
              "CAGestureSliderMouseDownNotification");
    EXPECT_EQ(Utf8(TarvaneLink_GestureSliderMouseUpNotification),
              "CAGestureSliderMouseUpNotification");
}

TEST_F(GestureSlider, ClickWithoutADragPostsDownBeforeUp)
{
    GestureObserver* pObserver = [[GestureObserver alloc] init];
    [[NSNotificationCenter defaultCenter] addObserver:pObserver
                                             selector:@selector(Note:)
                                                 name:nil
                                               object:[m_pView slider]];
    Click([m_pView slider]);
    [[NSNotificationCenter defaultCenter] removeObserver:pObserver];
    EXPECT_THAT(pObserver->m_names, ElementsAre("CAGestureSliderMouseDownNotification",
                                                "CAGestureSliderMouseUpNotification"));
    [pObserver release];
}

TEST_F(GestureSlider, TrackingLiesBetweenDownAndUp)
{
    GestureObserver* pObserver = [[GestureObserver alloc] init];
    TarvaneLink_GestureSlider* pSlider = [m_pView slider];
    [pSlider setMaxValue:100];
    [pSlider setDoubleValue:100];
    [pSlider setTarget:pObserver];
    [pSlider setAction:@selector(Moved:)];
    [[NSNotificationCenter defaultCenter] addObserver:pObserver
                                             selector:@selector(Note:)
                                                 name:nil
                                               object:pSlider];
    Click(pSlider);
    [[NSNotificationCenter defaultCenter] removeObserver:pObserver];
    [pSlider setTarget:nil];
    ASSERT_GE(pObserver->m_names.size(), 3u);
    EXPECT_EQ(pObserver->m_names.front(), "CAGestureSliderMouseDownNotification");
    EXPECT_EQ(pObserver->m_names[1], "moved");
    EXPECT_EQ(pObserver->m_names.back(), "CAGestureSliderMouseUpNotification");
    [pObserver release];
}

TEST_F(GestureSlider, PressTellsTheHostOfAGestureWithAnAllZeroParameter)
{
    Attach();
    Click([m_pView slider]);
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("NotifyEvent(1)", "NotifyEvent(2)"));
    const AudioUnitParameter tZero = {};
    for (const auto& record : m_plugIn.Records())
    {
        EXPECT_EQ(record.m_pListener, nullptr);
        EXPECT_EQ(record.m_pUserData, m_pView);
        EXPECT_EQ(std::memcmp(&record.m_event.mArgument.mParameter, &tZero, sizeof tZero), 0);
    }
}

TEST_F(GestureSlider, AnotherSliderHasNoEffect)
{
    Attach();
    TarvaneLink_GestureSlider* pOther =
        [[[TarvaneLink_GestureSlider alloc] initWithFrame:NSMakeRect(0, 0, 80, 20)] autorelease];
    [[m_pWindow contentView] addSubview:pOther];
    Click(pOther);
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());

    NSNotification* pForeign =
        [NSNotification notificationWithName:TarvaneLink_GestureSliderMouseDownNotification
                                      object:pOther];
    [m_pView handleMouseDown:pForeign];
    [m_pView handleMouseUp:pForeign];
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
}

TEST_F(GestureSlider, NothingIsHeardBeforeThereIsAPlugIn)
{
    Click([m_pView slider]);
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
}

TEST_F(GestureSlider, SecondPlugInHearsEachGestureOnce)
{
    Attach();
    Attach();
    Click([m_pView slider]);
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("NotifyEvent(1)", "NotifyEvent(2)"));
}

TEST_F(GestureSlider, NothingIsHeardOnceTheListenersAreGone)
{
    Attach();
    [m_pView removeListeners];
    m_plugIn.ForgetRecords();
    Click([m_pView slider]);
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
    PlayTracks({"Vox"}, 2);
    [m_pView addListeners];
}
} // namespace
