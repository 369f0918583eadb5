#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

/// The delegate of a menu: counts its openings and gives the menu new items each time.
@interface TestMenuDelegate : NSObject <NSMenuDelegate>
{
  @public
    int m_nOpened;
    NSMenu* m_lastMenu;
    /// nil: the items stay as they are.
    NSArray* m_titles;
}
- (void)setTitles:(NSArray*)titles;
@end

/// The target of a button.
@interface TestMenuTarget : NSObject
{
  @public
    NSString* m_chosen;
    int m_nChoices;
    id m_sender; ///< not retained
}
- (void)choose:(id)sender;
@end

/// The shared application, without the test program's own options. Once, and then no more.
void StartApplication();

/// Real input, by the display server: a command of xdotool's.
void Input(const std::string& command);

/// An active application with a key window, in it a pop-up button with the items "one" and "two".
/// Owns what it made; the window is closed at the end.
class MenuWindow
{
  public:
    explicit MenuWindow(bool fPullsDown = false);
    ~MenuWindow();

    /// Real input, by the display server: returns when the button has dealt with it.
    /// A click on the button, and then on an item of the menu that it shows.
    void ClickAndChoose();
    /// A click on a button that shows no menu then.
    void ClickOnce();
    /// Shows the menu by the space bar, for the first time, and chooses an item by Down and Return.
    void PressSpaceAndReturn();

    /// What to do while a menu is open, one step each time that the button looks for events; later
    /// ones wait until the menu is open again. Takes the place of what has not been done yet.
    void WhileOpen(const std::vector<std::function<void()>>& steps);
    bool AllDone() const;
    /// To a row of the open menu, and to a point beside it.
    static void PointAtRow(NSInteger row);
    static void PointBeside();
    /// On the button: a press, and a click of no length.
    void Press();
    void ClickAtOnce();

    /// The application's events until `done`; false after ten seconds without.
    bool RunUntil(const std::function<bool()>& done);

    NSWindow* window;
    NSPopUpButton* button;
    TestMenuDelegate* delegate; ///< not yet the menu's
    TestMenuTarget* target;

  private:
    NSPoint Centre() const;
    bool PointerIsOnTheButton() const;
    void PointAtTheButton();
    NSAutoreleasePool* m_pool;
    id m_hand;
    int m_nMouseDowns = 0;
    int m_nMouseUps = 0;
};
