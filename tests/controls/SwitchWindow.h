// A toggle switch in a real window, and a hand on the mouse.
#pragma once

#import "controls/TKToggleSwitch.h"

#include <functional>
#include <string>
#include <vector>

/// Counts what reaches it, after it has dealt with it.
@interface WatchedSwitch : TKToggleSwitch
{
  @public
    int m_nDowns;
    int m_nDrags;
    int m_nUps;
    int m_nRedraws; ///< asked for
    NSPoint m_lastDrag;
}
- (bool)isArmed;
@end

@interface WatchingDelegate : NSObject <TKSwitchDelegate>
{
  @public
    int m_nTold;
    NSInteger m_nState; ///< of the switch, when told last
    std::int32_t m_nFlags;
    bool m_fArmed;
}
@end

namespace TarvaneTests
{

/// Real input by the display server: each call returns when the switch has dealt with what reaches
/// it. One at a time; the application object must be there.
class SwitchWindow
{
  public:
    SwitchWindow();
    ~SwitchWindow();
    SwitchWindow(const SwitchWindow&) = delete;
    SwitchWindow& operator=(const SwitchWindow&) = delete;

    void PressInside();
    void PressBeside();
    /// With the button held.
    void DragInside();
    void DragOutside();
    void ReleaseSeen();
    /// After a press that the switch has not seen; it does not see the release either.
    void ReleaseUnseen();
    void KeyDown(const std::string& strKey);
    void KeyUp(const std::string& strKey);

    WatchedSwitch* control;
    WatchingDelegate* delegate;

  private:
    bool RunUntil(const std::function<bool()>& done);
    NSPoint OnScreen(NSPoint point) const;
    void PointAt(NSPoint point);
    void DragTo(NSPoint point);

    NSWindow* m_window;
    int m_nPlace = 0;
    std::vector<std::string> m_keys; ///< held down
    bool m_fButton = false;
};

} // namespace TarvaneTests
