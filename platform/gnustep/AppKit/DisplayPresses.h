#pragma once

#include <memory>

namespace platform
{

/// Sees presses on the whole display, in windows of other programs too, and takes them from nobody:
/// by the raw events of XInput 2, on a connection of its own. A grab of the pointer would take
/// them, and a program that has to wait for another while it holds one leaves its user without a
/// mouse. Sees nothing on a display without XInput 2. One thread.
class CDisplayPresses
{
public:
    struct Presses
    {
        bool fMouse;  ///< one of the pointer's first three buttons; others scroll
        bool fEscape; ///< the Escape key, whoever has the keyboard
    };

    CDisplayPresses();
    ~CDisplayPresses();

    CDisplayPresses(const CDisplayPresses&) = delete;
    CDisplayPresses& operator=(const CDisplayPresses&) = delete;

    /// Those since the last call, or since the beginning. Does not wait.
    Presses Take();

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection; ///< empty when nothing can be seen
};

} // namespace platform
