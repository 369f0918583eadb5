#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

@class MenuHand;

/// A view in a real window, and real input through the display server. One at a time; a test that
/// uses it is declared with DISPLAY. Failures to get that far are reported as test failures.
class CDesktopWindow
{
  public:
    explicit CDesktopWindow(NSView* pView);
    ~CDesktopWindow();
    CDesktopWindow(const CDesktopWindow&) = delete;
    CDesktopWindow& operator=(const CDesktopWindow&) = delete;

    /// Deals with events until `done`; false after ten seconds without.
    bool RunUntil(const std::function<bool()>& done);

    /// A press and a release in the middle of a view, perhaps with a key of that name held.
    void Click(NSView* pView, const std::string& strKeyHeld = {});

    /// A press on a pop-up button, and a release on an item of the menu that it shows then. The
    /// item is chosen from the menu as it was refilled.
    void Choose(NSPopUpButton* pButton, NSInteger nItem);

    /// The same by the keyboard: the space bar, and xdotool's names of keys for the open menu.
    void ChooseByKeys(NSPopUpButton* pButton, const std::string& strKeys);

    /// What the screen shows of a view once nothing more happens, as a number that stands for it.
    std::string Look(NSView* pView);
    /// Whether that is what the view would show if it were drawn anew.
    bool IsUpToDate(NSView* pView);

    /// The colour on the screen, at a point of the view.
    NSColor* ColourAt(NSView* pView, NSPoint pt);

    /// What the screen shows of the view, as a PNG file. Views that are flipped or not.
    void TakePicture(NSView* pView, const std::string& strFile);

    /// The pointer, to the middle of a view; or away from the window, where no tool tip comes up.
    void PointAt(NSView* pView);
    void PointAway();

    /// The mouse button, where the pointer is.
    void Press();
    void LetGo();

  private:
    void UseMenu(MenuHand* pHand, const std::string& strOpening);
    void MoveTo(NSView* pView, NSPoint pt);

    NSWindow* m_pWindow;
};
