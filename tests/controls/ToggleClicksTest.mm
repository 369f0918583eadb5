#import "tests/controls/SwitchWindow.h"

#include <gtest/gtest.h>

using TarvaneTests::SwitchWindow;

namespace
{

class ToggleClicks : public testing::Test
{
  protected:
    // Since the last call.
    int Redraws()
    {
        const int nRedraws = m_window.control->m_nRedraws;
        m_window.control->m_nRedraws = 0;
        return nRedraws;
    }

    void ExpectUntouched()
    {
        EXPECT_EQ([m_window.control state], 0);
        EXPECT_EQ(m_window.delegate->m_nTold, 0);
        EXPECT_FALSE([m_window.control isArmed]);
    }

    SwitchWindow m_window;
};

} // namespace

TEST_F(ToggleClicks, PressInsideArmsAndRedraws)
{
    m_window.PressInside();
    EXPECT_TRUE([m_window.control isArmed]);
    EXPECT_EQ(Redraws(), 1);
    EXPECT_EQ([m_window.control state], 0);
    EXPECT_EQ(m_window.delegate->m_nTold, 0);
    m_window.ReleaseSeen();
}

TEST_F(ToggleClicks, PressAndReleaseBesideDoNothing)
{
    m_window.PressBeside();
    m_window.ReleaseUnseen();
    ExpectUntouched();
    EXPECT_EQ(Redraws(), 0);
    EXPECT_EQ(m_window.control->m_nDowns, 0);
}

TEST_F(ToggleClicks, ReleaseInsideFlipsAndTellsOnceStillArmed)
{
    m_window.PressInside();
    Redraws();
    m_window.ReleaseSeen();
    EXPECT_EQ([m_window.control state], 1);
    EXPECT_EQ(m_window.delegate->m_nTold, 1);
    EXPECT_EQ(m_window.delegate->m_nState, 1);
    EXPECT_TRUE(m_window.delegate->m_fArmed);
    EXPECT_FALSE([m_window.control isArmed]);
    EXPECT_EQ(Redraws(), 1);
}

TEST_F(ToggleClicks, ASecondClickFlipsBack)
{
    for (const int nState : {1, 0})
    {
        m_window.PressInside();
        m_window.ReleaseSeen();
        EXPECT_EQ([m_window.control state], nState);
    }
    EXPECT_EQ(m_window.delegate->m_nTold, 2);
}

TEST_F(ToggleClicks, AnyOtherStateFlipsToOn)
{
    [m_window.control setState:2];
    m_window.PressInside();
    m_window.ReleaseSeen();
    EXPECT_EQ([m_window.control state], 1);
}

TEST_F(ToggleClicks, DragWithinStaysArmedAndRedrawsNothing)
{
    m_window.PressInside();
    Redraws();
    m_window.DragInside();
    m_window.DragInside();
    EXPECT_TRUE([m_window.control isArmed]);
    EXPECT_EQ(Redraws(), 0);
    m_window.ReleaseSeen();
    EXPECT_EQ([m_window.control state], 1);
}

TEST_F(ToggleClicks, DragOutDisarmsAndReleaseThereChangesNothing)
{
    m_window.PressInside();
    Redraws();
    m_window.DragOutside();
    EXPECT_FALSE([m_window.control isArmed]);
    EXPECT_EQ(Redraws(), 1);
    m_window.DragOutside();
    EXPECT_EQ(Redraws(), 0) << "outside already";
    m_window.ReleaseSeen();
    ExpectUntouched();
    EXPECT_EQ(Redraws(), 1);
}

TEST_F(ToggleClicks, DragOutAndBackArmsAgainAndFlips)
{
    m_window.PressInside();
    m_window.DragOutside();
    Redraws();
    m_window.DragInside();
    EXPECT_TRUE([m_window.control isArmed]);
    EXPECT_EQ(Redraws(), 1);
    m_window.ReleaseSeen();
    EXPECT_EQ([m_window.control state], 1);
    EXPECT_EQ(m_window.delegate->m_nTold, 1);
}

TEST_F(ToggleClicks, DelegateGetsTheModifierKeysOfTheRelease)
{
    m_window.PressInside();
    m_window.ReleaseSeen();
    EXPECT_EQ(m_window.delegate->m_nFlags & NSShiftKeyMask, 0);
    m_window.KeyDown("Shift_L");
    m_window.PressInside();
    m_window.ReleaseSeen();
    EXPECT_NE(m_window.delegate->m_nFlags & NSShiftKeyMask, 0);
    m_window.PressInside();
    m_window.KeyUp("Shift_L");
    m_window.ReleaseSeen();
    EXPECT_EQ(m_window.delegate->m_nFlags & NSShiftKeyMask, 0) << "held at the press only";
}

TEST_F(ToggleClicks, DisabledItDoesNothing)
{
    [m_window.control SetEnabled:false];
    m_window.PressInside();
    m_window.DragOutside();
    m_window.DragInside();
    m_window.ReleaseSeen();
    ExpectUntouched();
    EXPECT_EQ(Redraws(), 0);
}

TEST_F(ToggleClicks, DisabledWhileArmedItStaysArmedUntilALaterRelease)
{
    m_window.PressInside();
    [m_window.control SetEnabled:false];
    m_window.ReleaseSeen();
    EXPECT_TRUE([m_window.control isArmed]);
    EXPECT_EQ([m_window.control state], 0);
    [m_window.control SetEnabled:true];
    m_window.PressInside();
    m_window.ReleaseSeen();
    EXPECT_FALSE([m_window.control isArmed]);
    EXPECT_EQ([m_window.control state], 1);
}

TEST_F(ToggleClicks, WithoutADelegateItFlipsAllTheSame)
{
    [m_window.control SetDelegate:nil];
    m_window.PressInside();
    m_window.ReleaseSeen();
    EXPECT_EQ([m_window.control state], 1);
}

TEST(ToggleInAWindow, GivesUpWhatItHolds)
{
    WatchedSwitch* control;
    WatchingDelegate* delegate;
    {
        SwitchWindow window;
        control = [window.control retain];
        delegate = [window.delegate retain];
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        window.PressInside();
        window.ReleaseSeen();
        [pool drain];
        EXPECT_EQ([delegate retainCount], 2u) << "the switch holds no delegate";
    }
    EXPECT_EQ([delegate retainCount], 1u);
    [delegate release];
    [control release];
}
