#pragma once

#include <memory>

namespace TarvaneTest
{

/// A window of another client of the display, in the corner of the screen, which no window manager
/// looks after: a click on it takes the keyboard from nobody.
class CForeignWindow
{
public:
    static constexpr int kMiddle = 20; ///< of the window, in both directions on the display

    CForeignWindow();
    ~CForeignWindow();

    CForeignWindow(const CForeignWindow&) = delete;
    CForeignWindow& operator=(const CForeignWindow&) = delete;

    /// The presses that have reached it since the last call.
    int TakePresses();

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;
};

} // namespace TarvaneTest
